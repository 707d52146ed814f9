// Handles messages of the native control that come from other programs or from other code, above all from
// screen readers. They read the states of the model; changes are reported as user input.
#pragma once

#include <functional>
#include <optional>

#include "platform/win32/tree/tree_items.h"

namespace kxrestore::win32 {

class TreeQuestions {
 public:
  TreeQuestions(controls::TreeView& tree, NativeTree& native, TreeItems& items)
      : m_tree(tree), m_native(native), m_items(items) {}

  std::function<void(std::uint32_t node)> Toggled;
  std::function<void(std::uint32_t node, bool expanded)> Expanded;

  // Nothing for messages that the control itself answers. All items must exist.
  std::optional<LRESULT> Answer(UINT message, WPARAM wide, LPARAM extra);

 private:
  controls::Node At(std::uint32_t node) const { return {&m_tree, node}; }
  UINT TrueState(HTREEITEM item, UINT state, UINT mask) const;

  controls::TreeView& m_tree;
  NativeTree& m_native;
  TreeItems& m_items;
};

}  // namespace kxrestore::win32
