// Tests that run the real dialog: the test's thread shows it, another one works it.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>

#include "host/driver/dialog_driver.h"
#include "tests/e2e/component_dll.h"
#include "tests/e2e/test_catalog.h"

namespace kxrestore::e2e {

using Ids = std::set<std::int64_t>;
using Steps = std::function<void(const driver::DialogDriver&)>;

inline constexpr wchar_t kFormClass[] = L"KXRestore.frmRestore";
inline constexpr char kArchive[] = "C:\\dev\\wrk\\qvs\\tarvane source\\client\\CDArchive.mdb";

// Runs the dialog and returns its result. `steps` works it from another thread; when that fails the test
// does, and the dialog is ended.
short RunDialog(_RestoreDlg* object, const Steps& steps);

std::string SelectedText(int files);  // "2 file(s) selected"

class DialogTest : public ::testing::Test {
 protected:
  // The window opens as designed, and nothing of it is remembered beyond the test.
  DialogTest();
  ~DialogTest() override;

  // An object for the test catalog with an empty action, path and log.
  ComPtr<_RestoreDlg> NewObject(const std::wstring& catalog, short type = 0);
  ComPtr<_RestoreDlg> NewObject() { return NewObject(m_catalog.Path()); }

  Apartment m_apartment;
  ComponentDll m_dll;
  TestCatalog m_catalog;
  ComPtr<_RestoreDlg> m_object = NewObject();
  ComPtr<CountingSink> m_sink = CountingSink::Make();
};

}  // namespace kxrestore::e2e
