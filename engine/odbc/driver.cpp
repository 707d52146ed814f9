#define KX_CALLS_THE_DRIVER_MANAGER
#include "engine/odbc/driver.h"

#include <algorithm>
#include <array>

namespace kxrestore::engine::odbc {
namespace {

constexpr SQLSMALLINT kMaxDiagnostics = 8;
constexpr std::size_t kUsualMessage = 1024, kMaxMessage = 32000;  // characters

SQLPOINTER AsPointer(std::size_t number) {
  return reinterpret_cast<SQLPOINTER>(number);
}

SQLUSMALLINT Number(std::size_t index) {
  return static_cast<SQLUSMALLINT>(index + 1);
}

// The driver's catalog functions take a null pointer as "any".
class Argument {
 public:
  explicit Argument(const std::string& text) : m_given(!text.empty()), m_text(text) {}
  SQLWCHAR* Data() { return m_given ? m_text.Data() : nullptr; }
  SQLSMALLINT Size() const { return static_cast<SQLSMALLINT>(m_given ? m_text.Size() : 0); }

 private:
  bool m_given;
  WideText m_text;
};

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

Outcome ConnectionHandle::Allocate(const EnvironmentHandle& environment) {
  return AllocateIn(SQL_HANDLE_ENV, environment.Raw(), environment.PasswordToHide());
}

Outcome ConnectionHandle::SetAttribute(SQLINTEGER attribute, std::size_t value) {
  return Checked(SQLSetConnectAttrW(Raw(), attribute, AsPointer(value), SQL_IS_UINTEGER));
}

Outcome ConnectionHandle::Connect(WideText& connect) {
  return Checked(SQLDriverConnectW(Raw(), nullptr, connect.Data(), static_cast<SQLSMALLINT>(connect.Size()),
                                   nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT));
}

Outcome ConnectionHandle::Disconnect() {
  return Checked(SQLDisconnect(Raw()));
}

Outcome ConnectionHandle::GetInfo(SQLUSMALLINT kind, std::string& text) const {
  std::array<char16_t, 256> wide{};
  SQLSMALLINT size = 0;
  Outcome outcome = Checked(
      SQLGetInfoW(Raw(), kind, wide.data(), static_cast<SQLSMALLINT>(wide.size() * sizeof(char16_t)), &size));
  text = FromWide(wide.data());
  return outcome;
}

Outcome ConnectionHandle::GetInfo(SQLUSMALLINT kind, std::uint32_t& number) const {
  number = 0;  // some kinds are 16 bits wide
  return Checked(SQLGetInfoW(Raw(), kind, &number, sizeof number, nullptr));
}

Outcome ConnectionHandle::EndTransaction(bool commit) {
  return Checked(SQLEndTran(SQL_HANDLE_DBC, Raw(), commit ? SQL_COMMIT : SQL_ROLLBACK));
}

// ---- statement

Outcome StatementHandle::Allocate(const ConnectionHandle& connection) {
  return AllocateIn(SQL_HANDLE_DBC, connection.Raw(), connection.PasswordToHide());
}

Outcome StatementHandle::SetAttribute(SQLINTEGER attribute, std::size_t value) {
  return Checked(SQLSetStmtAttrW(Raw(), attribute, AsPointer(value), SQL_IS_UINTEGER));
}

Outcome StatementHandle::SetFetchedCount(SQLULEN* count) {
  return Checked(SQLSetStmtAttrW(Raw(), SQL_ATTR_ROWS_FETCHED_PTR, count, SQL_IS_POINTER));
}

Outcome StatementHandle::Prepare(WideText& sql) {
  return Checked(SQLPrepareW(Raw(), sql.Data(), static_cast<SQLINTEGER>(sql.Size())));
}

Outcome StatementHandle::Execute() {
  return Checked(SQLExecute(Raw()));
}

Outcome StatementHandle::ExecuteDirect(WideText& sql) {
  return Checked(SQLExecDirectW(Raw(), sql.Data(), static_cast<SQLINTEGER>(sql.Size())));
}

Outcome StatementHandle::BindParameter(std::size_t index, const ParameterBinding& binding) {
  return Checked(SQLBindParameter(Raw(), Number(index), SQL_PARAM_INPUT, binding.cType, binding.sqlType,
                                  binding.columnSize, 0, binding.data, std::max<SQLLEN>(*binding.size, 0),
                                  binding.size));
}

Outcome StatementHandle::CountRows(std::int64_t& count) const {
  SQLLEN rows = 0;
  Outcome outcome = Checked(SQLRowCount(Raw(), &rows));
  count = rows < 0 ? 0 : static_cast<std::int64_t>(rows);
  return outcome;
}

Outcome StatementHandle::CountColumns(std::size_t& count) const {
  SQLSMALLINT columns = 0;
  Outcome outcome = Checked(SQLNumResultCols(Raw(), &columns));
  count = columns < 0 ? 0 : static_cast<std::size_t>(columns);
  return outcome;
}

Outcome StatementHandle::DescribeColumn(std::size_t index, ColumnDescription& column) const {
  std::array<char16_t, 512> name{}, typeName{};
  SQLSMALLINT size = 0, nullable = 0;
  Outcome outcome = Checked(SQLDescribeColW(Raw(), Number(index), WideBuffer(name.data()),
                                            static_cast<SQLSMALLINT>(name.size()), &size, &column.type,
                                            &column.size, &column.digits, &nullable));
  if (outcome.Failed()) return outcome;
  outcome =
      Checked(SQLColAttributeW(Raw(), Number(index), SQL_DESC_TYPE_NAME, typeName.data(),
                               static_cast<SQLSMALLINT>(typeName.size() * sizeof(char16_t)), &size, nullptr));
  column.name = FromWide(name.data());
  column.typeName = FromWide(typeName.data());
  return outcome;
}

Outcome StatementHandle::BindColumn(std::size_t index, SQLSMALLINT cType, void* data, std::size_t width,
                                    SQLLEN* sizes) {
  return Checked(SQLBindCol(Raw(), Number(index), cType, data, static_cast<SQLLEN>(width), sizes));
}

Outcome StatementHandle::Fetch() {
  return Checked(SQLFetch(Raw()));
}

Outcome StatementHandle::GetData(std::size_t index, SQLSMALLINT cType, void* data, std::size_t width,
                                 SQLLEN* size) {
  return Checked(SQLGetData(Raw(), Number(index), cType, data, static_cast<SQLLEN>(width), size));
}

Outcome StatementHandle::StandOn(std::size_t row) {
  return Checked(SQLSetPos(Raw(), static_cast<SQLSETPOSIROW>(row + 1), SQL_POSITION, SQL_LOCK_NO_CHANGE));
}

Outcome StatementHandle::CloseCursor() {
  return Checked(SQLFreeStmt(Raw(), SQL_CLOSE));
}

Outcome StatementHandle::UnbindColumns() {
  Outcome outcome = SetFetchedCount(nullptr);
  if (outcome.Failed()) return outcome;
  return Checked(SQLFreeStmt(Raw(), SQL_UNBIND));
}

// A handle's diagnostics may only be read on the thread that makes its calls.
Outcome StatementHandle::Cancel() {
  return {SQLCancel(Raw()), {}};
}

Outcome StatementHandle::Tables(WideText& types) {
  return Checked(SQLTablesW(Raw(), nullptr, 0, nullptr, 0, nullptr, 0, types.Data(),
                            static_cast<SQLSMALLINT>(types.Size())));
}

Outcome StatementHandle::Columns(const std::string& schemaPattern, const std::string& tablePattern) {
  Argument schema(schemaPattern), table(tablePattern);
  return Checked(
      SQLColumnsW(Raw(), nullptr, 0, schema.Data(), schema.Size(), table.Data(), table.Size(), nullptr, 0));
}

Outcome StatementHandle::PrimaryKeys(const std::string& schema, const std::string& table) {
  Argument schemaName(schema), tableName(table);
  return Checked(SQLPrimaryKeysW(Raw(), nullptr, 0, schemaName.Data(), schemaName.Size(), tableName.Data(),
                                 tableName.Size()));
}

}  // namespace kxrestore::engine::odbc
