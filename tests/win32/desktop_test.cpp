#include <gtest/gtest.h>

#include <stdexcept>
#include <utility>

#include "base/error.h"
#include "form_session.h"
#include "platform/win32/wide_text.h"

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

TEST(Desktop, TheHostsWindowsAreDisabledWhileTheFormShows) {
  HostWindow disabledBefore(false);
  HostWindow host;
  SampleForm ui;
  FormSession session;
  HWND form = nullptr;
  session.Then([&] {
    form = FormSession::WindowOf(ui.form);
    EXPECT_FALSE(IsWindowEnabled(host.Handle()));
    EXPECT_FALSE(IsWindowEnabled(disabledBefore.Handle()));
    EXPECT_EQ(GetWindow(form, GW_OWNER), nullptr);
    EXPECT_EQ(GetActiveWindow(), form);
    session.Platform().desktop.ShowModal(ui.form);  // is showing already
    EXPECT_TRUE(IsWindow(form));
  });
  EXPECT_TRUE(session.Run(ui.form));
  EXPECT_TRUE(IsWindowEnabled(host.Handle()));
  EXPECT_FALSE(IsWindowEnabled(disabledBefore.Handle()));
  EXPECT_FALSE(IsWindow(form));
  EXPECT_EQ(ui.apply.GetPeer(), nullptr);
  EXPECT_EQ(GetActiveWindow(), host.Handle());

  session.Platform().desktop.ShowModal(ui.form);  // unloaded: nothing to show
  EXPECT_EQ(ui.form.GetPeer(), nullptr);
}

TEST(Desktop, AFormShowsAgainAfterItsWindowsWereGone) {
  SampleForm ui;
  for (int round = 0; round < 2; ++round) {
    FormSession session;
    session.Then([] { PostQuitMessage(3); });
    EXPECT_TRUE(session.Run(ui.form));
    EXPECT_TRUE(ui.form.IsOpen());
    EXPECT_EQ(TakeQuit(), 3);
  }
}

TEST(Desktop, QuittingEndsTheLoopAndStaysForTheHost) {
  HostWindow host;
  SampleForm ui;
  bool stopped = false;
  int rows = 0;
  ui.form.KeyPress = [&](controls::Key key) { stopped |= key == controls::Key::kEscape; };
  FormSession session;
  ui.apply.Click = [&] {
    PostQuitMessage(7);
    for (; rows < 10'000'000 && !stopped; ++rows) session.Platform().desktop.DoEvents();
  };
  session.Then([&] { SendMessageW(FormSession::WindowOf(ui.apply), BM_CLICK, 0, 0); });
  EXPECT_TRUE(session.Run(ui.form));
  EXPECT_TRUE(stopped);
  EXPECT_TRUE(IsWindowEnabled(host.Handle()));
  EXPECT_EQ(TakeQuit(), 7);
}

