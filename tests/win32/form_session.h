// Runs a form modally and, meanwhile, a list of steps on the same thread, one after the other. Between two
// steps the message loop is idle, so what a step posted has been dealt with when the next one runs.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "controls/form.h"
#include "controls/splitters.h"
#include "controls/widgets.h"
#include "platform/win32/win32_platform.h"

namespace kxrestore::win32::test {

// A form with one control of each simple kind.
struct SampleForm {
  SampleForm();

  controls::Form form{"frmSample"};
  controls::PictureBox picTop{"picTop", &form};
  controls::TabStrip tabs{"tabs", &picTop, {{"&First", "1"}, {"Se&cond", "2"}, {"&Shared", "3"}}};
  controls::PictureBox panel{"samplePanel(0)", &picTop};
  controls::CommandButton apply{"sampleCmd(0)", &panel, "Appl&y"};
  controls::CommandButton shared{"sampleCmd(1)", &panel, "&Shared"};
  controls::CheckBox box{"chk", &panel, "&Only"};
  controls::Frame frame{"fr", &panel, "Look in"};
  controls::OptionButton one{"opt(0)", &frame, "&This Set"};
  controls::OptionButton all{"opt(1)", &frame, "A&ll Sets"};
  controls::ComboBox mask{"cbo", &panel};
  controls::TextBox text{"txt", &panel};
  controls::DriveListBox drive{"drv", &panel};
  controls::ProgressBar progress{"samplePrg", &panel};
  controls::Label label{"lbl", &form, "Label"};
  controls::splitbar bar{"bar", &form};
  controls::PictureBox picBottom{"picBottom", &form};
};

class FormSession {
 public:
  FormSession();
  ~FormSession();
  FormSession(const FormSession&) = delete;
  FormSession& operator=(const FormSession&) = delete;

  platform::Platform& Platform() { return m_platform.Get(); }

  FormSession& Then(std::function<void()> step);
  // A step that runs even while an earlier one is still running, waiting in a message box or letting messages
  // run.
  FormSession& Meanwhile(std::function<void()> step);
  // Shows the form; after the last step it is unloaded unless it already is. Returns whether all steps ran.
  bool Run(controls::Form& form);

  static HWND WindowOf(controls::Control& control);
  // Presses a key in the window that has the focus.
  static void Press(WPARAM key);
  static void PressAlt(wchar_t letter);
  static controls::Control* Focused();

 private:
  static void CALLBACK Tick(HWND window, UINT message, UINT_PTR id, DWORD time);
  void Next();

  Win32Platform m_platform;
  struct Step {
    std::function<void()> run;
    bool meanwhile;
  };
  std::deque<Step> m_steps;
  int m_running = 0;
  controls::Form* m_form = nullptr;
};

// A top-level window that stands for the host's.
class HostWindow {
 public:
  explicit HostWindow(bool enabled = true);
  ~HostWindow() { DestroyWindow(m_handle); }
  HostWindow(const HostWindow&) = delete;
  HostWindow& operator=(const HostWindow&) = delete;
  HWND Handle() const { return m_handle; }

 private:
  HWND m_handle;
};

// Answers the message box that is open with one of its buttons, and says what it showed.
std::string AnswerBox(int answer);

}  // namespace kxrestore::win32::test
