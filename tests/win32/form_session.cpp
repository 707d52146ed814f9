#include "form_session.h"

#include <gtest/gtest.h>

#include "platform/win32/control_window.h"
#include "platform/win32/wide_text.h"

namespace kxrestore::win32::test {

namespace {

constexpr UINT kTickMilliseconds = 30;

FormSession* g_session = nullptr;

}  // namespace

SampleForm::SampleForm() {
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

FormSession::FormSession() : m_platform(GetModuleHandleW(nullptr)) {
  g_session = this;
}

FormSession::~FormSession() {
  g_session = nullptr;
}

FormSession& FormSession::Then(std::function<void()> step) {
  m_steps.push_back({std::move(step), false});
  return *this;
}

FormSession& FormSession::Meanwhile(std::function<void()> step) {
  m_steps.push_back({std::move(step), true});
  return *this;
}

bool FormSession::Run(controls::Form& form) {
  m_form = &form;
  const UINT_PTR timer = SetTimer(nullptr, 0, kTickMilliseconds, Tick);
  m_platform.Get().desktop.ShowModal(form);
  KillTimer(nullptr, timer);
  return m_steps.empty();
}

void CALLBACK FormSession::Tick(HWND /*window*/, UINT /*message*/, UINT_PTR /*id*/, DWORD /*time*/) {
  if (g_session != nullptr) g_session->Next();
}

void FormSession::Next() {
  if (m_running > 0 && (m_steps.empty() || !m_steps.front().meanwhile)) return;
  if (m_steps.empty()) {
    m_form->Unload();
    return;
  }
  const auto step = std::move(m_steps.front());
  m_steps.pop_front();
  ++m_running;
  step.run();
  --m_running;
}

HWND FormSession::WindowOf(controls::Control& control) {
  const ControlWindow* const window = ControlWindow::Of(control);
  return window == nullptr ? nullptr : window->Handle();
}

void FormSession::Press(WPARAM key) {
  PostMessageW(GetFocus(), WM_KEYDOWN, key, 1);
  PostMessageW(GetFocus(), WM_KEYUP, key, static_cast<LPARAM>(0xC0000001));
}

void FormSession::PressAlt(wchar_t letter) {
  PostMessageW(GetFocus(), WM_SYSCHAR, letter, 1 << 29);
}

controls::Control* FormSession::Focused() {
  ControlWindow* const window = ControlWindow::Enclosing(GetFocus());
  return window == nullptr ? nullptr : &window->GetControl();
}

HostWindow::HostWindow(bool enabled)
    : m_handle(CreateWindowExW(0, L"STATIC", L"Host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 40, 40, 500, 400,
                               nullptr, nullptr, nullptr, nullptr)) {
  if (!enabled) EnableWindow(m_handle, FALSE);
}

std::string AnswerBox(int answer) {
  const HWND box = FindWindowW(L"#32770", nullptr);
  if (box == nullptr) return "no message box";
  std::string shown = WindowText(box) + ": " + WindowText(GetDlgItem(box, 0xFFFF));
  PostMessageW(box, WM_COMMAND, answer, 0);
  return shown;
}

}  // namespace kxrestore::win32::test