TEST(Desktop, AWalkShowsItsCaptionNowAndThenAndHearsTheUser) {
  SampleForm ui;
  FormSession session;
  constexpr DWORD kLength = 500;  // milliseconds
  bool stopped = false;
  bool clickedMeanwhile = false;
  int row = 0;
  DWORD milliseconds = 0;
  ui.form.KeyPress = [&](controls::Key) { stopped = true; };
  ui.shared.Click = [&] { clickedMeanwhile = true; };
  ui.apply.Click = [&] {
    const HWND label = FormSession::WindowOf(ui.label);
    g_texts = 0;
    SetWindowSubclass(label, CountTexts, 99, 0);
    PostMessageW(FormSession::WindowOf(ui.shared), BM_CLICK, 0, 0);
    const DWORD start = GetTickCount();
    bool pressed = false;
    while (!stopped && milliseconds < 10 * kLength) {
      ui.label.SetCaption("Loading " + std::to_string(++row));
      session.Platform().desktop.DoEvents();
      milliseconds = GetTickCount() - start;
      if (milliseconds >= kLength && !std::exchange(pressed, true)) {
        PostMessageW(label, WM_KEYDOWN, VK_ESCAPE, 1);
      }
    }
    EXPECT_GE(g_texts, 2);
    EXPECT_LE(g_texts, static_cast<int>(milliseconds / 100) + 1);
  };
  session.Then([&] { SendMessageW(FormSession::WindowOf(ui.apply), BM_CLICK, 0, 0); }).Then([&] {
    EXPECT_TRUE(clickedMeanwhile);
    EXPECT_TRUE(stopped);
    EXPECT_EQ(WindowText(FormSession::WindowOf(ui.label)), "Loading " + std::to_string(row));
  });
  EXPECT_TRUE(session.Run(ui.form));
  // A row costs next to nothing: a window message each would allow some 10,000.
  EXPECT_GT(row, 200'000);
  RecordProperty("rows", row);
  RecordProperty("milliseconds", static_cast<int>(milliseconds));
}

TEST(Desktop, TheFormComesForwardWhenItsDisabledHostIsActivated) {
  HostWindow host;
  SampleForm ui;
  FormSession session;
  session
      .Then([&] {
        SetForegroundWindow(host.Handle());
        SendMessageW(FormSession::WindowOf(ui.form), WM_ACTIVATEAPP, TRUE, 0);
      })
      .Then([&] { EXPECT_EQ(GetActiveWindow(), FormSession::WindowOf(ui.form)); });
  EXPECT_TRUE(session.Run(ui.form));
}

TEST(Desktop, WhatFormCodeThrowsIsReportedAndTheFormLives) {
  SampleForm ui;
  FormSession session;
  ui.apply.Click = [] { throw Error(35601, "Element not found"); };
  ui.label.MouseMove = [] { throw std::runtime_error("Unforeseen"); };
  session.Then([&] { PostMessageW(FormSession::WindowOf(ui.apply), BM_CLICK, 0, 0); })
      .Meanwhile([&] { EXPECT_EQ(AnswerBox(IDOK), "KXRestore: (35601) Element not found"); })
      .Then([&] { PostMessageW(FormSession::WindowOf(ui.label), WM_MOUSEMOVE, 0, 0); })
      .Meanwhile([&] { EXPECT_EQ(AnswerBox(IDOK), "KXRestore: Unforeseen"); })
      .Then([&] { EXPECT_TRUE(ui.form.IsOpen()); });
  EXPECT_TRUE(session.Run(ui.form));
}

TEST(Desktop, AMessageBoxBelongsToTheFormAndSaysWhatWasAnswered) {
  SampleForm ui;
  FormSession session;
  int answer = 0;
  session
      .Then([&] {
        answer = session.Platform().desktop.MessageBox(
            "Gr\xC3\xBC\xC3\x9F?", platform::kYesNo | platform::kQuestion, "Clear Selection? ");
      })
      .Meanwhile([&] {
        const HWND box = FindWindowW(L"#32770", nullptr);
        EXPECT_EQ(GetWindow(box, GW_OWNER), FormSession::WindowOf(ui.form));
        EXPECT_EQ(AnswerBox(IDYES), "Clear Selection? : Gr\xC3\xBC\xC3\x9F?");
      })
      .Then([&] { EXPECT_EQ(answer, platform::kAnswerYes); });
  EXPECT_TRUE(session.Run(ui.form));
}

TEST(Desktop, AWindowThatIsDestroyedEndsTheDialog) {
  HostWindow host;
  SampleForm ui;
  FormSession session;
  session.Then([&] { DestroyWindow(FormSession::WindowOf(ui.form)); });
  EXPECT_TRUE(session.Run(ui.form));
  EXPECT_TRUE(IsWindowEnabled(host.Handle()));
  EXPECT_EQ(ui.apply.GetPeer(), nullptr);
}

}  // namespace kxrestore::win32::test
