// The whole dialog while memory, the database's memory or its files fail at one call, once or from then on:
// loading, choosing, marking in each way, searching, Update, Clear, Cancel and Restore Now. Whatever fails,
// the program lives on; the list shows what the catalog marks or a report says that something went wrong;
// every file that was ticked is marked or reported; nothing is marked that nobody ticked; and once nothing
// fails any more, Refresh shows the truth.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <random>

#include "engine/sqlite/sqlite_backend.h"
#include "tests/dialog/dialog_fixture.h"
#include "tests/faults/faults.h"
#include "tests/faults/told.h"

namespace kxrestore::faults {
namespace {

using namespace dialog_test;  // NOLINT: its buttons, rows and lists

constexpr int kFiles = 7;

enum class Step {
  kLoad,
  kChoose,
  kApply,
  kSearch,
  kLatest,
  kSearchApply,
  kAutoSelect,
  kUpdate,
  kClear,
  kCancel,
  kRestoreNow
};
constexpr const char* kStepNames[] = {"load",          "choose",      "Apply",  "search", "search the latest",
                                      "search, Apply", "auto-select", "Update", "Clear",  "Cancel",
                                      "Restore Now"};
constexpr const char* kFailingNames[] = {"nothing", "memory", "the database's memory", "its files",
                                         "a full disk"};

// Memory of the test's own does not fail.
class CalmDesktop : public platform::HeadlessDesktop {
 public:
  int MessageBox(const std::string& text, int style, const std::string& title) override {
    const Pause pause;
    return HeadlessDesktop::MessageBox(text, style, title);
  }
  void DoEvents() override {
    const Pause pause;
    HeadlessDesktop::DoEvents();
  }
};

class DialogFaults : public testing::Test {
 protected:
  DialogFaults() {
    std::vector<sample::FileRow> rows;
    for (int id = 1; id <= kFiles; ++id)
      rows.push_back(Row(id, 1, "003", "C:\\Data\\" + std::to_string(id) + ".doc"));
    m_catalog = std::make_unique<CatalogFile>(rows, Runs());
    m_platform.regional.now = {2026, 11, 16, 2, 25, 30};
  }

  static bool MarksAtFirst(Step step) { return step >= Step::kUpdate; }

  // One dialog with the fault in one step. How many calls of the kind the step made.
  long Try(Step step, Failing failing, long at, bool forever) {
    m_catalog->Execute(MarksAtFirst(step) ? "UPDATE Catalog SET Restore = 1"
                                          : "UPDATE Catalog SET Restore = 0");
    engine::Workspace::Backends backends;
    backends.sqlite = engine::sqlite::MakeSqliteBackend(std::chrono::milliseconds(50));
    engine::Workspace workspace(std::move(backends));
    const platform::Platform platform{m_desktop, m_platform.registry, m_platform.regional, m_platform.drives};
    dialog::frmRestore dialog(platform, workspace);
    dialog.parameters.DBName = m_catalog->Path();
    m_commenced = 0;
    dialog.CommenceRestore = [this] { ++m_commenced; };
    m_desktop.messages.clear();
    m_desktop.answers.assign(20, platform::kAnswerYes);

    long calls = 0;
    if (step == Step::kLoad) {
      Arm(failing, at, forever);
      m_thrown = !Passes([&] { dialog.Load(); });
      calls = Disarm();
    }
    FormControls& controls = dialog.Controls();
    if (step != Step::kLoad) {
      Prepare(step, controls);
      Arm(failing, at, forever);
      m_thrown = !Passes([&] { Start(step, controls); });
      calls = Disarm();
    }
    if (at > 0 && HasFailed()) Judge(step, failing, at, forever, controls);
    m_desktop.messages.clear();
    m_desktop.answers.assign(20, platform::kAnswerNo);
    if (controls.form.IsOpen()) controls.form.Unload();
    return calls;
  }

  template <class Body>
  static bool Passes(Body body) {
    try {
      body();
      return true;
    } catch (...) {
      return false;
    }
  }

  static controls::Node NodeOf(controls::Node node, std::string_view text) {
    for (; node; node = node.Next()) {
      if (node.Text() == text || node.Tag() == text) return node;
      if (const controls::Node below = NodeOf(node.Child(), text)) return below;
    }
    return {};
  }
  static void TickByNumber(AutoSelect& list, bool wanted) {
    for (std::size_t i = 1; i <= list.Count(); ++i) {
      const char id = list.At(i).name[8];
      list.UserTick(i, (id >= '2' && id <= '6') == wanted);
    }
  }

