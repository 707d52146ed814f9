// What a server says of its tables and views.
#pragma once

#include "engine/jet_sql/table_facts.h"
#include "engine/odbc/odbc_schema.h"

namespace kxrestore::engine::odbc {

class OdbcTableFacts final : public jet_sql::TableFacts {
 public:
  explicit OdbcTableFacts(Session& session) : m_session(session) {}

  std::optional<std::string> SavedQuery(const std::string& name) override;
  bool HasColumn(const std::string& table, const std::string& column) override;
  bool IsRowKey(const std::string& table, const std::string& column) override;
  bool ComparesExactly(const std::string& table, const std::string& column) override;
  bool IsExactText(const std::string& table, const std::string& column) override;
  bool SortsAlike() const override { return true; }

 private:
  const jet_sql::KnownRelation* FindTable(const std::string& name);
  const jet_sql::KnownColumn* FindColumn(const std::string& table, const std::string& column);
  // Whether PostgreSQL's system catalogs hold a matching row for this table.
  bool IsInCatalogs(const std::string& from, const std::string& condition, const std::string& table,
                    const std::string& column = {});

  Session& m_session;
};

}  // namespace kxrestore::engine::odbc
