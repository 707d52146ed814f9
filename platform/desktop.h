// The desktop as the dialog needs it. win32/ implements it with real windows, headless/ for tests and hosts
// without any.
#pragma once

#include <string>

namespace kxrestore::controls {
class Form;
}

namespace kxrestore::platform {

// Styles and answers of message boxes, as Windows numbers them.
inline constexpr int kOkOnly = 0;
inline constexpr int kYesNo = 4;
inline constexpr int kQuestion = 32;
inline constexpr int kExclamation = 48;
inline constexpr int kAnswerOk = 1;
inline constexpr int kAnswerYes = 6;
inline constexpr int kAnswerNo = 7;

class Desktop {
 public:
  virtual ~Desktop() = default;

  // Shows the text and waits for an answer. An empty title stands for the component's name.
  virtual int MessageBox(const std::string& text, int style, const std::string& title) = 0;

  // Lets pending window messages run. Called once an item by long walks, so it must be next to free when
  // there is nothing to do.
  virtual void DoEvents() = 0;
  // The same while the engine works or waits, between the items of a walk.
  virtual void DoEventsWhileWaiting() { DoEvents(); }

  // Makes the form's windows, disables the thread's other windows, and returns when the form is no longer
  // open. The form's windows are gone on return.
  virtual void ShowModal(controls::Form& form) = 0;
};

}  // namespace kxrestore::platform
