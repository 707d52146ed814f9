// At three scales and three sizes, on every page and with the CD panel, no text is cut. A scale belongs to a
// process, so this program runs itself again for each.
#include <cstdlib>

#include "component/com/wide_text.h"
#include "tests/e2e/dialog_fixture.h"
#include "tests/e2e/program.h"

namespace kxrestore::e2e {
namespace {

using component::com::ToWide;
using driver::Ask;
using driver::DialogDriver;

struct Size {
  const char* name;
  int width, height;  // pixels; what is too small becomes the minimum
};
constexpr Size kSizes[] = {{"minimum", 1, 1}, {"1024x768", 1024, 768}, {"2560x1440", 2560, 1440}};

// The longest that each changing label has to show.
struct Longest {
  const char* label;
  const char* text;
};
constexpr Longest kLongest[] = {{"lblTreeCount", "1000000 file(s)."},
                                {"lblCounts(0)", "1000000 file(s) selected"},
                                {"lblSearchCount", "1000000 File(s)"},
                                {"lblSetName", "Daily Documents 11/16/2026 2:25:30 AM"}};

class ScreenDc {
 public:
  explicit ScreenDc(HWND window) : m_window(window), m_dc(GetDC(window)) {}
  ~ScreenDc() { ReleaseDC(m_window, m_dc); }
  operator HDC() const { return m_dc; }

 private:
  HWND m_window;
  HDC m_dc;
};

RECT Bounds(HWND window) {
  RECT bounds{};
  GetWindowRect(window, &bounds);
  return bounds;
}

SIZE ClientSize(HWND window) {
  RECT area{};
  GetClientRect(window, &area);
  return {area.right, area.bottom};
}

SIZE Measure(HWND window, const std::wstring& text, UINT format, int width) {
  const ScreenDc dc(window);
  const auto font = reinterpret_cast<HGDIOBJ>(Ask(window, WM_GETFONT));
  const HGDIOBJ before = SelectObject(dc, font);
  RECT area{0, 0, width, 0};
  DrawTextW(dc, text.c_str(), -1, &area, format | DT_CALCRECT);
  SelectObject(dc, before);
  return {area.right, area.bottom};
}

class View {
 public:
  View(const DialogDriver& dialog, std::string where) : m_dialog(dialog), m_where(std::move(where)) {}

  void Check() {
    const HWND form = m_dialog.WaitForForm();
    for (const HWND window : driver::Inner(form)) {
      const std::string name = driver::NameOf(window);
      if (name.empty() || !IsWindowVisible(window)) continue;
      CheckText(window, name);
    }
    for (const auto& [label, text] : kLongest) {
      const HWND window = m_dialog.Control(label);
      if (IsWindowVisible(window)) CheckLabel(window, label, ToWide(text));
    }
  }

 private:
  void CheckFits(const std::string& name, const std::string& text, SIZE needed, SIZE room) const {
    const bool fits = needed.cx <= room.cx && needed.cy <= room.cy;
    EXPECT_TRUE(fits || ToolTipOf(m_dialog.Control(name)) == text)
        << name << " '" << text << "' needs " << needed.cx << " x " << needed.cy << " and has " << room.cx
        << " x " << room.cy << ", " << m_where;
  }

  void CheckText(HWND window, const std::string& name) const {
    const std::string kind = driver::ClassOf(window);
    const std::wstring text = ToWide(driver::TextOf(window));
    const SIZE room = ClientSize(window);
    if (kind == "Static") {
      CheckLabel(window, name, text);
    } else if (kind == "Button") {
      const auto style = static_cast<UINT>(GetWindowLongPtrW(window, GWL_STYLE));
      const bool push = (style & BS_TYPEMASK) <= BS_DEFPUSHBUTTON;
      const int beside = push ? 8 : GetSystemMetrics(SM_CXMENUCHECK) + 4;
      const bool wraps = (style & BS_MULTILINE) != 0;
      SIZE needed = Measure(window, text, wraps ? DT_WORDBREAK : DT_SINGLELINE, room.cx - beside);
      needed.cx += beside;
      if (push) needed.cy += 6;
      CheckFits(name, driver::TextOf(window), needed, room);
    } else if (kind == "Edit" || kind == "ComboBox") {
      EXPECT_GE(room.cy, Measure(window, L"Xg", DT_SINGLELINE, 0).cy) << name << ", " << m_where;
    } else if (kind == "SysTabControl32") {
      const auto last = static_cast<WPARAM>(Ask(window, TCM_GETITEMCOUNT) - 1);
      RECT tab{};
      Ask(window, TCM_GETITEMRECT, last, &tab);
      EXPECT_LE(tab.right, room.cx) << m_where;
      EXPECT_GE(tab.bottom - tab.top, Measure(window, L"Xg", DT_SINGLELINE, 0).cy) << m_where;
      // The pages begin below the tabs.
      RECT pages = Bounds(m_dialog.Control("picTabs"));
      RECT strip = Bounds(window);
      EXPECT_GE(pages.top, strip.top + tab.bottom) << m_where;
    } else if (kind == "SysListView32") {
      CheckHeadings(window, name);
    } else if (name.starts_with("fr")) {
      SIZE needed = Measure(window, text, DT_SINGLELINE, 0);
      needed.cx += 16;
      CheckFits(name, driver::TextOf(window), needed, room);
    }
  }

