// What a tree shows beside the text of its items: images, check boxes, and the badge of files that are
// already marked.
#pragma once

#include <cstdint>

#include "controls/tree_view.h"
#include "platform/win32/controls/window_context.h"
#include "platform/win32/services/icons.h"
#include "platform/win32/tree/native_tree.h"
#include "platform/win32/tree/tree_check_boxes.h"

namespace kxrestore::win32 {

class TreePainter {
 public:
  TreePainter(WindowContext& context, controls::TreeView& tree, NativeTree& native, CheckBoxes& checkBoxes)
      : m_context(context), m_tree(tree), m_native(native), m_checkBoxes(checkBoxes) {}

  void MakeImages();  // for the current resolution
  // Answers TVN_GETDISPINFO for the item of a node; 0 for an item waiting for removal.
  void Describe(TVITEMW& item, std::uint32_t node) const;
  bool DrawsOverItems() const { return m_tree.CheckBoxes() || m_tree.Badge; }
  void DrawOver(const NMCUSTOMDRAW& draw, HTREEITEM item, std::uint32_t node);

 private:
  controls::Node At(std::uint32_t node) const { return {&m_tree, node}; }
  void DrawBadge(HDC dc, const RECT& text) const;

  WindowContext& m_context;
  controls::TreeView& m_tree;
  NativeTree& m_native;
  CheckBoxes& m_checkBoxes;
  ImageListHandle m_images;
  int m_pixels = 0;
};

}  // namespace kxrestore::win32
