// The desktop as the dialog needs it. win32/ implements it with real windows, headless/ for tests and hosts
// without any.
#pragma once

#include <string>

namespace kxrestore::controls {
class Form;
}

namespace kxrestore::platform {

// Kinds of message boxes. A question has the buttons Yes and No, the others have OK.
enum class MessageStyle { kPlain, kWarning, kQuestion };
enum class Answer { kOk, kYes, kNo };

class Desktop {
 public:
  virtual ~Desktop() = default;

  // Shows the text and waits for an answer. An empty title is replaced by the component's name.
  virtual Answer MessageBox(const std::string& text, MessageStyle style, const std::string& title) = 0;

  // Processes pending window messages. Long walks call it once for each item, so it must cost next to nothing
  // when none are pending.
  virtual void DoEvents() = 0;
  // The same while the engine works or waits, between the items of a walk.
  virtual void DoEventsWhileWaiting() { DoEvents(); }

  // Creates the form's windows, disables the thread's other windows, and returns when the form has closed.
  // The form's windows are destroyed on return.
  virtual void ShowModal(controls::Form& form) = 0;
};

}  // namespace kxrestore::platform
