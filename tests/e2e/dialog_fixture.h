// Runs the real dialog: the test's thread shows it, and a second thread operates it.
#pragma once

#include <atomic>
#include <set>
#include <thread>

#include "base/utf16.h"
#include "host/driver/dialog_driver.h"
#include "tests/e2e/component.h"
#include "tests/e2e/test_catalog.h"

namespace kxrestore::e2e {

using driver::DialogDriver;
using Ids = std::set<std::int64_t>;
using Steps = std::function<void(const DialogDriver&)>;

inline constexpr wchar_t kFormClass[] = L"KXRestore.frmRestore";
inline constexpr char kArchive[] = "C:\\dev\\wrk\\qvs\\tarvane source\\client\\CDArchive.mdb";

inline std::string SelectedText(std::size_t files) {
  return std::to_string(files) + " file(s) selected";
}

// Runs the dialog and returns its result. `steps` operates it from another thread. If a step throws, the test
// fails, and all modal loops end, including that of a message box.
inline short RunDialog(_RestoreDlg* object, const Steps& steps) {
  std::string failure;
  std::atomic<bool> returned = false;
  std::thread worker([&] {
    const DialogDriver driver(std::chrono::seconds(90));
    try {
      steps(driver);
      driver.WaitUntilClosed();
    } catch (const std::exception& error) {
      failure = error.what();
      for (; !returned; Sleep(50)) {  // the window may not have appeared yet
        for (const wchar_t* windowClass : {L"#32770", kFormClass}) {
          const HWND window = driver::VisibleWindow(windowClass);
          if (window) PostThreadMessageW(GetWindowThreadProcessId(window, nullptr), WM_QUIT, 0, 0);
        }
      }
    }
  });
  short result = -1;
  EXPECT_EQ(S_OK, object->DefineRestoreSet(&result));
  returned = true;
  worker.join();
  EXPECT_EQ(failure, "");
  MSG message;
  while (!failure.empty() && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
  }
  EXPECT_EQ(nullptr, driver::VisibleWindow(kFormClass));
  return result;
}

class DialogTest : public ::testing::Test {
 protected:
  // The window opens with its default placement, which a test does not change for later ones.
  DialogTest() {
    ForgetPlacement();
    Advise(m_object.Get(), m_sink.Get());
  }
  ~DialogTest() override { ForgetPlacement(); }

  // An object for the test catalog, with an empty action, restore path and log name.
  ComPtr<_RestoreDlg> NewObject() {
    ComPtr<_RestoreDlg> object = m_dll.NewObject();
    Text path(m_catalog.Path()), none(L"");
    object->put_DBType(0);
    object->put_DB(&path);
    object->put_RestorePath(&none);
    object->put_SessionLogName(none);
    object->put_setAction(none);
    return object;
  }
  short Run(const Steps& steps) { return RunDialog(m_object.Get(), steps); }

  Apartment m_apartment;
  ComponentDll m_dll;
  TestCatalog m_catalog;
  ComPtr<_RestoreDlg> m_object = NewObject();
  ComPtr<CountingSink> m_sink = CountingSink::Make();

 private:
  static void ForgetPlacement() {
    for (const wchar_t* entry : {L"RestoreWindow", L"RestoreSplitters"}) {
      RegDeleteKeyValueW(HKEY_CURRENT_USER, L"Software\\Brellick Labs, Inc.\\Tarvane\\Settings", entry);
    }
  }
};

}  // namespace kxrestore::e2e
