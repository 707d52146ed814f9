#include "tests/server/driver_double.h"

#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

#include <algorithm>
#include <map>
#include <mutex>
#include <set>
#include <string_view>
#include <thread>

namespace kxrestore::server_test {
namespace {

struct State {
  std::mutex mutex;
  bool on = false;
  DriverFault fault = DriverFault::kNone;
  std::size_t at = 0, calls = 0;
  std::chrono::milliseconds delay{};
  const char* hit = nullptr;
  std::map<SQLHANDLE, SQLHANDLE> connectionOf;  // by statement
  std::set<SQLHANDLE> dropped;                  // connections
  std::set<SQLHANDLE> failed;                   // handles whose diagnostics are the double's
};

State& Double() {
  static State& state = *new State;  // calls that were given up on may outlive everything else
  return state;
}

SQLHANDLE ConnectionOf(State& state, SQLHANDLE handle) {
  const auto found = state.connectionOf.find(handle);
  return found == state.connectionOf.end() ? handle : found->second;
}

constexpr std::u16string_view kFailedText = u"the call was made to fail", kFailedState = u"HY000";
constexpr std::u16string_view kDroppedText = u"server closed the connection unexpectedly",
                              kDroppedState = u"08S01";

}  // namespace

extern "C" SQLRETURN __real_SQLEndTran(SQLSMALLINT, SQLHANDLE, SQLSMALLINT);
extern "C" SQLRETURN __real_SQLGetDiagRecW(SQLSMALLINT, SQLHANDLE, SQLSMALLINT, SQLWCHAR*, SQLINTEGER*,
                                           SQLWCHAR*, SQLSMALLINT, SQLSMALLINT*);

namespace {

// What the server does to a connection that is gone.
void Drop(State& state, SQLHANDLE handle) {
  const SQLHANDLE connection = ConnectionOf(state, handle);
  state.dropped.insert(connection);
  __real_SQLEndTran(SQL_HANDLE_DBC, connection, SQL_ROLLBACK);
}

template <class Call>
SQLRETURN Around(const char* name, SQLHANDLE handle, Call call) {
  State& state = Double();
  std::unique_lock lock(state.mutex);
  state.failed.erase(handle);
  const bool isHit = state.on && handle != nullptr && ++state.calls == state.at;
  if (isHit) state.hit = name;
  const DriverFault fault = isHit ? state.fault : DriverFault::kNone;
  if (fault == DriverFault::kDrop) Drop(state, handle);
  if (fault == DriverFault::kFail || state.dropped.contains(ConnectionOf(state, handle))) {
    state.failed.insert(handle);
    return SQL_ERROR;
  }
  const auto delay = fault == DriverFault::kDelay ? state.delay : std::chrono::milliseconds(0);
  lock.unlock();
  if (delay.count() > 0) std::this_thread::sleep_for(delay);
  const SQLRETURN result = call();
  if (fault != DriverFault::kDropAfter) return result;
  lock.lock();
  Drop(state, handle);
  state.failed.insert(handle);
  return SQL_ERROR;
}

SQLRETURN DiagnosticOf(SQLHANDLE handle, SQLWCHAR* stateText, SQLINTEGER* native, SQLWCHAR* text,
                       SQLSMALLINT room, SQLSMALLINT* size) {
  State& state = Double();
  const bool dropped = state.dropped.contains(ConnectionOf(state, handle));
  const std::u16string_view code = dropped ? kDroppedState : kFailedState;
  const std::u16string_view words = dropped ? kDroppedText : kFailedText;
  std::copy(code.begin(), code.end(), stateText);
  stateText[code.size()] = 0;
  *native = 0;
  const std::size_t fits = std::min<std::size_t>(words.size(), static_cast<std::size_t>(room) - 1);
  std::copy_n(words.begin(), fits, text);
  text[fits] = 0;
  *size = static_cast<SQLSMALLINT>(words.size());
  return SQL_SUCCESS;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, DriverFault fault) {
  constexpr const char* kNames[] = {"none", "fail", "drop", "drop after", "delay"};
  return out << kNames[static_cast<int>(fault)];
}

DriverDouble::DriverDouble(DriverFault fault, std::size_t at, std::chrono::milliseconds delay) {
  State& state = Double();
  const std::lock_guard lock(state.mutex);
  state.on = true;
  state.fault = fault;
  state.at = at;
  state.delay = delay;
  state.calls = 0;
  state.hit = nullptr;
}

DriverDouble::~DriverDouble() {
  const std::lock_guard lock(Double().mutex);
  Double().on = false;
}

std::size_t DriverDouble::Calls() {
  const std::lock_guard lock(Double().mutex);
  return Double().calls;
}

const char* DriverDouble::Hit() {
  const std::lock_guard lock(Double().mutex);
  return Double().hit;
}

// ---- the functions; parameters are numbered, as nobody looks at them

#define KX_DOUBLE(name, parameters, handle, arguments)                     \
  extern "C" SQLRETURN __real_##name parameters;                           \
  extern "C" SQLRETURN __wrap_##name parameters {                          \
    return Around(#name, handle, [&] { return __real_##name arguments; }); \
  }

KX_DOUBLE(SQLSetConnectAttrW, (SQLHDBC h, SQLINTEGER a, SQLPOINTER b, SQLINTEGER c), h, (h, a, b, c))
KX_DOUBLE(SQLDriverConnectW,
          (SQLHDBC h, SQLHWND a, SQLWCHAR* b, SQLSMALLINT c, SQLWCHAR* d, SQLSMALLINT e, SQLSMALLINT* f,
           SQLUSMALLINT g),
          h, (h, a, b, c, d, e, f, g))
KX_DOUBLE(SQLGetInfoW, (SQLHDBC h, SQLUSMALLINT a, SQLPOINTER b, SQLSMALLINT c, SQLSMALLINT* d), h,
          (h, a, b, c, d))
KX_DOUBLE(SQLEndTran, (SQLSMALLINT a, SQLHANDLE h, SQLSMALLINT b), h, (a, h, b))
KX_DOUBLE(SQLSetStmtAttrW, (SQLHSTMT h, SQLINTEGER a, SQLPOINTER b, SQLINTEGER c), h, (h, a, b, c))
KX_DOUBLE(SQLPrepareW, (SQLHSTMT h, SQLWCHAR* a, SQLINTEGER b), h, (h, a, b))
KX_DOUBLE(SQLExecute, (SQLHSTMT h), h, (h))
KX_DOUBLE(SQLExecDirectW, (SQLHSTMT h, SQLWCHAR* a, SQLINTEGER b), h, (h, a, b))
KX_DOUBLE(SQLBindParameter,
          (SQLHSTMT h, SQLUSMALLINT a, SQLSMALLINT b, SQLSMALLINT c, SQLSMALLINT d, SQLULEN e, SQLSMALLINT f,
           SQLPOINTER g, SQLLEN i, SQLLEN* j),
          h, (h, a, b, c, d, e, f, g, i, j))
KX_DOUBLE(SQLBindCol, (SQLHSTMT h, SQLUSMALLINT a, SQLSMALLINT b, SQLPOINTER c, SQLLEN d, SQLLEN* e), h,
          (h, a, b, c, d, e))
KX_DOUBLE(SQLNumResultCols, (SQLHSTMT h, SQLSMALLINT* a), h, (h, a))
KX_DOUBLE(SQLDescribeColW,
          (SQLHSTMT h, SQLUSMALLINT a, SQLWCHAR* b, SQLSMALLINT c, SQLSMALLINT* d, SQLSMALLINT* e, SQLULEN* f,
           SQLSMALLINT* g, SQLSMALLINT* i),
          h, (h, a, b, c, d, e, f, g, i))
KX_DOUBLE(SQLColAttributeW,
          (SQLHSTMT h, SQLUSMALLINT a, SQLUSMALLINT b, SQLPOINTER c, SQLSMALLINT d, SQLSMALLINT* e,
           SQLLEN* f),
          h, (h, a, b, c, d, e, f))
KX_DOUBLE(SQLRowCount, (SQLHSTMT h, SQLLEN* a), h, (h, a))
KX_DOUBLE(SQLFetch, (SQLHSTMT h), h, (h))
KX_DOUBLE(SQLGetData, (SQLHSTMT h, SQLUSMALLINT a, SQLSMALLINT b, SQLPOINTER c, SQLLEN d, SQLLEN* e), h,
          (h, a, b, c, d, e))
KX_DOUBLE(SQLSetPos, (SQLHSTMT h, SQLSETPOSIROW a, SQLUSMALLINT b, SQLUSMALLINT c), h, (h, a, b, c))
KX_DOUBLE(SQLFreeStmt, (SQLHSTMT h, SQLUSMALLINT a), h, (h, a))
KX_DOUBLE(SQLTablesW,
          (SQLHSTMT h, SQLWCHAR* a, SQLSMALLINT b, SQLWCHAR* c, SQLSMALLINT d, SQLWCHAR* e, SQLSMALLINT f,
           SQLWCHAR* g, SQLSMALLINT i),
          h, (h, a, b, c, d, e, f, g, i))
KX_DOUBLE(SQLColumnsW,
          (SQLHSTMT h, SQLWCHAR* a, SQLSMALLINT b, SQLWCHAR* c, SQLSMALLINT d, SQLWCHAR* e, SQLSMALLINT f,
           SQLWCHAR* g, SQLSMALLINT i),
          h, (h, a, b, c, d, e, f, g, i))
KX_DOUBLE(SQLPrimaryKeysW,
          (SQLHSTMT h, SQLWCHAR* a, SQLSMALLINT b, SQLWCHAR* c, SQLSMALLINT d, SQLWCHAR* e, SQLSMALLINT f), h,
          (h, a, b, c, d, e, f))

extern "C" SQLRETURN __real_SQLAllocHandle(SQLSMALLINT, SQLHANDLE, SQLHANDLE*);
extern "C" SQLRETURN __wrap_SQLAllocHandle(SQLSMALLINT type, SQLHANDLE parent, SQLHANDLE* handle) {
  const SQLRETURN result =
      Around("SQLAllocHandle", parent, [&] { return __real_SQLAllocHandle(type, parent, handle); });
  const std::lock_guard lock(Double().mutex);
  if (SQL_SUCCEEDED(result)) {
    Double().dropped.erase(*handle);  // an address may be used again
    Double().connectionOf.erase(*handle);
    if (type == SQL_HANDLE_STMT) Double().connectionOf[*handle] = parent;
  }
  return result;
}

// Connections end and handles are freed for real, whatever is made to fail (SQLDisconnect has no double).
extern "C" SQLRETURN __real_SQLFreeHandle(SQLSMALLINT, SQLHANDLE);
extern "C" SQLRETURN __wrap_SQLFreeHandle(SQLSMALLINT type, SQLHANDLE handle) {
  return __real_SQLFreeHandle(type, handle);
}

extern "C" SQLRETURN __wrap_SQLGetDiagRecW(SQLSMALLINT type, SQLHANDLE handle, SQLSMALLINT record,
                                           SQLWCHAR* state, SQLINTEGER* native, SQLWCHAR* text,
                                           SQLSMALLINT room, SQLSMALLINT* size) {
  {
    const std::lock_guard lock(Double().mutex);
    if (Double().failed.contains(handle)) {
      return record > 1 ? SQL_NO_DATA : DiagnosticOf(handle, state, native, text, room, size);
    }
  }
  return __real_SQLGetDiagRecW(type, handle, record, state, native, text, room, size);
}

}  // namespace kxrestore::server_test
