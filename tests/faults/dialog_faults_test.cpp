// The whole dialog while memory, the database's memory or its files fail at one call, once or from that call
// on. The program keeps running, and the lists agree with the catalog or the dialog reports an error. After
// the faults have ended, Refresh shows what the catalog has.
#include <filesystem>
#include <fstream>
#include <random>

#include "engine/sqlite/sqlite_backend.h"
#include "tests/dialog/marking_steps.h"
#include "tests/faults/faults.h"
#include "tests/faults/told.h"

namespace kxrestore::faults {
namespace {

using namespace dialog_test;  // NOLINT: its fixture and steps

// The desktop's own memory does not fail.
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
  // Whether the body throws nothing.
  template <class Body>
  static bool Passes(Body body) {
    try {
      body();
      return true;
    } catch (...) {
      return false;
    }
  }

  // Does a step with the fault in a new dialog. Returns the number of calls of the failing kind in the step.
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
      if (!passes) wrong += "; the event handler threw an exception";
      if (controls.form.IsOpen()) {
        m_desktop.messages.clear();
        controls.cmdRestore[kRefresh].UserClick();
        // A form that reports an error while it loads may have no catalog.
        const bool reported = (end.Reported() && end.told == Told::kSomehow) || !m_desktop.messages.empty();
        if (!(loads && reported) &&
            (FilesIn(controls.asRestoreList) != end.marked || !m_desktop.messages.empty())) {
          wrong += "; Refresh shows other files than the catalog marks";
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

  CatalogFile m_catalog{SweepRows(), Runs()};
  platform::HeadlessPlatform m_platform;
  CalmDesktop m_desktop;
  const platform::Platform m_machine{m_desktop, m_platform.registry, m_platform.regional, m_platform.drives};
};

// Some bytes of the file change. The dialog must keep running, and list the readable rows or report the
// damage.
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
    std::size_t marked = 0;  // according to SQLite
    const bool readable = Passes([&] { marked = m_catalog.Marked().size(); });
    const bool held = !m_desktop.messages.empty() || (readable && controls.asRestoreList.Count() == marked);
    EXPECT_TRUE(held) << "seed " << i << ": " << controls.asRestoreList.Count() << " listed, " << marked
                      << " marked";
    Tell("bytes of the file are damaged", held);
    if (controls.form.IsOpen()) controls.form.Unload();
  }
  std::filesystem::remove(whole);
}

class DialogFaultsInSteps : public DialogFaults, public testing::WithParamInterface<Failing> {};

TEST_P(DialogFaultsInSteps, AtOneCall) {
  for (std::size_t number = 0; number < kSteps; ++number) {
    const auto step = static_cast<Step>(number);
    Sweep(12, [&](long at, bool forever) { return Try(step, GetParam(), at, forever); });
  }
}

INSTANTIATE_TEST_SUITE_P(Kinds, DialogFaultsInSteps,
                         testing::Values(Failing::kMemory, Failing::kDatabaseMemory, Failing::kFiles,
                                         Failing::kFullDisk));

}  // namespace
}  // namespace kxrestore::faults
