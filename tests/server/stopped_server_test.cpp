// A server that is paused, killed or cut off by its network in the middle of each operation, and one whose
// rows others keep locked. The waiting callback is still called and its stop ends the operation, a lost mark
// is reported exactly once, and the next operation works when the server is back.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <optional>
#include <utility>

#include "bench/relay.h"
#include "engine/odbc/odbc_backend.h"
#include "engine/odbc/odbc_database.h"
#include "tests/catalog/catalog_file.h"
#include "tests/catalog/server_catalog.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::server_test {
namespace {

using catalog_test::Live;
using catalog_test::ServerCatalog;
using std::chrono::milliseconds;
using namespace engine;           // NOLINT: the tests are about the engine
using namespace engine::testing;  // NOLINT
namespace number = engine::error_number;

constexpr milliseconds kUserWaits(60);  // of the user who then stops
constexpr milliseconds kStopTime(600);  // 200 on a quiet machine
constexpr int kFiles = 3000;

enum class Trouble { kPaused, kCutOff, kKilled };
constexpr const char* kTroubles[] = {"paused", "cut off", "killed"};

struct Operation {
  const char* name;
  std::function<void(Workspace&)> prepare, run;
  bool waits = false;  // a mark that `prepare` made is not committed yet
  bool tells = false;  // `run` itself reports that this mark is lost
};

class StoppedServer : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!ServerCatalog::HasServer()) GTEST_SKIP() << "no server";
    m_server.emplace([&](sample::CatalogSink& sink) {
      std::vector<sample::FileRow> rows;
      for (int id = 1; id <= kFiles; ++id) rows.push_back(Live(id, "C:\\" + std::to_string(id) + ".doc"));
      catalog_test::AddRows(sink, rows, {});
    });
    const std::string server = ServerCatalog::Server();  // "127.0.0.1;PORT=N"
    m_relay.emplace("127.0.0.1", std::stoi(server.substr(server.find('=') + 1)));
    m_connect = m_server->Connect();
    m_connect.replace(m_connect.find(server), server.size(),
                      "127.0.0.1;PORT=" + std::to_string(m_relay->Port()));
  }
  void TearDown() override {
    if (m_trouble == Trouble::kPaused) Control("resume");
  }

  static void Control(const char* what) {
    ASSERT_EQ(std::system((ServerSetting("KX_TEST_CONTROL") + " " + what).c_str()), 0);
  }
  void Begin(Trouble trouble) {
    m_trouble = trouble;
    if (trouble == Trouble::kCutOff) return m_relay->Stall(true);
    Control(trouble == Trouble::kPaused ? "pause" : "stop");
  }
  void End() {
    const Trouble trouble = *std::exchange(m_trouble, std::nullopt);
    if (trouble == Trouble::kCutOff) return m_relay->Stall(false);
    Control(trouble == Trouble::kPaused ? "resume" : "start");
  }

  std::unique_ptr<Workspace> MakeWorkspace(const odbc::Waits& waits = {}) {
    Workspace::Backends backends;
    backends.odbc = odbc::MakeOdbcBackend(waits);
    auto workspace = std::make_unique<Workspace>(std::move(backends));
    workspace->SetWaiting([this] {
      ++m_turns;
      return !m_stop || Clock::now() < *m_stop;
    });
    return workspace;
  }
  std::unique_ptr<Database> Open(Workspace& workspace) {
    return workspace.OpenDatabase({.connect = m_connect});
  }
  void Mark(Workspace& workspace, int id) { testing::Mark(*Open(workspace), id); }
  bool IsMarked(int id) { return m_server->Marked().contains(id); }

  // Runs an operation, which the user stops after a while. Returns the number of its error, or 0.
  int Stopped(const std::function<void()>& run, const char* name) {
    m_turns = 0;
    m_stop = Clock::now() + kUserWaits;
    int errorNumber = 0;
    try {
      run();
    } catch (const Error& error) {
      errorNumber = error.Number();
    }
    const auto late = std::chrono::duration_cast<milliseconds>(Clock::now() - *m_stop);
    std::printf("  %-20s error %d, %lld ms after the stop, %d turns\n", name, errorNumber,
                static_cast<long long>(late.count()), m_turns);
    EXPECT_LT(late, kStopTime) << name;
    return errorNumber;
  }
  // How often a loss is reported before the action has ended.
  static int Told(Workspace& workspace) {
    int told = 0;
    const std::function<void()> ways[] = {[&] { workspace.Idle(); }, [&] { workspace.Flush(); },
                                          [&] { workspace.Flush(); }, [&] { workspace.EndAction(); }};
    for (const auto& way : ways) {
      try {
        way();
      } catch (const Error& error) {
        EXPECT_NE(error.Number(), number::kCanceled);
        ++told;
      }
    }
    return told;
  }

  std::vector<Operation> Operations() {
    using Step = std::function<void(Workspace&)>;
    const auto open = [this](const char* source, RecordsetType type) {
      return [=, this](Workspace& workspace) { m_rows = Open(workspace)->OpenRecordset(source, type); };
    };
    const auto mark = [this](int id) { return [=, this](Workspace& workspace) { Mark(workspace, id); }; };
    const Step warm = open("SetNames", RecordsetType::kSnapshot);
    return {
        {"connect", [](Workspace&) {}, [this](Workspace& workspace) { Open(workspace); }},
        {"read", warm, open("SELECT ID, Filename FROM Catalog", RecordsetType::kSnapshot)},
        {"mark", warm, mark(2)},
        {"second mark", mark(1), mark(2), true},
        {"commit", mark(1), [](Workspace& workspace) { workspace.Flush(); }, true, true},
        {"saved query", warm,
         [this](Workspace& workspace) {
           Open(workspace)->CreateQueryDef("mine", "SELECT ID FROM Catalog;");
         }},
        {"fetch", open("SELECT a.ID, b.Filename FROM Catalog AS a, Catalog AS b", RecordsetType::kSnapshot),
         [this](Workspace&) {
           while (!m_rows->Eof()) m_rows->MoveNext();
         }},
        {"change a row", open("SELECT ID, Restore FROM Catalog ORDER BY ID", RecordsetType::kDynaset),
         [this](Workspace&) { Change(*m_rows, "Restore", true); }}};
  }

  void Try(Trouble trouble, const Operation& operation) {
    SCOPED_TRACE(std::string(operation.name) + ", " + kTroubles[static_cast<int>(trouble)]);
    m_server->Execute("UPDATE Catalog SET Restore = FALSE");
    m_stop.reset();
    auto workspace = MakeWorkspace();
    workspace->BeginAction();
    operation.prepare(*workspace);
    Begin(trouble);
    const int error = Stopped([&] { operation.run(*workspace); }, operation.name);
    if (trouble == Trouble::kKilled) {
      EXPECT_TRUE(error == number::kOdbcFailed || error == number::kOdbcConnectionFailed) << error;
    } else {
      EXPECT_NE(error, 0);
      EXPECT_GE(m_turns, 2);
    }
    m_rows.reset();
    m_stop = Clock::now();
    const int told = Told(*workspace);
    EXPECT_LT(Clock::now() - *m_stop, kStopTime) << "the end of the action";
    EXPECT_EQ(told, operation.waits && !operation.tells ? 1 : 0);
    End();
    m_stop.reset();
    workspace->BeginAction();
    EXPECT_NO_THROW(Mark(*workspace, 3));
    EXPECT_NO_THROW(workspace->EndAction());
    EXPECT_TRUE(IsMarked(3));
    EXPECT_TRUE(!operation.waits || told > 0 || operation.tells || IsMarked(1)) << "lost without a report";
  }

  std::optional<ServerCatalog> m_server;
  std::optional<bench::Relay> m_relay;  // between the engine and the server
  std::string m_connect;
  std::unique_ptr<Recordset> m_rows;
  std::optional<Clock::time_point> m_stop;
  int m_turns = 0;
  std::optional<Trouble> m_trouble;
};

