#include "platform/win32/tree/tree_painter.h"

#include <algorithm>
#include <utility>

namespace kxrestore::win32 {

namespace {

constexpr int kImagePixels = 16;
constexpr int kIconGap = 3;  // pixels between icon and text

}  // namespace

void TreePainter::MakeImages() {
  m_pixels = MulDiv(kImagePixels, m_context.Dpi(), USER_DEFAULT_SCREEN_DPI);
  m_checkBoxes.MakeImages(m_pixels);
  if (m_tree.Images() == nullptr) return;
  ImageListHandle images = MakeImageList(m_context.Module(), *m_tree.Images(), m_pixels);
  m_native.Send(TVM_SETIMAGELIST, TVSIL_NORMAL, reinterpret_cast<LPARAM>(images.get()));
  m_images = std::move(images);
}

void TreePainter::Describe(TVITEMW& item, std::uint32_t node) const {
  if ((item.mask & TVIF_TEXT) != 0 && item.cchTextMax > 0) item.pszText[0] = L'\0';
  if ((item.mask & TVIF_CHILDREN) != 0) item.cChildren = node != 0 && At(node).HasChildren() ? 1 : 0;
  const int image = node != 0 && At(node).Image() > 0 ? At(node).Image() - 1 : I_IMAGENONE;
  if ((item.mask & TVIF_IMAGE) != 0) item.iImage = image;
  if ((item.mask & TVIF_SELECTEDIMAGE) != 0) item.iSelectedImage = image;
}

void TreePainter::DrawOver(const NMCUSTOMDRAW& draw, HTREEITEM item, std::uint32_t node) {
  m_checkBoxes.Draw(draw, CheckBoxes::ImageOf(At(node)));
  RECT text{};
  if (m_tree.Badge && m_tree.Badge(At(node)) && m_native.TextBounds(item, text)) DrawBadge(draw.hdc, text);
}

// A disc with a check mark in the colours of the selection, which every scheme makes distinct.
void TreePainter::DrawBadge(HDC dc, const RECT& text) const {
  const int side = std::max(m_pixels * 5 / 8, 8);
  const int right = text.left - kIconGap + side / 5;
  const int bottom = (text.top + text.bottom + m_pixels) / 2 + side / 8;
  const int left = right - side, top = bottom - side;
  const int state = SaveDC(dc);
  SelectObject(dc, GetStockObject(DC_BRUSH));
  SelectObject(dc, GetStockObject(DC_PEN));
  SetDCBrushColor(dc, GetSysColor(COLOR_HIGHLIGHT));
  SetDCPenColor(dc, GetSysColor(COLOR_WINDOW));
  Ellipse(dc, left, top, right, bottom);
  const HPEN pen = CreatePen(PS_SOLID, std::max(side / 6, 1), GetSysColor(COLOR_HIGHLIGHTTEXT));
  SelectObject(dc, pen);
  const POINT mark[] = {{left + side * 5 / 18, top + side / 2},
                        {left + side * 8 / 18, top + side * 12 / 18},
                        {left + side * 13 / 18, top + side * 6 / 18}};
  Polyline(dc, mark, 3);
  RestoreDC(dc, state);
  DeleteObject(pen);
}

}  // namespace kxrestore::win32
