// The progress of a user action. Every walk and every wait for the database that takes longer than a second
// is shown in the same way in the place of the help text: what is being done, how much of how much, the
// elapsed and the remaining time, and that Esc stops it. The button on the task bar shows the same bar. The
// display disappears when the action ends; a closing message stays until the next action. Before the form has
// a window, the desktop shows the same in a small window after two seconds.
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

  // A user action, including the events that arrive while it runs.
  void BeginAction();
  void EndAction();

  // A walk, or a long statement. At its end the display returns to the enclosing one.
  class Walk {
   public:
    // `total`: the number of items, 0 when unknown.
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

  // One more item is done. Reads the clock only now and then.
  void Step() {
    ++m_walk.done;
    if (--m_untilLook <= 0) Look();
  }
  void SetDone(std::int64_t done) { m_walk.done = done; }
  // Updates the display during an item or before the first.
  void Wait() { Look(); }
  // Excludes time that the user took for an answer.
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
