// The desktop that the dialog runs on. win32/ implements it with windows, headless/ without.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/regional.h"

namespace kxrestore::controls {
class Form;
}

namespace kxrestore::platform {

// Kinds of message boxes. A question has the buttons Yes and No, the others have OK.
enum class MessageStyle { kPlain, kWarning, kQuestion };
enum class Answer { kOk, kYes, kNo };

struct WindowSize {
  int width = 0, height = 0;
};

class Desktop {
 public:
  virtual ~Desktop() = default;

  // Shows the text and waits for an answer. An empty title is replaced by the component's name.
  virtual Answer MessageBox(const std::string& text, MessageStyle style, const std::string& title) = 0;

  // Processes pending window messages. Walks call it once per item, so it must be cheap when none are
  // pending.
  virtual void DoEvents() = 0;
  // The same while the engine works or waits, between the items of a walk.
  virtual void DoEventsWhileWaiting() { DoEvents(); }

  // Puts a text onto the clipboard.
  virtual void CopyText(const std::string& text) = 0;
  // Asks for a day from `first` to `last`; nothing when the user cancels.
  virtual std::optional<CivilTime> AskDay(const std::string& question, const CivilTime& first,
                                          const CivilTime& last) = 0;
  // The initial outer size in twips of a window with this designed size; the same without a screen.
  virtual WindowSize SizeToStartWith(const WindowSize& designed) const { return designed; }

  // Shows the progress of a form that has no window yet, with a button that does what Esc does in the form.
  // Called again when the text changes.
  virtual void ShowBusy(controls::Form& form, const std::string& text) = 0;
  virtual void HideBusy() = 0;

  // A monotonic clock.
  virtual std::int64_t Milliseconds() const = 0;

  // Creates the form's windows, disables the thread's other windows, and returns when the form has closed.
  // The form's windows are destroyed on return.
  virtual void ShowModal(controls::Form& form) = 0;
};

}  // namespace kxrestore::platform
