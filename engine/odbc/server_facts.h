// What a driver reports of its server, as far as statements and cursors depend on it.
#pragma once

#include <memory>
#include <string>

#include "engine/jet_sql/printing/server_dialects.h"

namespace kxrestore::engine::odbc {

struct ServerFacts {
  std::string dbms;                 // SQL_DBMS_NAME
  bool foldsToLower = false;        // names that are not quoted
  bool onlyOneActive = false;       // one statement at a time may have rows to fetch
  bool fetchesAllAtOnce = false;    // unless it is told not to
  bool textsAsBytes = false;        // in UTF-8, without going through UTF-16
  bool serverKeepsTime = false;     // and ends a statement that takes too long
  bool preparesByName = false;      // by statements of the server's own, see OdbcStatement
  bool readsPartsInBlocks = false;  // long texts can be read out of a block of rows
  // Of PostgreSQL
  jet_sql::PostgresDialect::Order order = jet_sql::PostgresDialect::Order::kOwn;
  bool foldsAsciiOnly = false;  // it knows no case of other letters, but has a collation that does
  std::string patternEscape;    // of the catalog functions
  // Of SQL Server
  bool mindsCase = false;  // its database's collation
  // Of both
  std::string schema;  // where names are looked for first

  bool IsPostgres() const { return dbms == "PostgreSQL"; }
  bool IsSqlServer() const { return dbms == "Microsoft SQL Server"; }
};

// The one place where a server's dialect is chosen; error 3146 for a server of another make.
std::unique_ptr<jet_sql::ServerDialect> MakeDialect(const ServerFacts& facts);

}  // namespace kxrestore::engine::odbc
