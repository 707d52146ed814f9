#include "platform/win32/list/list_window.h"

#include <algorithm>
#include <string>
#include <vector>

#include "controls/list_menu.h"
#include "controls/list_rows.h"
#include "platform/win32/wide_text.h"
#include "tests/win32/control_host.h"

namespace kxrestore::win32 {
namespace {

using controls::AutoSelect;
using controls::ListColumn;

class ListWindowTest : public ControlHost {
 protected:
  HWND Show(AutoSelect& list) {
    Place(list);
    list.AttachPeer(MakeListWindow(context, list, Host()));
    window = HandleOf(list);
    ::SetFocus(window);
    Pump();
    return window;
  }

  LRESULT Ask(UINT message, WPARAM wide = 0, LPARAM extra = 0) const {
    return SendMessageW(window, message, wide, extra);
  }
  std::wstring Text(int row, int column) const {
    wchar_t text[80] = L"";
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = text;
    item.cchTextMax = 80;
    Ask(LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    return text;
  }
  int Box(int row) const {
    return static_cast<int>(Ask(LVM_GETITEMSTATE, static_cast<WPARAM>(row), LVIS_STATEIMAGEMASK)) >> 12;
  }
  void Select(int row) const {
    LVITEMW item{};
    // The focus is on one row only.
    item.state = item.stateMask = LVIS_SELECTED | (row < 0 ? 0U : LVIS_FOCUSED);
    Ask(LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
  }
  void SortBy(int column) {
    NMLISTVIEW click{};
    click.hdr = {window, 0, static_cast<UINT>(LVN_COLUMNCLICK)};
    click.iItem = -1;
    click.iSubItem = column;
    SendMessageW(Host(), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&click));
    Pump();
  }

  bool Selected(int row) const {
    return Ask(LVM_GETITEMSTATE, static_cast<WPARAM>(row), LVIS_SELECTED) == LVIS_SELECTED;
  }
  int Width(int column) const {
    return static_cast<int>(Ask(LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(column)));
  }
  void WithControl(WPARAM key) {
    BYTE keys[256]{};
    GetKeyboardState(keys);
    keys[VK_CONTROL] = 0x80;
    SetKeyboardState(keys);
    SendMessageW(window, WM_KEYDOWN, key, 1);
    keys[VK_CONTROL] = 0;
    SetKeyboardState(keys);
    Pump();
  }
  static std::wstring Clipboard() {
    std::wstring text;
    if (!OpenClipboard(nullptr)) return text;
    if (const HANDLE memory = GetClipboardData(CF_UNICODETEXT)) {
      if (const auto* held = static_cast<const wchar_t*>(GlobalLock(memory))) text = held;
      GlobalUnlock(memory);
    }
    CloseClipboard();
    return text;
  }

  static AutoSelect::Entry Entry(std::string_view name, std::int64_t size) {
    AutoSelect::Entry entry;
    entry.name = entry.storedName = name;
    entry.size = size;
    return entry;
  }

  static std::wstring Caption(HWND of) {
    wchar_t text[200] = L"";
    GetWindowTextW(of, text, 200);
    return text;
  }
  static std::wstring ClassOf(HWND of) {
    wchar_t text[40] = L"";
    GetClassNameW(of, text, 40);
    return text;
  }
  static int Top(HWND of) {
    RECT bounds{};
    GetWindowRect(of, &bounds);
    return bounds.top;
  }

  enum Column { kName, kFolder, kSize, kDate, kVersion, kBackup, kSet, kExtension };

  HWND window = nullptr;
};

TEST_F(ListWindowTest, RowsTicksAndOrderFollowTheModel) {
  AutoSelect list("asSearch", &form, AutoSelect::Style::kFiles);
  Show(list);
  list.Add(Entry("beta", 5));
  list.Add(Entry("Alpha", 1'234'567), true);
  list.Add(Entry("alpha", 30));
  PumpUntil([&] { return Ask(LVM_GETITEMCOUNT) == 3; });
  EXPECT_NE(Text(1, kSize), L"1234567");
  const auto rows = [&] {  // with the tick of the first one
    return Text(0, 0) + L' ' + Text(1, 0) + L' ' + Text(2, 0) + (Box(0) == 2 ? L" +" : L" -");
  };
  EXPECT_EQ(rows(), L"beta Alpha alpha -");
  SortBy(0);
  EXPECT_EQ(rows(), L"Alpha alpha beta +");
  SortBy(0);
  EXPECT_EQ(rows().substr(0, 4), L"beta");
  SortBy(kSize);
  EXPECT_EQ(rows(), L"beta alpha Alpha -");

  // A tick by the pointer and by the key reaches the entry, whatever its row; entry numbers stay.
  std::vector<std::size_t> changed;
  list.TickChange = [&](std::size_t number) { changed.push_back(number); };
  RECT row{LVIR_LABEL, 0, 0, 0};
  Ask(LVM_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&row));
  LVHITTESTINFO hit{};
  hit.pt.y = (row.top + row.bottom) / 2;
  for (; hit.pt.x < 100; ++hit.pt.x) {
    Ask(LVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit));
    if ((hit.flags & LVHT_ONITEM) == LVHT_ONITEMSTATEICON) break;
  }
  Press(window, {hit.pt.x + 3, hit.pt.y});
  EXPECT_EQ(changed, std::vector<std::size_t>{1});
  EXPECT_TRUE(list.TickedAt(1));
  Select(0);
  Select(-1);
  Key(window, VK_SPACE);
  EXPECT_EQ(changed.size(), 4u);

