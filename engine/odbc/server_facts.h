// Properties of the server, as reported by its driver, that statements and cursors depend on.
#pragma once

#include <string>

#include "engine/jet_sql/printing/server_dialects.h"

namespace kxrestore::engine::odbc {

constexpr std::size_t kQueryTimeout = 60;  // seconds

struct ServerFacts {
  std::string dbms;                    // SQL_DBMS_NAME
  bool foldsToLower = false;           // unquoted names
  bool onlyOneActive = false;          // one statement at a time may have rows to fetch
  bool fetchesAllAtOnce = false;       // the driver fetches a whole result unless set otherwise
  bool textsAsBytes = false;           // texts can be fetched in UTF-8, without conversion from UTF-16
  bool serverKeepsTime = false;        // the server enforces time limits of statements
  bool preparesByName = false;         // with the server's PREPARE, see StatementData
  bool readsPartsInBlocks = false;     // long texts can be read out of a block of rows
  bool undoesStatementsAlone = false;  // a failing statement does not abort its transaction
  // Of PostgreSQL
  jet_sql::PostgresDialect::Order order = jet_sql::PostgresDialect::Order::kOwn;
  bool foldsAsciiOnly = false;  // its lower() folds ASCII only, but a collation folds all
  std::string patternEscape;    // of the catalog functions
  // Of SQL Server
  bool caseSensitive = false;  // the database's collation
  // Of both
  std::string schema;  // the default one

  bool IsPostgres() const { return dbms == "PostgreSQL"; }
  bool IsSqlServer() const { return dbms == "Microsoft SQL Server"; }
};

}  // namespace kxrestore::engine::odbc
