// The desktop service: modal forms, messages, message boxes, the question for a day, the clipboard.
#include <stdexcept>

#include "base/error.h"
#include "tests/win32/form_fixture.h"

namespace kxrestore::win32::test {

namespace {

int TakeQuit() {
  MSG message{};
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
    if (message.message == WM_QUIT) return static_cast<int>(message.wParam);
    DispatchMessageW(&message);
  }
  return -1;
}

int g_texts = 0;
LRESULT CALLBACK CountTexts(HWND window, UINT message, WPARAM wide, LPARAM extra, UINT_PTR, DWORD_PTR) {
  if (message == WM_SETTEXT) ++g_texts;
  return DefSubclassProc(window, message, wide, extra);
}

// A top-level window in place of the host's.
struct HostWindow {
  ~HostWindow() { DestroyWindow(handle); }
  const HWND handle = CreateWindowExW(0, L"STATIC", L"Host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 40, 40, 500,
                                      400, nullptr, nullptr, nullptr, nullptr);
};

}  // namespace

class Desktop : public FormTest {
 protected:
  Desktop() { EnableWindow(disabledBefore.handle, FALSE); }
  HostWindow disabledBefore, host;
};

TEST_F(Desktop, TheHostsWindowsAreDisabledWhileTheFormShows) {
  HWND form = nullptr;
  Run({[&] {
         form = WindowOf(ui.form);
         EXPECT_FALSE(IsWindowEnabled(host.handle));
         EXPECT_FALSE(IsWindowEnabled(disabledBefore.handle));
         EXPECT_EQ(GetWindow(form, GW_OWNER), nullptr);
         EXPECT_EQ(GetActiveWindow(), form);
         TheDesktop().ShowModal(ui.form);  // it is already shown
         EXPECT_TRUE(IsWindow(form));
         SetForegroundWindow(host.handle);
         SendMessageW(form, WM_ACTIVATEAPP, TRUE, 0);
       },
       [&] { EXPECT_EQ(GetActiveWindow(), form) << "activating the host activates the form"; }});
  EXPECT_TRUE(IsWindowEnabled(host.handle));
  EXPECT_FALSE(IsWindowEnabled(disabledBefore.handle));
  EXPECT_FALSE(IsWindow(form));
  EXPECT_EQ(ui.apply.GetPeer(), nullptr);
  EXPECT_EQ(GetActiveWindow(), host.handle);
  TheDesktop().ShowModal(ui.form);  // unloaded: nothing to show
  EXPECT_EQ(ui.form.GetPeer(), nullptr);
}

TEST_F(Desktop, AQuitMessageEndsTheLoopAndRemainsForTheHost) {
  int rows = 0;
  for (int code : {3, 7}) {  // the second round shows the form again
    bool stopped = false;
    ui.form.KeyPress = [&](controls::Key key) { stopped |= key == controls::Key::kEscape; };
    Run({[&] {
      PostQuitMessage(code);
      for (; code == 7 && rows < 10'000'000 && !stopped; ++rows) TheDesktop().DoEvents();
      EXPECT_EQ(stopped, code == 7);
    }});
    EXPECT_TRUE(ui.form.IsOpen());
    EXPECT_TRUE(IsWindowEnabled(host.handle));
    EXPECT_EQ(TakeQuit(), code);
  }
}

