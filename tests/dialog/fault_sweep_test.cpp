// Every way of marking, with every single opening, row, mark and commit failing in turn, and with Esc, Cancel
// and the close box in every turn of the pending messages. However it ends, the list shows what the catalog
// marks or a report says that it cannot, every file that was ticked is marked or counted in a report, and
// nothing else is marked.
#include <map>
#include <ostream>

#include "engine/sqlite/sqlite_backend.h"
#include "tests/dialog/dialog_fixture.h"
#include "tests/dialog/faulty_engine.h"

namespace kxrestore::dialog_test {
namespace {

constexpr int kFiles = 7;

enum class Action { kApply, kSearchApply, kAutoSelect, kUpdate, kClear, kCancel, kRestoreNow };
enum class Key { kNone, kEscape, kCancel, kClose };

struct Case {
  Action action;
  Injection injection;
  Key key = Key::kNone;
  std::size_t turn = 0;
};

std::ostream& operator<<(std::ostream& out, const Case& tried) {
  return out << "action " << static_cast<int>(tried.action) << " fault "
             << static_cast<int>(tried.injection.fault) << " at " << tried.injection.at
             << (tried.injection.forever ? " and on" : "") << ", key " << static_cast<int>(tried.key)
             << " in turn " << tried.turn;
}

class FaultSweep : public DialogTest {
 protected:
  FaultSweep() {
    std::vector<sample::FileRow> rows;
    for (int id = 1; id <= kFiles; ++id) {
      rows.push_back(Row(id, 1, "003", "C:\\Data\\" + std::to_string(id) + ".doc"));
    }
    MakeCatalog(rows);
  }

  // Tries one case on a dialog of its own. Whether the place of its fault or its key was reached.
  bool Try(const Case& tried) {
    std::ostringstream name;
    name << tried;
    SCOPED_TRACE(name.str());
    const bool marksAtFirst = tried.action >= Action::kUpdate;
    catalog->Execute(marksAtFirst ? "UPDATE Catalog SET Restore = 1" : "UPDATE Catalog SET Restore = 0");
    m_injection = {};
    engine::Workspace::Backends backends;
    backends.sqlite = std::make_unique<FaultyBackend>(
        engine::sqlite::MakeSqliteBackend(std::chrono::milliseconds(50)), m_injection);
    engine::Workspace faulty(std::move(backends));
    dialog::frmRestore dialog(platform.Get(), faulty);
    dialog.parameters.DBName = catalog->Path();
    std::size_t commenced = 0;
    dialog.CommenceRestore = [&] { ++commenced; };
    FormControls& controls = dialog.Controls();
    desktop.messages.clear();
    desktop.answers.assign(20, platform::kAnswerYes);
    Prepare(tried.action, controls);

    m_injection = tried.injection;
    bool pressed = false;
    desktop.doEventsCount = 0;
    desktop.onDoEvents = [&] {
      if (desktop.doEventsCount != tried.turn || pressed) return;
      pressed = true;
      if (tried.key == Key::kCancel) controls.cmdRestore[kCancel].UserClick();
      if (tried.key == Key::kClose) controls.form.UserClose();
      if (tried.key == Key::kEscape) controls.form.UserKey(controls::Key::kEscape);
    };
    Start(tried.action, controls);
    desktop.onDoEvents = nullptr;
    const bool reached =
        pressed || (tried.injection.fault != Fault::kNone && m_injection.seen >= tried.injection.at);
    m_injection = {};
    Judge(tried, controls, commenced);
    desktop.messages.clear();
    if (controls.form.IsOpen()) controls.form.Unload();
    desktop.messages.clear();
    return reached;
  }

  // Ticks files 2 to 6, or takes their ticks off the list.
  void Prepare(Action action, FormControls& controls) {
    switch (action) {
      case Action::kApply:
        controls.tvwSets.UserClickNode(NodeOf(controls.tvwSets, "1 003"));
        for (int id = 2; id <= 6; ++id) {
          controls.tvwDetails.UserCheck(NodeOf(controls.tvwDetails, std::to_string(id) + ".doc"), true);
        }
        break;
      case Action::kSearchApply:
        controls.tbsOptions.UserSelect(2);
        controls.cboMask.UserType(".doc");
        controls.cmdSearch[kFind].UserClick();
        ASSERT_EQ(controls.asSearch.Count(), std::size_t{kFiles});
        for (std::size_t i = 1; i <= kFiles; ++i) {
          const auto id = controls.asSearch.At(i).name[8];
          controls.asSearch.UserTick(i, id >= '2' && id <= '6');
        }
        break;
      case Action::kAutoSelect:
        controls.tbsOptions.UserSelect(3);
        controls.chk2.SetValue(0);
        Tick(controls.asFiles, ".doc");
        break;
      default:
        controls.cmdRestore[kRefresh].UserClick();
        ASSERT_EQ(controls.asRestoreList.Count(), std::size_t{kFiles});
        for (int id = 2; id <= 6 && action == Action::kUpdate; ++id) {
          Tick(controls.asRestoreList, "C:\\Data\\" + std::to_string(id) + ".doc", false);
        }
    }
  }