  // Ticks files 2 to 6, or takes their ticks off the list.
  void Prepare(Step step, FormControls& controls) {
    switch (step) {
      case Step::kApply:
        controls.tvwSets.UserClickNode(NodeOf(controls.tvwSets.FirstRoot(), "1 003"));
        for (int id = 2; id <= 6; ++id) {
          controls.tvwDetails.UserCheck(NodeOf(controls.tvwDetails.FirstRoot(), std::to_string(id) + ".doc"),
                                        true);
        }
        break;
      case Step::kSearch:
      case Step::kLatest:
      case Step::kSearchApply:
        controls.tbsOptions.UserSelect(2);
        controls.cboMask.UserType(".doc");
        controls.chk1.SetValue(step == Step::kLatest ? 1 : 0);
        if (step != Step::kSearchApply) break;
        controls.cmdSearch[kFind].UserClick();
        TickByNumber(controls.asSearch, true);
        break;
      case Step::kAutoSelect:
        controls.tbsOptions.UserSelect(3);
        controls.chk2.SetValue(0);
        for (std::size_t i = 1; i <= controls.asFiles.Count(); ++i) controls.asFiles.UserTick(i, true);
        break;
      case Step::kUpdate:
        controls.cmdRestore[kRefresh].UserClick();
        TickByNumber(controls.asRestoreList, false);
        break;
      case Step::kClear:
      case Step::kCancel:
      case Step::kRestoreNow:
        controls.cmdRestore[kRefresh].UserClick();
        break;
      default:
        break;
    }
  }

  static void Start(Step step, FormControls& controls) {
    switch (step) {
      case Step::kChoose:
        return controls.tvwSets.UserClickNode(NodeOf(controls.tvwSets.FirstRoot(), "1 003"));
      case Step::kApply:
        return controls.cmdAction[kApply].UserClick();
      case Step::kSearch:
      case Step::kLatest:
        return controls.cmdSearch[kFind].UserClick();
      case Step::kSearchApply:
        return controls.cmdSearch[kApplyFound].UserClick();
      case Step::kAutoSelect:
        return controls.cmdAuto[kApplyTypes].UserClick();
      case Step::kUpdate:
        return controls.cmdRestore[kUpdate].UserClick();
      case Step::kClear:
        return controls.cmdRestore[kClearList].UserClick();
      case Step::kCancel:
        return controls.cmdRestore[kCancel].UserClick();
      case Step::kRestoreNow:
        return controls.cmdRestore[kRestoreNow].UserClick();
      default:
        break;
    }
  }

  bool Reported() const {
    for (const auto& message : m_desktop.messages) {
      if (message.style == platform::kExclamation) return true;
    }
    return false;
  }
  static Ids Listed(const AutoSelect& list) {
    Ids ids;
    for (std::size_t i = 1; i <= list.Count(); ++i) ids.insert(list.At(i).name[8] - '0');
    return ids;
  }

  void Judge(Step step, Failing failing, long at, bool forever, FormControls& controls) {
    const Ids all{1, 2, 3, 4, 5, 6, 7}, five{2, 3, 4, 5, 6};
    const Ids marked = m_catalog->Marked();
    const bool reported = Reported();
    // Without any memory there is none for a report either.
    const bool canTell = !(forever && failing == Failing::kMemory);
    std::string wrong;
    const auto hold = [&](bool holds, const char* what) {
      if (!holds) wrong += std::string(wrong.empty() ? "" : "; ") + what;
    };

    hold(!m_thrown, "an exception came out of the event");
    if (controls.form.IsOpen()) {
      hold(Listed(controls.asRestoreList) == marked || reported || !canTell,
           "the list is not what is marked");
      hold(m_commenced == 0, "the host was called, but the dialog is open");
    } else if (step == Step::kRestoreNow) {
      hold(m_commenced == 1 && marked == all, "closed without having restored");
    } else {
      hold(step == Step::kCancel && (marked.empty() || reported || !canTell), "closed, and marks are left");
    }
    Ids mayBe, shouldBe;
    switch (step) {
      case Step::kApply:
      case Step::kSearchApply:
        mayBe = shouldBe = five;
        break;
      case Step::kAutoSelect:
        mayBe = shouldBe = all;
        break;
      case Step::kUpdate:
        mayBe = all;
        shouldBe = {1, 7};
        hold(marked == shouldBe || reported || !canTell,
             "marks are left that were taken off, and nobody was told");
        break;
      case Step::kClear:
      case Step::kCancel:
        mayBe = all;
        hold(marked.empty() || reported || !canTell, "marks are left, and nobody was told");
        break;
      case Step::kRestoreNow:
        mayBe = shouldBe = all;
        break;
      default:
        break;
    }
    for (const auto id : marked) hold(mayBe.contains(id), "a file is marked that nobody ticked");
    for (const auto id : shouldBe) {
      if (!marked.contains(id)) hold(reported || !canTell, "a file is not marked, and nobody was told");
    }

    if (controls.form.IsOpen()) {
      m_desktop.messages.clear();
      controls.cmdRestore[kRefresh].UserClick();
      const bool truth = Listed(controls.asRestoreList) == marked && !Reported();
      // A form that was not loaded to its end, and said so, knows no catalog.
      hold(truth || (step == Step::kLoad && Reported()), "Refresh does not show the truth");
    }
    Tell(std::string(kFailingNames[static_cast<int>(failing)]) + " fails " +
             (forever ? "from a call on" : "once") + ", " + kStepNames[static_cast<int>(step)],
         wrong.empty());
    std::string reports;
    for (const auto& message : m_desktop.messages) reports += "\n  " + message.title + ": " + message.text;
    EXPECT_TRUE(wrong.empty()) << kStepNames[static_cast<int>(step)] << ", "
                               << kFailingNames[static_cast<int>(failing)] << " at call " << at
                               << (forever ? " and on" : "") << ": " << wrong << reports;
  }

