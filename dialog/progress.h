// How far the work goes that the user waits for. Every walk and every wait for the database that keeps a user
// action busy for longer than a second shows up in one place and one way: what is done, how much of how much,
// for how long and how much longer, and that Esc stops it; the task bar's button shows the same bar. The
// place is that of the help text. It is free again when the action has ended, or, where something was to be
// said at the end, with the next action. While the form has no window yet, the desktop shows the same in a
// small one, after two seconds.
#pragma once

#include <cstdint>
#include <string>

#include "dialog/form_controls.h"
#include "platform/platform.h"

namespace kxrestore::dialog {

enum class Work {
  kWaiting,  // for the database, outside of any walk
  kLoading,
  kMarking,
  kUnmarking,
  kClearing,
  kSearching,
  kListing,
  kCounting,
  kExpanding,
  kAdding,
};

class Progress {
 public:
  Progress(FormControls& controls, platform::Platform& platformOfHost)
      : m_ui(controls), m_platform(platformOfHost) {}
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // A user action, with everything that comes in while it runs.
  void BeginAction();
  void EndAction();

  // A walk, or a statement that may take long. What was under way before is so again at the end.
  class Walk {
   public:
    // `total`: the number of items, 0 where nobody knows it.
    Walk(Progress& progress, Work work, std::int64_t total = 0);
    ~Walk() { m_progress.m_walk = m_before; }
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;

   private:
    friend class Progress;
    Progress& m_progress;
    struct State {
      Work work = Work::kWaiting;
      std::int64_t done = 0, total = 0, started = 0;
    };
    State m_before;
  };

  // One more item. Looks at the clock now and then only.
  void Step() {
    ++m_walk.done;
    if (--m_untilLook <= 0) Look();
  }
  void SetDone(std::int64_t done) { m_walk.done = done; }
  // Time goes by inside an item, or before the first.
  void Wait() { Look(); }
  // Time that the user took for an answer, which is not the work's.
  void LeaveOut(std::int64_t milliseconds);
  std::int64_t Now() const;

  // Shown when the action has ended, until the next one.
  void SayAtEnd(std::string text) { m_lastWord = std::move(text); }

 private:
  void Look();
  void Show(std::int64_t now);
  void Hide();
  void HideBusy();
  std::string Times(std::int64_t now) const;

  FormControls& m_ui;
  platform::Platform& m_platform;
  Walk::State m_walk;
  std::int64_t m_actionStarted = 0;
  std::int64_t m_lastLook = 0, m_lastShown = 0;
  std::int64_t m_stride = 1, m_untilLook = 1;  // items between two looks at the clock
  bool m_inAction = false;
  bool m_shown = false;
  bool m_busyShown = false;
  std::string m_lastWord;
};

// Hours, minutes and seconds as in "1:02:03" and "0:07".
std::string Duration(std::int64_t seconds);

}  // namespace kxrestore::dialog
