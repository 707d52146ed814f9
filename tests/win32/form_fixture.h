// A form with a control of each simple kind. It is shown modally while the steps of a test run on its thread.
#pragma once

#include <deque>
#include <functional>

#include "controls/form.h"
#include "controls/splitters.h"
#include "controls/widgets.h"
#include "platform/win32/win32_platform.h"
#include "tests/win32/vocabulary.h"

namespace kxrestore::win32::test {

struct SampleForm {
  SampleForm() {
    form.SetCaption("Sample");
    form.Move(0, 0, 9000, 7500);
    picTop.Move(0, 0, 8700, 4005);
    tabs.Move(0, 0, 8700, 3975);
    panel.Move(90, 360, 8505, 3510);
    apply.Move(6900, 120, 1335, 375);
    shared.Move(6900, 555, 1335, 375);
    box.Move(120, 120, 1900, 225);
    frame.Move(120, 420, 2325, 525);
    one.Move(120, 240, 1000, 225);
    all.Move(1200, 240, 1000, 225);
    all.SetValue(true);
    mask.Move(2600, 120, 2300, 315);
    text.Move(2600, 555, 2300, 315);
    drive.Move(2600, 990, 2300, 315);
    progress.Move(120, 1500, 4800, 255);
    bar.Move(0, 4005, 8700, 60);
    bar.AddControlTop(picTop);
    bar.AddControlBottom(picBottom);
    picBottom.Move(0, 4065, 8700, 1800);
    label.Move(120, 6000, 6000, 390);
  }

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

class FormTest : public testing::Test {
 protected:
  FormTest() { s_running = this; }
  ~FormTest() override { s_running = nullptr; }

  platform::Desktop& TheDesktop() { return m_platform.Get().desktop; }

  // Shows the form and takes the steps from a timer, so that the message loop runs between them. Then unloads
  // the form unless a step did.
  void Run(controls::Form& form, std::deque<std::function<void()>> steps) {
    m_form = &form;
    m_steps = std::move(steps);
    const UINT_PTR timer = SetTimer(nullptr, 0, 30, Tick);
    TheDesktop().ShowModal(form);
    KillTimer(nullptr, timer);
    EXPECT_TRUE(m_steps.empty());
    EXPECT_EQ(m_box, "") << "this message box did not appear";
  }
  void Run(std::deque<std::function<void()>> steps) { Run(ui.form, std::move(steps)); }

  // Processes posted messages within a step.
  void Wait() {
    for (int round = 0; round < 3; ++round) {
      Sleep(16);
      TheDesktop().DoEvents();
    }
  }
  // Expects the next message box to show this, "title: text", and answers it.
  void ExpectBox(const std::string& shown, int answer = IDOK) {
    m_box = shown;
    m_answer = answer;
  }

  static LRESULT Ask(controls::Control& control, UINT message, WPARAM wide = 0, LPARAM extra = 0) {
    return SendMessageW(WindowOf(control), message, wide, extra);
  }
  static std::string ShownBy(controls::Control& control) { return TextOf(WindowOf(control)); }
  // Presses a key in the window that has the focus. PressAlt presses a letter with Alt.
  void Press(WPARAM key) {
    PostKey(GetFocus(), key);
    Wait();
  }
  void PressAlt(wchar_t letter) {
    PostMessageW(GetFocus(), WM_SYSCHAR, letter, 1 << 29);
    Wait();
  }
  static std::string Focused() {
    ControlWindow* const window = ControlWindow::Enclosing(GetFocus());
    return window == nullptr ? "nothing" : window->GetControl().Name();
  }

  SampleForm ui;

 private:
  static void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD) {
    if (s_running != nullptr) s_running->Next();
  }
  void Next() {
    if (const HWND box = m_box.empty() ? nullptr : FindWindowW(L"#32770", nullptr)) {
      EXPECT_EQ(TextOf(box) + ": " + TextOf(GetDlgItem(box, 0xFFFF)), std::exchange(m_box, {}));
      EXPECT_EQ(GetWindow(box, GW_OWNER), WindowOf(ui.form));
      PostMessageW(box, WM_COMMAND, m_answer, 0);
    }
    if (m_busy || !m_box.empty()) return;
    if (m_steps.empty()) return m_form->Unload();
    const auto step = std::move(m_steps.front());
    m_steps.pop_front();
    m_busy = true;
    step();
    m_busy = false;
  }

  inline static FormTest* s_running = nullptr;
  Win32Platform m_platform{GetModuleHandleW(nullptr)};
  std::deque<std::function<void()>> m_steps;
  controls::Form* m_form = nullptr;
  std::string m_box;
  int m_answer = 0;
  bool m_busy = false;
};

}  // namespace kxrestore::win32::test