  list.Clear();
  list.Add(Entry("alone", 1));
  PumpUntil([&] { return Ask(LVM_GETITEMCOUNT) == 1; });
  EXPECT_EQ(Text(0, 0), L"alone");
  list.AttachPeer(nullptr);
}

TEST_F(ListWindowTest, SelectedEntriesAreCopiedTickedAndFollowedThroughASort) {
  AutoSelect list("asSearch", &form, AutoSelect::Style::kFiles);
  Show(list);
  for (const char* name : {"d", "\xC3\xB6", "b", "a"}) list.Add(Entry(name, 1));
  PumpUntil([&] { return Ask(LVM_GETITEMCOUNT) == 4; });
  Select(2);
  Select(3);
  SortBy(0);  // a, b, d, \u00F6
  EXPECT_TRUE(Selected(0) && Selected(1) && !Selected(2) && !Selected(3));
  EXPECT_EQ(Ask(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED), 0);
  WithControl('C');
  EXPECT_EQ(Clipboard(), L"a\r\nb\r\n");

  // The menu's keys: tick, then untick, what is selected.
  list.FillMenu = [&](controls::Menu& menu) { controls::AddTickItems(menu, list); };
  const auto choose = [&](wchar_t key) {
    PostMessageW(window, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(window), -1);
    PostMessageW(window, WM_CHAR, key, 1);
    Pump();
  };
  choose(L't');
  EXPECT_EQ(Box(0) * 10 + Box(1), 22);
  EXPECT_EQ(Box(2), 1);
  choose(L'u');
  EXPECT_EQ(Box(0) * 10 + Box(1), 11);

  WithControl('A');
  EXPECT_EQ(Ask(LVM_GETSELECTEDCOUNT), 4);
  choose(L'c');
  EXPECT_EQ(Clipboard(), L"a\r\nb\r\nd\r\n\u00F6\r\n");
  SortBy(0);
  EXPECT_EQ(Ask(LVM_GETSELECTEDCOUNT), 4);

  // Typing goes to the next name that begins so, whatever its case.
  SetFocus(window);
  LVFINDINFOW wanted{LVFI_STRING | LVFI_PARTIAL, L"\u00D6"};
  EXPECT_EQ(Ask(LVM_FINDITEMW, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&wanted)), 0);
  list.AttachPeer(nullptr);
}

TEST_F(ListWindowTest, WhatCannotBeSeenIsDrawnAsAStandInAndCopiedAsItIs) {
  AutoSelect list("asSearch", &form, AutoSelect::Style::kFiles);
  Show(list);
  AutoSelect::Entry entry = Entry("invoice\u202Efdp.exe\xED\xA0\x80", 1);
  entry.setName = "Set\n1";
  list.Add(entry);
  PumpUntil([&] { return Ask(LVM_GETITEMCOUNT) == 1; });
  EXPECT_EQ(Text(0, 0), L"invoice[U+202E]fdp.exe[U+D800]");
  EXPECT_EQ(Text(0, kSet), L"Set\u240A1");
  Select(0);
  WithControl('C');
  EXPECT_EQ(Clipboard(), L"invoice\u202Efdp.exe\xD800\r\n");
  list.AttachPeer(nullptr);
}

