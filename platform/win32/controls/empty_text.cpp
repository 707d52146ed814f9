#include "platform/win32/controls/empty_text.h"

#include "platform/win32/wide_text.h"

namespace kxrestore::win32 {

namespace {

constexpr int kMarginDivisor = 12;  // of the width, on either side
constexpr int kTopDivisor = 5;      // of the height

}  // namespace

void DrawEmptyText(HWND window, HFONT font, const std::string& text, int top) {
  if (text.empty()) return;
  RECT area{};
  GetClientRect(window, &area);
  const HDC dc = GetDC(window);
  if (dc == nullptr) return;
  const int state = SaveDC(dc);
  SelectObject(dc, font);
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, GetSysColor(COLOR_GRAYTEXT));
  area.top += top;
  InflateRect(&area, -static_cast<int>(area.right) / kMarginDivisor, 0);
  const std::wstring wide = WideShownLines(text);
  constexpr UINT kFormat = DT_CENTER | DT_WORDBREAK | DT_NOPREFIX;
  RECT needed = area;
  DrawTextW(dc, wide.c_str(), static_cast<int>(wide.size()), &needed, kFormat | DT_CALCRECT);
  const LONG height = needed.bottom - needed.top;
  // Below the top only where there is room.
  if (height < area.bottom - area.top) area.top += (area.bottom - area.top - height) / kTopDivisor;
  DrawTextW(dc, wide.c_str(), static_cast<int>(wide.size()), &area, kFormat);
  RestoreDC(dc, state);
  ReleaseDC(window, dc);
}

void PaintBlank(HWND window) {
  PAINTSTRUCT paint{};
  const HDC dc = BeginPaint(window, &paint);
  FillRect(dc, &paint.rcPaint, GetSysColorBrush(COLOR_WINDOW));
  EndPaint(window, &paint);
}

}  // namespace kxrestore::win32
