// Facts about the tables and views of a catalog file.
#pragma once

#include "engine/jet_sql/meaning/table_facts.h"
#include "engine/sqlite/connection.h"

namespace kxrestore::engine::sqlite {

class SqliteTableFacts final : public jet_sql::TableFacts {
 public:
  explicit SqliteTableFacts(const Connection& connection) : m_connection(connection) {}

  std::optional<std::string> SavedQuery(const std::string& name) override;
  bool IsRowKey(const std::string& table, const std::string& column) override;
  bool ComparesExactly(const std::string& /*table*/, const std::string& /*column*/) override { return true; }
  bool MasksKeepGroups() const override { return true; }

 private:
  const Connection& m_connection;
};

}  // namespace kxrestore::engine::sqlite
