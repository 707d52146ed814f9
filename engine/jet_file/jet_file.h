// An open file of the desktop engine: its tables, its saved queries, and the reasons why some of them cannot
// be used. Read-only; marks.h writes.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "base/error.h"
#include "engine/jet_file/system_tables.h"

namespace kxrestore::engine::jet_file {

struct FileQuery {
  std::string name;
  std::string text;              // ends in ";"
  std::optional<Error> problem;  // why the text is not available
};

class JetFile {
 public:
  // Errors: those of PageFile, and 3049 for damaged system tables.
  explicit JetFile(std::string path);

  PageFile& Pages() { return m_pages; }
  const PageFile& Pages() const { return m_pages; }
  const std::vector<std::unique_ptr<Table>>& Tables() const { return m_tables; }
  const std::vector<FileQuery>& Queries() const { return m_queries; }
  // The table or query of that name, ignoring case.
  Table* FindTable(std::string_view name) const;
  const FileQuery* FindQuery(std::string_view name) const;
  // Why a table that the file lists cannot be used.
  const Error* Problem(std::string_view name) const;

  // Checks whether another program has changed the file; rows found before are then invalid. Error 3197 when
  // its tables have changed.
  bool Refresh();

 private:
  void AddTable(const FileObject& object);

  PageFile m_pages;
  std::unique_ptr<CodePage> m_codePage;
  std::vector<std::unique_ptr<Table>> m_tables;
  std::vector<FileQuery> m_queries;
  std::set<std::uint32_t> m_definitions;    // pages on which a table's definition starts
  std::map<std::string, Error> m_problems;  // by folded name
};

}  // namespace kxrestore::engine::jet_file
