// The user's steps in the dialog with a catalog on a server, while single calls of the driver fail, lose the
// connection or take long. The calls are chosen at random, with the seed KX_FAULTS_SEED (default 1), for
// KX_FAULTS_SECONDS (default 25).
#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <mutex>
#include <optional>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <thread>

#include "engine/odbc/odbc_backend.h"
#include "tests/catalog/server_catalog.h"
#include "tests/dialog/marking_steps.h"
#include "tests/faults/told.h"

namespace kxrestore::server_test {
namespace {

using catalog_test::ServerCatalog;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using namespace dialog_test;  // NOLINT: its fixture and steps

enum class DriverFault {
  kNone,
  kFail,       // the call does nothing and fails
  kDrop,       // the connection is gone before the call
  kDropAfter,  // the call is made, and the connection is gone before its answer
  kDelay,      // the call takes longer
};
constexpr const char* kFaultNames[] = {"none", "fail", "drop", "drop after", "delay"};

struct Plan {
  DriverFault fault = DriverFault::kNone;
  std::size_t at = 0;  // the number of the call with the fault, from 1; 0 for none
  milliseconds delay{};
};

// A double of the driver manager. The linker (--wrap, see CMakeLists.txt) redirects every function that the
// back end calls to the double, which calls the real function unless the plan says otherwise. While there is
// a plan, the double counts the calls of all threads.
struct Double {
  std::mutex mutex;
  std::optional<Plan> plan;
  std::size_t calls = 0;
  const char* hit = nullptr;                    // the function that had the fault
  std::map<SQLHANDLE, SQLHANDLE> connectionOf;  // by statement
  std::set<SQLHANDLE> dropped;                  // connections
  std::set<SQLHANDLE> failed;                   // handles whose diagnostics come from the double

  SQLHANDLE ConnectionOf(SQLHANDLE handle) const {
    const auto found = connectionOf.find(handle);
    return found == connectionOf.end() ? handle : found->second;
  }
  bool IsDropped(SQLHANDLE handle) const { return dropped.contains(ConnectionOf(handle)); }
};

Double& TheDouble() {
  static Double& it = *new Double;  // never deleted, because abandoned calls may run until the end
  return it;
}

// Gives the double a plan and takes it away again.
class Injection {
 public:
  explicit Injection(const Plan& plan) {
    const std::lock_guard lock(TheDouble().mutex);
    TheDouble().plan = plan;
    TheDouble().calls = 0;
    TheDouble().hit = nullptr;
  }
  ~Injection() {
    const std::lock_guard lock(TheDouble().mutex);
    TheDouble().plan.reset();
  }
  Injection(const Injection&) = delete;
  Injection& operator=(const Injection&) = delete;

  // The number of calls and the function that had the fault, or null.
  static std::pair<std::size_t, const char*> Seen() {
    const std::lock_guard lock(TheDouble().mutex);
    return {TheDouble().calls, TheDouble().hit};
  }
};

}  // namespace

extern "C" SQLRETURN __real_SQLEndTran(SQLSMALLINT, SQLHANDLE, SQLSMALLINT);

namespace {

// Ends a connection as the server sees it.
void Drop(Double& it, SQLHANDLE handle) {
  const SQLHANDLE connection = it.ConnectionOf(handle);
  it.dropped.insert(connection);
  __real_SQLEndTran(SQL_HANDLE_DBC, connection, SQL_ROLLBACK);
}

template <class Call>
SQLRETURN Around(const char* name, SQLHANDLE handle, Call call) {
  Double& it = TheDouble();
  std::unique_lock lock(it.mutex);
  it.failed.erase(handle);
  const bool isHit = it.plan && handle != nullptr && ++it.calls == it.plan->at;
  if (isHit) it.hit = name;
  const auto [fault, at, delay] = isHit ? *it.plan : Plan();
  if (fault == DriverFault::kDrop) Drop(it, handle);
  if (fault == DriverFault::kFail || it.IsDropped(handle)) {
    it.failed.insert(handle);
    return SQL_ERROR;
  }
  lock.unlock();
  if (delay.count() > 0) std::this_thread::sleep_for(delay);
  const SQLRETURN result = call();
  if (fault != DriverFault::kDropAfter) return result;
  lock.lock();
  Drop(it, handle);
  it.failed.insert(handle);
  return SQL_ERROR;
}

}  // namespace

// ---- the functions, which only pass their parameters on

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
  Double& it = TheDouble();
  const std::lock_guard lock(it.mutex);
  if (SQL_SUCCEEDED(result)) {
    it.dropped.erase(*handle);  // a new handle may have the address of an old one
    it.connectionOf.erase(*handle);
    if (type == SQL_HANDLE_STMT) it.connectionOf[*handle] = parent;
  }
  return result;
}