  static void Start(Action action, FormControls& controls) {
    switch (action) {
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

  bool Reported(std::string_view start) const {
    for (const auto& message : desktop.messages) {
      if (message.title.starts_with(start) && message.style == platform::kExclamation) return true;
    }
    return false;
  }
  std::size_t Asked() const {
    return static_cast<std::size_t>(
        std::count_if(desktop.messages.begin(), desktop.messages.end(),
                      [](const auto& one) { return one.title == "Clear Selection?"; }));
  }
  std::size_t CountedAsNotMarked() const {
    std::size_t count = 0;
    for (const auto& message : desktop.messages) {
      if (message.text.ends_with(" file(s) could not be marked.")) count += std::stoul(message.text);
    }
    return count;
  }
  static Ids Listed(const AutoSelect& list, bool ticked) {
    Ids ids;
    for (std::size_t i = 1; i <= list.Count(); ++i) {
      if (list.TickedAt(i) == ticked) ids.insert(list.At(i).name[8] - '0');
    }
    return ids;
  }

  void Judge(const Case& tried, FormControls& controls, std::size_t commenced) {
    const Ids marked = catalog->Marked();
    const Ids five{2, 3, 4, 5, 6}, all{1, 2, 3, 4, 5, 6, 7};
    const bool stops = tried.key != Key::kNone;
    if (!controls.form.IsOpen()) {
      if (tried.action == Action::kRestoreNow && !stops) {
        EXPECT_EQ(commenced, 1u);
        EXPECT_EQ(marked, all);
      } else if (commenced == 0) {
        // It was cancelled: the user was asked, and what could not be cleared was reported.
        EXPECT_TRUE(marked.empty() || Reported("CancelAll"));
        if (tried.action != Action::kApply) return;
        EXPECT_LE(Asked(), 1u);
      }
      return;
    }
    EXPECT_EQ(commenced, 0u);
    if (stops) {
      // A stop lists nothing; leaving does, so that its question is asked.
      desktop.answers.assign(2, platform::kAnswerNo);
      desktop.messages.clear();
      controls.cmdRestore[kCancel].UserClick();
      EXPECT_EQ(Asked(), marked.empty() ? 0u : 1u);
      if (marked.empty()) {
        EXPECT_FALSE(controls.form.IsOpen());
        return;
      }
    }
    const Ids ticked = Listed(controls.asRestoreList, true), unticked = Listed(controls.asRestoreList, false);
    Ids shown = ticked;
    shown.insert(unticked.begin(), unticked.end());
    if (!Reported("ListCurrentSelections")) {
      EXPECT_EQ(shown, marked);
    }

    Ids missed;  // of what the user wanted
    switch (tried.action) {
      case Action::kApply:
      case Action::kSearchApply:
      case Action::kAutoSelect: {
        const Ids& wanted = tried.action == Action::kAutoSelect ? all : five;
        for (const std::int64_t id : marked) EXPECT_TRUE(wanted.contains(id)) << id << " was not ticked";
        for (const std::int64_t id : wanted) {
          if (!marked.contains(id)) missed.insert(id);
        }
        break;
      }
      case Action::kUpdate:
        EXPECT_TRUE(marked.contains(1) && marked.contains(7));
        for (const std::int64_t id : five) {
          if (marked.contains(id)) missed.insert(id);
        }
        if (!stops && !Reported("ListCurrentSelections")) {
          EXPECT_EQ(unticked, missed) << "unticked still";
        }
        break;
      default:
        EXPECT_TRUE(marked.empty() || stops || !desktop.messages.empty());
        return;
    }
    if (stops) return;
    // A listing that ended early is reported by itself; the rows that it did not give cannot be counted.
    const bool cutShort = tried.action == Action::kAutoSelect && Reported("ApplyAutoSelect");
    if (cutShort) {
      EXPECT_LE(CountedAsNotMarked(), missed.size());
    } else {
      EXPECT_EQ(CountedAsNotMarked(), missed.size());
    }
    if (!Reported("ListCurrentSelections")) {
      EXPECT_EQ(controls.cmdRestore[kRestoreNow].Enabled(), !marked.empty());
    }
  }

  Injection m_injection;
};

TEST_F(FaultSweep, ScreenAndCatalogAgreeHoweverMarkingEnds) {
  constexpr std::size_t kMax = 60;  // places of one kind; no action has as many
  std::size_t tried = 0;
  for (int action = 0; action <= static_cast<int>(Action::kRestoreNow); ++action) {
    for (const Fault fault : {Fault::kReach, Fault::kOpen, Fault::kRow, Fault::kMark, Fault::kCommit}) {
      for (const bool forever : {false, true}) {
        std::size_t at = 1;
        while (at < kMax && Try({static_cast<Action>(action), {fault, at, forever}})) ++at, ++tried;
        EXPECT_LT(at, kMax);
        if (HasFailure()) return;
      }
    }
    for (const Key key : {Key::kEscape, Key::kCancel, Key::kClose}) {
      std::size_t turn = 1;
      while (turn < kMax && Try({static_cast<Action>(action), {}, key, turn})) ++turn, ++tried;
      EXPECT_LT(turn, kMax);
      if (HasFailure()) return;
    }
  }
  std::printf("%zu faults and stops tried\n", tried);
  EXPECT_GT(tried, 300u);
}

}  // namespace
}  // namespace kxrestore::dialog_test
