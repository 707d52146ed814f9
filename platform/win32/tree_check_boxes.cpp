#include "platform/win32/tree_check_boxes.h"

namespace kxrestore::win32 {

void CheckBoxes::MakeImages(int pixels) {
  if (!m_shown) return;
  const HWND window = m_native.Handle();
  const LONG_PTR style = GetWindowLongPtrW(window, GWL_STYLE);
  if ((style & TVS_CHECKBOXES) == 0) {
    // The style tells others that there are boxes; the images that come with it are not used.
    SetWindowLongPtrW(window, GWL_STYLE, style | TVS_CHECKBOXES);
  }
  ImageListHandle images = MakeCheckBoxList(pixels);
  if (const HICON blank = ImageList_GetIcon(images.get(), 0, ILD_NORMAL)) {
    ImageList_ReplaceIcon(images.get(), -1, blank);
    DestroyIcon(blank);
  }
  const auto before = reinterpret_cast<HIMAGELIST>(
      m_native.Send(TVM_SETIMAGELIST, TVSIL_STATE, reinterpret_cast<LPARAM>(images.get())));
  if (before != nullptr && before != m_images.get()) ImageList_Destroy(before);
  m_images = std::move(images);
  m_pixels = pixels;
  m_beforeText = 0;
}

// Where the control puts state images is its own affair; it only says what lies under a point.
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

void CheckBoxes::Draw(const NMCUSTOMDRAW& draw, bool checked) {
  RECT text;
  if (!m_shown || !m_native.TextBounds(reinterpret_cast<HTREEITEM>(draw.dwItemSpec), text)) return;
  const RECT row{draw.rc.left, text.top, draw.rc.right, text.bottom};
  if (m_beforeText == 0 && !FindPlace(row, text)) return;
  const int top = row.top + (row.bottom - row.top - m_pixels) / 2;
  ImageList_Draw(m_images.get(), checked ? kTicked : kClear, draw.hdc, text.left - m_beforeText, top,
                 ILD_NORMAL);
}

}  // namespace kxrestore::win32
