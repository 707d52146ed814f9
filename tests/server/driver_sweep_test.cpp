// Everything that the dialog does with a server catalog while single calls of the driver fail, lose the
// connection or take long. However an action ends, the list shows what the catalog marks or a report says
// that it cannot, and every file that was ticked is marked or counted in a report.
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
#include "tests/dialog/dialog_fixture.h"
#include "tests/server/driver_double.h"

namespace kxrestore::server_test {
namespace {

using catalog_test::ServerCatalog;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using namespace dialog_test;  // NOLINT: its fixture and its names

constexpr int kFiles = 7;
const Ids kAll{1, 2, 3, 4, 5, 6, 7}, kFive{2, 3, 4, 5, 6};

enum class Action {
  kLoad,
  kChooseRun,
  kSearch,
  kLatestSearch,
  kApply,
  kSearchApply,
  kAutoSelect,
  kUpdate,
  kClear,
  kCancel,
  kRestoreNow
};
constexpr const char* kNames[] = {"load",  "choose run",   "search",      "latest-only search",
                                  "apply", "search apply", "auto-select", "update",
                                  "clear", "cancel",       "commit"};

std::unique_ptr<engine::Workspace> ServerWorkspace() {
  engine::Workspace::Backends backends;
  backends.odbc = engine::odbc::MakeOdbcBackend();
  return std::make_unique<engine::Workspace>(std::move(backends));
}

class DriverSweep : public DialogTest {
 protected:
  void SetUp() override {
    if (!ServerCatalog::HasServer()) GTEST_SKIP() << "no server";
    std::vector<sample::FileRow> rows;
    for (int id = 1; id <= kFiles; ++id) {
      rows.push_back(Row(id, 1, "003", "C:\\Data\\" + std::to_string(id) + ".doc"));
    }
    m_server.emplace([&](sample::CatalogSink& sink) { catalog_test::AddRows(sink, rows, Runs()); });
  }

  // One action on a dialog of its own, with the double switched on while it is done. The number of calls.
  std::size_t Try(Action action, DriverFault fault, std::size_t at) {
    std::ostringstream name;
    name << kNames[static_cast<int>(action)] << ": " << fault << " at call " << at;
    m_server->Execute(action >= Action::kUpdate ? "UPDATE Catalog SET Restore = TRUE"
                                                : "UPDATE Catalog SET Restore = FALSE");
    m_workspace = ServerWorkspace();
    dialog::frmRestore dialog(platform.Get(), *m_workspace);
    dialog.parameters.DBType = 1;
    dialog.parameters.DBDatabase = m_server->Database();
    dialog.parameters.DBServer = ServerCatalog::Server();
    dialog.parameters.DBUser = ServerCatalog::User();
    dialog.parameters.DBPass = ServerCatalog::Password();
    std::size_t commenced = 0, calls = 0;
    FormControls* loaded = nullptr;
    dialog.CommenceRestore = [&] { ++commenced; };
    desktop.messages.clear();
    desktop.answers.assign(20, platform::kAnswerYes);
    {
      std::optional<DriverDouble> twin;
      if (action == Action::kLoad) twin.emplace(fault, at);
      FormControls& controls = dialog.Controls();  // loads the form
      loaded = &controls;
      Prepare(action, controls);
      if (!twin) twin.emplace(fault, at);
      Start(action, controls);
      if (DriverDouble::Hit() != nullptr) name << ", " << DriverDouble::Hit();
      calls = DriverDouble::Calls();
    }
    SCOPED_TRACE(name.str());
    Judge(action, *loaded, commenced);
    desktop.messages.clear();
    if (loaded->form.IsOpen()) loaded->form.Unload();
    desktop.messages.clear();
    return calls;
  }

  void Prepare(Action action, FormControls& controls) {
    switch (action) {
      case Action::kApply:
        controls.tvwSets.UserClickNode(NodeOf(controls.tvwSets, "1 003"));
        for (const std::int64_t id : kFive) {
          controls.tvwDetails.UserCheck(NodeOf(controls.tvwDetails, std::to_string(id) + ".doc"), true);
        }
        break;
      case Action::kSearchApply:
        controls.tbsOptions.UserSelect(2);
        controls.cboMask.UserType(".doc");
        controls.cmdSearch[kFind].UserClick();
        ASSERT_EQ(controls.asSearch.Count(), std::size_t{kFiles});
        for (std::size_t i = 1; i <= kFiles; ++i) {
          controls.asSearch.UserTick(i, kFive.contains(IdOf(controls.asSearch, i)));
        }
        break;
      case Action::kSearch:
      case Action::kLatestSearch:
        controls.tbsOptions.UserSelect(2);
        controls.cboMask.UserType(".doc");
        controls.chk1.SetValue(action == Action::kLatestSearch ? 1 : 0);
        break;
      case Action::kAutoSelect:
        controls.tbsOptions.UserSelect(3);
        controls.chk2.SetValue(0);
        Tick(controls.asFiles, ".doc");
        break;
      case Action::kLoad:
      case Action::kChooseRun:
        break;
      default:
        controls.cmdRestore[kRefresh].UserClick();
        ASSERT_EQ(controls.asRestoreList.Count(), std::size_t{kFiles});
        for (const std::int64_t id : kFive) {
          if (action == Action::kUpdate) {
            Tick(controls.asRestoreList, "C:\\Data\\" + std::to_string(id) + ".doc", false);
          }
        }
    }
  }

