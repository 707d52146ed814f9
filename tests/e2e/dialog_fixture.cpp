#include "tests/e2e/dialog_fixture.h"

#include <atomic>
#include <thread>

namespace kxrestore::e2e {

namespace {

// Ends the modal loops, a message box's included, in whichever thread they run.
void EndDialogs() {
  for (const wchar_t* windowClass : {L"#32770", kFormClass}) {
    const HWND window = driver::VisibleWindow(windowClass);
    if (window) PostThreadMessageW(GetWindowThreadProcessId(window, nullptr), WM_QUIT, 0, 0);
  }
}

void ForgetPlacement() {
  for (const wchar_t* entry : {L"RestoreWindow", L"RestoreSplitters"}) {
    RegDeleteKeyValueW(HKEY_CURRENT_USER, L"Software\\Brellick Labs, Inc.\\Tarvane\\Settings", entry);
  }
}

}  // namespace

short RunDialog(_RestoreDlg* object, const Steps& steps) {
  std::string failure;
  std::atomic<bool> returned = false;
  std::thread worker([&] {
    const driver::DialogDriver driver(std::chrono::seconds(15));
    try {
      steps(driver);
      driver.WaitUntilClosed();
    } catch (const std::exception& error) {
      failure = error.what();
      // The window may come up late: what ends it is tried until it is gone.
      for (; !returned; Sleep(50)) EndDialogs();
    }
  });
  short result = -1;
  EXPECT_EQ(S_OK, object->DefineRestoreSet(&result));
  returned = true;
  worker.join();
  if (!failure.empty()) {
    ADD_FAILURE() << failure;
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
    }
  }
  EXPECT_EQ(nullptr, driver::VisibleWindow(kFormClass));
  return result;
}

std::string SelectedText(int files) {
  return std::to_string(files) + " file(s) selected";
}

DialogTest::DialogTest() {
  ForgetPlacement();
  Advise(m_object.Get(), m_sink.Get());
}

DialogTest::~DialogTest() {
  ForgetPlacement();
}

ComPtr<_RestoreDlg> DialogTest::NewObject(const std::wstring& catalog, short type) {
  ComPtr<_RestoreDlg> object = m_dll.NewObject();
  Text path(catalog);
  Text none(L"");
  object->put_DBType(type);
  object->put_DB(&path);
  object->put_RestorePath(&none);
  object->put_SessionLogName(none);
  object->put_setAction(none);
  return object;
}

}  // namespace kxrestore::e2e
