// The check boxes of a tree. Every item has the same blank state image to reserve the space. The box is drawn
// over it after the item was painted, by the system's theme if there is one.
#pragma once

#include <optional>

#include "controls/tree_view.h"

#include "platform/win32/controls/theme.h"
#include "platform/win32/services/icons.h"
#include "platform/win32/tree/native_tree.h"

namespace kxrestore::win32 {

class CheckBoxes {
 public:
  // State images as other programs see them.
  static constexpr int kClear = 1;
  static constexpr int kTicked = 2;
  static constexpr int kMixed = 3;

  static int ImageOf(controls::Node node) {
    if (node.Mixed()) return kMixed;
    return node.Checked() ? kTicked : kClear;
  }

  CheckBoxes(NativeTree& native, bool shown) : m_native(native), m_shown(shown) {}

  // The state image of every item.
  UINT ItemState() const { return m_shown ? INDEXTOSTATEIMAGEMASK(kBlank) : 0; }

  void MakeImages(int pixels);
  void ThemeChanged() { m_theme.reset(); }
  void Draw(const NMCUSTOMDRAW& draw, int image);

 private:
  static constexpr int kBlank = 3;  // of the items, whatever their node's state

  bool FindPlace(const RECT& row, const RECT& text);

  NativeTree& m_native;
  bool m_shown;
  int m_pixels = 0;
  int m_beforeText = 0;  // from the left edge of the box to the text; 0: unknown
  ImageListHandle m_images;
  std::optional<ThemeHandle> m_theme;  // opened once: that is slow on systems without themes
};

}  // namespace kxrestore::win32
