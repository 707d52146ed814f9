#include "engine/odbc/server_facts.h"

#include "base/error.h"
#include "engine/error_numbers.h"
#include "engine/jet_sql/printing/tsql_dialect.h"

namespace kxrestore::engine::odbc {

std::unique_ptr<jet_sql::ServerDialect> MakeDialect(const ServerFacts& facts) {
  if (facts.IsPostgres()) {
    return std::make_unique<jet_sql::PostgresDialect>(facts.order, facts.foldsAsciiOnly);
  }
  if (facts.IsSqlServer()) return std::make_unique<jet_sql::TsqlDialect>(facts.mindsCase);
  Raise(error_number::kOdbcFailed,
        "ODBC - call failed: the server is '" + facts.dbms + "', neither SQL Server nor PostgreSQL.");
}

}  // namespace kxrestore::engine::odbc
