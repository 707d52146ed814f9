// The dialog as its hosts live with it: late binding, and the end of the DLL.
#include "tests/e2e/dialog_fixture.h"

namespace kxrestore::e2e {
namespace {

using driver::DialogDriver;

TEST_F(DialogTest, LateBoundValuesArrive) {
  const auto put = [&](const wchar_t* name, VARIANT value) {
    EXPECT_EQ(S_OK, CallByName(m_object.Get(), name, DISPATCH_PROPERTYPUT, &value));
  };
  Text catalog(m_catalog.Path()), none(L"C:\\none.db");
  VARIANT variable = OfText(catalog);
  m_object->put_DB(&none);
  put(L"DB", Reference(&variable));
  put(L"RestorePath", OfNumber(42));
  m_catalog.Mark(kBox);
  VARIANT result{};
  std::thread worker([] {
    const DialogDriver dialog;
    EXPECT_NO_THROW({
      dialog.ExpectText("lblRestorePath", "Restore To: 42");
      dialog.Click("cmdRestore(2)");
      dialog.ExpectText("lblCounts(0)", SelectedText(1));
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

}  // namespace
}  // namespace kxrestore::e2e
