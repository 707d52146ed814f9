#include "engine/odbc/server_facts.h"

#include "engine/jet_sql/tsql_dialect.h"

namespace kxrestore::engine::odbc {

std::unique_ptr<jet_sql::ServerDialect> MakeDialect(const ServerFacts& facts) {
  if (facts.IsPostgres()) {
    return std::make_unique<jet_sql::PostgresDialect>(facts.order, facts.foldsAsciiOnly);
  }
  if (facts.IsSqlServer()) return std::make_unique<jet_sql::TsqlDialect>(facts.mindsCase);
  return std::make_unique<jet_sql::StandardDialect>(facts.quote);
}

}  // namespace kxrestore::engine::odbc
