// Repeats every step that marks files or leaves the dialog: once for each call of the engine, which fails,
// and once for each run of pending messages, during which the user presses Esc, Cancel or the close box.
#include <sstream>

#include "engine/sqlite/sqlite_backend.h"
#include "tests/dialog/faulty_engine.h"
#include "tests/dialog/marking_steps.h"

namespace kxrestore::dialog_test {
namespace {

enum class Key { kNone, kEscape, kCancel, kClose };

class FaultSweep : public DialogTest {
 protected:
  FaultSweep() { MakeCatalog(SweepRows()); }

  std::size_t Asked() const {
    return static_cast<std::size_t>(
        std::count_if(desktop.messages.begin(), desktop.messages.end(),
                      [](const auto& one) { return one.title == "Clear Selection?"; }));
  }

  // Takes one step in a new dialog, with a fault, or with a key when messages run for the `turn`th time.
  // Returns whether the fault or the key occurred.
  bool Try(Step step, const Injection& injection, Key key = Key::kNone, std::size_t turn = 0) {
    std::ostringstream name;
    name << kStepNames[static_cast<int>(step)] << ", fault " << static_cast<int>(injection.fault) << " at "
         << injection.at << (injection.forever ? " and on" : "") << ", key " << static_cast<int>(key)
         << " in turn " << turn;
    SCOPED_TRACE(name.str());
    catalog->Execute(MarksBefore(step));
    Injection current;
    const FaultyEngine faulty(engine::sqlite::MakeSqliteBackend(std::chrono::milliseconds(50)), current);
    dialog::frmRestore dialog(platform.Get(), *faulty.workspace);
    dialog.parameters.DBName = catalog->Path();
    std::size_t commenced = 0;
    dialog.CommenceRestore = [&] { ++commenced; };
    FormControls& controls = dialog.Controls();
    desktop.answers.assign(20, platform::Answer::kYes);
    Prepare(step, controls);

    desktop.messages.clear();
    current = injection;
    bool pressed = false;
    desktop.doEventsCount = 0;
    desktop.onDoEvents = [&] {
      if (desktop.doEventsCount != turn || std::exchange(pressed, true)) return;
      if (key == Key::kCancel) controls.cmdRestore[kCancel].UserClick();
      if (key == Key::kClose) controls.form.UserClose();
      if (key == Key::kEscape) controls.form.UserKey(controls::Key::kEscape);
    };
    Start(step, controls);
    desktop.onDoEvents = nullptr;
    const bool reached = pressed || (injection.fault != Fault::kNone && current.seen >= injection.at);
    current = {};
    Ending end{.marked = catalog->Marked(), .commenced = commenced, .messages = desktop.messages};
    end.stopped = key != Key::kNone;
    if (end.stopped && controls.form.IsOpen()) {
      // A stopped step does not list the marks; Cancel does, and asks before it clears them.
      desktop.answers.assign(2, platform::Answer::kNo);
      desktop.messages.clear();
      controls.cmdRestore[kCancel].UserClick();
      EXPECT_EQ(Asked(), end.marked.empty() ? 0u : 1u);
      EXPECT_EQ(controls.form.IsOpen(), !end.marked.empty());
    }
    EXPECT_LE(Asked(), 1u);
    EXPECT_EQ(Wrong(step, controls, end), "");
    if (controls.form.IsOpen()) controls.form.Unload();
    desktop.messages.clear();
    return reached;
  }
};

TEST_F(FaultSweep, ScreenAndCatalogAgreeHoweverMarkingEnds) {
  constexpr std::size_t kMax = 60;  // more than any step has calls of one kind
  std::size_t tried = 0;
  const auto sweep = [&](const auto& tryAt) {
    std::size_t at = 1;
    while (at < kMax && !HasFailure() && tryAt(at)) ++at, ++tried;
    EXPECT_LT(at, kMax);
  };
  for (auto number = static_cast<std::size_t>(Step::kApply); number < kSteps && !HasFailure(); ++number) {
    const auto step = static_cast<Step>(number);
    for (const Fault fault : {Fault::kReach, Fault::kOpen, Fault::kRow, Fault::kMark, Fault::kCommit}) {
      for (const bool forever : {false, true}) {
        sweep([&](std::size_t at) { return Try(step, {fault, at, forever}); });
      }
    }
    for (const Key key : {Key::kEscape, Key::kCancel, Key::kClose}) {
      sweep([&](std::size_t turn) { return Try(step, {}, key, turn); });
    }
  }
  std::printf("%zu faults and stops tried\n", tried);
  EXPECT_GT(tried, 300u);
}

}  // namespace
}  // namespace kxrestore::dialog_test
