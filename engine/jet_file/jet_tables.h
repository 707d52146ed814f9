// A file of the desktop engine behind a session: its tables as virtual tables, its saved queries as views.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "engine/jet_file/saved_queries.h"
#include "engine/jet_file/virtual_table.h"
#include "engine/sqlite/foreign_tables.h"
#include "engine/sqlite/waiter.h"

namespace kxrestore::engine::jet_file {

class JetTables final : public sqlite::ForeignTables {
 public:
  // `exclusive`: nobody else may have the file open, from here to the end. Errors: those of JetFile and of
  // WriteAccess.
  JetTables(std::string path, bool exclusive, const std::shared_ptr<sqlite::Waiter>& waiter);

  void Attach(sqlite3* connection) override;
  void RaiseFailure(const char* message) override;

  const JetFile& File() const { return m_file; }
  SavedQueries& Queries() { return m_queries; }

  // Before a statement: whether the views are not those that the queries make now.
  bool IsBehind() const { return m_version != m_queries.Version(); }
  // Makes them so.
  void CatchUp();
  // Takes up what other programs have written to the file, when nobody is in the middle of something.
  void Refresh();

 private:
  // The views that there should be: CREATE VIEW by name.
  std::map<std::string, std::string> WantedViews();

  JetFile m_file;
  Marks m_marks;
  TableServer m_server;
  SavedQueries& m_queries;
  sqlite3* m_connection = nullptr;
  std::uint64_t m_version = 0;                    // of the queries that the views were made of
  std::map<std::string, std::string> m_ownViews;  // of the file's queries, by folded name
  std::map<std::string, Error> m_queryProblems;
};

// The text of a query as a view of SQLite's. Errors: those of the dialect.
std::string CreateViewText(std::string_view name, std::string_view sql);

}  // namespace kxrestore::engine::jet_file
