// A desktop without a user: message boxes are answered from a list and logged, and a function plays the user
// while a form is shown.
#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/desktop.h"

namespace kxrestore::platform {

class HeadlessDesktop : public Desktop {
 public:
  struct Message {
    std::string text;
    MessageStyle style = MessageStyle::kPlain;
    std::string title;
    std::optional<Answer> answer;  // none: a question without an answer
  };

  // A message is answered with OK, a question with the next of `answers`. An unexpected question throws
  // std::logic_error.
  Answer MessageBox(const std::string& text, MessageStyle style, const std::string& title) override;
  std::deque<Answer> answers;
  std::vector<Message> messages;                  // as displayed
  std::function<void(const Message&)> onMessage;  // before it is answered

  void DoEvents() override;
  void DoEventsWhileWaiting() override;
  std::size_t doEventsCount = 0;     // both ways
  std::size_t walkItems = 0;         // without those while the engine works, which come as time passes
  bool engineWorks = false;          // while they run
  std::function<void()> onDoEvents;  // what pending messages do; it is not entered again from inside itself

  std::int64_t Milliseconds() const override { return milliseconds; }
  std::int64_t milliseconds = 0;  // the clock, set by the test

  void CopyText(const std::string& text) override { clipboard = text; }
  std::string clipboard;
  // Answered by the next of `days`; cancelled without one.
  std::optional<CivilTime> AskDay(const std::string& question, const CivilTime& first,
                                  const CivilTime& last) override;
  std::deque<CivilTime> days;
  std::string dayAsked;  // the question with the days to choose among

  void ShowBusy(controls::Form& form, const std::string& text) override;
  void HideBusy() override { busy.clear(); }
  std::string busy;                             // what is shown; empty for nothing
  std::function<void(controls::Form&)> onBusy;  // after it is shown

  // Runs `user`, then closes the form as its close box does. Throws std::logic_error if the form stays open.
  void ShowModal(controls::Form& form) override;
  std::function<void(controls::Form&)> user;
  std::size_t showCount = 0;

 private:
  bool m_inDoEvents = false;
};

}  // namespace kxrestore::platform
