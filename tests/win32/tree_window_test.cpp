// The tree's window: deferred items, ticks, selection and very large trees.
#include "controls/check_propagation.h"
#include "platform/win32/controls/theme.h"
#include "platform/win32/tree/tree_items.h"
#include "tests/win32/tree_fixture.h"

namespace kxrestore::win32::test {
namespace {

TEST_F(TreeWindowTest, ItemsAreCreatedWhenTheyCanBeSeen) {
  {
    const RedrawFreeze freeze(tree);
    tree.Add(tree.Add({}, {}, "root"), {}, "folder");
    Pump();
    EXPECT_EQ(Held(), 0u);
  }
  EXPECT_EQ(Held(), 1u);
  tree.Add(tree.Item(2), {}, "file");
  Pump();
  EXPECT_EQ(Held(), 1u);

  std::vector<std::uint32_t> expanded;
  tree.Expand = [&](Node node) { expanded.push_back(node.Index()); };
  PressOn(Root(), TVHT_ONITEMBUTTON);
  EXPECT_EQ(expanded, std::vector<std::uint32_t>{1});
  EXPECT_TRUE(tree.Item(1).Expanded());
  EXPECT_EQ(Held(), 2u);
  tree.Add(tree.Item(1), {}, "one more");
  tree.Add({}, {}, "second root");
  tree.Item(2).SetExpanded(true);
  Pump();
  ExpectSameBelow(nullptr, tree.FirstRoot());
  EXPECT_EQ(Held(), 5u);

  tree.Remove(tree.Item(2));
  tree.Item(1).SetText("new text");
  tree.Item(1).SetBold(true);
  Pump();
  ExpectSameBelow(nullptr, tree.FirstRoot());
  EXPECT_EQ(Held(), 3u);
  EXPECT_NE(State(Root(), TVIS_BOLD), 0u);
  EXPECT_EQ(LabelOf(Root()), "new text");
  TVITEMW query{TVIF_HANDLE | TVIF_CHILDREN, Root()};
  Ask(window, TVM_GETITEMW, 0, &query);
  EXPECT_EQ(query.cChildren, 1);

  tree.Item(1).SetExpanded(false);
  tree.Clear();
  tree.Add({}, {}, "other");
  Pump();
  EXPECT_EQ(Held(), 1u);
  EXPECT_TRUE(clicked.empty());
}

TEST_F(TreeWindowTest, InvisibleCharactersAreReplaced) {
  Node node = tree.Add({}, {}, "invoice\u202Efdp.exe");
  Pump();
  EXPECT_EQ(LabelOf(Root()), "invoice[U+202E]fdp.exe");
  node.SetText(std::string(300, '\x01'));
  Pump();
  EXPECT_EQ(ToWide(LabelOf(Root())), std::wstring(MAX_PATH - 1, L'\u2401')) << "the native limit of a label";
  EXPECT_EQ(node.Text(), std::string(300, '\x01'));
}

TEST_F(TreeWindowTest, TheUserTicks) {
  FillOpen(2, 40);
  const HTREEITEM before = Below(Root(), 0);
  const POINT box = PointOn(before, TVHT_ONITEMSTATEICON);
  Press(box);
  EXPECT_EQ(checked, std::vector<std::uint32_t>{2});
  EXPECT_TRUE(tree.Item(2).Checked());
  EXPECT_EQ(Box(before), 2);
  Press(box);
  Press(box, WM_LBUTTONDBLCLK);
  EXPECT_EQ(checked.size(), 3u);
  EXPECT_TRUE(tree.Item(2).Checked());
  EXPECT_TRUE(clicked.empty());

  Select(before);
  Key(VK_SPACE);
  EXPECT_EQ(Box(before), 1);

  // Messages that query or set an item's state act on the model, whether the item is in view or not.
  const HTREEITEM last = Below(Below(Root(), 3), 39);
  tree.Item(NodeOf(last)).SetChecked(true);
  EXPECT_EQ(Box(last), 2);
  TVITEMW item{TVIF_STATE | TVIF_HANDLE, last, INDEXTOSTATEIMAGEMASK(1), TVIS_STATEIMAGEMASK};
  Ask(window, TVM_SETITEMW, 0, &item);
  Pump();
  EXPECT_FALSE(tree.Item(NodeOf(last)).Checked());
  item.state = 0;
  Ask(window, TVM_GETITEMW, 0, &item);
  EXPECT_EQ(item.state & TVIS_STATEIMAGEMASK, UINT{INDEXTOSTATEIMAGEMASK(1)});

  tree.NodeCheck = [&](Node) {
    tree.Clear();
    tree.Add({}, {}, "new");
    Pump();
  };
  Press(box);
  EXPECT_EQ(Held(), 1u);
}

TEST_F(TreeWindowTest, TheBoxShowsTheModel) {
  const HTHEME theme = GetWindowTheme(window);
  tree.Add({}, {}, "root");
  Pump();
  int drawn[2];
  for (const int ticked : {0, 1}) {
    tree.Item(1).SetChecked(ticked == 1);
    RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    const POINT at = PointOn(Root(), TVHT_ONITEMSTATEICON);
    drawn[ticked] = DrawnPixels({at.x, at.y - 6, at.x + 12, at.y + 6});
  }
  EXPECT_GT(drawn[0], 10);
  EXPECT_GT(drawn[1], drawn[0] + 5);
  EXPECT_EQ(GetWindowTheme(window), theme) << "drawing a box keeps the theme of the control";
}

TEST_F(TreeWindowTest, TheUserChoosesANode) {
  FillOpen(3, 3);
  const HTREEITEM folder = Below(Root(), 1);
  const POINT label = PointOn(folder, TVHT_ONITEMLABEL);
  Press(label);
  EXPECT_EQ(clicked, std::vector<std::uint32_t>{3});
  Press(label);
  EXPECT_EQ(clicked, (std::vector<std::uint32_t>{3, 3}));
  PressOn(folder, TVHT_ONITEMBUTTON);
  EXPECT_FALSE(tree.Item(3).Expanded());
  EXPECT_EQ(clicked.size(), 2u);
  Key(VK_DOWN);
  EXPECT_EQ(clicked.back(), 7);
  Select(Root());
  EXPECT_EQ(clicked, (std::vector<std::uint32_t>{3, 3, 7, 1}));

  // A selection by the model raises no event, and opens the folders around the node.
  tree.SetSelectedItem(tree.Item(5));
  Pump();
  EXPECT_EQ(NodeOf(Next(TVGN_CARET)), 5u);
  EXPECT_TRUE(tree.Item(3).Expanded());
  EXPECT_EQ(clicked.size(), 4u);

  tree.NodeClick = [&](Node) {
    Fill(1, 1);
    Pump();
  };
  PressOn(Root(), TVHT_ONITEMLABEL);
  EXPECT_EQ(tree.Count(), 5u);
  EXPECT_EQ(Next(TVGN_CARET), nullptr);
}

TEST_F(TreeWindowTest, TheStarKeyExpandsTheBranch) {
  Fill(3, 3);
  Node nested = tree.Add(tree.Item(3), {}, "nested");
  tree.Add(nested, {}, "deep");
  Pump();
  Select(Root());
  Key(VK_MULTIPLY);
  Settle();
  for (const std::uint32_t index : {1U, 3U, nested.Index()}) EXPECT_TRUE(tree.Item(index).Expanded());
  ExpectSameBelow(nullptr, tree.FirstRoot());
}

TEST_F(TreeWindowTest, AHundredThousandNodes) {
  Fill(1000, 99);
  Settle(1);
  EXPECT_LT(Measure([&] {
              ExpandAll(true);
              Settle(tree.Count());
            }),
            2'000)
      << "added in slices";
  ExpectSameBelow(nullptr, tree.FirstRoot());
  Key(VK_END);
  TakeLongest();
  ExpandAll(false);
  Settle(1);
  EXPECT_LT(TakeLongest(), 400);
  EXPECT_LT(Measure([&] {
              ExpandAll(true);
              EXPECT_EQ(static_cast<std::size_t>(Ask(window, TVM_GETCOUNT)), tree.Count());
            }),
            2'000)
      << "a query that needs all items";
  EXPECT_LT(Measure([&] {
              tree.Item(1).SetChecked(true);
              controls::CheckChildren(tree.Item(1));
              Pump();
            }),
            200);
  EXPECT_EQ(Box(Below(Below(Root(), 1), 50)), 2);
  TakeLongest();
  const RECT corner{0, 0, 60, 60};
  EXPECT_GT(DrawnPixels(corner), 0);
  EXPECT_LT(Measure([&] {
              Fill(3, 3);
              context.FlushAll();
              UpdateWindow(window);
              EXPECT_GT(Held(), 10'000u);
              EXPECT_EQ(DrawnPixels(corner), 0) << "items that are being removed are not drawn";
              Settle(1);
            }),
            4'000);
  EXPECT_LT(TakeLongest(), 400);
  EXPECT_EQ(Box(Root()), 1);
}

TEST_F(TreeWindowTest, FoldersFiveThousandDeep) {
  Node folder = tree.Add({}, "C:\\", "C:\\", 4);
  for (int depth = 0; depth < 5000; ++depth) folder = tree.FindOrAddFolder(folder, "d", 1);
  const Node file = tree.Add(folder, {}, "file", 3, "tag");
  ExpandAll(true);
  Settle();
  EXPECT_EQ(Held(), 5002u);
  tree.SetSelectedItem(file);
  Settle();
  EXPECT_EQ(NodeOf(Next(TVGN_CARET)), file.Index());
  ExpandAll(false);
  Settle();
  ExpandAll(true);
  Settle();
  tree.Clear();
  Settle();
  EXPECT_EQ(Held(), 0u);
}

TEST_F(TreeWindowTest, AMillionNodes) {
  Fill(10'000, 99);
  Settle(1);
  TakeLongest();
  EXPECT_LT(Measure([&] {
              ExpandAll(true);
              Settle();
            }),
            3'000);
  EXPECT_LT(TakeLongest(), 400);
  const std::size_t ahead = Held();
  EXPECT_GE(ahead, TreeItems::kMaxAhead);
  EXPECT_LT(ahead, TreeItems::kMaxAhead + 200);

  // Beyond those, items are created as they come into view.
  Select(Root());
  Key(VK_END);
  Settle();
  EXPECT_GT(Held(), ahead + 1'000);
  EXPECT_LT(Held(), ahead + 10'000);
  HTREEITEM folder = Next(TVGN_CARET);
  while (!tree.Item(NodeOf(folder)).HasChildren()) folder = Next(TVGN_PREVIOUS, folder);
  EXPECT_EQ(NodeOf(Below(folder, 98)), NodeOf(folder) + 99);
  EXPECT_LT(Measure([&] {
              Fill(3, 3);
              Settle(1);
            }),
            8'000);
}

TEST_F(TreeWindowTest, AFolderOfAMillionFilesIsShownPieceByPiece) {
  Fill(1, 1'000'000);
  tree.Item(1).SetExpanded(true);
  Settle(4);
  const HTREEITEM folder = Below(Root(), 1);
  Select(folder);
  TakeLongest();
  Key(VK_RIGHT);
  EXPECT_LT(TakeLongest(), 400);
  EXPECT_TRUE(tree.Item(3).Expanded());
  const std::size_t first = Held();
  EXPECT_GT(first, 200u);
  EXPECT_LE(first, TreeItems::kFirstPiece + 4);
  HTREEITEM end = Below(folder, 0);
  for (HTREEITEM next = end; next != nullptr; next = Next(TVGN_NEXT, next)) end = next;
  Ask(window, TVM_ENSUREVISIBLE, 0, end);
  Settle();
  EXPECT_GT(Held(), first);
  EXPECT_LE(Held(), first + TreeItems::kNextPiece);
  EXPECT_EQ(NodeOf(Next(TVGN_NEXT, end)), NodeOf(end) + 1);
}

}  // namespace
}  // namespace kxrestore::win32::test
