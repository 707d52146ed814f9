// A statement of a connection: prepared once, executed with values, its rows fetched in blocks.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "engine/jet_sql/ast.h"
#include "engine/odbc/odbc_api.h"
#include "engine/odbc/odbc_rows.h"
#include "engine/value.h"

namespace kxrestore::engine::odbc {

constexpr SQLULEN kQueryTimeout = 60;  // seconds

class Session;

// Values of a statement's parameters, where the driver finds them while it is executed.
class BoundValues {
 public:
  void Bind(const Session& session, SQLHSTMT statement, const std::vector<Value>& values);

 private:
  struct Slot {
    std::u16string text;
    std::int64_t integer = 0;
    double real = 0;
    unsigned char bit = 0;
    SQL_TIMESTAMP_STRUCT date{};
    SQLLEN size = 0;
  };
  std::vector<std::unique_ptr<Slot>> m_slots;  // the driver keeps their addresses
};

// The driver for PostgreSQL sends what it has prepared at the server behind a savepoint, which costs a round
// trip of its own, and plain text together with it, which the server plans anew each time. So a statement
// that is executed again is prepared by name with the server's PREPARE, and the plain text is its EXECUTE.
class OdbcStatement {
 public:
  OdbcStatement(Session& session, std::string_view sql);

  SQLHSTMT Get() const { return m_handle.Get(); }
  const std::string& Sql() const { return m_sql; }

  // Executes, preparing first if that has not been done. False when it failed; the diagnostics tell why.
  // `reading`: the user may end it.
  bool Execute(const std::vector<Value>& values, bool reading = false);
  std::int64_t RowCount() const;
  // The rows of the execution; they stand before the first.
  RowReader& Rows();
  void CloseCursor();

 private:
  enum class Text { kNone, kOwn, kCall };  // what the driver was given

  bool Give(Text text);
  bool PrepareByName(std::size_t values);

  Session& m_session;
  std::string m_sql;
  std::string m_call;  // EXECUTE, once it is prepared by name
  StatementHandle m_handle;
  BoundValues m_values;
  std::unique_ptr<RowReader> m_rows;
  Text m_given = Text::kNone;
  bool m_executed = false, m_namable = true;
  bool m_isQuick = false;  // when it was last executed
};

}  // namespace kxrestore::engine::odbc
