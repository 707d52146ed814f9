// The only interface to the driver manager (wide characters only): its handles, with a method for each
// function. A call returns an Outcome with the driver's diagnostics when it failed; outcomes must be checked.
//
// A handle is freed by Free, not by its destructor: the connection's thread must free its handles, see
// Connection.
#pragma once

#ifdef _WIN32
#include <windows.h>
#endif
#define SQL_NOUNICODEMAP  // functions are named as they are, with W where they take wide characters
#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/utf16.h"
#include "engine/odbc/password.h"

namespace kxrestore::engine::odbc {

static_assert(sizeof(SQLWCHAR) == sizeof(char16_t), "the driver manager's characters are UTF-16");

inline SQLWCHAR* WideBuffer(char16_t* text) {
  return reinterpret_cast<SQLWCHAR*>(text);
}

// A UTF-16 argument: Data() is not const because the interface is not, though it does not modify the text.
class WideText {
 public:
  explicit WideText(std::string_view text) : m_text(ToUtf16<char16_t>(text)) {}
  SQLWCHAR* Data() { return WideBuffer(m_text.data()); }
  SQLWCHAR* DataOrNull() { return m_text.empty() ? nullptr : Data(); }
  SQLSMALLINT Size() const { return static_cast<SQLSMALLINT>(m_text.size()); }
  SQLINTEGER LongSize() const { return static_cast<SQLINTEGER>(m_text.size()); }

 private:
  std::u16string m_text;
};

struct Diagnostic {
  std::string state;  // SQLSTATE
  int native = 0;
  std::string message;  // without the password
};

class [[nodiscard]] Outcome {
 public:
  Outcome() = default;  // success
  Outcome(SQLRETURN code, std::vector<Diagnostic> diagnostics)
      : m_code(code), m_diagnostics(std::move(diagnostics)) {}

  bool Succeeded() const { return SQL_SUCCEEDED(m_code); }
  bool HasNoData() const { return m_code == SQL_NO_DATA; }
  bool Failed() const { return !Succeeded() && !HasNoData(); }
  const std::vector<Diagnostic>& Diagnostics() const { return m_diagnostics; }
  // For the few calls whose failure has no effect; the caller comments why.
  void Ignore() const {}

 private:
  SQLRETURN m_code = SQL_SUCCESS;
  std::vector<Diagnostic> m_diagnostics;  // empty unless it failed
};

template <SQLSMALLINT kType>
class Handle {
 public:
  bool IsAllocated() const { return m_handle != nullptr; }
  SQLHANDLE Raw() const { return m_handle; }
  const std::shared_ptr<const Password>& PasswordToHide() const { return m_password; }
  Outcome Free();

 protected:
  Outcome AllocateIn(SQLSMALLINT parentType, SQLHANDLE parent, std::shared_ptr<const Password> password);
  Outcome Checked(SQLRETURN code) const;
  // Calls a function of the driver manager for this handle.
  template <class Function, class... Arguments>
  Outcome Call(Function function, Arguments... arguments) const {
    return Checked(function(m_handle, arguments...));
  }
  static SQLPOINTER AsPointer(std::size_t number) { return reinterpret_cast<SQLPOINTER>(number); }

