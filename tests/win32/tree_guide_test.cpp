// What a tree's window shows and offers beside its nodes: the third state, badges, tips, hints, menus, order.
#include "tests/win32/tree_fixture.h"

#include "controls/check_propagation.h"
#include "platform/win32/wide_text.h"

namespace kxrestore::win32 {
namespace {

TEST_F(TreeWindowTest, WhatIsTickedInPartLooksAndAnswersSo) {
  Fill(2, 2);
  ExpandAll(true);
  Settle();
  const HTREEITEM folder = Below(Root(), 1);
  const HTREEITEM file = Below(folder, 0);
  const auto box = [&] {
    const POINT point = PointOn(folder, TVHT_ONITEMSTATEICON);
    std::vector<COLORREF> pixels;
    const HDC dc = GetDC(window);
    for (int x = 0; x < 14; ++x) {
      for (int y = -7; y < 7; ++y) pixels.push_back(GetPixel(dc, point.x + x, point.y + y));
    }
    ReleaseDC(window, dc);
    return pixels;
  };
  const auto clear = box();
  tree.NodeCheck = [](Node node) {
    controls::CheckParents(node);
    controls::CheckChildren(node);
    controls::ShowMixed(node);
  };
  const auto tick = [&](HTREEITEM item) {
    Press(window, PointOn(item, TVHT_ONITEMSTATEICON));
    UpdateWindow(window);
  };
  tick(file);
  const auto mixed = box();
  EXPECT_EQ(Box(folder), 3);
  EXPECT_EQ(Box(Root()), 3);
  EXPECT_EQ(Box(file), 2);
  tick(Below(folder, 1));
  EXPECT_EQ(Box(folder), 2);
  const auto ticked = box();
  EXPECT_NE(clear, mixed);
  EXPECT_NE(mixed, ticked);
  EXPECT_NE(clear, ticked);
}

TEST_F(TreeWindowTest, ADoubleClickTicksAFileAndOpensAFolder) {
  Fill(1, 1);
  ExpandAll(true);
  Settle();
  const HTREEITEM folder = Below(Root(), 1);
  Press(window, PointOn(Below(folder, 0), TVHT_ONITEMLABEL), WM_LBUTTONDBLCLK);
  EXPECT_EQ(checked, (std::vector<std::uint32_t>{NodeOf(Below(folder, 0))}));
  Press(window, PointOn(folder, TVHT_ONITEMLABEL), WM_LBUTTONDBLCLK);
  EXPECT_FALSE(tree.Item(NodeOf(folder)).Expanded());
  EXPECT_EQ(checked.size(), 1U);
}

TEST_F(TreeWindowTest, FoldersComeFirstAndNamesAsPeopleCount) {
  tree.SetSortKey(AppendSortKey);
  Fill(12, 11);
  ExpandAll(true);
  Settle();
  EXPECT_EQ(TextOf(Below(Root(), 2)), L"folder 2");
  EXPECT_EQ(TextOf(Below(Root(), 11)), L"folder 11");
  EXPECT_EQ(TextOf(Below(Root(), 12)), L"before");
  EXPECT_EQ(TextOf(Below(Below(Root(), 0), 2)), L"file 2.doc");
  ExpectSameBelow(nullptr, tree.FirstRoot());
}

TEST_F(TreeWindowTest, AnEmptyTreeSaysWhatToDo) {
  RECT area{};
  GetClientRect(window, &area);
  const auto drawn = [&] {
    Pump();
    UpdateWindow(window);
    return DrawnPixels(area);
  };
  EXPECT_EQ(drawn(), 0);
  tree.SetEmptyText("Choose a backup on the left to see its files.");
  EXPECT_GT(drawn(), 200);
  tree.SetEmptyText({});
  EXPECT_EQ(drawn(), 0);
  tree.SetEmptyText("Nothing");
  Fill(1, 1);
  Settle();
  RECT lower = area;
  lower.top = 60;  // below the one item
  EXPECT_EQ(DrawnPixels(lower), 0);
}

TEST_F(TreeWindowTest, BadgesAreDrawnWhereTheTreeHasThem) {
  Fill(1, 1);
  ExpandAll(true);
  Settle();
  const HTREEITEM file = Below(Below(Root(), 1), 0);
  const POINT label = PointOn(file, TVHT_ONITEMLABEL);
  const RECT icon{label.x - 22, label.y - 10, label.x - 2, label.y + 10};
  const auto look = [&] {
    tree.BadgesChanged();
    Pump();
    UpdateWindow(window);
    return DrawnPixels(icon);
  };
  const int before = look();
  tree.Badge = [](Node node) { return node.Text() == "file 0.doc"; };
  EXPECT_GT(look(), before + 5);
}

HWND ShownTip() {
  HWND tip = nullptr;
  struct Finder {
    static BOOL CALLBACK Find(HWND candidate, LPARAM found) {
      wchar_t name[32] = L"";
      GetClassNameW(candidate, name, 32);
      if (!IsWindowVisible(candidate) || std::wstring(name) != TOOLTIPS_CLASSW) return TRUE;
      *reinterpret_cast<HWND*>(found) = candidate;
      return FALSE;
    }
  };
  EnumThreadWindows(GetCurrentThreadId(), Finder::Find, reinterpret_cast<LPARAM>(&tip));
  return tip;
}

TEST_F(TreeWindowTest, ATipTellsOfTheNodeUnderThePointer) {
  Fill(1, 1);
  ExpandAll(true);
  Settle();
  tree.Tip = [](Node node) { return "tip of " + std::string(node.Text()); };
  const auto rest = [&](HTREEITEM item, UINT message) {
    const POINT place = PointOn(item, TVHT_ONITEMLABEL);
    SendMessageW(window, message, 0, MAKELPARAM(place.x, place.y));
    Pump();
  };
  const HTREEITEM folder = Below(Root(), 1);
  rest(folder, WM_MOUSEMOVE);
  EXPECT_EQ(ShownTip(), nullptr);
  rest(folder, WM_MOUSEHOVER);
  ASSERT_NE(ShownTip(), nullptr);
  EXPECT_EQ(WindowText(ShownTip()), "tip of folder 0");
  rest(Root(), WM_MOUSEMOVE);  // on to another node
  EXPECT_EQ(ShownTip(), nullptr);
  rest(Root(), WM_MOUSEHOVER);
  EXPECT_EQ(WindowText(ShownTip()), "tip of C:\\");
  Key(window, VK_DOWN);
  EXPECT_EQ(ShownTip(), nullptr);
}

TEST_F(TreeWindowTest, TheMenuIsAboutTheNodeUnderThePointerOrTheSelectedOne) {
  Fill(1, 1);
  ExpandAll(true);
  Settle();
  std::vector<std::size_t> subjects;
  tree.FillMenu = [&](controls::Menu& menu) { subjects.push_back(menu.Subject()); };
  const HTREEITEM folder = Below(Root(), 1);
  POINT place = PointOn(folder, TVHT_ONITEMLABEL);
  ClientToScreen(window, &place);
  SendMessageW(window, WM_CONTEXTMENU, 0, MAKELPARAM(place.x, place.y));
  Select(Root());
  Pump();
  SendMessageW(window, WM_CONTEXTMENU, 0, -1);
  EXPECT_EQ(subjects, (std::vector<std::size_t>{NodeOf(folder), NodeOf(Root())}));
}

}  // namespace
}  // namespace kxrestore::win32