TEST_F(Desktop, AWalkUpdatesItsCaptionAtIntervalsAndTakesInput) {
  constexpr DWORD kLength = 500;  // milliseconds
  bool stopped = false, clickedMeanwhile = false;
  int row = 0;
  ui.form.KeyPress = [&](controls::Key) { stopped = true; };
  ui.shared.Click = [&] { clickedMeanwhile = true; };
  ui.apply.Click = [&] {
    const HWND label = WindowOf(ui.label);
    g_texts = 0;
    SetWindowSubclass(label, CountTexts, 99, 0);
    PostMessageW(WindowOf(ui.shared), BM_CLICK, 0, 0);
    const DWORD start = GetTickCount();
    DWORD milliseconds = 0;
    for (bool pressed = false; !stopped && milliseconds < 10 * kLength;) {
      ui.label.SetCaption("Loading " + std::to_string(++row));
      TheDesktop().DoEvents();
      milliseconds = GetTickCount() - start;
      if (milliseconds < kLength || std::exchange(pressed, true)) continue;
      PostMessageW(label, WM_KEYDOWN, VK_ESCAPE, 1);
    }
    EXPECT_GE(g_texts, 2);
    EXPECT_LE(g_texts, static_cast<int>(milliseconds / 100) + 1);
  };
  Run({[&] { Ask(ui.apply, BM_CLICK); },
       [&] { EXPECT_EQ(ShownBy(ui.label), "Loading " + std::to_string(row)); }});
  EXPECT_TRUE(clickedMeanwhile);
  EXPECT_TRUE(stopped);
  // With a window message for each row, about 10,000 rows would be reached.
  EXPECT_GT(row, 200'000);
}

TEST_F(Desktop, AnExceptionOfFormCodeIsReportedAndTheFormStaysOpen) {
  ui.apply.Click = [] { throw Error(35601, "Element not found"); };
  ui.label.MouseMove = [] { throw std::runtime_error("Unforeseen"); };
  Run({[&] {
         ExpectBox("KXRestore: (35601) Element not found");
         PostMessageW(WindowOf(ui.apply), BM_CLICK, 0, 0);
       },
       [&] {
         ExpectBox("KXRestore: Unforeseen");
         PostMessageW(WindowOf(ui.label), WM_MOUSEMOVE, 0, 0);
       },
       [&] {
         EXPECT_TRUE(ui.form.IsOpen());
         ExpectBox("Clear Selection? : Gr\u00FC\u00DF?", IDYES);
         EXPECT_EQ(TheDesktop().MessageBox("Gr\u00FC\u00DF?", platform::MessageStyle::kQuestion,
                                           "Clear Selection? "),
                   platform::Answer::kYes);
         ExpectBox("T\u240D: Two\r\nlines, a\u240D name [U+202E]fdp.exe");
         TheDesktop().MessageBox("Two\r\nlines, a\r name \u202Efdp.exe", platform::MessageStyle::kPlain,
                                 "T\r");
         ui.label.SetCaption("Set \u202E1");
       },
       [&] { EXPECT_EQ(ShownBy(ui.label), "Set [U+202E]1"); }});
}

TEST_F(Desktop, AWindowThatIsDestroyedEndsTheDialog) {
  Run({[&] { DestroyWindow(WindowOf(ui.form)); }});
  EXPECT_TRUE(IsWindowEnabled(host.handle));
  EXPECT_EQ(ui.apply.GetPeer(), nullptr);
}

UINT g_answer = 0;
SYSTEMTIME g_offered{};
// Answers the question for a day once its window exists.
void CALLBACK AnswerDay(HWND, UINT, UINT_PTR timer, DWORD) {
  const HWND dialog = FindWindowW(nullptr, L"State of a day");
  if (dialog == nullptr) return;
  KillTimer(nullptr, timer);
  const HWND day = FindWindowExW(dialog, nullptr, DATETIMEPICK_CLASSW, nullptr);
  driver::Ask(day, DTM_GETSYSTEMTIME, 0, &g_offered);
  SYSTEMTIME wanted{2026, 2, 0, 3};
  driver::Ask(day, DTM_SETSYSTEMTIME, GDT_VALID, &wanted);
  PostMessageW(dialog, WM_COMMAND, g_answer, 0);
}

TEST_F(Desktop, ADayIsAskedForInAWindowOfItsOwn) {
  const auto ask = [this](UINT answer) {
    g_answer = answer;
    SetTimer(nullptr, 0, 20, AnswerDay);
    return TheDesktop().AskDay("Which?", {2026, 1, 1}, {2026, 11, 16, 9, 30});
  };
  const auto day = ask(IDOK);
  ASSERT_TRUE(day);
  EXPECT_EQ(g_offered.wMonth * 100 + g_offered.wDay, 1116);
  EXPECT_EQ(day->year * 10000 + day->month * 100 + day->day, 20260203);
  EXPECT_FALSE(ask(IDCANCEL));
}

TEST_F(Desktop, AWindowStartsLargeEnoughAndFitsTheScreen) {
  const platform::WindowSize usual = TheDesktop().SizeToStartWith({100, 100});
  const platform::WindowSize all = TheDesktop().SizeToStartWith({1'000'000, 1'000'000});
  EXPECT_NEAR(usual.width, all.width * 0.7, 15);
  EXPECT_NEAR(usual.height, all.height * 0.7, 15);
  const platform::WindowSize designed = TheDesktop().SizeToStartWith({usual.width + 30, 100});
  EXPECT_EQ(designed.width, usual.width + 30);
}

TEST_F(Desktop, ATextIsCopiedWhole) {
  TheDesktop().CopyText("C:\\Gr\u00FCn");
  EXPECT_EQ(Clipboard(), "C:\\Gr\u00FCn");
}

}  // namespace kxrestore::win32::test
