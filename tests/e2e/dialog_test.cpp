// The dialog as its users and hosts live with it: commit, cancel, close, errors.
#include <gtest/gtest.h>

#include "tests/e2e/dialog_fixture.h"

namespace kxrestore::e2e {
namespace {

using driver::DialogDriver;

const std::string kCancelQuestion =
    "You have selected files to restore, Cancel will clear your selections, Cancel?";

// Shows what is marked in the list below.
void Refresh(const DialogDriver& dialog, int marked) {
  dialog.Click("cmdRestore(2)");
  dialog.ExpectText("lblCounts(0)", SelectedText(marked));
}

TEST_F(DialogTest, CommitMarksTheTickedFilesAndTellsTheHostOnce) {
  Ids inEvent;
  bool showing = false;
  m_sink = CountingSink::Make([&] {
    inEvent = m_catalog.Marked();
    showing = driver::VisibleWindow(kFormClass) != nullptr;
  });
  Advise(m_object.Get(), m_sink.Get());

  const short result = RunDialog(m_object.Get(), [&](const DialogDriver& dialog) {
    dialog.SelectRun("1");
    EXPECT_EQ("4 file(s).", dialog.Text("lblTreeCount"));
    dialog.Tick("C:\\Data\\Reports");
    EXPECT_TRUE(dialog.NodeTicked("C:\\Data\\Reports\\a very long name.xls"));
    EXPECT_FALSE(dialog.NodeTicked("C:\\Data\\a.txt"));
    EXPECT_TRUE(m_catalog.Marked().empty()) << "a tick alone marks nothing";
    EXPECT_FALSE(dialog.Enabled("cmdRestore(0)"));
    dialog.Click("cmdAction(0)");
    dialog.ExpectText("lblCounts(0)", SelectedText(2));
    dialog.ExpectEnabled("cmdRestore(0)", true);
    dialog.Click("cmdRestore(0)");
  });
  EXPECT_EQ(1, result);
  EXPECT_EQ(1, m_sink->events);
  EXPECT_TRUE(showing);
  EXPECT_EQ((Ids{kNewB, kNewLong}), inEvent);
  EXPECT_EQ((Ids{kNewB, kNewLong}), m_catalog.Marked());

  // The next run of the same object begins with 0 again.
  EXPECT_EQ(0, RunDialog(m_object.Get(), [](const DialogDriver& dialog) { dialog.Close(); }));
  EXPECT_EQ(1, m_sink->events);
}

TEST_F(DialogTest, CancelAsksAndOnlyYesClears) {
  m_catalog.Mark(kOldA);
  m_catalog.Mark(kBox);
  const short result = RunDialog(m_object.Get(), [&](const DialogDriver& dialog) {
    Refresh(dialog, 2);
    dialog.Click("cmdRestore(1)");
    EXPECT_EQ("Clear Selection?", dialog.MessageTitle());
    EXPECT_EQ(kCancelQuestion, dialog.MessageText());
    dialog.Answer("NO");
    // Still there, and usable.
    Refresh(dialog, 2);
    dialog.Click("cmdRestore(1)");
    dialog.Answer("YES");
  });
  EXPECT_EQ(0, result);
  EXPECT_EQ(0, m_sink->events);
  EXPECT_EQ(Ids{}, m_catalog.Marked());
}

TEST_F(DialogTest, TheCloseBoxClosesWithNoAndKeepsTheMarks) {
  m_catalog.Mark(kBox);
  const short result = RunDialog(m_object.Get(), [&](const DialogDriver& dialog) {
    Refresh(dialog, 1);
    dialog.Close();
    EXPECT_EQ("Clear Selection?", dialog.MessageTitle());
    EXPECT_EQ(kCancelQuestion, dialog.MessageText());
    dialog.Answer("NO");
  });
  EXPECT_EQ(0, result);
  EXPECT_EQ(0, m_sink->events);
  EXPECT_EQ(Ids{kBox}, m_catalog.Marked());
}

TEST_F(DialogTest, LateBoundValuesArrive) {
  const auto put = [&](const wchar_t* name, VARIANT value) {
    EXPECT_EQ(S_OK, CallByName(m_object.Get(), name, DISPATCH_PROPERTYPUT, &value));
  };
  Text catalog(m_catalog.Path());
  VARIANT variable{};
  variable.vt = VT_BSTR;
  variable.bstrVal = catalog;
  VARIANT reference{};
  reference.vt = VT_BYREF | VT_VARIANT;
  reference.pvarVal = &variable;
  VARIANT path{};
  path.vt = VT_I4;
  path.lVal = 42;
  Text none(L"C:\\none.db");
  m_object->put_DB(&none);
  put(L"DB", reference);
  put(L"RestorePath", path);
  m_catalog.Mark(kBox);
  VARIANT result{};
  std::thread worker([] {
    const DialogDriver dialog;
    EXPECT_NO_THROW({
      dialog.ExpectText("lblRestorePath", "Restore To: 42");
      Refresh(dialog, 1);
      dialog.Click("cmdRestore(0)");
      dialog.WaitUntilClosed();
    });
  });
  EXPECT_EQ(S_OK, CallByName(m_object.Get(), L"DefineRestoreSet", DISPATCH_METHOD, nullptr, &result));
  worker.join();
  EXPECT_EQ(VT_I2, result.vt);
  EXPECT_EQ(1, result.iVal);
  EXPECT_EQ(1, m_sink->events);
}

TEST_F(DialogTest, WhatCannotBeOpenedIsReportedAndTheFormShows) {
  const auto expectReport = [](const DialogDriver& dialog, const std::string& start) {
    EXPECT_EQ("LoadBackupSetTree", dialog.MessageTitle());
    EXPECT_EQ(start, dialog.MessageText().substr(0, start.size()));
    dialog.Answer("OK");
    const driver::TreeDriver sets = dialog.Tree("tvwSets");
    EXPECT_EQ("Archive Sets", sets.Text(sets.Level(0).at(0))) << "there are no others";
    dialog.Close();
  };
  const ComPtr<_RestoreDlg> noKind = NewObject(m_catalog.Path(), 7);
  EXPECT_EQ(0, RunDialog(noKind.Get(), [&](auto& dialog) {
              expectReport(dialog, "(91) Object variable or With block variable not set");
            }));
  const ComPtr<_RestoreDlg> noFile = NewObject(m_catalog.Folder() + L"none.db");
  EXPECT_EQ(0, RunDialog(noFile.Get(), [&](auto& dialog) { expectReport(dialog, "(3024) "); }));
}

TEST_F(DialogTest, TheHostsWindowsAreDisabledMeanwhile) {
  const auto makeWindow = [](DWORD style) {
    return CreateWindowExW(0, L"Static", L"host", WS_POPUP | WS_CAPTION | style, 0, 0, 300, 200, nullptr,
                           nullptr, nullptr, nullptr);
  };
  const HWND window = makeWindow(WS_VISIBLE);
  const HWND already = makeWindow(WS_VISIBLE | WS_DISABLED);
  RunDialog(m_object.Get(), [&](const DialogDriver& dialog) {
    dialog.WaitForForm();
    EXPECT_FALSE(IsWindowEnabled(window));
    EXPECT_FALSE(IsWindowEnabled(already));
    dialog.Close();
  });
  EXPECT_TRUE(IsWindowEnabled(window));
  EXPECT_FALSE(IsWindowEnabled(already));
  DestroyWindow(window);
  DestroyWindow(already);
}

TEST_F(DialogTest, TheDllCanBeUnloadedAndLoadedAgain) {
  // A copy, because the one of the fixture holds its file.
  const std::wstring copy = m_catalog.Folder() + L"KXRestore.dll";
  ASSERT_TRUE(CopyFileW(DllPath().c_str(), copy.c_str(), FALSE));
  for (int round = 0; round < 10; ++round) {
    {
      const ComponentDll dll(copy);
      const ComPtr<_RestoreDlg> object = dll.NewObject();
      Text path(m_catalog.Path());
      object->put_DB(&path);  // makes the form
      // A library loaded elsewhere would find what an earlier one left, such as window classes.
      if (round % 3 == 0) {
        EXPECT_EQ(0, RunDialog(object.Get(), [](const DialogDriver& dialog) { dialog.Close(); }));
      }
    }
    ASSERT_EQ(nullptr, GetModuleHandleW(copy.c_str())) << "round " << round;
    // The next round's copy shall not get the same place.
    if (round == 2) VirtualAlloc(nullptr, 1 << 20, MEM_RESERVE, PAGE_NOACCESS);
  }
}

TEST_F(DialogTest, QuittingTheHostEndsTheDialogAndReachesTheHost) {
  const DWORD thread = GetCurrentThreadId();
  EXPECT_EQ(0, RunDialog(m_object.Get(), [&](const DialogDriver& dialog) {
              dialog.WaitForForm();
              PostThreadMessageW(thread, WM_QUIT, 7, 0);
            }));
  MSG message{};
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) && message.message != WM_QUIT) {
  }
  EXPECT_EQ(static_cast<UINT>(WM_QUIT), message.message);
  EXPECT_EQ(7u, message.wParam);
}

}  // namespace
}  // namespace kxrestore::e2e
