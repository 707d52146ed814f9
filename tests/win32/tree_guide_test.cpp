// The tree's window: partly ticked folders, badges, tips, hints, menus and sorting.
#include "controls/check_propagation.h"
#include "tests/win32/tree_fixture.h"

namespace kxrestore::win32::test {
namespace {

TEST_F(TreeWindowTest, APartlyTickedFolderHasAThirdState) {
  FillOpen(2, 2);
  const HTREEITEM folder = Below(Root(), 1), file = Below(folder, 0);
  // The pixels of the box, and its state.
  const auto look = [&] {
    UpdateWindow(window);
    const POINT point = PointOn(folder, TVHT_ONITEMSTATEICON);
    std::vector<COLORREF> pixels;
    const HDC dc = GetDC(window);
    for (int i = 0; i < 14 * 14; ++i) pixels.push_back(GetPixel(dc, point.x + i / 14, point.y + i % 14 - 7));
    ReleaseDC(window, dc);
    return std::pair(pixels, Box(folder));
  };
  tree.NodeCheck = [](Node node) {
    controls::CheckParents(node);
    controls::CheckChildren(node);
    controls::ShowMixed(node);
  };
  const auto clear = look();
  PressOn(file, TVHT_ONITEMSTATEICON);
  const auto mixed = look();
  EXPECT_EQ(mixed.second, 3);
  EXPECT_EQ(Box(Root()), 3);
  EXPECT_EQ(Box(file), 2);
  PressOn(Below(folder, 1), TVHT_ONITEMSTATEICON);
  const auto ticked = look();
  EXPECT_EQ(ticked.second, 2);
  EXPECT_NE(clear.first, mixed.first);
  EXPECT_NE(mixed.first, ticked.first);
  EXPECT_NE(clear.first, ticked.first);
}

TEST_F(TreeWindowTest, ADoubleClickTicksAFileAndOpensAFolder) {
  FillOpen(1, 1);
  const HTREEITEM folder = Below(Root(), 1);
  PressOn(Below(folder, 0), TVHT_ONITEMLABEL, WM_LBUTTONDBLCLK);
  EXPECT_EQ(checked, (std::vector<std::uint32_t>{NodeOf(Below(folder, 0))}));
  PressOn(folder, TVHT_ONITEMLABEL, WM_LBUTTONDBLCLK);
  EXPECT_FALSE(tree.Item(NodeOf(folder)).Expanded());
  EXPECT_EQ(checked.size(), 1U);
}

TEST_F(TreeWindowTest, FoldersComeFirstAndNumbersSortByValue) {
  tree.SetSortKey(AppendSortKey);
  FillOpen(12, 11);
  EXPECT_EQ(LabelOf(Below(Root(), 2)), "folder 2");
  EXPECT_EQ(LabelOf(Below(Root(), 11)), "folder 11");
  EXPECT_EQ(LabelOf(Below(Root(), 12)), "before");
  EXPECT_EQ(LabelOf(Below(Below(Root(), 0), 2)), "file 2.doc");
  ExpectSameBelow(nullptr, tree.FirstRoot());
}

TEST_F(TreeWindowTest, AnEmptyTreeShowsItsHint) {
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

TEST_F(TreeWindowTest, BadgesAreDrawn) {
  FillOpen(1, 1);
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
  do {
    tip = FindWindowExW(nullptr, tip, TOOLTIPS_CLASSW, nullptr);
  } while (tip != nullptr &&
           (!IsWindowVisible(tip) || GetWindowThreadProcessId(tip, nullptr) != GetCurrentThreadId()));
  return tip;
}

TEST_F(TreeWindowTest, ATipDescribesTheNodeUnderThePointer) {
  FillOpen(1, 1);
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
  EXPECT_EQ(TextOf(ShownTip()), "tip of folder 0");
  rest(Root(), WM_MOUSEMOVE);  // on to another node
  EXPECT_EQ(ShownTip(), nullptr);
  rest(Root(), WM_MOUSEHOVER);
  EXPECT_EQ(TextOf(ShownTip()), "tip of C:\\");
  Key(VK_DOWN);
  EXPECT_EQ(ShownTip(), nullptr);
}

TEST_F(TreeWindowTest, TheMenuBelongsToTheNodeUnderThePointerOrTheSelectedOne) {
  FillOpen(1, 1);
  std::vector<std::size_t> subjects;
  tree.FillMenu = [&](controls::Menu& menu) { subjects.push_back(menu.Subject()); };
  const HTREEITEM folder = Below(Root(), 1);
  POINT place = PointOn(folder, TVHT_ONITEMLABEL);
  ClientToScreen(window, &place);
  SendMessageW(window, WM_CONTEXTMENU, 0, MAKELPARAM(place.x, place.y));
  Select(Root());
  SendMessageW(window, WM_CONTEXTMENU, 0, -1);
  EXPECT_EQ(subjects, (std::vector<std::size_t>{NodeOf(folder), NodeOf(Root())}));
}

}  // namespace
}  // namespace kxrestore::win32::test
