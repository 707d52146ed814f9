// The list's window: rows, columns, ticks, selection, the filter line and the footer.
#include "platform/win32/list/list_window.h"

#include <algorithm>
#include <vector>

#include "controls/list_menu.h"
#include "controls/list_rows.h"
#include "host/driver/list_driver.h"
#include "tests/win32/control_host.h"

namespace kxrestore::win32::test {
namespace {

using controls::AutoSelect;
using controls::ListColumn;

AutoSelect::Entry Entry(std::string_view name, std::int64_t size = 1) {
  AutoSelect::Entry entry;
  entry.name = entry.storedName = name;
  entry.size = size;
  return entry;
}

class ListWindowTest : public ControlHost {
 protected:
  void Show(std::initializer_list<AutoSelect::Entry> entries) {
    ControlHost::Show(list, MakeListWindow);
    for (const AutoSelect::Entry& entry : entries) list.Add(entry);
    WaitForRows(static_cast<int>(entries.size()));
  }
  void WaitForRows(int count) {
    EXPECT_TRUE(PumpUntil([&] { return Rows().Count() == count; }));
  }
  driver::ListDriver Rows() const { return {window, std::chrono::seconds(5)}; }
  LRESULT Ask(UINT message, WPARAM wide = 0, LPARAM extra = 0) const {
    return SendMessageW(window, message, wide, extra);
  }
  std::string Text(int row, int column = kName) const { return Rows().Text(row, column); }
  // The names from the first row on, each with its tick, "a+ b- ".
  std::string Names() const {
    std::string names;
    for (int row = 0; row < Rows().Count(); ++row) names += Text(row) + (Rows().Ticked(row) ? "+ " : "- ");
    return names;
  }
  void Select(int row) {
    LVITEMW item{};
    // Only one row can have the focus.
    item.state = item.stateMask = LVIS_SELECTED | (row < 0 ? 0U : LVIS_FOCUSED);
    Ask(LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    Pump();
  }
  bool Selected(int row) const {
    return Ask(LVM_GETITEMSTATE, static_cast<WPARAM>(row), LVIS_SELECTED) == LVIS_SELECTED;
  }
  void SortBy(int column) {
    NMLISTVIEW click{};
    click.hdr = {window, 0, static_cast<UINT>(LVN_COLUMNCLICK)};
    click.iItem = -1;
    click.iSubItem = column;
    driver::Ask(host, WM_NOTIFY, 0, &click);
    Pump();
  }
  HWND Heading() const { return reinterpret_cast<HWND>(Ask(LVM_GETHEADER)); }
  int Width(int column) const {
    return static_cast<int>(Ask(LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(column)));
  }
  void Drag(int column, int width) {
    HDITEMW dragged{HDI_WIDTH};
    dragged.cxy = width;
    driver::Ask(Heading(), HDM_SETITEMW, static_cast<WPARAM>(column), &dragged);
    Pump();
  }
  void WithControl(WPARAM key) {
    HoldControl(true);
    Ask(WM_KEYDOWN, key, 1);
    HoldControl(false);
    Pump();
  }
  // Chooses an item of the selected rows' menu by its letter.
  void Choose(wchar_t key) {
    PostMessageW(window, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(window), -1);
    PostMessageW(window, WM_CHAR, key, 1);
    Pump();
  }

  enum Column { kName, kFolder, kSize, kDate, kVersion, kBackup, kSet, kExtension };

  AutoSelect list{"asSearch", &form, AutoSelect::Style::kFiles};
};

TEST_F(ListWindowTest, RowsTicksAndOrderFollowTheModel) {
  Show({Entry("beta", 5), Entry("Alpha", 1'234'567), Entry("alpha", 30)});
  list.SetTicked(2, true);
  Pump();
  EXPECT_EQ(Names(), "beta- Alpha+ alpha- ");
  EXPECT_NE(Text(1, kSize), "1234567");
  SortBy(kName);
  EXPECT_EQ(Names(), "Alpha+ alpha- beta- ");
  SortBy(kName);
  EXPECT_TRUE(Names().starts_with("beta"));
  SortBy(kSize);
  EXPECT_EQ(Names(), "beta- alpha- Alpha+ ");

  // A tick by mouse or key reaches the entry of the row. A sort does not change the numbers of the entries.
  std::vector<std::size_t> changed;
  list.TickChange = [&](std::size_t number) { changed.push_back(number); };
  RECT row{LVIR_LABEL, 0, 0, 0};
  driver::Ask(window, LVM_GETITEMRECT, 0, &row);
  LVHITTESTINFO hit{};
  hit.pt.y = (row.top + row.bottom) / 2;
  for (; hit.pt.x < 100; ++hit.pt.x) {
    driver::Ask(window, LVM_HITTEST, 0, &hit);
    if ((hit.flags & LVHT_ONITEM) == LVHT_ONITEMSTATEICON) break;
  }
  Press({hit.pt.x + 3, hit.pt.y});
  EXPECT_EQ(changed, std::vector<std::size_t>{1});
  EXPECT_TRUE(list.TickedAt(1));
  Select(0);
  Select(-1);
  Key(VK_SPACE);
  EXPECT_EQ(changed.size(), 4u);

  list.Clear();
  AutoSelect::Entry group = Entry("z");
  group.isGroup = true;
  for (const AutoSelect::Entry& entry : {group, Entry("b"), Entry("a"), Entry("c")}) list.Add(entry);
  WaitForRows(4);
  for (const char* names : {"z- a- b- c- ", "z- c- b- a- "}) {
    SortBy(kName);
    EXPECT_EQ(Names(), names) << "groups stay on top";
  }
}

TEST_F(ListWindowTest, SelectedEntriesAreCopiedTickedAndFollowedThroughASort) {
  Show({Entry("d"), Entry("\xC3\xB6"), Entry("b"), Entry("a")});
  Select(2);
  Select(3);
  SortBy(kName);  // a, b, d, \u00F6
  EXPECT_TRUE(Selected(0) && Selected(1) && !Selected(2) && !Selected(3));
  EXPECT_EQ(Ask(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED), 0);
  WithControl('C');
  EXPECT_EQ(Clipboard(), "a\r\nb\r\n");

  list.FillMenu = [&](controls::Menu& menu) { controls::AddTickItems(menu, list); };
  Choose(L't');
  EXPECT_EQ(Names(), "a+ b+ d- \xC3\xB6- ");
  Choose(L'u');
  EXPECT_EQ(Names(), "a- b- d- \xC3\xB6- ");
  WithControl('A');
  EXPECT_EQ(Ask(LVM_GETSELECTEDCOUNT), 4);
  Choose(L'c');
  EXPECT_EQ(Clipboard(), "a\r\nb\r\nd\r\n\xC3\xB6\r\n");
  SortBy(kName);
  EXPECT_EQ(Ask(LVM_GETSELECTEDCOUNT), 4);

  // Typing finds the next name with that beginning, ignoring case.
  LVFINDINFOW wanted{LVFI_STRING | LVFI_PARTIAL, L"\u00D6"};
  EXPECT_EQ(driver::Ask(window, LVM_FINDITEMW, static_cast<WPARAM>(-1), &wanted), 0);
}

TEST_F(ListWindowTest, InvisibleCharactersAreReplacedOnScreenButNotInCopies) {
  AutoSelect::Entry entry = Entry("invoice\u202Efdp.exe\xED\xA0\x80");
  entry.setName = "Set\n1";
  Show({entry});
  EXPECT_EQ(Text(0), "invoice[U+202E]fdp.exe[U+D800]");
  EXPECT_EQ(Text(0, kSet), "Set\u240A1");
  Select(0);
  WithControl('C');
  EXPECT_EQ(Clipboard(), FromWide(L"invoice\u202Efdp.exe\xD800\r\n"));
}

TEST_F(ListWindowTest, ColumnsKeepTheirWidths) {
  Show({});
  const int folder = Width(kFolder), size = Width(kSize);
  list.Move(0, 0, 18'000, 7'500);
  Pump();
  EXPECT_GT(Width(kFolder), folder) << "the folder column takes the remaining width";
  EXPECT_EQ(Width(kSize), size);
  Drag(kName, 33);
  list.Move(0, 0, 9'000, 7'500);
  Pump();
  EXPECT_NEAR(Width(kName), 33, 1);
  EXPECT_EQ(Width(kSize), size);

  // The model keeps the arrangement, and the next window of the list restores it.
  int order[8] = {kSize, 0, 1, 3, 4, 5, 6, 7}, shown[8] = {};
  driver::Ask(window, LVM_SETCOLUMNORDERARRAY, 8, order);
  Drag(kSize, 44);
  list.SortBy(ListColumn::kSet, true);
  EXPECT_EQ(list.Look().columns.front().column, ListColumn::kSize);
  Show({});
  EXPECT_NEAR(Width(kSize), 44, 1);
  EXPECT_NEAR(Width(kName), 33, 1);
  driver::Ask(window, LVM_GETCOLUMNORDERARRAY, 8, shown);
  EXPECT_TRUE(std::equal(order, order + 8, shown));
  HDITEMW arrow{HDI_FORMAT};
  driver::Ask(Heading(), HDM_GETITEMW, kSet, &arrow);
  EXPECT_NE(arrow.fmt & HDF_SORTDOWN, 0);
}

TEST_F(ListWindowTest, AFooterShowsPendingTicksAndTheSelection) {
  constexpr wchar_t kNone[] = L"0 pending; 5 shown; 0 selected";
  list.DescribeFooter = [&] {
    return controls::FooterText{std::to_string(list.PendingCount()) + " pending",
                                std::to_string(list.Shown().entries) + " shown",
                                std::to_string(list.Selected().size) + " selected"};
  };
  Show({Entry("a", 1), Entry("b", 2), Entry("c", 4), Entry("d", 8), Entry("e", 16)});
  const HWND around = GetParent(window), footer = FindWindowExW(around, nullptr, WC_STATICW, kNone);
  ASSERT_NE(footer, nullptr);
  Select(0);
  Select(2);
  EXPECT_EQ(TextOf(footer), "0 pending; 5 shown; 5 selected");
  Key(VK_SPACE);
  EXPECT_EQ(list.PendingCount(), 2u);
  Select(-1);
  Key(VK_DELETE);
  EXPECT_EQ(TextOf(footer), "0 pending; 5 shown; 31 selected");

  EXPECT_EQ(Bounds(window).bottom, Bounds(footer).top);
  list.Move(0, 0, 3'000, 700);
  Pump();
  EXPECT_FALSE(IsWindowVisible(footer)) << "hidden without enough room";
  list.SetVisible(false);
  Pump();
  EXPECT_FALSE(IsWindowVisible(window));
  list.AttachPeer(nullptr);
  EXPECT_FALSE(IsWindow(around));
}

TEST_F(ListWindowTest, TheFilterLineFiltersTheRows) {
  AutoSelect::Entry report = Entry("C:\\Data\\Report.doc", 20 << 20), other = Entry("C:\\Data\\Other.doc");
  report.setId = 1;
  report.setName = "One";
  other.setId = 2;
  other.setName = "Two";
  Show({report, other});
  const LONG top = Bounds(window).top;
  WithControl('F');
  const HWND words = GetFocus();
  EXPECT_GT(Bounds(window).top, top);
  EXPECT_EQ(ControlWindow::Enclosing(words), ControlWindow::Of(list));
  SetWindowTextW(words, L"rep");
  Pump();
  EXPECT_EQ(Names(), "Report.doc- ");

  // Tab moves through the fields to the rows. Shift+Tab moves back.
  ControlWindow& control = *ControlWindow::Of(list);
  std::string way = ClassOf(words);
  for (int step = 0; GetFocus() != window && step < 9; ++step) {
    EXPECT_TRUE(control.HandleKey(VK_TAB));
    way += ' ' + ClassOf(GetFocus());
  }
  EXPECT_EQ(way, "Edit SysDateTimePick32 SysDateTimePick32 ComboBox ComboBox Button SysListView32");
  EXPECT_FALSE(control.HandleKey(VK_TAB)) << "Tab leaves the list";
  EXPECT_EQ(control.TabTarget(false), words);

  // The size is chosen in a combo box.
  SetWindowTextW(words, L"");
  const HWND sizes = FindWindowExW(GetParent(window), nullptr, WC_COMBOBOXW, nullptr);
  driver::Ask(sizes, CB_SETCURSEL, 3);
  driver::Ask(GetParent(window), WM_COMMAND, MAKEWPARAM(0, CBN_SELCHANGE), sizes);
  Pump();
  EXPECT_EQ(Names(), "Report.doc- ");
  ::SetFocus(words);
  EXPECT_TRUE(control.HandleKey(VK_RETURN));
  EXPECT_EQ(GetFocus(), window);
  EXPECT_TRUE(list.SelectedAt(1)) << "Enter moves to the rows";
  ::SetFocus(words);
  EXPECT_TRUE(control.HandleKey(VK_ESCAPE));
  Pump();
  EXPECT_EQ(GetFocus(), window);
  EXPECT_EQ(Rows().Count(), 2) << "Esc clears the filter";
  EXPECT_EQ(Bounds(window).top, top);
  EXPECT_FALSE(control.HandleKey(VK_ESCAPE));
}

TEST_F(ListWindowTest, AMillionEntries) {
  Show({});
  EXPECT_LT(Measure([&] {
              for (int number = 0; number < 1'000'000; ++number) {
                const std::string place = "C:\\Data\\Reports\\folder " + std::to_string(number % 977);
                list.Add(Entry(place + "\\File " + std::to_string(number) + ".doc", number % 5'000));
              }
              WaitForRows(1'000'000);
            }),
            4'000);
  EXPECT_LT(Measure([&] { SortBy(kName); }), 12'000);
  EXPECT_EQ(Text(0, kFolder) + Text(0), "C:\\Data\\Reports\\folder 0\\File 0.doc");
  EXPECT_LT(Measure([&] { SortBy(kSize); }), 6'000);
  EXPECT_EQ(Text(999'999, kFolder) + Text(999'999), "C:\\Data\\Reports\\folder 528\\File 999999.doc");
  list.TickAll(true);
  EXPECT_TRUE(Rows().Ticked(777'777));
}

}  // namespace
}  // namespace kxrestore::win32::test
