// The tool tips of a tree's nodes: shown when the pointer rests on a node, hidden on any other event.
#pragma once

#include <string>

#include "platform/win32/controls/window_context.h"
#include "platform/win32/tree/tree_items.h"

namespace kxrestore::win32 {

class TreeTips {
 public:
  TreeTips(WindowContext& context, controls::TreeView& tree, NativeTree& native, TreeItems& items)
      : m_context(context), m_tree(tree), m_native(native), m_items(items) {}
  ~TreeTips();
  TreeTips(const TreeTips&) = delete;
  TreeTips& operator=(const TreeTips&) = delete;

  // Called with each message before the tree's window handles it.
  void See(UINT message, LPARAM extra);
  bool Shown() const { return m_shown; }

 private:
  void FollowPointer(POINT place);
  void ShowAt(POINT place);
  void Show(POINT place, const std::string& text);
  void Hide();

  WindowContext& m_context;
  controls::TreeView& m_tree;
  NativeTree& m_native;
  TreeItems& m_items;
  HWND m_window = nullptr;
  HWND m_owner = nullptr;
  HTREEITEM m_hovered = nullptr;  // the item under the pointer
  bool m_shown = false;
};

}  // namespace kxrestore::win32
