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

}  // namespace

class Desktop : public FormTest {
 protected:
  HostWindow disabledBefore{false}, host;
};

TEST_F(Desktop, TheHostsWindowsAreDisabledWhileTheFormShows) {
  HWND form = nullptr;
  Run({[&] {
         form = WindowOf(ui.form);
         EXPECT_FALSE(IsWindowEnabled(host.Handle()));
         EXPECT_FALSE(IsWindowEnabled(disabledBefore.Handle()));
         EXPECT_EQ(GetWindow(form, GW_OWNER), nullptr);
         EXPECT_EQ(GetActiveWindow(), form);
         TheDesktop().ShowModal(ui.form);  // is showing already
         EXPECT_TRUE(IsWindow(form));
         SetForegroundWindow(host.Handle());
         SendMessageW(form, WM_ACTIVATEAPP, TRUE, 0);
       },
       [&] { EXPECT_EQ(GetActiveWindow(), form) << "the form comes forward when its host is activated"; }});
  EXPECT_TRUE(IsWindowEnabled(host.Handle()));
  EXPECT_FALSE(IsWindowEnabled(disabledBefore.Handle()));
  EXPECT_FALSE(IsWindow(form));
  EXPECT_EQ(ui.apply.GetPeer(), nullptr);
  EXPECT_EQ(GetActiveWindow(), host.Handle());
  TheDesktop().ShowModal(ui.form);  // unloaded: nothing to show
  EXPECT_EQ(ui.form.GetPeer(), nullptr);
}

TEST_F(Desktop, QuittingEndsTheLoopAndStaysForTheHost) {
  int rows = 0;
  for (int code : {3, 7}) {  // the form shows again after its windows were gone
    bool stopped = false;
    ui.form.KeyPress = [&](controls::Key key) { stopped |= key == controls::Key::kEscape; };
    Run({[&] {
      PostQuitMessage(code);
      for (; code == 7 && rows < 10'000'000 && !stopped; ++rows) TheDesktop().DoEvents();
      EXPECT_EQ(stopped, code == 7);
    }});
    EXPECT_TRUE(ui.form.IsOpen());
    EXPECT_TRUE(IsWindowEnabled(host.Handle()));
    EXPECT_EQ(TakeQuit(), code);
  }
}

TEST_F(Desktop, AWalkShowsItsCaptionNowAndThenAndHearsTheUser) {
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
       [&] { EXPECT_EQ(WindowText(WindowOf(ui.label)), "Loading " + std::to_string(row)); }});
  EXPECT_TRUE(clickedMeanwhile);
  EXPECT_TRUE(stopped);
  // A row costs next to nothing: a window message each would allow some 10,000.
  EXPECT_GT(row, 200'000);
}

TEST_F(Desktop, WhatFormCodeThrowsIsReportedAndTheFormLives) {
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
         ExpectBox("Clear Selection? : Gr\xC3\xBC\xC3\x9F?", IDYES);
         EXPECT_EQ(TheDesktop().MessageBox("Gr\xC3\xBC\xC3\x9F?", platform::MessageStyle::kQuestion,
                                           "Clear Selection? "),
                   platform::Answer::kYes);
         ExpectBox("T\u240D: Two\r\nlines, a\u240D name [U+202E]fdp.exe");
         TheDesktop().MessageBox("Two\r\nlines, a\r name \u202Efdp.exe", platform::MessageStyle::kPlain,
                                 "T\r");
         ui.label.SetCaption("Set \u202E1");
       },
       [&] { EXPECT_EQ(WindowText(WindowOf(ui.label)), "Set [U+202E]1"); }});
}

TEST_F(Desktop, AWindowThatIsDestroyedEndsTheDialog) {
  Run({[&] { DestroyWindow(WindowOf(ui.form)); }});
  EXPECT_TRUE(IsWindowEnabled(host.Handle()));
  EXPECT_EQ(ui.apply.GetPeer(), nullptr);
}

}  // namespace kxrestore::win32::test
