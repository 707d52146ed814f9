// The whole dialog while memory, the database's memory or its files fail at one call, once or from then on.
// Whatever fails, the program lives on, the screen tells the truth or a report says that something went
// wrong, and once nothing fails any more, Refresh shows the truth.
#include <filesystem>
#include <fstream>
#include <random>

#include "engine/sqlite/sqlite_backend.h"
#include "tests/dialog/marking_steps.h"
#include "tests/faults/faults.h"
#include "tests/faults/told.h"

namespace kxrestore::faults {
namespace {

using namespace dialog_test;  // NOLINT: its steps, buttons and lists

// Memory of the test's own does not fail.
class CalmDesktop : public platform::HeadlessDesktop {
 public:
  platform::Answer MessageBox(const std::string& text, platform::MessageStyle style,
                              const std::string& title) override {
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
  // Runs a body; whether no exception came out of it.
  template <class Body>
  static bool Passes(Body body) {
    try {
      body();
      return true;
    } catch (...) {
      return false;
    }
  }

  // One dialog with the fault in one step. How many calls of the kind the step made.
  long Try(Step step, Failing failing, long at, bool forever) {
    m_catalog.Execute(MarksBefore(step));
    engine::Workspace::Backends backends;
    backends.sqlite = engine::sqlite::MakeSqliteBackend(std::chrono::milliseconds(50));
    engine::Workspace workspace(std::move(backends));
    dialog::frmRestore dialog(m_machine, workspace);
    dialog.parameters.DBName = m_catalog.Path();
    std::size_t commenced = 0;
    dialog.CommenceRestore = [&] { ++commenced; };
    m_desktop.messages.clear();
    m_desktop.answers.assign(20, platform::Answer::kYes);
    const bool loads = step == Step::kLoad;
    if (!loads) Prepare(step, dialog.Controls());
    Arm(failing, at, forever);
    const bool passes = Passes([&] { loads ? dialog.Load() : Start(step, dialog.Controls()); });
    const long calls = Disarm();
    FormControls& controls = dialog.Controls();
    if (at > 0 && HasFailed()) {
      const Ending end{.marked = m_catalog.Marked(),
                       .commenced = commenced,
                       .messages = m_desktop.messages,
                       .told = forever && failing == Failing::kMemory ? Told::kNoMemory : Told::kSomehow};
      std::string wrong = Wrong(step, controls, end);
      if (!passes) wrong += "; an exception came out of the event";
      if (controls.form.IsOpen()) {
        m_desktop.messages.clear();
        controls.cmdRestore[kRefresh].UserClick();
        // A form that was not loaded to its end, and says so, knows no catalog.
        const bool says = end.Reported() && end.told == Told::kSomehow;
        const bool holds = loads && (says || !m_desktop.messages.empty());
        if (!holds && (FilesIn(controls.asRestoreList) != end.marked || !m_desktop.messages.empty())) {
          wrong += "; Refresh does not show the truth";
        }
      }
      const std::string what = std::string(NameOf(failing)) + " fails " +
                               (forever ? "from a call on, " : "once, ") + kStepNames[static_cast<int>(step)];
      Tell(what, wrong.empty());
      EXPECT_EQ(wrong, "") << what << ", call " << at;
    }
    m_desktop.answers.assign(20, platform::Answer::kNo);
    if (controls.form.IsOpen()) controls.form.Unload();
    return calls;
  }

  void SweepSteps(Failing failing) {
    for (std::size_t number = 0; number < kSteps; ++number) {
      const auto step = static_cast<Step>(number);
      Sweep(12, [&](long at, bool forever) { return Try(step, failing, at, forever); });
    }
  }

  CatalogFile m_catalog{SweepRows(), Runs()};
  platform::HeadlessPlatform m_platform;
  CalmDesktop m_desktop;
  const platform::Platform m_machine{m_desktop, m_platform.registry, m_platform.regional, m_platform.drives};
};

// Bytes of the file are others than were written. The dialog must live, and list what can be read or report.
TEST_F(DialogFaults, DamagedPages) {
  const std::string whole = m_catalog.Path() + "-whole";
  m_catalog.Execute("UPDATE Catalog SET Restore = ID IN (2, 3)");
  std::filesystem::copy_file(m_catalog.Path(), whole);
  const auto size = static_cast<unsigned>(std::filesystem::file_size(whole));
  for (unsigned i = 0; i < 30 * Times(); ++i) {
    std::filesystem::copy_file(whole, m_catalog.Path(), std::filesystem::copy_options::overwrite_existing);
    std::mt19937 random(Seed() * 100'000 + i);
    {
      std::fstream file(m_catalog.Path(), std::ios::in | std::ios::out | std::ios::binary);
      for (unsigned bytes = 1 + random() % 200, at = 100 + random() % (size - 400); bytes > 0;
           --bytes, ++at) {
        file.seekp(at);
        file.put(static_cast<char>(random()));
      }
    }
    const auto workspace = engine::MakeDefaultWorkspace();
    dialog::frmRestore dialog(m_machine, *workspace);
    dialog.parameters.DBName = m_catalog.Path();
    m_desktop.answers.assign(20, platform::Answer::kNo);
    FormControls& controls = dialog.Controls();
    if (NodeFrom(controls.tvwSets.FirstRoot(), "1 003")) Start(Step::kChoose, controls);
    Prepare(Step::kSearchApply, controls);
    m_desktop.messages.clear();
    controls.cmdRestore[kRefresh].UserClick();
    std::size_t marked = 0;  // as the database library sees it
    const bool readable = Passes([&] { marked = m_catalog.Marked().size(); });
    const bool held = !m_desktop.messages.empty() || (readable && controls.asRestoreList.Count() == marked);
    EXPECT_TRUE(held) << "seed " << i << ": " << controls.asRestoreList.Count() << " listed, " << marked
                      << " marked";
    Tell("bytes of the file are damaged", held);
    if (controls.form.IsOpen()) controls.form.Unload();
  }
  std::filesystem::remove(whole);
}

TEST_F(DialogFaults, Memory) {
  SweepSteps(Failing::kMemory);
}
TEST_F(DialogFaults, MemoryOfTheDatabase) {
  SweepSteps(Failing::kDatabaseMemory);
}
TEST_F(DialogFaults, Files) {
  SweepSteps(Failing::kFiles);
}
TEST_F(DialogFaults, FullDisk) {
  SweepSteps(Failing::kFullDisk);
}

}  // namespace
}  // namespace kxrestore::faults
