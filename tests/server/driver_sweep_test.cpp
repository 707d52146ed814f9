// Everything that the dialog does with a server catalog while single calls of the driver fail, lose the
// connection or take long.
//
// A sample of the calls is tried; with KX_FAULTS=all in the environment each one is.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <sstream>
#include <string>

#include "engine/odbc/odbc_backend.h"
#include "tests/catalog/server_catalog.h"
#include "tests/dialog/marking_steps.h"
#include "tests/server/driver_double.h"

namespace kxrestore::server_test {
namespace {

using catalog_test::ServerCatalog;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using namespace dialog_test;  // NOLINT: its fixture and its names

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

  // One step on a dialog of its own, with the double switched on while it is done. The number of calls.
  std::size_t Try(Step step, DriverFault fault, std::size_t at) {
    std::ostringstream name;
    name << kStepNames[static_cast<int>(step)] << ": " << fault << " at call " << at;
    m_server->Execute(MarksBefore(step));
    const auto databases = ServerWorkspace();
    Dialog dialog(*this, *databases);
    std::size_t commenced = 0, calls = 0;
    dialog.CommenceRestore = [&] { ++commenced; };
    desktop.messages.clear();
    desktop.answers.assign(20, platform::Answer::kYes);
    std::optional<DriverDouble> twin;
    if (step == Step::kLoad) twin.emplace(fault, at);
    FormControls& controls = dialog.Controls();  // loads the form
    Prepare(step, controls);
    if (!twin) twin.emplace(fault, at);
    Start(step, controls);
    if (DriverDouble::Hit() != nullptr) name << ", " << DriverDouble::Hit();
    calls = DriverDouble::Calls();
    twin.reset();
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
  const char* faults = std::getenv("KX_FAULTS");
  const bool all = faults != nullptr && std::string_view(faults) == "all";
  constexpr std::size_t kSample = 7;  // places of one kind of fault in one action
  constexpr std::chrono::seconds kTime(25);
  constexpr DriverFault kKinds[] = {DriverFault::kFail, DriverFault::kDrop, DriverFault::kDropAfter};
  std::size_t calls[kSteps]{}, held[kSteps]{};
  const auto until = Clock::now() + kTime;
  // One round takes one place of each action. A slow machine has time for few rounds.
  for (std::size_t round = 0; all || Clock::now() < until; ++round) {
    bool tried = false;
    for (std::size_t number = 0; number < kSteps; ++number) {
      const auto step = static_cast<Step>(number);
      if (round == 0) calls[number] = Try(step, DriverFault::kNone, 0);
      const std::size_t stride = all ? 1 : std::max<std::size_t>(calls[number] / kSample, 1);
      for (std::size_t kind = all ? 0 : (round + number) % 3; kind < (all ? 3 : (round + number) % 3 + 1);
           ++kind) {
        // Each kind of fault samples different calls, starting from the last ones, which commit.
        const std::size_t back = round * stride + (all ? 0 : kind * stride / 3);
        if (back >= calls[number]) continue;
        Try(step, kKinds[kind], calls[number] - back);
        if (HasFailure()) return;
        ++held[number];
        tried = true;
      }
    }
    if (!tried) break;
  }
  for (std::size_t number = 0; number < kSteps; ++number) {
    std::printf("%-20s %5zu calls, %5zu faults tried, all held\n", kStepNames[number], calls[number],
                held[number]);
    EXPECT_TRUE(held[number] > 0 || calls[number] == 0);
  }
}

// A call of the driver that takes two seconds: pending messages go on, and Esc does not wait for it.
TEST_F(DriverSweep, ASlowDriverFreezesNobody) {
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
      const DriverDouble twin(DriverFault::kDelay, at, kDelay);
      desktop.onDoEvents = [&] {
        if (DriverDouble::Hit() == nullptr || ++turns < 5 || pressed) return;
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
    // What was stopped does not stand in the way of what follows.
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