extern "C" SQLRETURN __real_SQLGetDiagRecW(SQLSMALLINT, SQLHANDLE, SQLSMALLINT, SQLWCHAR*, SQLINTEGER*,
                                           SQLWCHAR*, SQLSMALLINT, SQLSMALLINT*);
extern "C" SQLRETURN __wrap_SQLGetDiagRecW(SQLSMALLINT type, SQLHANDLE handle, SQLSMALLINT record,
                                           SQLWCHAR* state, SQLINTEGER* native, SQLWCHAR* text,
                                           SQLSMALLINT room, SQLSMALLINT* size) {
  std::unique_lock lock(TheDouble().mutex);
  if (!TheDouble().failed.contains(handle)) {
    lock.unlock();
    return __real_SQLGetDiagRecW(type, handle, record, state, native, text, room, size);
  }
  if (record > 1) return SQL_NO_DATA;
  const bool dropped = TheDouble().IsDropped(handle);
  const std::u16string_view words =
      dropped ? u"server closed the connection unexpectedly" : u"the call was made to fail";
  std::copy_n(dropped ? u"08S01" : u"HY000", 6, state);
  *native = 0;
  *std::copy_n(words.begin(), std::min(words.size(), static_cast<std::size_t>(room) - 1), text) = 0;
  *size = static_cast<SQLSMALLINT>(words.size());
  return SQL_SUCCESS;
}

namespace {

std::unique_ptr<engine::Workspace> ServerWorkspace() {
  engine::Workspace::Backends backends;
  backends.odbc = engine::odbc::MakeOdbcBackend();
  return std::make_unique<engine::Workspace>(std::move(backends));
}

class DriverSweep : public DialogTest {
 protected:
  void SetUp() override {
    if (!ServerCatalog::HasServer()) GTEST_SKIP() << "no server";
    m_server.emplace([](sample::CatalogSink& sink) { catalog_test::AddRows(sink, SweepRows(), Runs()); });
  }

  // A dialog on the server's catalog.
  struct Dialog : dialog::frmRestore {
    Dialog(DriverSweep& test, engine::Workspace& databases) : frmRestore(test.platform.Get(), databases) {
      parameters.DBType = 1;
      parameters.DBDatabase = test.m_server->Database();
      parameters.DBServer = ServerCatalog::Server();
      parameters.DBUser = ServerCatalog::User();
      parameters.DBPass = ServerCatalog::Password();
    }
  };

  // Does one step in a new dialog, with a plan for the double during the step. Returns the number of calls.
  std::size_t Try(Step step, DriverFault fault, std::size_t at) {
    std::ostringstream name;
    name << kStepNames[static_cast<int>(step)] << ": " << kFaultNames[static_cast<int>(fault)] << " at call "
         << at;
    m_server->Execute(MarksBefore(step));
    const auto databases = ServerWorkspace();
    Dialog dialog(*this, *databases);
    std::size_t commenced = 0;
    dialog.CommenceRestore = [&] { ++commenced; };
    desktop.messages.clear();
    desktop.answers.assign(20, platform::Answer::kYes);
    std::optional<Injection> injection;
    if (step == Step::kLoad) injection.emplace(Plan{fault, at});
    FormControls& controls = dialog.Controls();  // loads the form
    Prepare(step, controls);
    if (!injection) injection.emplace(Plan{fault, at});
    Start(step, controls);
    const auto [calls, hit] = Injection::Seen();
    if (hit != nullptr) name << ", " << hit;
    injection.reset();
    SCOPED_TRACE(name.str());
    ExpectRight(step, controls, commenced);
    if (controls.form.IsOpen()) controls.form.Unload();
    desktop.messages.clear();
    return calls;
  }

