// Properties of a server's tables and views.
#pragma once

#include "engine/jet_sql/meaning/table_facts.h"
#include "engine/odbc/odbc_schema.h"

namespace kxrestore::engine::odbc {

class OdbcTableFacts final : public jet_sql::TableFacts {
 public:
  explicit OdbcTableFacts(Session& session) : m_session(session) {}

  std::optional<std::string> SavedQuery(const std::string& name) override;
  bool IsRowKey(const std::string& table, const std::string& column) override;
  bool ComparesExactly(const std::string& table, const std::string& column) override;
  bool MasksKeepGroups() const override;

 private:
  const jet_sql::KnownRelation* FindTable(const std::string& name);
  const jet_sql::KnownColumn* FindColumn(const std::string& table, const std::string& column);
  bool HasHeirs(const std::string& table);

  Session& m_session;
};

}  // namespace kxrestore::engine::odbc
