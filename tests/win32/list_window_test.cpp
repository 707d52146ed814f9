#include "platform/win32/list/list_window.h"

#include <string>
#include <vector>

#include "tests/win32/control_host.h"

namespace kxrestore::win32 {
namespace {

using controls::AutoSelect;

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

  HWND window = nullptr;
};

TEST_F(ListWindowTest, RowsTicksAndOrderFollowTheModel) {
  AutoSelect list("asSearch", &form, AutoSelect::Style::kFiles);
  Show(list);
  list.Add(Entry("beta", 5));
  list.Add(Entry("Alpha", 1'234'567), true);
  list.Add(Entry("alpha", 30));
  PumpUntil([&] { return Ask(LVM_GETITEMCOUNT) == 3; });
  EXPECT_NE(Text(1, 1), L"1234567");
  const auto rows = [&] {  // with the tick of the first one
    return Text(0, 0) + L' ' + Text(1, 0) + L' ' + Text(2, 0) + (Box(0) == 2 ? L" +" : L" -");
  };
  EXPECT_EQ(rows(), L"beta Alpha alpha -");
  SortBy(0);
  EXPECT_EQ(rows(), L"Alpha alpha beta +");
  SortBy(0);
  EXPECT_EQ(rows().substr(0, 4), L"beta");
  SortBy(1);
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
  for (const char* name : {"d", "\xC3\xA4", "b", "a"}) list.Add(Entry(name, 1));
  PumpUntil([&] { return Ask(LVM_GETITEMCOUNT) == 4; });
  Select(2);
  Select(3);
  SortBy(0);  // a, b, d, \u00E4
  EXPECT_TRUE(Selected(0) && Selected(1) && !Selected(2) && !Selected(3));
  EXPECT_EQ(Ask(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED), 0);
  WithControl('C');
  EXPECT_EQ(Clipboard(), L"a\r\nb\r\n");

  // The menu's keys: tick, then untick, what is selected.
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
  EXPECT_EQ(Clipboard(), L"a\r\nb\r\nd\r\n\u00E4\r\n");
  SortBy(0);
  EXPECT_EQ(Ask(LVM_GETSELECTEDCOUNT), 4);

  // Typing goes to the next name that begins so, whatever its case.
  SetFocus(window);
  LVFINDINFOW wanted{LVFI_STRING | LVFI_PARTIAL, L"\u00C4"};
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
  EXPECT_EQ(Text(0, 3), L"Set\u240A1");
  Select(0);
  WithControl('C');
  EXPECT_EQ(Clipboard(), L"invoice\u202Efdp.exe\xD800\r\n");
  list.AttachPeer(nullptr);
}

TEST_F(ListWindowTest, ColumnsKeepTheWidthsTheyWereGiven) {
  AutoSelect list("asSearch", &form, AutoSelect::Style::kFiles);
  Show(list);
  const int name = Width(0), size = Width(1);
  list.Move(0, 0, 12'000, 7'500);
  Pump();
  EXPECT_GT(Width(0), name) << "the names take what there is";
  EXPECT_EQ(Width(1), size);
  const auto header = reinterpret_cast<HWND>(Ask(LVM_GETHEADER));
  HDITEMW dragged{HDI_WIDTH};
  dragged.cxy = 33;
  SendMessageW(header, HDM_SETITEMW, 0, reinterpret_cast<LPARAM>(&dragged));
  list.Move(0, 0, 9'000, 7'500);
  Pump();
  EXPECT_NEAR(Width(0), 33, 1);
  EXPECT_EQ(Width(1), size);
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
  EXPECT_EQ(Text(0, 0), L"C:\\Data\\Reports\\folder 0\\File 0.doc");
  EXPECT_LT(Measure([&] { SortBy(1); }), 6'000);
  EXPECT_EQ(Text(999'999, 0), L"C:\\Data\\Reports\\folder 528\\File 999999.doc");
  list.TickAll(true);
  EXPECT_EQ(Box(777'777), 2);
  list.AttachPeer(nullptr);
}

}  // namespace
}  // namespace kxrestore::win32
