// What a database knows of its tables and saved queries. Rewrites that rely on it must give the same rows, so
// implementations deny whatever they do not know for certain.
#pragma once

#include <optional>
#include <string>

namespace kxrestore::engine::jet_sql {

class TableFacts {
 public:
  virtual ~TableFacts() = default;

  // The text of a saved query in the catalog's dialect; nothing for a table.
  virtual std::optional<std::string> SavedQuery(const std::string& name) = 0;
  // Whether the column is a unique whole number in the table. Names are compared without regard to case.
  virtual bool IsRowKey(const std::string& table, const std::string& column) = 0;
  // Whether no value of the column equals two different whole numbers.
  virtual bool ComparesExactly(const std::string& table, const std::string& column) = 0;
  // Whether texts that fall into one group always match the same masks.
  virtual bool MasksKeepGroups() const = 0;
};

}  // namespace kxrestore::engine::jet_sql
