// The types of the driver manager's interface (wide characters only) and conversion of its texts. Its
// functions may be called in driver.cpp only: their names are poisoned here, so that no call bypasses the
// checks.
#pragma once

#ifdef _WIN32
#include <windows.h>
#endif
#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

#include <string>
#include <string_view>

#include "base/utf16.h"

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
  std::size_t Size() const { return m_text.size(); }

 private:
  std::u16string m_text;
};

}  // namespace kxrestore::engine::odbc
