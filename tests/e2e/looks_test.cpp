// How the dialog looks: at three scales and three sizes, on every page and with the CD panel, no text is cut
// and nothing lies on anything else. A scale belongs to a process, so this program runs itself again for
// each.
//
// With KX_SHOTS set to a folder, each view is left there as a bitmap.
#include <gtest/gtest.h>

#include <sqlite3.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "component/com/wide_text.h"
#include "tests/e2e/dialog_fixture.h"
#include "tests/e2e/program.h"

namespace kxrestore::e2e {
namespace {

using component::com::ToWide;
using driver::Ask;
using driver::DialogDriver;

constexpr int kMinimumWidth = 7000, kMinimumHeight = 6100;  // twips

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

void SaveBitmap(HWND window, const std::wstring& path) {
  const RECT place = Bounds(window);
  const LONG width = place.right - place.left, height = place.bottom - place.top;
  const ScreenDc screen(nullptr);
  BITMAPINFO info{};
  info.bmiHeader = {sizeof info.bmiHeader, width, height, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
  void* bits = nullptr;
  const HDC memory = CreateCompatibleDC(screen);
  const HBITMAP bitmap = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  const HGDIOBJ before = SelectObject(memory, bitmap);
  BitBlt(memory, 0, 0, width, height, screen, place.left, place.top, SRCCOPY);
  const DWORD size = static_cast<DWORD>((width * 3 + 3) / 4 * 4 * height);
  BITMAPFILEHEADER header{0x4D42, static_cast<DWORD>(sizeof header + sizeof info.bmiHeader) + size, 0, 0,
                          static_cast<DWORD>(sizeof header + sizeof info.bmiHeader)};
  std::ofstream file(path.c_str(), std::ios::binary);
  file.write(reinterpret_cast<const char*>(&header), sizeof header);
  file.write(reinterpret_cast<const char*>(&info.bmiHeader), sizeof info.bmiHeader);
  file.write(static_cast<const char*>(bits), size);
  SelectObject(memory, before);
  DeleteObject(bitmap);
  DeleteDC(memory);
}

class View {
 public:
  View(const DialogDriver& dialog, std::string where) : m_dialog(dialog), m_where(std::move(where)) {}

  void Check() {
    const HWND form = m_dialog.WaitForForm();
    Save(form);
    for (const HWND window : driver::Inner(form)) {
      const std::string name = driver::NameOf(window);
      if (name.empty() || !IsWindowVisible(window)) continue;
      CheckPlace(window, name);
      CheckText(window, name);
    }
    for (const auto& [label, text] : kLongest) {
      const HWND window = m_dialog.Control(label);
      if (IsWindowVisible(window)) CheckLabel(window, label, ToWide(text));
    }
  }

 private:
  void Save(HWND form) const {
    const wchar_t* const folder = _wgetenv(L"KX_SHOTS");
    if (folder == nullptr) return;
    Sleep(150);  // what was changed last has yet to be painted
    SaveBitmap(form, folder + (L"\\" + ToWide(m_where)) + L".bmp");
  }

  // By rule the heading carries the destination, the tab strip is the ground for what stands on its pages,
  // and the frame for archives takes the place of the tree.
  static bool MayOverlap(const std::string& one, const std::string& other) {
    const auto pair = [&](const char* a, const char* b) {
      return (one == a && other == b) || (one == b && other == a);
    };
    return one == "tbsOptions" || other == "tbsOptions" || pair("lblList", "lblRestorePath") ||
           pair("tvwDetails", "frLoadCD");
  }

  void CheckPlace(HWND window, const std::string& name) const {
    const HWND parent = GetAncestor(window, GA_PARENT);
    RECT inside{};
    GetClientRect(parent, &inside);
    MapWindowPoints(parent, nullptr, reinterpret_cast<POINT*>(&inside), 2);
    const RECT place = Bounds(window);
    EXPECT_TRUE(place.left >= inside.left && place.top >= inside.top && place.right <= inside.right &&
                place.bottom <= inside.bottom)
        << name << " leaves its container, " << m_where;
    for (HWND other = GetWindow(window, GW_HWNDNEXT); other; other = GetWindow(other, GW_HWNDNEXT)) {
      const std::string otherName = driver::NameOf(other);
      if (otherName.empty() || !IsWindowVisible(other) || MayOverlap(name, otherName)) continue;
      RECT shared{};
      const RECT otherPlace = Bounds(other);
      EXPECT_FALSE(IntersectRect(&shared, &place, &otherPlace))
          << name << " on " << otherName << ", " << m_where;
    }
  }

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

// With this file the dialog offers to add archives on CD.
class ArchiveFile {
 public:
  ArchiveFile() {
    std::filesystem::create_directories(m_folder);
    sqlite3* database = nullptr;
    sqlite3_open((m_folder / "CDArchive.mdb").string().c_str(), &database);
    sqlite3_exec(database, "CREATE TABLE ArchiveHeader (Volume, YYYY, MM, SetName)", nullptr, nullptr,
                 nullptr);
    sqlite3_close(database);
  }
  ~ArchiveFile() {
    std::error_code ignored;
    std::filesystem::remove_all("C:\\dev\\wrk\\qvs", ignored);
  }

 private:
  std::filesystem::path m_folder = "C:\\dev\\wrk\\qvs\\tarvane source\\client";
};

class LooksTest : public DialogTest {
 protected:
  ArchiveFile m_archive;
};

TEST_F(LooksTest, NothingIsCutOrCovered) {
  const char* const given = std::getenv("KX_DPI");
  const int dpi = given == nullptr ? 96 : std::atoi(given);
  ASSERT_EQ(dpi, GetDeviceCaps(ScreenDc(nullptr), LOGPIXELSX));
  RunDialog(m_object.Get(), [&](const DialogDriver& dialog) {
    dialog.Tree("tvwSets").Find({"Archive Sets", "Append new Archive CD ..."});
    dialog.SelectRun("1");
    dialog.Tick("C:\\");
    dialog.Click("cmdAction(0)");
    dialog.ExpectText("lblCounts(0)", SelectedText(3));
    dialog.Tab(2);
    dialog.Type("cboMask", "a.txt");
    dialog.Click("cmdSearch(2)");
    dialog.ExpectCount("asSearch", 2);
    const HWND form = dialog.WaitForForm();
    const auto twips = [&](int pixels) { return MulDiv(pixels, 1440, dpi); };
    for (const Size& size : kSizes) {
      SetWindowPos(form, nullptr, 0, 0, size.width, size.height, SWP_NOZORDER | SWP_NOACTIVATE);
      const RECT place = Bounds(form);
      EXPECT_GE(twips(place.right - place.left) + 8, kMinimumWidth);
      EXPECT_GE(twips(place.bottom - place.top) + 8, kMinimumHeight);
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

// The scale that programs started from now on have.
class Scale {
 public:
  explicit Scale(DWORD dpi) { Set(&dpi); }
  ~Scale() { Set(nullptr); }

 private:
  static void Set(const DWORD* dpi) {
    constexpr wchar_t kKey[] = L"Control Panel\\Desktop";
    if (dpi == nullptr) {
      RegDeleteKeyValueW(HKEY_CURRENT_USER, kKey, L"LogPixels");
    } else {
      RegSetKeyValueW(HKEY_CURRENT_USER, kKey, L"LogPixels", REG_DWORD, dpi, sizeof *dpi);
    }
  }
};

TEST(Looks, AreTheSameAtOtherScales) {
  GetDesktopWindow();  // what serves it would else be started by, and outlive, a program that is waited for
  wchar_t self[MAX_PATH];
  GetModuleFileNameW(nullptr, self, MAX_PATH);
  for (const int dpi : {144, 192}) {
    const Scale scale(static_cast<DWORD>(dpi));
    SetEnvironmentVariableW(L"KX_DPI", std::to_wstring(dpi).c_str());
    SetEnvironmentVariableW(L"GTEST_OUTPUT", nullptr);
    Program run(L'"' + std::wstring(self) + L"\" --gtest_filter=LooksTest.*");
    EXPECT_EQ(0, run.Wait()) << run.Output();
  }
}

}  // namespace
}  // namespace kxrestore::e2e
