#include "platform/headless/headless_desktop.h"

#include <stdexcept>

#include "base/shown_text.h"
#include "controls/form.h"

namespace kxrestore::platform {

Answer HeadlessDesktop::MessageBox(const std::string& text, MessageStyle style, const std::string& title) {
  Message& message = messages.emplace_back(Message{ShownLines(text), style, Shown(title), Answer::kOk});
  if (onMessage) onMessage(message);
  if (style != MessageStyle::kQuestion) return Answer::kOk;
  message.answer.reset();
  if (answers.empty()) throw std::logic_error("unexpected question \"" + text + "\"");
  const Answer answer = answers.front();
  message.answer = answer;
  answers.pop_front();
  return answer;
}

std::optional<CivilTime> HeadlessDesktop::AskDay(const std::string& question, const CivilTime& first,
                                                 const CivilTime& last) {
  const FixedRegional regional;
  dayAsked = question + " " + regional.ShortDate(first) + "-" + regional.ShortDate(last);
  if (days.empty()) return std::nullopt;
  const CivilTime day = days.front();
  days.pop_front();
  return day;
}

void HeadlessDesktop::ShowBusy(controls::Form& form, const std::string& text) {
  busy = text;
  if (onBusy) onBusy(form);
}

void HeadlessDesktop::DoEventsWhileWaiting() {
  if (m_inDoEvents) return;
  --walkItems;
  engineWorks = true;
  DoEvents();
  engineWorks = false;
}

void HeadlessDesktop::DoEvents() {
  ++doEventsCount;
  ++walkItems;
  if (!onDoEvents || m_inDoEvents) return;
  struct Guard {
    bool& flag;
    ~Guard() { flag = false; }
  } guard{m_inDoEvents};
  m_inDoEvents = true;
  onDoEvents();
}

void HeadlessDesktop::ShowModal(controls::Form& form) {
  ++showCount;
  form.UserShown();
  if (user) user(form);
  if (form.IsOpen()) form.UserClose();
  if (form.IsOpen()) throw std::logic_error("the form \"" + form.Caption() + "\" cannot be closed");
}

}  // namespace kxrestore::platform
