// What a driver reports of its server, as far as statements and cursors depend on it.
#pragma once

#include <memory>
#include <string>

#include "engine/jet_sql/printing/server_dialects.h"

namespace kxrestore::engine::odbc {

constexpr std::size_t kQueryTimeout = 60;  // seconds

struct ServerFacts {
  std::string dbms;                    // SQL_DBMS_NAME
  bool foldsToLower = false;           // names that are not quoted
  bool onlyOneActive = false;          // one statement at a time may have rows to fetch
  bool fetchesAllAtOnce = false;       // the driver fetches a whole result unless told otherwise
  bool textsAsBytes = false;           // texts can be fetched in UTF-8, without conversion from UTF-16
  bool serverKeepsTime = false;        // the server itself ends a statement that takes too long
  bool preparesByName = false;         // by statements of the server's own, see StatementData
  bool readsPartsInBlocks = false;     // long texts can be read out of a block of rows
  bool undoesStatementsAlone = false;  // a statement that fails leaves the rest of its transaction intact
  // Of PostgreSQL
  jet_sql::PostgresDialect::Order order = jet_sql::PostgresDialect::Order::kOwn;
  bool foldsAsciiOnly = false;  // it knows no case of other letters, but has a collation that does
  std::string patternEscape;    // of the catalog functions
  // Of SQL Server
  bool mindsCase = false;  // the database's collation is case-sensitive
  // Of both
  std::string schema;  // the default one

  bool IsPostgres() const { return dbms == "PostgreSQL"; }
  bool IsSqlServer() const { return dbms == "Microsoft SQL Server"; }
};

// The one place where a server's dialect is chosen; error 3146 for a server of another make.
std::unique_ptr<jet_sql::ServerDialect> MakeDialect(const ServerFacts& facts);

}  // namespace kxrestore::engine::odbc
