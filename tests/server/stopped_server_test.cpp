// A server that is paused, killed or cut off by its network in the middle of each operation, and one whose
// rows others keep locked. The waiting callback goes on, its stop ends the operation, what was lost is told
// exactly once, and the next operation works when the server is back.
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <optional>
#include <stdexcept>
#include <thread>

#include "engine/odbc/odbc_backend.h"
#include "engine/odbc/odbc_database.h"
#include "tests/catalog/catalog_file.h"
#include "tests/catalog/server_catalog.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::server_test {
namespace {

using catalog_test::Live;
using catalog_test::ServerCatalog;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using namespace engine;  // NOLINT: the tests speak of little else
namespace number = engine::error_number;

sockaddr_in Loopback(unsigned short port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

// Whether there was something to forward.
bool Forward(int from, int to) {
  char buffer[16384];
  const ssize_t size = recv(from, buffer, sizeof buffer, 0);
  for (ssize_t sent = 0; sent < size;) {
    const ssize_t now = send(to, buffer + sent, static_cast<std::size_t>(size - sent), MSG_NOSIGNAL);
    if (now <= 0) return false;
    sent += now;
  }
  return size > 0;
}

// A proxy on the loopback address between the driver and the server, which can stop forwarding, as a network
// does that swallows packets.
class LoopbackProxy {
 public:
  // `server`: "127.0.0.1;PORT=N".
  explicit LoopbackProxy(const std::string& server)
      : m_serverPort(static_cast<unsigned short>(std::stoi(server.substr(server.find('=') + 1)))) {
    sockaddr_in address = Loopback(0);
    socklen_t size = sizeof address;
    if (bind(m_listener, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(m_listener, 16) != 0 ||
        getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
      throw std::runtime_error("no port for a proxy");
    }
    m_port = ntohs(address.sin_port);
    m_thread = std::thread([this] { Serve(); });
  }
  ~LoopbackProxy() {
    m_ending = true;
    m_thread.join();
    close(m_listener);
    for (const Pair& pair : m_pairs) Close(pair);
  }
  LoopbackProxy(const LoopbackProxy&) = delete;
  LoopbackProxy& operator=(const LoopbackProxy&) = delete;

  std::string Server() const { return "127.0.0.1;PORT=" + std::to_string(m_port); }
  void Swallow(bool swallow) { m_swallowing = swallow; }

 private:
  struct Pair {
    int client = -1, server = -1;
  };
  static void Close(const Pair& pair) {
    close(pair.client);
    close(pair.server);
  }

  void Serve() {
    while (!m_ending) {
      if (m_swallowing) {  // connections are made by the system all the same
        usleep(5000);
        continue;
      }
      std::vector<pollfd> waiting{{m_listener, POLLIN, 0}};
      for (const Pair& pair : m_pairs) {
        waiting.push_back({pair.client, POLLIN, 0});
        waiting.push_back({pair.server, POLLIN, 0});
      }
      if (poll(waiting.data(), waiting.size(), 5) <= 0 || m_swallowing) continue;
      std::size_t next = 1;
      std::erase_if(m_pairs, [&](const Pair& pair) {
        const bool fromClient = waiting[next++].revents != 0, fromServer = waiting[next++].revents != 0;
        const bool alive = (!fromClient || Forward(pair.client, pair.server)) &&
                           (!fromServer || Forward(pair.server, pair.client));
        if (!alive) Close(pair);
        return !alive;
      });
      if ((waiting[0].revents & POLLIN) != 0) Accept();
    }
  }

  void Accept() {
    const Pair made{accept(m_listener, nullptr, nullptr), socket(AF_INET, SOCK_STREAM, 0)};
    sockaddr_in address = Loopback(m_serverPort);
    if (connect(made.server, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0) {
      m_pairs.push_back(made);
    } else {
      Close(made);
    }
  }

  const int m_listener = socket(AF_INET, SOCK_STREAM, 0);
  unsigned short m_port = 0, m_serverPort = 0;
  std::atomic<bool> m_swallowing{false}, m_ending{false};
  std::vector<Pair> m_pairs;
  std::thread m_thread;
};

constexpr milliseconds kUserWaits(60);  // of the user who then stops
constexpr milliseconds kStopTime(600);  // 200 on a quiet machine
constexpr int kFiles = 3000;

enum class Trouble { kPause, kSwallow, kKill };
constexpr const char* kTroubles[] = {"paused", "cut off", "killed"};

struct Operation {
  const char* name;
  std::function<void(Workspace&)> prepare, run;
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
    m_proxy.emplace(ServerCatalog::Server());
    m_connect = m_server->Connect();
    const std::size_t at = m_connect.find(ServerCatalog::Server());
    ASSERT_NE(at, std::string::npos);
    m_connect.replace(at, ServerCatalog::Server().size(), m_proxy->Server());
  }
  void TearDown() override {
    if (m_isPaused) Control("resume");
    if (m_proxy) m_proxy->Swallow(false);
  }

  static void Control(const char* what) {
    ASSERT_EQ(std::system((testing::ServerSetting("KX_TEST_CONTROL") + " " + what).c_str()), 0);
  }
  void Start(Trouble trouble) {
    if (trouble == Trouble::kSwallow) return m_proxy->Swallow(true);
    Control(trouble == Trouble::kPause ? "pause" : "stop");
    m_isPaused = trouble == Trouble::kPause;
  }
  void End(Trouble trouble) {
    if (trouble == Trouble::kSwallow) return m_proxy->Swallow(false);
    Control(trouble == Trouble::kPause ? "resume" : "start");
    m_isPaused = false;
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

  // Runs it, with a user who stops it after a while; the error's number, 0 for none.
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
    const auto warm = [this](Workspace& workspace) {
      Open(workspace)->OpenRecordset("SetNames", RecordsetType::kSnapshot);
    };
    const auto mark = [this](Workspace& workspace) { Mark(workspace, 1); };
    return {
        {"connect", [](Workspace&) {}, [this](Workspace& workspace) { Open(workspace); }},
        {"read", warm,
         [this](Workspace& workspace) {
           Open(workspace)->OpenRecordset("SELECT ID, Filename FROM Catalog", RecordsetType::kSnapshot);
         }},
        {"mark", warm, [this](Workspace& workspace) { Mark(workspace, 2); }},
        {"second mark", mark, [this](Workspace& workspace) { Mark(workspace, 2); }},
        {"commit", mark, [](Workspace& workspace) { workspace.Flush(); }},
        {"saved query", warm,
         [this](Workspace& workspace) {
           Open(workspace)->CreateQueryDef("mine", "SELECT ID FROM Catalog;");
         }},
        {"fetch",
         [this](Workspace& workspace) {
           m_rows = Open(workspace)->OpenRecordset("SELECT a.ID, b.Filename FROM Catalog AS a, Catalog AS b",
                                                   RecordsetType::kSnapshot);
         },
         [this](Workspace&) {
           for (; !m_rows->Eof(); m_rows->MoveNext()) {
           }
         }},
    };
  }

  void Try(Trouble trouble, const Operation& operation) {
    SCOPED_TRACE(std::string(kTroubles[static_cast<int>(trouble)]) + ", " + operation.name);
    m_server->Execute("UPDATE Catalog SET Restore = FALSE");
    m_stop.reset();
    auto workspace = MakeWorkspace();
    workspace->BeginAction();
    operation.prepare(*workspace);
    const bool waits =
        std::string_view(operation.name) == "second mark" || std::string_view(operation.name) == "commit";
    Start(trouble);
    EXPECT_NE(Stopped([&] { operation.run(*workspace); }, operation.name), 0);
    EXPECT_TRUE(trouble == Trouble::kKill || m_turns >= 2);
    m_rows.reset();
    const bool isTold = std::string_view(operation.name) == "commit";
    int told = 0;
    m_stop = Clock::now();
    const auto start = Clock::now();
    told = Told(*workspace);
    EXPECT_LT(Clock::now() - start, kStopTime) << "the end of the action";
    EXPECT_EQ(told, waits && !isTold ? 1 : 0);
    End(trouble);
    m_stop.reset();
    workspace->BeginAction();
    EXPECT_NO_THROW(Mark(*workspace, 3));
    EXPECT_NO_THROW(workspace->EndAction());
    EXPECT_TRUE(IsMarked(3));
    // A mark that was not reported as lost is there.
    EXPECT_TRUE(!waits || told > 0 || isTold || IsMarked(1));
  }

  void TryAll(Trouble trouble) {
    std::printf("%s:\n", kTroubles[static_cast<int>(trouble)]);
    for (const Operation& operation : Operations()) {
      Try(trouble, operation);
      if (HasFatalFailure()) return;
    }
  }

  std::optional<ServerCatalog> m_server;
  std::optional<LoopbackProxy> m_proxy;
  std::string m_connect;
  std::unique_ptr<Recordset> m_rows;
  std::optional<Clock::time_point> m_stop;
  int m_turns = 0;
  bool m_isPaused = false;
};

TEST_F(StoppedServer, Paused) {
  TryAll(Trouble::kPause);
}

TEST_F(StoppedServer, CutOff) {
  TryAll(Trouble::kSwallow);
}

TEST_F(StoppedServer, KilledAndRestarted) {
  TryAll(Trouble::kKill);
}

// Without a stop, no wait is endless.
TEST_F(StoppedServer, WaitsAreBounded) {
  const auto workspace = MakeWorkspace({.login = milliseconds(3000), .call = milliseconds(700)});
  const auto database = Open(*workspace);
  m_proxy->Swallow(true);
  const auto start = Clock::now();
  testing::ExpectError(number::kOdbcFailed, "has not answered within 1 seconds",
                       [&] { database->OpenRecordset("Catalog", RecordsetType::kSnapshot); });
  EXPECT_LT(Clock::now() - start, milliseconds(2500));
  testing::ExpectError(number::kOdbcFailed, "has not answered", [&] { database->QueryText("FullCatalog"); });
  testing::ExpectError(number::kOdbcConnectionFailed, "127.0.0.1", [&] { Open(*workspace); });
  EXPECT_LT(Clock::now() - start, milliseconds(8000));
  m_proxy->Swallow(false);
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
    testing::ExpectError(number::kRowLocked, "lock timeout", [&] { Mark(*workspace, id); });
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
