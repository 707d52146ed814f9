// What a database can tell of its tables and saved queries, for statements that are made simpler where that
// gives the same rows. What is not known for certain is denied.
#pragma once

#include <optional>
#include <string>

namespace kxrestore::engine::jet_sql {

class TableFacts {
 public:
  virtual ~TableFacts() = default;

  // The text of a saved query in the catalog's dialect; nothing for a table.
  virtual std::optional<std::string> SavedQuery(const std::string& name) = 0;
  // Whether the column of a table holds whole numbers of which no two rows have the same. Names are compared
  // without regard to case, as in statements.
  virtual bool IsRowKey(const std::string& table, const std::string& column) = 0;
  // Whether a value of the column cannot equal two whole numbers.
  virtual bool ComparesExactly(const std::string& table, const std::string& column) = 0;
  // Whether texts that are grouped together match the same masks.
  virtual bool MasksKeepGroups() const = 0;
};

}  // namespace kxrestore::engine::jet_sql