TEST_F(StoppedServer, EndsOneOperationAndTheNextWorks) {
  for (const Trouble trouble : {Trouble::kPaused, Trouble::kCutOff, Trouble::kKilled}) {
    std::printf("%s:\n", kTroubles[static_cast<int>(trouble)]);
    for (const Operation& operation : Operations()) {
      Try(trouble, operation);
      if (HasFatalFailure()) return;
    }
  }
}

// Without a stop, no wait is endless.
TEST_F(StoppedServer, WaitsAreBounded) {
  const auto workspace = MakeWorkspace({.login = milliseconds(3000), .call = milliseconds(700)});
  const auto database = Open(*workspace);
  Begin(Trouble::kCutOff);
  const auto start = Clock::now();
  ExpectError(number::kOdbcFailed, "has not answered within 1 seconds",
              [&] { database->OpenRecordset("Catalog", RecordsetType::kSnapshot); });
  EXPECT_LT(Clock::now() - start, milliseconds(2500));
  ExpectError(number::kOdbcFailed, "has not answered", [&] { database->QueryText("FullCatalog"); });
  ExpectError(number::kOdbcConnectionFailed, "127.0.0.1", [&] { Open(*workspace); });
  EXPECT_LT(Clock::now() - start, milliseconds(8000));
  End();
  EXPECT_NO_THROW(Mark(*workspace, 1));
}

TEST_F(StoppedServer, LocksOfOthersAreWaitedForThreeSecondsAnAction) {
  odbc::Session other(m_server->Connect());
  odbc::OdbcDatabase holder(std::shared_ptr<odbc::Session>(&other, [](odbc::Session*) {}), false);
  holder.BeginTrans();
  holder.Execute("UPDATE Catalog SET Status = 2 WHERE ID < 4", 0);

  auto workspace = MakeWorkspace();
  workspace->BeginAction();
  Mark(*workspace, 10);
  const auto start = Clock::now();
  for (int id = 1; id <= 3; ++id) {
    ExpectError(number::kRowLocked, "lock timeout", [&] { Mark(*workspace, id); });
    Mark(*workspace, 10 + id);
  }
  const auto time = std::chrono::duration_cast<milliseconds>(Clock::now() - start);
  EXPECT_GT(time, milliseconds(2800));
  EXPECT_LT(time, milliseconds(4000));
  workspace->EndAction();
  for (int id = 10; id <= 13; ++id) EXPECT_TRUE(IsMarked(id)) << id;

  // A stop ends one wait, and earlier marks stay.
  workspace->BeginAction();
  Mark(*workspace, 20);
  EXPECT_EQ(Stopped([&] { Mark(*workspace, 1); }, "locked mark"), number::kCanceled);
  m_stop.reset();
  EXPECT_NO_THROW(workspace->EndAction());
  EXPECT_TRUE(IsMarked(20));
  EXPECT_FALSE(IsMarked(1));
  holder.Rollback();
}

}  // namespace
}  // namespace kxrestore::server_test