  // The tool tip that shows what a control has no room for.
  std::string ToolTipOf(HWND window) const {
    TTTOOLINFOW tool{TTTOOLINFOW_V1_SIZE};
    std::wstring text(1024, L'\0');
    tool.hwnd = m_dialog.WaitForForm();
    tool.uId = reinterpret_cast<UINT_PTR>(window);
    tool.lpszText = text.data();
    HWND tips = nullptr;
    while ((tips = FindWindowExW(nullptr, tips, TOOLTIPS_CLASSW, nullptr)) != nullptr) {
      if (GetWindow(tips, GW_OWNER) == tool.hwnd) Ask(tips, TTM_GETTEXTW, text.size(), &tool);
    }
    return component::com::FromWide(text.c_str());
  }

  void CheckLabel(HWND window, const std::string& name, const std::wstring& text) const {
    if (text.empty()) return;
    const SIZE room = ClientSize(window);
    const bool plain = (GetWindowLongPtrW(window, GWL_STYLE) & SS_NOPREFIX) != 0;
    const SIZE needed = Measure(window, text, DT_WORDBREAK | (plain ? DT_NOPREFIX : 0), room.cx);
    CheckFits(name, driver::TextOf(window), needed, room);
  }

  void CheckHeadings(HWND list, const std::string& name) const {
    const auto header = reinterpret_cast<HWND>(Ask(list, LVM_GETHEADER));
    for (int column = 0; column < Ask(header, HDM_GETITEMCOUNT); ++column) {
      wchar_t text[64] = L"";
      HDITEMW item{};
      item.mask = HDI_TEXT | HDI_WIDTH;
      item.pszText = text;
      item.cchTextMax = 64;
      Ask(header, HDM_GETITEMW, static_cast<WPARAM>(column), &item);
      const SIZE needed = Measure(header, text, DT_SINGLELINE, 0);
      EXPECT_LE(needed.cx + 12, item.cxy) << name << ", column " << column << ", " << m_where;
    }
    EXPECT_GE(ClientSize(list).cy, 2 * Measure(list, L"Xg", DT_SINGLELINE, 0).cy) << name << ", " << m_where;
  }

  const DialogDriver& m_dialog;
  std::string m_where;
};

class LooksTest : public DialogTest {};

TEST_F(LooksTest, NoTextIsCut) {
  const char* const given = std::getenv("KX_DPI");
  const int dpi = given == nullptr ? 96 : std::atoi(given);
  ASSERT_EQ(dpi, GetDeviceCaps(ScreenDc(nullptr), LOGPIXELSX));
  RunDialog(m_object.Get(), [&](const DialogDriver& dialog) {
    dialog.SelectRun("1");
    dialog.Tick("C:\\");
    dialog.Click("cmdAction(0)");
    dialog.ExpectText("lblCounts(0)", SelectedText(3));
    dialog.Tab(2);
    dialog.Type("cboMask", "a.txt");
    dialog.Click("cmdSearch(2)");
    dialog.ExpectCount("asSearch", 2);
    const HWND form = dialog.WaitForForm();
    for (const Size& size : kSizes) {
      SetWindowPos(form, nullptr, 0, 0, size.width, size.height, SWP_NOZORDER | SWP_NOACTIVATE);
      const std::string where = std::to_string(dpi) + "-" + size.name;
      for (int tab = 3; tab >= 1; --tab) {
        dialog.Tab(tab);
        View(dialog, where + "-tab" + std::to_string(tab)).Check();
      }
      dialog.SelectNode("Archive Sets\\Append new Archive CD ...");
      dialog.ExpectVisible("frLoadCD", true);
      View(dialog, where + "-cd").Check();
      dialog.SelectRun("1");
      dialog.ExpectVisible("frLoadCD", false);
    }
    dialog.Close();
    dialog.Answer("YES");
  });
}

TEST(Looks, AreTheSameAtOtherScales) {
  GetDesktopWindow();  // what serves it would else be started by, and outlive, a program that is waited for
  constexpr wchar_t kKey[] = L"Control Panel\\Desktop";
  wchar_t self[MAX_PATH];
  GetModuleFileNameW(nullptr, self, MAX_PATH);
  SetEnvironmentVariableW(L"GTEST_OUTPUT", nullptr);
  for (const DWORD dpi : {144, 192}) {
    RegSetKeyValueW(HKEY_CURRENT_USER, kKey, L"LogPixels", REG_DWORD, &dpi, sizeof dpi);
    SetEnvironmentVariableW(L"KX_DPI", std::to_wstring(dpi).c_str());
    Program run(L'"' + std::wstring(self) + L"\" --gtest_filter=LooksTest.*");
    EXPECT_EQ(0, run.Wait()) << run.Output();
  }
  RegDeleteKeyValueW(HKEY_CURRENT_USER, kKey, L"LogPixels");
}

}  // namespace
}  // namespace kxrestore::e2e