 private:
  SQLHANDLE m_handle = nullptr;
  std::shared_ptr<const Password> m_password;
};

class EnvironmentHandle : public Handle<SQL_HANDLE_ENV> {
 public:
  Outcome Allocate(std::shared_ptr<const Password> password);
};

class ConnectionHandle : public Handle<SQL_HANDLE_DBC> {
 public:
  Outcome Allocate(const EnvironmentHandle& environment) {
    return AllocateIn(SQL_HANDLE_ENV, environment.Raw(), environment.PasswordToHide());
  }
  Outcome SetAttribute(SQLINTEGER attribute, std::size_t value) {
    return Call(SQLSetConnectAttrW, attribute, AsPointer(value), SQL_IS_UINTEGER);
  }
  Outcome Connect(WideText& connect) {
    return Call(SQLDriverConnectW, nullptr, connect.Data(), connect.Size(), nullptr, SQLSMALLINT{0}, nullptr,
                SQLUSMALLINT{SQL_DRIVER_NOPROMPT});
  }
  Outcome Disconnect() { return Call(SQLDisconnect); }
  Outcome GetInfo(SQLUSMALLINT kind, std::string& text) const;
  Outcome GetInfo(SQLUSMALLINT kind, std::uint32_t& number) const;
  Outcome EndTransaction(bool commit);
};

struct ParameterBinding {
  SQLSMALLINT cType = SQL_C_WCHAR, sqlType = SQL_WVARCHAR;
  SQLULEN columnSize = 1;
  SQLPOINTER data = nullptr;
  SQLLEN* size = nullptr;  // bytes, or SQL_NULL_DATA
};

struct ColumnDescription {
  std::string name, typeName;
  SQLSMALLINT type = 0, digits = 0;
  SQLULEN size = 0;
};

// Columns and parameters are numbered from 1 by the driver manager and from 0 here.
class StatementHandle : public Handle<SQL_HANDLE_STMT> {
 public:
  Outcome Allocate(const ConnectionHandle& connection) {
    return AllocateIn(SQL_HANDLE_DBC, connection.Raw(), connection.PasswordToHide());
  }
  Outcome SetAttribute(SQLINTEGER attribute, std::size_t value) {
    return Call(SQLSetStmtAttrW, attribute, AsPointer(value), SQL_IS_UINTEGER);
  }
  Outcome SetFetchedCount(SQLULEN* count) {
    return Call(SQLSetStmtAttrW, SQL_ATTR_ROWS_FETCHED_PTR, count, SQL_IS_POINTER);
  }
  Outcome Prepare(WideText& sql) { return Call(SQLPrepareW, sql.Data(), sql.LongSize()); }
  Outcome Execute() { return Call(SQLExecute); }
  Outcome ExecuteDirect(WideText& sql) { return Call(SQLExecDirectW, sql.Data(), sql.LongSize()); }
  Outcome BindParameter(std::size_t index, const ParameterBinding& binding);
  Outcome CountRows(std::int64_t& count) const;  // rows changed by the execution
  Outcome CountColumns(std::size_t& count) const;
  Outcome DescribeColumn(std::size_t index, ColumnDescription& column) const;
  Outcome BindColumn(std::size_t index, SQLSMALLINT cType, void* data, std::size_t width, SQLLEN* sizes) {
    return Call(SQLBindCol, Number(index), cType, data, static_cast<SQLLEN>(width), sizes);
  }
  Outcome Fetch() { return Call(SQLFetch); }
  Outcome GetData(std::size_t index, SQLSMALLINT cType, void* data, std::size_t width, SQLLEN* size) {
    return Call(SQLGetData, Number(index), cType, data, static_cast<SQLLEN>(width), size);
  }
  // Moves to a row of the fetched block, from 0.
  Outcome MoveTo(std::size_t row) {
    return Call(SQLSetPos, static_cast<SQLSETPOSIROW>(row + 1), SQLUSMALLINT{SQL_POSITION},
                SQLUSMALLINT{SQL_LOCK_NO_CHANGE});
  }
  Outcome CloseCursor() { return Call(SQLFreeStmt, SQLUSMALLINT{SQL_CLOSE}); }
  Outcome UnbindColumns();
  Outcome Cancel();  // from any thread
  // The driver's catalog functions; an empty name matches any.
  Outcome Tables(WideText& types);
  Outcome Columns(const std::string& schemaPattern, const std::string& tablePattern);
  Outcome PrimaryKeys(const std::string& schema, const std::string& table);

 private:
  static SQLUSMALLINT Number(std::size_t index) { return static_cast<SQLUSMALLINT>(index + 1); }
};

}  // namespace kxrestore::engine::odbc

// No call bypasses the checks: only driver.cpp may use these names from here on.
#ifndef KX_CALLS_THE_DRIVER_MANAGER
#pragma GCC poison SQLAllocHandle SQLFreeHandle SQLSetEnvAttr SQLSetConnectAttr SQLSetConnectAttrW \
    SQLDriverConnect
#pragma GCC poison SQLDriverConnectW SQLConnect SQLConnectW SQLDisconnect SQLGetInfo SQLGetInfoW SQLEndTran
#pragma GCC poison SQLSetStmtAttr SQLSetStmtAttrW SQLPrepare SQLPrepareW SQLExecute SQLExecDirect \
    SQLExecDirectW
#pragma GCC poison SQLBindParameter SQLBindCol SQLNumResultCols SQLDescribeCol SQLDescribeColW SQLColAttribute
#pragma GCC poison SQLColAttributeW SQLRowCount SQLFetch SQLFetchScroll SQLGetData SQLSetPos SQLFreeStmt
#pragma GCC poison SQLCloseCursor SQLMoreResults SQLCancel SQLTables SQLTablesW SQLColumns SQLColumnsW
#pragma GCC poison SQLPrimaryKeys SQLPrimaryKeysW SQLGetDiagRec SQLGetDiagRecW SQLGetDiagField \
    SQLGetDiagFieldW
#endif
