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
  // Of a table, not of a saved query; names are compared without regard to case, as in statements.
  virtual bool HasColumn(const std::string& table, const std::string& column) = 0;
  // Whether the column holds whole numbers of which no two rows have the same.
  virtual bool IsRowKey(const std::string& table, const std::string& column) = 0;
  // Whether a value of the column cannot equal two whole numbers.
  virtual bool ComparesExactly(const std::string& table, const std::string& column) = 0;
  // Whether the column holds texts that are compared as they are written.
  virtual bool IsExactText(const std::string& table, const std::string& column) = 0;
  // Whether saved queries sort texts as statements do.
  virtual bool SortsAlike() const = 0;
};

}  // namespace kxrestore::engine::jet_sql
