// The names and states that a screen reader gets through Microsoft Active Accessibility.
#include <oleacc.h>

#include <map>

#include "tests/e2e/dialog_fixture.h"

namespace kxrestore::e2e {
namespace {

// A fake of the system's annotation service, which Wine lacks. A name set there takes precedence over the
// window's own. One vtable serves as both factory and service: the component calls CreateInstance of the
// factory, and SetHwndPropStr and ClearHwndProps of the service.
class NameService final : public IClassFactory {
 public:
  NameService() {
    Check(CoRegisterClassObject(CLSID_AccPropServices, this, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                                &m_cookie),
          "the annotation service cannot be registered");
  }
  ~NameService() { CoRevokeClassObject(m_cookie); }

  std::map<HWND, std::string> names;

  STDMETHODIMP QueryInterface(REFIID, void** object) override {
    *object = this;
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP CreateInstance(IUnknown*, REFIID, void** object) override {
    return QueryInterface(IID_NULL, object);
  }
  STDMETHODIMP LockServer(BOOL) override { return S_OK; }
  virtual void ClearProps() {}
  virtual void SetHwndProp() {}
  virtual HRESULT WINAPI SetHwndPropStr(HWND window, DWORD object, DWORD part, MSAAPROPID kind,
                                        LPCWSTR text) {
    const bool name = kind == PROPID_ACC_NAME && part == CHILDID_SELF;
    if (name && object == static_cast<DWORD>(OBJID_CLIENT)) names[window] = FromWide(text);
    return S_OK;
  }
  virtual void SetHwndPropServer() {}
  virtual HRESULT WINAPI ClearHwndProps(HWND window, DWORD, DWORD, const MSAAPROPID*, int) {
    names.erase(window);
    return S_OK;
  }

 private:
  DWORD m_cookie = 0;
};

class AccessibilityTest : public DialogTest {
 protected:
  static LONG State(HWND window) {
    const Apartment apartment;
    VARIANT self{}, state{};
    self.vt = VT_I4;
    const ComPtr<IAccessible> object = Accessible(window);
    if (object) object->get_accState(self, &state);
    return state.lVal;
  }
  // The annotated name, or else the one that Active Accessibility derives from the window.
  std::string Name(HWND window) const {
    const auto found = m_names.names.find(window);
    return found == m_names.names.end() ? OwnName(window) : found->second;
  }
  static std::string OwnName(HWND window) {
    const Apartment apartment;
    VARIANT self{};
    self.vt = VT_I4;
    BSTR name = nullptr;
    const ComPtr<IAccessible> object = Accessible(window);
    if (object) object->get_accName(self, &name);
    const std::string text = name == nullptr ? std::string() : FromWide(name);
    SysFreeString(name);
    return text;
  }
  static HWND Footer(const DialogDriver& dialog, const char* control) {
    HWND footer = nullptr;
    for (const HWND window : driver::Inner(GetParent(dialog.Control(control)))) {
      if ((GetWindowLongPtrW(window, GWL_STYLE) & SS_TYPEMASK) == SS_OWNERDRAW &&
          driver::ClassOf(window) == "Static") {
        footer = window;
      }
    }
    return footer;
  }
  static void Await(const std::string& what, const std::function<bool()>& isSo) {
    driver::WaitFor(std::chrono::seconds(60), what, isSo);
  }

  NameService m_names;

