// A tree with its window, and queries of the items that the native control holds.
#pragma once

#include <cstring>
#include <vector>

#include "host/driver/tree_driver.h"
#include "platform/win32/tree/tree_window.h"
#include "tests/win32/control_host.h"

namespace kxrestore::win32::test {

using controls::Node;
using controls::RedrawFreeze;
using controls::TreeView;

class TreeWindowTest : public ControlHost {
 protected:
  TreeWindowTest() {
    tree.SetImages(&images);
    Show(tree, MakeTreeWindow);
    tree.NodeClick = [this](Node node) { clicked.push_back(node.Index()); };
    tree.NodeCheck = [this](Node node) { checked.push_back(node.Index()); };
  }

  // Adds a drive with folders of files, a file before the folders and one after every second folder.
  void Fill(int folders, int files) {
    const RedrawFreeze freeze(tree);
    tree.Clear();
    const Node drive = tree.Add({}, "C:\\", "C:\\", 4);
    tree.Add(drive, {}, "before", 3);
    for (int folder = 0; folder < folders; ++folder) {
      const Node parent = tree.Add(drive, {}, "folder " + std::to_string(folder), 1);
      for (int file = 0; file < files; ++file) {
        tree.Add(parent, {}, "file " + std::to_string(file) + ".doc", 3, "tag");
      }
      if (folder % 2 == 0) tree.Add(drive, {}, "between", 3);
    }
  }
  void ExpandAll(bool expanded) {
    const auto count = static_cast<std::uint32_t>(tree.Count());
    for (std::uint32_t index = 1; index <= count; ++index) {
      Node node = tree.Item(index);
      if (node.HasChildren() && node.Expanded() != expanded) node.SetExpanded(expanded);
    }
  }

  // The same with all branches open.
  void FillOpen(int folders, int files) {
    Fill(folders, files);
    ExpandAll(true);
    Settle();
  }

  // The number of items in the native control. A message to the window would add the deferred items first, so
  // this calls the window procedure of the control's class.
  std::size_t Held() const {
    const auto procedure = reinterpret_cast<WNDPROC>(GetClassLongPtrW(window, GCLP_WNDPROC));
    return static_cast<std::size_t>(CallWindowProcW(procedure, window, TVM_GETCOUNT, 0, 0));
  }
  // Runs messages until the control holds that many items or, for 0, until the number no longer changes.
  void Settle(std::size_t wanted = 0) {
    std::size_t held = Held();
    DWORD since = GetTickCount();
    EXPECT_TRUE(PumpUntil([&] {
      if (std::exchange(held, Held()) != held) since = GetTickCount();
      return wanted != 0 ? held == wanted : GetTickCount() - since > 300;
    })) << held;
  }

  HTREEITEM Next(WPARAM relation, HTREEITEM item = nullptr) const {
    return reinterpret_cast<HTREEITEM>(Ask(window, TVM_GETNEXTITEM, relation, item));
  }
  void Select(HTREEITEM item) {
    Ask(window, TVM_SELECTITEM, TVGN_CARET, item);
    Pump();
  }
  HTREEITEM Root() const { return Next(TVGN_ROOT); }
  HTREEITEM Below(HTREEITEM parent, int position) const {
    HTREEITEM item = Next(TVGN_CHILD, parent);
    for (; position > 0; --position) item = Next(TVGN_NEXT, item);
    return item;
  }
  std::uint32_t NodeOf(HTREEITEM item) const {
    TVITEMW query{TVIF_PARAM | TVIF_HANDLE, item};
    Ask(window, TVM_GETITEMW, 0, &query);
    return static_cast<std::uint32_t>(query.lParam);
  }
  std::string LabelOf(HTREEITEM item) const {
    return driver::TreeDriver(window, std::chrono::seconds(1)).Text(item);
  }
  UINT State(HTREEITEM item, UINT mask) const {
    return static_cast<UINT>(
        SendMessageW(window, TVM_GETITEMSTATE, reinterpret_cast<WPARAM>(item), static_cast<LPARAM>(mask)));
  }
  int Box(HTREEITEM item) const { return static_cast<int>(State(item, TVIS_STATEIMAGEMASK) >> 12); }

  POINT PointOn(HTREEITEM item, UINT part) const {
    RECT row;
    std::memcpy(&row, &item, sizeof item);
    Ask(window, TVM_GETITEMRECT, TRUE, &row);
    TVHITTESTINFO hit{};
    hit.pt.y = (row.top + row.bottom) / 2;
    for (; hit.pt.x < row.right; ++hit.pt.x) {
      Ask(window, TVM_HITTEST, 0, &hit);
      if (hit.flags == part) return {hit.pt.x + 2, hit.pt.y};
    }
    ADD_FAILURE() << "the item has no such part";
    return {};
  }
  void PressOn(HTREEITEM item, UINT part, UINT message = WM_LBUTTONDOWN) {
    Press(PointOn(item, part), message);
  }

  // Compares the items below `parent` with the model, as far as nodes are expanded.
  void ExpectSameBelow(HTREEITEM parent, Node first) {
    HTREEITEM item = parent == nullptr ? Root() : Next(TVGN_CHILD, parent);
    for (Node node = first; node; node = node.Next(), item = Next(TVGN_NEXT, item)) {
      ASSERT_EQ(NodeOf(item), node.Index());
      ASSERT_EQ(State(item, TVIS_EXPANDED) != 0, node.Expanded()) << node.Text();
      if (node.Expanded()) ExpectSameBelow(item, node.Child());
    }
    ASSERT_EQ(item, nullptr);
  }

  controls::ImageList images{{"cfolder", "ofolder", "file", "drive"}};
  TreeView tree{"tvwDetails", &form, true};
  std::vector<std::uint32_t> clicked, checked;
};

}  // namespace kxrestore::win32::test
