#include "engine/odbc/odbc_statement.h"

#include <algorithm>

#include "engine/odbc/odbc_session.h"

namespace kxrestore::engine::odbc {
namespace {

template <typename Number>
SQLPOINTER AsPointer(Number number) {
  return reinterpret_cast<SQLPOINTER>(static_cast<std::uintptr_t>(number));
}

// $1, $2... in the place of the markers.
std::string WithNumberedMarkers(std::string_view sql) {
  std::string numbered;
  int count = 0;
  char quote = 0;
  for (const char c : sql) {
    if (quote != 0) {
      if (c == quote) quote = 0;
    } else if (c == '\'' || c == '"') {
      quote = c;
    } else if (c == '?') {
      numbered += "$" + std::to_string(++count);
      continue;
    }
    numbered += c;
  }
  return numbered;
}

}  // namespace

void BoundValues::Bind(const Session& session, SQLHSTMT statement, const std::vector<Value>& values) {
  while (m_slots.size() < values.size()) m_slots.push_back(std::make_unique<Slot>());
  for (std::size_t i = 0; i < values.size(); ++i) {
    Slot& slot = *m_slots[i];
    slot.size = 0;
    SQLSMALLINT cType = SQL_C_WCHAR, sqlType = SQL_WVARCHAR, digits = 0;
    SQLULEN columnSize = 1;
    SQLPOINTER data = &slot.integer;
    if (const auto* flag = std::get_if<bool>(&values[i])) {
      slot.bit = *flag ? 1 : 0;
      cType = SQL_C_BIT, sqlType = SQL_BIT, data = &slot.bit;
    } else if (const auto* integer = std::get_if<std::int64_t>(&values[i])) {
      slot.integer = *integer;
      cType = SQL_C_SBIGINT, sqlType = SQL_BIGINT, columnSize = 19;
    } else if (const auto* real = std::get_if<double>(&values[i])) {
      slot.real = *real;
      cType = SQL_C_DOUBLE, sqlType = SQL_DOUBLE, columnSize = 15, data = &slot.real;
    } else if (const auto* text = std::get_if<std::string>(&values[i])) {
      slot.text = ToUtf16<char16_t>(*text);
      slot.size = static_cast<SQLLEN>(slot.text.size() * sizeof(char16_t));
      columnSize = std::max<std::size_t>(slot.text.size(), 1);
      if (columnSize > 4000) sqlType = SQL_WLONGVARCHAR;
      data = slot.text.data();
    } else if (const auto* date = std::get_if<DateTime>(&values[i])) {
      slot.date = {date->year,
                   static_cast<SQLUSMALLINT>(date->month),
                   static_cast<SQLUSMALLINT>(date->day),
                   static_cast<SQLUSMALLINT>(date->hour),
                   static_cast<SQLUSMALLINT>(date->minute),
                   static_cast<SQLUSMALLINT>(date->second),
                   0};
      cType = SQL_C_TYPE_TIMESTAMP, sqlType = SQL_TYPE_TIMESTAMP, columnSize = 19, data = &slot.date;
    } else {
      slot.size = SQL_NULL_DATA;
    }
    const SQLRETURN result =
        SQLBindParameter(statement, static_cast<SQLUSMALLINT>(i + 1), SQL_PARAM_INPUT, cType, sqlType,
                         columnSize, digits, data, std::max<SQLLEN>(slot.size, 0), &slot.size);
    if (!SQL_SUCCEEDED(result)) session.Raise(SQL_HANDLE_STMT, statement, "parameter");
  }
}

OdbcStatement::OdbcStatement(Session& session, std::string_view sql) : m_session(session), m_sql(sql) {
  if (!m_handle.Allocate(session.Get())) session.Raise(SQL_HANDLE_DBC, session.Get(), sql);
  if (session.Facts().serverKeepsTime) return;
  SQLSetStmtAttrW(m_handle.Get(), SQL_ATTR_QUERY_TIMEOUT, AsPointer(kQueryTimeout), SQL_IS_UINTEGER);
}

bool OdbcStatement::Give(Text text) {
  if (m_given == text) return true;
  WideText wide(text == Text::kCall ? m_call : m_sql);
  if (!SQL_SUCCEEDED(SQLPrepareW(m_handle.Get(), wide.Data(), static_cast<SQLINTEGER>(wide.Size())))) {
    return false;
  }
  m_given = text;
  return true;
}

bool OdbcStatement::PrepareByName(std::size_t values) {
  if (!m_call.empty()) return true;
  const std::string name = m_session.NameForPrepared();
  if (name.empty()) return false;
  std::string call = "EXECUTE " + name;
  for (std::size_t i = 0; i < values; ++i) call += i == 0 ? " (?" : ", ?";
  if (values > 0) call += ")";
  WideText prepare("PREPARE " + name + " AS " + WithNumberedMarkers(m_sql));
  StatementHandle statement;
  if (!statement.Allocate(m_session.Get()) ||
      !SQL_SUCCEEDED(
          SQLExecDirectW(statement.Get(), prepare.Data(), static_cast<SQLINTEGER>(prepare.Size())))) {
    m_namable = false;
    return false;
  }
  m_call = std::move(call);
  return true;
}

bool OdbcStatement::Execute(const std::vector<Value>& values, bool reading) {
  const bool named = m_executed && m_namable && !m_session.FetchesPiecewise() && PrepareByName(values.size());
  if (!Give(named ? Text::kCall : Text::kOwn)) return false;
  m_values.Bind(m_session, m_handle.Get(), values);
  const auto execute = [this] { return SQLExecute(m_handle.Get()); };
  const SQLRETURN result = m_session.CallAgain(reading ? m_handle.Get() : nullptr, execute, m_isQuick);
  if (SQL_SUCCEEDED(result) || result == SQL_NO_DATA) return m_executed = true;
  if (!named || FailureOf(ReadDiagnostics(SQL_HANDLE_STMT, m_handle.Get())) != Failure::kStatement) {
    return false;
  }
  // A value may not fit its parameter where it could be compared as plain text.
  m_namable = false;
  return Execute(values, reading);
}

std::int64_t OdbcStatement::RowCount() const {
  SQLLEN count = 0;
  SQLRowCount(m_handle.Get(), &count);
  return count < 0 ? 0 : static_cast<std::int64_t>(count);
}

RowReader& OdbcStatement::Rows() {
  SQLSMALLINT count = 0;
  SQLNumResultCols(m_handle.Get(), &count);
  if (!m_rows || m_rows->Columns().size() != static_cast<std::size_t>(count)) {
    m_rows = std::make_unique<RowReader>(m_session, m_handle.Get(), m_sql);
  }
  m_rows->Restart();
  return *m_rows;
}

void OdbcStatement::CloseCursor() {
  SQLFreeStmt(m_handle.Get(), SQL_CLOSE);
}

}  // namespace kxrestore::engine::odbc
