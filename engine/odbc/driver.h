// The only interface to the driver manager: its handles, with a method for each function. A call returns an
// Outcome with the driver's diagnostics when it failed; outcomes must be checked.
//
// A handle is freed by Free, not by its destructor: the connection's thread must free its handles, see
// Connection.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engine/odbc/odbc_api.h"
#include "engine/odbc/password.h"

namespace kxrestore::engine::odbc {

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
  Outcome Free();

 protected:
  Outcome AllocateIn(SQLSMALLINT parentType, SQLHANDLE parent, std::shared_ptr<const Password> password);
  Outcome Checked(SQLRETURN code) const;
  const std::shared_ptr<const Password>& Secret() const { return m_password; }

 private:
  SQLHANDLE m_handle = nullptr;
  std::shared_ptr<const Password> m_password;
};

class EnvironmentHandle : public Handle<SQL_HANDLE_ENV> {
 public:
  Outcome Allocate(std::shared_ptr<const Password> password);
  const std::shared_ptr<const Password>& PasswordToHide() const { return Secret(); }
};

class ConnectionHandle : public Handle<SQL_HANDLE_DBC> {
 public:
  Outcome Allocate(const EnvironmentHandle& environment);
  Outcome SetAttribute(SQLINTEGER attribute, std::size_t value);
  Outcome Connect(WideText& connect);
  Outcome Disconnect();
  Outcome GetInfo(SQLUSMALLINT kind, std::string& text) const;
  Outcome GetInfo(SQLUSMALLINT kind, std::uint32_t& number) const;
  Outcome EndTransaction(bool commit);
  const std::shared_ptr<const Password>& PasswordToHide() const { return Secret(); }
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
  Outcome Allocate(const ConnectionHandle& connection);
  Outcome SetAttribute(SQLINTEGER attribute, std::size_t value);
  Outcome SetFetchedCount(SQLULEN* count);
  Outcome Prepare(WideText& sql);
  Outcome Execute();
  Outcome ExecuteDirect(WideText& sql);
  Outcome BindParameter(std::size_t index, const ParameterBinding& binding);
  Outcome CountRows(std::int64_t& count) const;  // rows changed by the execution
  Outcome CountColumns(std::size_t& count) const;
  Outcome DescribeColumn(std::size_t index, ColumnDescription& column) const;
  Outcome BindColumn(std::size_t index, SQLSMALLINT cType, void* data, std::size_t width, SQLLEN* sizes);
  Outcome Fetch();
  Outcome GetData(std::size_t index, SQLSMALLINT cType, void* data, std::size_t width, SQLLEN* size);
  Outcome StandOn(std::size_t row);  // moves to a row of the fetched block, from 0
  Outcome CloseCursor();
  Outcome UnbindColumns();
  Outcome Cancel();  // from any thread
  // The driver's catalog functions; an empty name matches any.
  Outcome Tables(WideText& types);
  Outcome Columns(const std::string& schemaPattern, const std::string& tablePattern);
  Outcome PrimaryKeys(const std::string& schema, const std::string& table);
};

}  // namespace kxrestore::engine::odbc