TEST_F(ListWindowTest, ColumnsKeepTheWidthsTheyWereGiven) {
  AutoSelect list("asSearch", &form, AutoSelect::Style::kFiles);
  Show(list);
  const int folder = Width(kFolder), size = Width(kSize);
  list.Move(0, 0, 18'000, 7'500);
  Pump();
  EXPECT_GT(Width(kFolder), folder) << "the folders take what there is";
  EXPECT_EQ(Width(kSize), size);
  const auto header = reinterpret_cast<HWND>(Ask(LVM_GETHEADER));
  HDITEMW dragged{HDI_WIDTH};
  dragged.cxy = 33;
  SendMessageW(header, HDM_SETITEMW, 0, reinterpret_cast<LPARAM>(&dragged));
  list.Move(0, 0, 9'000, 7'500);
  Pump();
  EXPECT_NEAR(Width(0), 33, 1);
  EXPECT_EQ(Width(kSize), size);

  // The model knows the arrangement, and another window of the same list takes it over.
  int order[8] = {kSize, 0, 1, 3, 4, 5, 6, 7};
  Ask(LVM_SETCOLUMNORDERARRAY, 8, reinterpret_cast<LPARAM>(order));
  dragged.cxy = 44;
  SendMessageW(header, HDM_SETITEMW, kSize, reinterpret_cast<LPARAM>(&dragged));
  Pump();
  list.SortBy(ListColumn::kSet, true);
  EXPECT_EQ(list.Look().columns.front().column, ListColumn::kSize);
  list.AttachPeer(nullptr);
  Show(list);
  EXPECT_NEAR(Width(kSize), 44, 1);
  EXPECT_NEAR(Width(0), 33, 1);
  int shown[8] = {};
  Ask(LVM_GETCOLUMNORDERARRAY, 8, reinterpret_cast<LPARAM>(shown));
  EXPECT_TRUE(std::equal(order, order + 8, shown));
  HDITEMW arrow{HDI_FORMAT};
  SendMessageW(reinterpret_cast<HWND>(Ask(LVM_GETHEADER)), HDM_GETITEMW, kSet,
               reinterpret_cast<LPARAM>(&arrow));
  EXPECT_NE(arrow.fmt & HDF_SORTDOWN, 0);
  list.AttachPeer(nullptr);
}

