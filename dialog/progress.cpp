#include "dialog/progress.h"

#include <algorithm>
#include <utility>

#include "base/phrases.h"
#include "platform/desktop.h"
#include "platform/regional.h"

namespace kxrestore::dialog {

namespace {

// Milliseconds.
constexpr std::int64_t kShownAfter = 1000;
constexpr std::int64_t kShownEvery = 100;
constexpr std::int64_t kBusyShownAfter = 2000;  // before the form has a window
constexpr std::int64_t kEstimatedAfter = 1000;
constexpr std::int64_t kQuickLook = 5;
constexpr std::int64_t kSlowLook = 50;
constexpr std::int64_t kMaxStride = 1024;

Phrase NameOf(Work work) {
  switch (work) {
    case Work::kWaiting:
      return Phrase::kWorkWaiting;
    case Work::kLoading:
      return Phrase::kWorkLoading;
    case Work::kMarking:
      return Phrase::kWorkMarking;
    case Work::kUnmarking:
      return Phrase::kWorkUnmarking;
    case Work::kClearing:
      return Phrase::kWorkClearing;
    case Work::kSearching:
      return Phrase::kWorkSearching;
    case Work::kListing:
      return Phrase::kWorkListing;
    case Work::kCounting:
      return Phrase::kWorkCounting;
    case Work::kExpanding:
      return Phrase::kWorkExpanding;
    case Work::kAdding:
      return Phrase::kWorkAdding;
  }
  return Phrase::kWorkWaiting;
}

std::string TwoDigits(std::int64_t number) {
  return (number < 10 ? "0" : "") + std::to_string(number);
}

}  // namespace

std::string Duration(std::int64_t seconds) {
  const std::int64_t minutes = seconds / 60;
  const std::string tail = TwoDigits(seconds % 60);
  if (minutes < 60) return std::to_string(minutes) + ":" + tail;
  return std::to_string(minutes / 60) + ":" + TwoDigits(minutes % 60) + ":" + tail;
}

Progress::Walk::Walk(Progress& progress, Work work, std::int64_t total)
    : m_progress(progress), m_before(progress.m_walk) {
  m_progress.m_walk = {work, 0, total, progress.Now()};
}

std::int64_t Progress::Now() const {
  return m_platform.desktop.Milliseconds();
}

void Progress::BeginAction() {
  Hide();
  m_inAction = true;
  m_walk = {};
  m_lastWord.clear();
  m_actionStarted = m_walk.started = m_lastLook = Now();
  m_stride = m_untilLook = 1;
}

void Progress::EndAction() {
  m_inAction = false;
  if (m_lastWord.empty()) return Hide();
  HideBusy();
  m_shown = true;
  m_ui.barProgress.SetVisible(false);
  m_ui.lblProgress.SetCaption(m_lastWord);
  m_ui.form.SetTaskProgress({});
  m_ui.picProgress.SetVisible(true);
  m_ui.picProgress.BringToFront();
}

void Progress::Hide() {
  if (!m_shown) return;
  m_shown = false;
  m_ui.picProgress.SetVisible(false);
  m_ui.form.SetTaskProgress({});
  HideBusy();
}

void Progress::HideBusy() {
  if (std::exchange(m_busyShown, false)) m_platform.desktop.HideBusy();
}

// Fast items are checked at a larger stride, so that reading the clock costs next to nothing.
void Progress::Look() {
  const std::int64_t now = Now();
  const std::int64_t gap = now - m_lastLook;
  if (gap < kQuickLook) {
    m_stride = std::min(2 * m_stride, kMaxStride);
  } else if (gap > kSlowLook) {
    m_stride = std::max<std::int64_t>(m_stride / 4, 1);
  }
  m_untilLook = m_stride;
  m_lastLook = now;
  if (!m_inAction || now - m_actionStarted < kShownAfter) return;
  if (!m_shown || now - m_lastShown >= kShownEvery) Show(now);
}

void Progress::LeaveOut(std::int64_t milliseconds) {
  m_actionStarted += milliseconds;
  m_walk.started += milliseconds;
  m_lastLook += milliseconds;
}

void Progress::Show(std::int64_t now) {
  m_lastShown = now;
  const bool known = m_walk.total > 0;
  const double done = static_cast<double>(std::min(m_walk.done, m_walk.total));
  const platform::Regional& regional = m_platform.regional;

  std::string text = Say(NameOf(m_walk.work));
  if (known) {
    text += "\r\n" + Say(Phrase::kDoneOf, {regional.Grouped(std::min(m_walk.done, m_walk.total)),
                                           regional.Grouped(m_walk.total)});
  } else if (m_walk.done > 0) {
    text += "\r\n" + regional.Grouped(m_walk.done);
  }
  text += "\r\n" + Times(now) + "\r\n" + Say(Phrase::kEscStops);
  if (!m_ui.form.HasBeenShown() && now - m_actionStarted >= kBusyShownAfter) {
    m_busyShown = true;
    m_platform.desktop.ShowBusy(m_ui.form, text);
  }
  m_ui.lblProgress.SetCaption(text);

  controls::ProgressBar& bar = m_ui.barProgress;
  bar.SetIndeterminate(!known);
  if (known) {
    bar.SetMax(static_cast<double>(m_walk.total));
    bar.SetValue(done);
  }
  m_ui.form.SetTaskProgress({true, known ? done / static_cast<double>(m_walk.total) : -1});
  if (m_shown) return;
  m_shown = true;
  bar.SetVisible(true);
  m_ui.picProgress.SetVisible(true);
  m_ui.picProgress.BringToFront();
}

std::string Progress::Times(std::int64_t now) const {
  const std::string elapsed = Duration((now - m_actionStarted) / 1000);
  const std::int64_t walked = now - m_walk.started;
  if (m_walk.done <= 0 || m_walk.done >= m_walk.total || walked < kEstimatedAfter) return elapsed;
  const double each = static_cast<double>(walked) / static_cast<double>(m_walk.done);
  const double rest = each * static_cast<double>(m_walk.total - m_walk.done) / 1000;
  return Say(Phrase::kElapsedAndRest, {elapsed, Duration(static_cast<std::int64_t>(rest + 0.999))});
}

}  // namespace kxrestore::dialog