 private:
  static ComPtr<IAccessible> Accessible(HWND window) {
    ComPtr<IAccessible> object;
    AccessibleObjectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT), IID_PPV_ARGS(&object));
    return object;
  }
};

TEST_F(AccessibilityTest, EveryFocusableWindowHasAUniqueName) {
  Run([&](const DialogDriver& dialog) {
    const std::set<std::string> kinds = {"Edit",
                                         "ComboBox",
                                         "Button",
                                         "SysListView32",
                                         "SysTreeView32",
                                         "SysDateTimePick32",
                                         "KXRestore.SplitBar",
                                         "SysTabControl32",
                                         "msctls_progress32"};
    std::map<HWND, std::set<std::string>> heard;  // by parent window
    int fields = 0;
    for (const HWND window : driver::Inner(dialog.WaitForForm())) {
      const HWND around = GetParent(window);
      if (!kinds.contains(driver::ClassOf(window)) || driver::ClassOf(around) == "SysDateTimePick32")
        continue;
      const std::string name = Name(window), control = driver::NameOf(window);
      EXPECT_GE(name.size(), 3u) << control << driver::ClassOf(window);
      EXPECT_EQ(std::string::npos, name.find_first_of("&\xD7")) << name;
      EXPECT_TRUE(heard[around].insert(name).second) << name << " twice, " << control;
      fields += control.empty() ? 1 : 0;
    }
    EXPECT_EQ(fields, 6 + 6 + 2 + 1) << "the fields of the filter lines and of the mask box";
    dialog.Close();
  });
  EXPECT_TRUE(m_names.names.empty()) << "a window's name is removed with the window";
}

TEST_F(AccessibilityTest, FootersAndEmptyListsHaveTexts) {
  Run([&](const DialogDriver& dialog) {
    const HWND list = dialog.Control("asRestoreList"), restore = dialog.Control("cmdRestore(0)");
    EXPECT_NE(std::string::npos, Name(list).find("Files selected to restore. Nothing")) << Name(list);
    EXPECT_TRUE(State(restore) & STATE_SYSTEM_UNAVAILABLE);
    dialog.SelectRun("1");
    const HWND ticked = Footer(dialog, "tvwDetails");
    EXPECT_EQ(OwnName(ticked), "0 of 4 ticked");
    dialog.Tick("D:\\");
    Await("the footer to count the tick",
          [&] { return OwnName(ticked) == "1 ticked: press Apply; 1 of 4 ticked"; });
    dialog.Click("cmdAction(0)");
    Await("the footer to count the mark",
          [&] { return OwnName(Footer(dialog, "asRestoreList")).starts_with("1 file"); });
    EXPECT_EQ(Name(list), "Files selected to restore");
    EXPECT_EQ(OwnName(ticked), "1 of 4 ticked");
    EXPECT_FALSE(State(restore) & STATE_SYSTEM_UNAVAILABLE);
    dialog.TickEntry("asRestoreList", "1");
    Await("the footer to count the untick",
          [&] { return OwnName(Footer(dialog, "asRestoreList")).starts_with("1 unticked: press Update"); });
    dialog.Click("cmdRestore(1)");
    dialog.Answer("YES");
  });
}

// Views with endless rows of sets and files keep the dialog working until the user stops it.
TEST_F(AccessibilityTest, ProgressHasNamesAndCanBeStopped) {
  const std::string endless = " AS WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) SELECT ";
  m_catalog.Execute("ALTER TABLE SetNames RENAME TO Sets; CREATE VIEW SetNames" + endless +
                    "1 AS ID, 'set ' || i AS Name FROM n");
  EXPECT_EQ(0, Run([&](const DialogDriver& dialog) {
              HWND busy = nullptr;
              Await("the Stop button", [&] { return (busy = driver::VisibleWindow(L"#32770")) != nullptr; });
              EXPECT_EQ(nullptr, driver::VisibleWindow(kFormClass));
              EXPECT_EQ(OwnName(busy), "Select Files to Restore");
              EXPECT_EQ(OwnName(GetDlgItem(busy, IDCANCEL)), "Stop");
              EXPECT_NE(OwnName(GetDlgItem(busy, 100)), "");
              PostMessageW(busy, WM_COMMAND, IDCANCEL, 0);
              dialog.WaitForForm();
              EXPECT_FALSE(IsWindow(busy));

              const HWND panel = dialog.Control("picProgress"), text = dialog.Control("lblProgress");
              EXPECT_TRUE(State(panel) & STATE_SYSTEM_INVISIBLE);
              m_catalog.Execute(
                  "PRAGMA legacy_alter_table = ON; ALTER TABLE Catalog RENAME TO Files; CREATE VIEW Catalog" +
                  endless + "Files.* FROM n, Files");
              dialog.Click("cmdRestore(2)");
              Await("the panel", [&] { return !(State(panel) & STATE_SYSTEM_INVISIBLE); });
              EXPECT_NE(std::string::npos, OwnName(text).find("Esc stops")) << OwnName(text);
              EXPECT_EQ(Name(dialog.Control("barProgress")), "Progress");
              dialog.Key("ESC");
              Await("its end", [&] { return (State(panel) & STATE_SYSTEM_INVISIBLE) != 0; });
              m_catalog.Execute(
                  "PRAGMA legacy_alter_table = ON; DROP VIEW Catalog; ALTER TABLE Files RENAME TO Catalog");
              dialog.Close();
            }));
}

}  // namespace
}  // namespace kxrestore::e2e
