// A desktop-engine file for a session: tables as virtual tables, saved queries as views.
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
  // `exclusive`: no other program may have the file open, from here to the end. Errors: those of JetFile and
  // of WriteAccess.
  JetTables(std::string path, bool exclusive, const std::shared_ptr<sqlite::Waiter>& waiter);

  void Attach(sqlite3* connection) override;
  void RaiseFailure(const char* message) override;

  const JetFile& File() const { return m_file; }
  SavedQueries& Queries() { return m_queries; }

  // Whether the views are out of date with the queries; checked before a statement.
  bool IsBehind() const { return m_version != m_queries.Version(); }
  // Updates the views.
  void CatchUp();
  // Takes up changes that other programs have made, unless a statement or transaction is active.
  void Refresh();

 private:
  // The views that should exist: CREATE VIEW by name.
  std::map<std::string, std::string> WantedViews();

  JetFile m_file;
  Marks m_marks;
  TableServer m_server;
  SavedQueries& m_queries;
  sqlite3* m_connection = nullptr;
  std::uint64_t m_version = 0;                    // version of the queries that the views reflect
  std::map<std::string, std::string> m_ownViews;  // of the file's queries, by folded name
  std::map<std::string, Error> m_queryProblems;
};

// The text of a query as an SQLite view. Errors: those of the dialect.
std::string CreateViewText(std::string_view name, std::string_view sql);

}  // namespace kxrestore::engine::jet_file