  // A sample of the calls of one step, or all of them.
  void Sweep(Failing failing, long sample) {
    for (int step = 0; step <= static_cast<int>(Step::kRestoreNow); ++step) {
      for (const bool forever : {false, true}) {
        const long calls = Try(static_cast<Step>(step), failing, 0, false);
        const long distance = std::max(1L, calls / sample / static_cast<long>(Times()));
        for (long at = 1 + static_cast<long>(Seed()) % distance; at <= calls; at += distance) {
          Try(static_cast<Step>(step), failing, at, forever);
          if (TooManyFailures()) return;
        }
      }
    }
  }
  static bool TooManyFailures() {
    const auto* const result = testing::UnitTest::GetInstance()->current_test_info()->result();
    return result->total_part_count() > 40;
  }

  platform::HeadlessPlatform m_platform;
  CalmDesktop m_desktop;
  std::unique_ptr<CatalogFile> m_catalog;
  int m_commenced = 0;
  bool m_thrown = false;
};

// Bytes of the file are others than were written. The dialog must live, and list what can be read or report.
TEST_F(DialogFaults, DamagedPages) {
  const std::string whole = m_catalog->Path() + "-whole";
  m_catalog->Execute("UPDATE Catalog SET Restore = ID IN (2, 3)");
  std::filesystem::copy_file(m_catalog->Path(), whole);
  const auto size = static_cast<unsigned>(std::filesystem::file_size(whole));
  for (unsigned i = 0; i < 30 * Times(); ++i) {
    std::filesystem::copy_file(whole, m_catalog->Path(), std::filesystem::copy_options::overwrite_existing);
    std::mt19937 random(Seed() * 100'000 + i);
    {
      std::fstream file(m_catalog->Path(), std::ios::in | std::ios::out | std::ios::binary);
      for (unsigned bytes = 1 + random() % 200, at = 100 + random() % (size - 400); bytes > 0;
           --bytes, ++at) {
        file.seekp(at);
        file.put(static_cast<char>(random()));
      }
    }
    const auto workspace = engine::MakeDefaultWorkspace();
    const platform::Platform platform{m_desktop, m_platform.registry, m_platform.regional, m_platform.drives};
    dialog::frmRestore dialog(platform, *workspace);
    dialog.parameters.DBName = m_catalog->Path();
    m_desktop.messages.clear();
    m_desktop.answers.assign(20, platform::kAnswerNo);
    FormControls& controls = dialog.Controls();
    if (const auto run = NodeOf(controls.tvwSets.FirstRoot(), "1 003")) controls.tvwSets.UserClickNode(run);
    controls.tbsOptions.UserSelect(2);
    controls.cboMask.UserType(".doc");
    controls.cmdSearch[kFind].UserClick();
    m_desktop.messages.clear();
    controls.cmdRestore[kRefresh].UserClick();
    std::optional<std::size_t> marked;  // as the database library sees it
    try {
      marked = m_catalog->Marked().size();
    } catch (const std::exception&) {
    }
    const bool held = Reported() || controls.asRestoreList.Count() == marked;
    EXPECT_TRUE(held) << "seed " << i << ": " << controls.asRestoreList.Count() << " listed, "
                      << (marked ? static_cast<int>(*marked) : -1) << " marked";
    Tell("bytes of the file are damaged", held);
    if (controls.form.IsOpen()) controls.form.Unload();
  }
  std::filesystem::remove(whole);
}

TEST_F(DialogFaults, Memory) {
  Sweep(Failing::kMemory, 12);
}
TEST_F(DialogFaults, MemoryOfTheDatabase) {
  Sweep(Failing::kDatabaseMemory, 12);
}
TEST_F(DialogFaults, Files) {
  Sweep(Failing::kFiles, 12);
}
TEST_F(DialogFaults, FullDisk) {
  Sweep(Failing::kFullDisk, 12);
}

}  // namespace
}  // namespace kxrestore::faults