TEST_F(ListWindowTest, AFooterSaysWhatIsPendingAndSelected) {
  AutoSelect list("asSearch", &form, AutoSelect::Style::kFiles);
  list.DescribeFooter = [&] {
    return controls::FooterText{std::to_string(list.PendingCount()) + " pending",
                                std::to_string(list.Shown().entries) + " shown",
                                std::to_string(list.Selected().size) + " selected"};
  };
  Show(list);
  const HWND around = GetParent(window),
             footer = FindWindowExW(around, nullptr, WC_STATICW, L"0 pending; 0 shown; 0 selected");
  ASSERT_NE(footer, nullptr);
  for (int i = 0; i < 5; ++i) list.Add(Entry(std::string(1, static_cast<char>('a' + i)), 1 << i));
  PumpUntil([&] { return Ask(LVM_GETITEMCOUNT) == 5; });
  Select(0);
  Select(2);
  Pump();
  EXPECT_EQ(Narrow(Caption(footer)), "0 pending; 5 shown; 5 selected");
  Key(window, VK_SPACE);
  EXPECT_EQ(list.PendingCount(), 2u);
  Select(-1);
  Key(window, VK_DELETE);
  EXPECT_EQ(Narrow(Caption(footer)), "0 pending; 5 shown; 31 selected");

  RECT rows{}, line{};
  GetWindowRect(window, &rows);
  GetWindowRect(footer, &line);
  EXPECT_EQ(rows.bottom, line.top);
  list.Move(0, 0, 3'000, 700);
  Pump();
  EXPECT_FALSE(IsWindowVisible(footer)) << "where there is no room for both";
  list.SetVisible(false);
  Pump();
  EXPECT_FALSE(IsWindowVisible(window));
  list.AttachPeer(nullptr);
  EXPECT_FALSE(IsWindow(around));
}

TEST_F(ListWindowTest, TheFilterLineNarrowsTheRowsDown) {
  AutoSelect list("asSearch", &form, AutoSelect::Style::kFiles);
  Show(list);
  AutoSelect::Entry entry = Entry("C:\\Data\\Report.doc", 20 << 20);
  entry.setId = 1;
  entry.setName = "One";
  list.Add(entry);
  entry = Entry("C:\\Data\\Other.doc", 1);
  entry.setId = 2;
  entry.setName = "Two";
  list.Add(entry);
  PumpUntil([&] { return Ask(LVM_GETITEMCOUNT) == 2; });
  const int top = Top(window);
  WithControl('F');
  const HWND words = GetFocus();
  EXPECT_EQ(ClassOf(words), L"Edit");
  EXPECT_GT(Top(window), top);
  EXPECT_EQ(ControlWindow::Enclosing(words), ControlWindow::Of(list));
  SetWindowTextW(words, L"rep");
  Pump();
  EXPECT_EQ(Ask(LVM_GETITEMCOUNT), 1);
  EXPECT_EQ(Text(0, 0), L"Report.doc");

  // Tab goes through the fields to the rows, Shift+Tab back.
  ControlWindow& control = *ControlWindow::Of(list);
  std::vector<std::wstring> way;
  while (GetFocus() != window && way.size() < 9) {
    EXPECT_TRUE(control.HandleKey(VK_TAB));
    way.push_back(ClassOf(GetFocus()));
  }
  EXPECT_EQ(way, (std::vector<std::wstring>{L"SysDateTimePick32", L"SysDateTimePick32", L"ComboBox",
                                            L"ComboBox", L"Button", L"SysListView32"}));
  EXPECT_FALSE(control.HandleKey(VK_TAB)) << "on to the next control";
  EXPECT_EQ(control.TabTarget(false), words);

  // Sizes and sets by choice.
  SetWindowTextW(words, L"");
  const HWND sizes = FindWindowExW(GetParent(window), nullptr, WC_COMBOBOXW, nullptr);
  SendMessageW(sizes, CB_SETCURSEL, 3, 0);
  SendMessageW(GetParent(window), WM_COMMAND, MAKEWPARAM(0, CBN_SELCHANGE), reinterpret_cast<LPARAM>(sizes));
  Pump();
  EXPECT_EQ(Text(0, 0) + L" " + std::to_wstring(Ask(LVM_GETITEMCOUNT)), L"Report.doc 1");
  ::SetFocus(words);
  EXPECT_TRUE(control.HandleKey(VK_RETURN));
  EXPECT_EQ(GetFocus(), window);
  EXPECT_TRUE(list.SelectedAt(1)) << "Enter goes on into the rows";
  ::SetFocus(words);
  EXPECT_TRUE(control.HandleKey(VK_ESCAPE));
  Pump();
  EXPECT_EQ(GetFocus(), window);
  EXPECT_EQ(Ask(LVM_GETITEMCOUNT), 2) << "and the filter is open again";
  EXPECT_EQ(Top(window), top);
  EXPECT_FALSE(control.HandleKey(VK_ESCAPE));
  list.AttachPeer(nullptr);
}

TEST_F(ListWindowTest, GroupsOfTypesStayOnTop) {
  AutoSelect list("asFiles", &form, AutoSelect::Style::kTypes);
  Show(list);
  AutoSelect::Entry group = Entry("Music", 9);
  group.isGroup = true;
  list.Add(group);
  for (const char* name : {".wav", ".mp3"}) list.Add(Entry(name, 1));
  PumpUntil([&] { return Ask(LVM_GETITEMCOUNT) == 3; });
  for (const wchar_t* second : {L".mp3", L".wav"}) {
    SortBy(0);
    EXPECT_EQ(Text(0, 0), L"Music");
    EXPECT_EQ(Text(1, 0), second);
  }
  list.AttachPeer(nullptr);
}

TEST_F(ListWindowTest, AMillionEntries) {
  AutoSelect list("asRestoreList", &form, AutoSelect::Style::kFiles);
  Show(list);
  const double add = Measure([&] {
    for (int number = 0; number < 1'000'000; ++number) {
      list.Add(Entry("C:\\Data\\Reports\\folder " + std::to_string(number % 977) + "\\File " +
                         std::to_string(number) + ".doc",
                     number % 5'000));
    }
    PumpUntil([&] { return Ask(LVM_GETITEMCOUNT) == 1'000'000; });
  });
  EXPECT_LT(add, 4'000);
  EXPECT_LT(Measure([&] { SortBy(0); }), 12'000);
  EXPECT_EQ(Text(0, kFolder) + Text(0, 0), L"C:\\Data\\Reports\\folder 0\\File 0.doc");
  EXPECT_LT(Measure([&] { SortBy(kSize); }), 6'000);
  EXPECT_EQ(Text(999'999, kFolder) + Text(999'999, 0), L"C:\\Data\\Reports\\folder 528\\File 999999.doc");
  list.TickAll(true);
  EXPECT_EQ(Box(777'777), 2);
  list.AttachPeer(nullptr);
}

}  // namespace
}  // namespace kxrestore::win32