  static void Start(Action action, FormControls& controls) {
    switch (action) {
      case Action::kLoad:
        return;
      case Action::kChooseRun:
        return controls.tvwSets.UserClickNode(NodeOf(controls.tvwSets, "1 003"));
      case Action::kSearch:
      case Action::kLatestSearch:
        return controls.cmdSearch[kFind].UserClick();
      case Action::kApply:
        return controls.cmdAction[kApply].UserClick();
      case Action::kSearchApply:
        return controls.cmdSearch[kApplyFound].UserClick();
      case Action::kAutoSelect:
        return controls.cmdAuto[kApplyTypes].UserClick();
      case Action::kUpdate:
        return controls.cmdRestore[kUpdate].UserClick();
      case Action::kClear:
        return controls.cmdRestore[kClearList].UserClick();
      case Action::kCancel:
        return controls.cmdRestore[kCancel].UserClick();
      case Action::kRestoreNow:
        return controls.cmdRestore[kRestoreNow].UserClick();
    }
  }

  static std::int64_t IdOf(const AutoSelect& list, std::size_t number) {
    return list.At(number).name[8] - '0';
  }

  bool Reported(std::string_view start = {}) const {
    return std::any_of(desktop.messages.begin(), desktop.messages.end(), [start](const auto& message) {
      return message.title.starts_with(start) && message.style == platform::kExclamation;
    });
  }
  std::size_t CountedAsNotMarked() const {
    std::size_t count = 0;
    for (const auto& message : desktop.messages) {
      if (message.text.ends_with(" file(s) could not be marked.")) count += std::stoul(message.text);
    }
    return count;
  }
  std::string Messages() const {
    std::string text;
    for (const auto& message : desktop.messages) text += "\n  " + message.title + ": " + message.text;
    return text;
  }

  void Judge(Action action, FormControls& controls, std::size_t commenced) {
    SCOPED_TRACE(Messages());
    for (const auto& message : desktop.messages) {
      EXPECT_EQ(message.text.find("PWD"), std::string::npos);
      EXPECT_EQ(message.text.find("Internal error"), std::string::npos);
    }
    if (action == Action::kLoad) {
      EXPECT_TRUE(Reported() || NodeFrom(controls.tvwSets.FirstRoot(), "1 003"));
      return;
    }
    if (action == Action::kChooseRun) {
      for (const std::int64_t id : kAll) {
        EXPECT_TRUE(Reported() || NodeFrom(controls.tvwDetails.FirstRoot(), std::to_string(id) + ".doc"));
      }
      return;
    }
    if (action == Action::kSearch || action == Action::kLatestSearch) {
      EXPECT_TRUE(Reported() || controls.asSearch.Count() == kFiles);
      return;
    }
    const Ids marked = m_server->Marked();
    EXPECT_TRUE(commenced == 0 || marked == kAll);
    if (!controls.form.IsOpen()) {
      EXPECT_TRUE(action == Action::kRestoreNow ? commenced == 1 : marked.empty() || Reported());
      return;
    }
    Ids shown, unticked;
    for (std::size_t i = 1; i <= controls.asRestoreList.Count(); ++i) {
      shown.insert(IdOf(controls.asRestoreList, i));
      if (!controls.asRestoreList.TickedAt(i)) unticked.insert(IdOf(controls.asRestoreList, i));
    }
    EXPECT_TRUE(Reported("ListCurrentSelections") || shown == marked);
    Ids missed;
    if (action == Action::kUpdate) {
      for (const std::int64_t id : kFive) {
        if (marked.contains(id)) missed.insert(id);
      }
    } else if (action == Action::kClear || action == Action::kCancel || action == Action::kRestoreNow) {
      EXPECT_TRUE(marked.empty() || Reported());
      return;
    } else {
      for (const std::int64_t id : action == Action::kAutoSelect ? kAll : kFive) {
        if (!marked.contains(id)) missed.insert(id);
      }
    }
    const bool cutShort = action == Action::kAutoSelect && Reported("ApplyAutoSelect");
    // What a lost commit has saved all the same may be counted, too.
    EXPECT_TRUE(cutShort || CountedAsNotMarked() >= missed.size());
    EXPECT_TRUE(missed.empty() || Reported());
  }