  void ExpectRight(Step step, FormControls& controls, std::size_t commenced) {
    std::string reports;
    for (const auto& message : desktop.messages) reports += "\n  " + message.title + ": " + message.text;
    EXPECT_EQ(Wrong(step, controls,
                    {.marked = m_server->Marked(),
                     .commenced = commenced,
                     .messages = desktop.messages,
                     .told = Told::kAtLeast}),
              "")
        << reports;
  }

  std::optional<ServerCatalog> m_server;
};

TEST_F(DriverSweep, ScreenAndCatalogAgreeWhateverTheDriverDoes) {
  constexpr DriverFault kKinds[] = {DriverFault::kFail, DriverFault::kDrop, DriverFault::kDropAfter};
  std::mt19937 random(faults::Seed());
  std::size_t calls[kSteps]{}, held[kSteps]{};
  const char* const seconds = std::getenv("KX_FAULTS_SECONDS");
  const auto until = Clock::now() + std::chrono::seconds(seconds == nullptr ? 25 : std::atoi(seconds));
  // Each round has a fault in one call of each step: in the first round in the last call, which commits.
  for (std::size_t round = 0; round == 0 || Clock::now() < until; ++round) {
    for (std::size_t number = 0; number < kSteps; ++number) {
      const auto step = static_cast<Step>(number);
      if (round == 0) calls[number] = Try(step, DriverFault::kNone, 0);
      if (calls[number] == 0) continue;
      const std::size_t at = round == 0 ? calls[number] : 1 + random() % calls[number];
      Try(step, kKinds[random() % std::size(kKinds)], at);
      if (HasFailure()) return;
      ++held[number];
    }
  }
  for (std::size_t number = 0; number < kSteps; ++number) {
    std::printf("%-20s %5zu calls, %5zu faults tried, all held\n", kStepNames[number], calls[number],
                held[number]);
    EXPECT_TRUE(held[number] > 0 || calls[number] == 0);
  }
}

// While a call of the driver takes long, the dialog handles messages, and Esc does not wait for the call.
TEST_F(DriverSweep, ASlowDriverDoesNotFreezeTheDialog) {
  constexpr milliseconds kDelay(1500);
  const std::size_t calls = Try(Step::kApply, DriverFault::kNone, 0);
  for (const std::size_t at : {calls / 3, calls / 2, calls - calls / 5}) {
    m_server->Execute(MarksBefore(Step::kApply));
    const auto databases = ServerWorkspace();
    Dialog dialog(*this, *databases);
    FormControls& controls = dialog.Controls();
    Prepare(Step::kApply, controls);
    std::optional<Clock::time_point> pressed;
    std::size_t turns = 0;
    {
      const Injection injection({DriverFault::kDelay, at, kDelay});
      desktop.onDoEvents = [&] {
        if (Injection::Seen().second == nullptr || ++turns < 5 || pressed) return;
        pressed = Clock::now();
        controls.form.UserKey(controls::Key::kEscape);
      };
      Start(Step::kApply, controls);
      desktop.onDoEvents = nullptr;
    }
    ASSERT_TRUE(pressed) << at << ": " << turns << " turns in " << kDelay.count() << " ms";
    const auto took = std::chrono::duration_cast<milliseconds>(Clock::now() - *pressed);
    std::printf("call %zu: %lld ms from Esc to the end\n", at, static_cast<long long>(took.count()));
    EXPECT_LT(took, kDelay / 2);
    desktop.messages.clear();
    // The stopped step does not prevent the next one.
    Start(Step::kApply, controls);
    ExpectRight(Step::kApply, controls, 0);
    EXPECT_TRUE(desktop.messages.empty());
    EXPECT_EQ(m_server->Marked(), kTicked);
    controls.form.Unload();
    desktop.messages.clear();
  }
}

}  // namespace
}  // namespace kxrestore::server_test
