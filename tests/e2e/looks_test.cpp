// At three scales and three window sizes, no text is cut on any page or on the CD panel. The scale is fixed
// for a process, so this program runs itself again for each other scale.
#include <cstdlib>

#include "host/catalog_maker/sample_archive.h"
#include "tests/e2e/dialog_fixture.h"
#include "tests/e2e/program.h"

namespace kxrestore::e2e {
namespace {

using driver::Ask;

// Pixels; smaller sizes become the minimum.
constexpr SIZE kSizes[] = {{1, 1}, {1024, 768}, {2560, 1440}};

// The longest text that each variable label must show.
const std::pair<const char*, const wchar_t*> kLongest[] = {
    {"lblTreeCount", L"1000000 file(s)."},
    {"lblCounts(0)", L"1000000 file(s) selected"},
    {"lblSearchCount", L"1000000 File(s)"},
    {"lblSetName", L"Daily Documents 11/16/2026 2:25:30 AM"}};

SIZE ClientSize(HWND window) {
  RECT area{};
  GetClientRect(window, &area);
  return {area.right, area.bottom};
}

SIZE Measure(HWND window, const std::wstring& text, UINT format, int width = 0) {
  const HDC dc = GetDC(window);
  const HGDIOBJ before = SelectObject(dc, reinterpret_cast<HGDIOBJ>(Ask(window, WM_GETFONT)));
  RECT area{0, 0, width, 0};
  DrawTextW(dc, text.c_str(), -1, &area, format | DT_CALCRECT);
  SelectObject(dc, before);
  ReleaseDC(window, dc);
  return {area.right, area.bottom};
}

// The client size that a control needs to show a text.
SIZE Needed(HWND window, const std::wstring& text) {
  const auto style = static_cast<UINT>(GetWindowLongPtrW(window, GWL_STYLE));
  const int room = ClientSize(window).cx;
  if (driver::ClassOf(window) != "Button") {
    return Measure(window, text, DT_WORDBREAK | (style & SS_NOPREFIX ? DT_NOPREFIX : 0), room);
  }
  const bool push = (style & BS_TYPEMASK) <= BS_DEFPUSHBUTTON;
  const int beside = push ? 8 : GetSystemMetrics(SM_CXMENUCHECK) + 4;
  SIZE needed = Measure(window, text, style & BS_MULTILINE ? DT_WORDBREAK : DT_SINGLELINE, room - beside);
  needed.cx += beside;
  needed.cy += push ? 6 : 0;
  return needed;
}

// A tool tip may show the text that a control has no room for.
std::wstring ToolTipOf(HWND window) {
  std::wstring text(1024, L'\0');
  TTTOOLINFOW tool{TTTOOLINFOW_V1_SIZE};
  tool.hwnd = GetAncestor(window, GA_ROOT);
  tool.uId = reinterpret_cast<UINT_PTR>(window);
  tool.lpszText = text.data();
  HWND tips = nullptr;
  while ((tips = FindWindowExW(nullptr, tips, TOOLTIPS_CLASSW, nullptr)) != nullptr) {
    if (GetWindow(tips, GW_OWNER) == tool.hwnd) Ask(tips, TTM_GETTEXTW, text.size(), &tool);
  }
  return text.c_str();
}

// Column headings must show their whole texts.
void ExpectHeadings(HWND list) {
  const auto header = reinterpret_cast<HWND>(Ask(list, LVM_GETHEADER));
  for (int column = 0; column < Ask(header, HDM_GETITEMCOUNT); ++column) {
    wchar_t text[64] = L"";
    HDITEMW item{HDI_TEXT | HDI_WIDTH};
    item.pszText = text;
    item.cchTextMax = 64;
    Ask(header, HDM_GETITEMW, static_cast<WPARAM>(column), &item);
    EXPECT_LE(Measure(header, text, DT_SINGLELINE).cx + 12, item.cxy) << driver::NameOf(list) << column;
  }
}

// The last tab must end within the strip.
void ExpectTabs(HWND strip) {
  RECT tab{};
  Ask(strip, TCM_GETITEMRECT, static_cast<WPARAM>(Ask(strip, TCM_GETITEMCOUNT) - 1), &tab);
  EXPECT_LE(tab.right, ClientSize(strip).cx);
}

class LooksTest : public DialogTest {
 protected:
  LooksTest() { sample::MakeArchive(kArchive); }  // so that the CD panel is available
  ~LooksTest() override { DeleteFileA(kArchive); }

  static void Check(const DialogDriver& dialog) {
    for (const HWND window : driver::Inner(dialog.WaitForForm())) {
      const std::string name = driver::NameOf(window), kind = driver::ClassOf(window);
      if (name.empty() || !IsWindowVisible(window)) continue;
      if (kind == "SysListView32") ExpectHeadings(window);
      if (kind == "SysTabControl32") ExpectTabs(window);
      if (kind != "Static" && kind != "Button" && !name.starts_with("fr")) continue;
      std::wstring text = ToWide(driver::TextOf(window));
      for (const auto& [label, longest] : kLongest) text = name == label ? longest : text;
      const SIZE needed = Needed(window, text), room = ClientSize(window);
      const bool fits = text.empty() || (needed.cx <= room.cx && needed.cy <= room.cy);
      EXPECT_TRUE(fits || ToolTipOf(window) == text) << name << " needs " << needed.cx << " x " << needed.cy
                                                     << " and has " << room.cx << " x " << room.cy;
    }
  }
};

TEST_F(LooksTest, NoTextIsCut) {
  const char* const given = std::getenv("KX_DPI");
  const HDC screen = GetDC(nullptr);
  ASSERT_EQ(given == nullptr ? 96 : std::atoi(given), GetDeviceCaps(screen, LOGPIXELSX));
  ReleaseDC(nullptr, screen);
  Run([&](const DialogDriver& dialog) {
    dialog.Tree("tvwSets").Find({"Archive Sets", "Append new Archive CD ..."});
    dialog.SelectRun("1");
    for (const SIZE& size : kSizes) {
      SCOPED_TRACE(size.cx);
      SetWindowPos(dialog.WaitForForm(), nullptr, 0, 0, size.cx, size.cy, SWP_NOZORDER | SWP_NOACTIVATE);
      for (int tab = 3; tab >= 1; --tab) {
        dialog.Tab(tab);
        Check(dialog);
      }
      dialog.SelectNode("Archive Sets\\Append new Archive CD ...");
      dialog.ExpectVisible("frLoadCD", true);
      Check(dialog);
      dialog.SelectRun("1");
    }
    dialog.Close();
  });
}

TEST(Looks, AreTheSameAtOtherScales) {
  GetDesktopWindow();  // starts the desktop process, which would outlive a child that started it
  constexpr wchar_t kKey[] = L"Control Panel\\Desktop";
  SetEnvironmentVariableW(L"GTEST_OUTPUT", nullptr);
  for (const DWORD dpi : {144, 192}) {
    RegSetKeyValueW(HKEY_CURRENT_USER, kKey, L"LogPixels", REG_DWORD, &dpi, sizeof dpi);
    SetEnvironmentVariableW(L"KX_DPI", std::to_wstring(dpi).c_str());
    Program run(L'"' + ProgramPath() + L"\" --gtest_filter=LooksTest.*");
    EXPECT_EQ(0, run.Wait()) << run.Output();
  }
  RegDeleteKeyValueW(HKEY_CURRENT_USER, kKey, L"LogPixels");
}

}  // namespace
}  // namespace kxrestore::e2e
