#include "platform/win32/tree/tree_check_boxes.h"

namespace kxrestore::win32 {

void CheckBoxes::MakeImages(int pixels) {
  if (!m_shown) return;
  const HWND window = m_native.Handle();
  const LONG_PTR style = GetWindowLongPtrW(window, GWL_STYLE);
  if ((style & TVS_CHECKBOXES) == 0) {
    // The style tells other programs that there are boxes; its images are not used.
    SetWindowLongPtrW(window, GWL_STYLE, style | TVS_CHECKBOXES);
  }
  ImageListHandle images = MakeBlankList(kBlank + 1, pixels);
  const auto before = reinterpret_cast<HIMAGELIST>(
      m_native.Send(TVM_SETIMAGELIST, TVSIL_STATE, reinterpret_cast<LPARAM>(images.get())));
  if (before != nullptr && before != m_images.get()) ImageList_Destroy(before);
  m_images = std::move(images);
  ThemeChanged();
  m_pixels = pixels;
  m_beforeText = 0;
}

// The control does not tell where it draws state images, only what is under a point.
bool CheckBoxes::FindPlace(const RECT& row, const RECT& text) {
  const LONG y = (row.top + row.bottom) / 2;
  LONG x = text.left - 1;
  const LONG least = text.left - 8 * m_pixels;
  const auto onBox = [&] { return (m_native.HitTest({x, y}).flags & TVHT_ONITEM) == TVHT_ONITEMSTATEICON; };
  while (x > least && !onBox()) --x;
  while (x > least && onBox()) --x;
  if (x <= least || x < 0) return false;
  m_beforeText = text.left - (x + 1);
  return true;
}

void CheckBoxes::Draw(const NMCUSTOMDRAW& draw, int image) {
  RECT text;
  if (!m_shown || !m_native.TextBounds(reinterpret_cast<HTREEITEM>(draw.dwItemSpec), text)) return;
  const RECT row{draw.rc.left, text.top, draw.rc.right, text.bottom};
  if (m_beforeText == 0 && !FindPlace(row, text)) return;
  // A check box takes 13 of 16 parts of an image, in its middle.
  const int side = m_pixels * 13 / 16;
  RECT box{};
  box.left = text.left - m_beforeText + (m_pixels - side) / 2;
  box.top = row.top + (row.bottom - row.top - side) / 2;
  box.right = box.left + side;
  box.bottom = box.top + side;
  // Not opened for the window: the tree control would use it as its own theme and draw radio buttons in place
  // of expand buttons.
  if (!m_theme) m_theme.emplace(OpenThemeData(nullptr, L"BUTTON"));
  if (*m_theme) {
    constexpr int kStates[] = {CBS_UNCHECKEDNORMAL, CBS_CHECKEDNORMAL, CBS_MIXEDNORMAL};
    DrawThemeBackground(m_theme->get(), draw.hdc, BP_CHECKBOX, kStates[image - kClear], &box, nullptr);
  } else {
    DrawFrameControl(draw.hdc, &box, DFC_BUTTON,
                     (image == kMixed ? DFCS_BUTTON3STATE : DFCS_BUTTONCHECK) | DFCS_FLAT |
                         (image != kClear ? DFCS_CHECKED : 0U));
  }
}

}  // namespace kxrestore::win32