  std::optional<ServerCatalog> m_server;
  std::unique_ptr<engine::Workspace> m_workspace;
};

TEST_F(DriverSweep, ScreenAndCatalogAgreeWhateverTheDriverDoes) {
  const char* faults = std::getenv("KX_FAULTS");
  const bool all = faults != nullptr && std::string_view(faults) == "all";
  constexpr std::size_t kActions = static_cast<std::size_t>(Action::kRestoreNow) + 1;
  constexpr std::size_t kSample = 7;  // places of one kind of fault in one action
  constexpr std::chrono::seconds kTime(25);
  constexpr DriverFault kKinds[] = {DriverFault::kFail, DriverFault::kDrop, DriverFault::kDropAfter};
  std::size_t calls[kActions]{}, held[kActions]{};
  const auto until = Clock::now() + kTime;
  // One round takes one place of each action. A slow machine has time for few rounds.
  for (std::size_t round = 0; all || Clock::now() < until; ++round) {
    bool tried = false;
    for (std::size_t number = 0; number < kActions; ++number) {
      const auto action = static_cast<Action>(number);
      if (round == 0) calls[number] = Try(action, DriverFault::kNone, 0);
      const std::size_t step = all ? 1 : std::max<std::size_t>(calls[number] / kSample, 1);
      for (std::size_t kind = all ? 0 : (round + number) % 3; kind < (all ? 3 : (round + number) % 3 + 1);
           ++kind) {
        // Each kind of fault samples different calls, starting from the last ones, which commit.
        const std::size_t back = round * step + (all ? 0 : kind * step / 3);
        if (back >= calls[number]) continue;
        Try(action, kKinds[kind], calls[number] - back);
        if (HasFailure()) return;
        ++held[number];
        tried = true;
      }
    }
    if (!tried) break;
  }
  for (std::size_t number = 0; number < kActions; ++number) {
    std::printf("%-20s %5zu calls, %5zu faults tried, all held\n", kNames[number], calls[number],
                held[number]);
    EXPECT_TRUE(held[number] > 0 || calls[number] == 0);
  }
}

// A call of the driver that takes two seconds: pending messages go on, and Esc does not wait for it.
TEST_F(DriverSweep, ASlowDriverFreezesNobody) {
  constexpr milliseconds kDelay(1500);
  const std::size_t calls = Try(Action::kApply, DriverFault::kNone, 0);
  for (const std::size_t at : {calls / 3, calls / 2, calls - calls / 5}) {
    m_server->Execute("UPDATE Catalog SET Restore = FALSE");
    m_workspace = ServerWorkspace();
    UseServer(m_server->Database(), ServerCatalog::Server(), ServerCatalog::User(),
              ServerCatalog::Password());
    dialog::frmRestore dialog(platform.Get(), *m_workspace);
    dialog.parameters.DBType = 1;
    dialog.parameters.DBDatabase = m_server->Database();
    dialog.parameters.DBServer = ServerCatalog::Server();
    dialog.parameters.DBUser = ServerCatalog::User();
    dialog.parameters.DBPass = ServerCatalog::Password();
    FormControls& controls = dialog.Controls();
    Prepare(Action::kApply, controls);
    std::optional<Clock::time_point> pressed;
    std::size_t turns = 0;
    {
      const DriverDouble twin(DriverFault::kDelay, at, kDelay);
      desktop.onDoEvents = [&] {
        if (DriverDouble::Hit() == nullptr || ++turns < 5 || pressed) return;
        pressed = Clock::now();
        controls.form.UserKey(controls::Key::kEscape);
      };
      Start(Action::kApply, controls);
      desktop.onDoEvents = nullptr;
    }
    ASSERT_TRUE(pressed) << at << ": " << turns << " turns in " << kDelay.count() << " ms";
    const auto took = std::chrono::duration_cast<milliseconds>(Clock::now() - *pressed);
    std::printf("call %zu: %lld ms from Esc to the end\n", at, static_cast<long long>(took.count()));
    EXPECT_LT(took, kDelay / 2);
    desktop.messages.clear();
    // What was stopped does not stand in the way of what follows.
    Start(Action::kApply, controls);
    Judge(Action::kApply, controls, 0);
    EXPECT_FALSE(Reported()) << Messages();
    EXPECT_EQ(m_server->Marked(), kFive);
    desktop.messages.clear();
    controls.form.Unload();
    desktop.messages.clear();
  }
}

}  // namespace
}  // namespace kxrestore::server_test
