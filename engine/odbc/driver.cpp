#define KX_CALLS_THE_DRIVER_MANAGER
#include "engine/odbc/driver.h"

#include <algorithm>
#include <array>

namespace kxrestore::engine::odbc {
namespace {

constexpr SQLSMALLINT kMaxDiagnostics = 8;
constexpr std::size_t kUsualMessage = 1024, kMaxMessage = 32000;  // characters

// Reads the whole message, so that no password is cut before it can be removed.
std::vector<Diagnostic> ReadDiagnostics(SQLSMALLINT type, SQLHANDLE handle, const Password* password) {
  std::vector<Diagnostic> diagnostics;
  std::array<char16_t, 6> state{};
  std::u16string text(kUsualMessage, u'\0');
  for (SQLSMALLINT record = 1; record <= kMaxDiagnostics; ++record) {
    SQLINTEGER native = 0;
    SQLSMALLINT size = 0;
    const auto read = [&] {
      return SQLGetDiagRecW(type, handle, record, WideBuffer(state.data()), &native, WideBuffer(text.data()),
                            static_cast<SQLSMALLINT>(text.size()), &size);
    };
    SQLRETURN result = read();
    if (SQL_SUCCEEDED(result) && size >= static_cast<SQLSMALLINT>(text.size()) && text.size() < kMaxMessage) {
      text.assign(std::min<std::size_t>(static_cast<std::size_t>(size) + 1, kMaxMessage), u'\0');
      result = read();
    }
    if (!SQL_SUCCEEDED(result)) break;
    text.back() = u'\0';
    const std::string message = FromWide(text.c_str());
    diagnostics.push_back(
        {FromWide({state.data(), 5}), native, password ? password->Hide(message) : message});
  }
  return diagnostics;
}

}  // namespace

// ---- every handle

template <SQLSMALLINT kType>
Outcome Handle<kType>::Checked(SQLRETURN code) const {
  if (SQL_SUCCEEDED(code) || code == SQL_NO_DATA) return {code, {}};
  return {code, ReadDiagnostics(kType, m_handle, m_password.get())};
}

template <SQLSMALLINT kType>
Outcome Handle<kType>::AllocateIn(SQLSMALLINT parentType, SQLHANDLE parent,
                                  std::shared_ptr<const Password> password) {
  m_password = std::move(password);
  const SQLRETURN code = SQLAllocHandle(kType, parent, &m_handle);
  if (SQL_SUCCEEDED(code)) return {};
  m_handle = nullptr;
  if (parent == nullptr) return {code, {}};
  return {code, ReadDiagnostics(parentType, parent, m_password.get())};
}

template <SQLSMALLINT kType>
Outcome Handle<kType>::Free() {
  if (m_handle == nullptr) return {};
  const Outcome outcome = Checked(SQLFreeHandle(kType, m_handle));
  if (!outcome.Failed()) m_handle = nullptr;
  return outcome;
}

template class Handle<SQL_HANDLE_ENV>;
template class Handle<SQL_HANDLE_DBC>;
template class Handle<SQL_HANDLE_STMT>;

// ---- environment

Outcome EnvironmentHandle::Allocate(std::shared_ptr<const Password> password) {
  Outcome outcome = AllocateIn(SQL_HANDLE_ENV, nullptr, std::move(password));
  if (outcome.Failed()) return outcome;
  return Checked(SQLSetEnvAttr(Raw(), SQL_ATTR_ODBC_VERSION, AsPointer(SQL_OV_ODBC3), SQL_IS_INTEGER));
}

// ---- connection

Outcome ConnectionHandle::GetInfo(SQLUSMALLINT kind, std::string& text) const {
  std::array<char16_t, 256> wide{};
  SQLSMALLINT size = 0;
  Outcome outcome = Call(SQLGetInfoW, kind, wide.data(), static_cast<SQLSMALLINT>(sizeof wide), &size);
  text = FromWide(wide.data());
  return outcome;
}

Outcome ConnectionHandle::GetInfo(SQLUSMALLINT kind, std::uint32_t& number) const {
  number = 0;  // some kinds are 16 bits wide
  return Call(SQLGetInfoW, kind, &number, static_cast<SQLSMALLINT>(sizeof number), nullptr);
}

Outcome ConnectionHandle::EndTransaction(bool commit) {
  return Checked(SQLEndTran(SQL_HANDLE_DBC, Raw(), commit ? SQL_COMMIT : SQL_ROLLBACK));
}

// ---- statement

Outcome StatementHandle::BindParameter(std::size_t index, const ParameterBinding& binding) {
  return Checked(SQLBindParameter(Raw(), Number(index), SQL_PARAM_INPUT, binding.cType, binding.sqlType,
                                  binding.columnSize, 0, binding.data, std::max<SQLLEN>(*binding.size, 0),
                                  binding.size));
}

Outcome StatementHandle::CountRows(std::int64_t& count) const {
  SQLLEN rows = 0;
  Outcome outcome = Call(SQLRowCount, &rows);
  count = std::max<SQLLEN>(rows, 0);
  return outcome;
}

Outcome StatementHandle::CountColumns(std::size_t& count) const {
  SQLSMALLINT columns = 0;
  Outcome outcome = Call(SQLNumResultCols, &columns);
  count = columns < 0 ? 0 : static_cast<std::size_t>(columns);
  return outcome;
}

Outcome StatementHandle::DescribeColumn(std::size_t index, ColumnDescription& column) const {
  std::array<char16_t, 512> name{}, typeName{};
  SQLSMALLINT size = 0, nullable = 0;
  Outcome outcome =
      Call(SQLDescribeColW, Number(index), WideBuffer(name.data()), static_cast<SQLSMALLINT>(name.size()),
           &size, &column.type, &column.size, &column.digits, &nullable);
  if (outcome.Failed()) return outcome;
  outcome = Call(SQLColAttributeW, Number(index), SQLUSMALLINT{SQL_DESC_TYPE_NAME}, typeName.data(),
                 static_cast<SQLSMALLINT>(sizeof typeName), &size, nullptr);
  column.name = FromWide(name.data());
  column.typeName = FromWide(typeName.data());
  return outcome;
}

Outcome StatementHandle::UnbindColumns() {
  Outcome outcome = SetFetchedCount(nullptr);
  if (outcome.Failed()) return outcome;
  return Call(SQLFreeStmt, SQLUSMALLINT{SQL_UNBIND});
}

// A handle's diagnostics may only be read on the thread that makes its calls.
Outcome StatementHandle::Cancel() {
  return {SQLCancel(Raw()), {}};
}

Outcome StatementHandle::Tables(WideText& types) {
  return Checked(SQLTablesW(Raw(), nullptr, 0, nullptr, 0, nullptr, 0, types.Data(), types.Size()));
}

Outcome StatementHandle::Columns(const std::string& schemaPattern, const std::string& tablePattern) {
  WideText schema(schemaPattern), table(tablePattern);
  return Checked(SQLColumnsW(Raw(), nullptr, 0, schema.DataOrNull(), schema.Size(), table.DataOrNull(),
                             table.Size(), nullptr, 0));
}

Outcome StatementHandle::PrimaryKeys(const std::string& schema, const std::string& table) {
  WideText schemaName(schema), tableName(table);
  return Checked(SQLPrimaryKeysW(Raw(), nullptr, 0, schemaName.DataOrNull(), schemaName.Size(),
                                 tableName.DataOrNull(), tableName.Size()));
}

}  // namespace kxrestore::engine::odbc
