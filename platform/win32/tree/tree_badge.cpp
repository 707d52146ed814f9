#include "platform/win32/tree/tree_badge.h"

#include <algorithm>

namespace kxrestore::win32 {

namespace {

constexpr int kIconGap = 3;  // pixels between icon and text

}  // namespace

// A disc with a check mark in the colours of the selection, which every scheme makes distinct.
void DrawBadge(HDC dc, const RECT& text, int pixels) {
  const int side = std::max(pixels * 5 / 8, 8);
  const int right = text.left - kIconGap + side / 5;
  const int bottom = (text.top + text.bottom + pixels) / 2 + side / 8;
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
