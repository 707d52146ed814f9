#include "platform/win32/controls/footer_strip.h"

#include <commctrl.h>

#include "platform/win32/wide_text.h"

namespace kxrestore::win32 {

namespace {

constexpr int kEdge = 60;  // twips, left and right of the texts
constexpr int kGap = 180;  // between them
constexpr int kLine = 255;

}  // namespace

// The window text is for screen readers.
void FooterStrip::Create(HWND parent) {
  m_handle = CreateWindowExW(0, WC_STATICW, L"", WS_CHILD | WS_VISIBLE | SS_OWNERDRAW | SS_NOTIFY, 0, 0, 0, 0,
                             parent, nullptr, m_context.Module(), nullptr);
}

int FooterStrip::Height() const {
  return m_context.ToPixels(kLine);
}

void FooterStrip::Show(const controls::FooterText& text) {
  std::string whole;
  for (const std::string* const part : {&text.pending, &text.sums, &text.selected}) {
    if (!part->empty()) whole.append(whole.empty() ? "" : "; ").append(*part);
  }
  if (whole == m_whole && m_pending == WideShown(text.pending)) return;
  m_pending = WideShown(text.pending);
  m_sums = WideShown(text.sums);
  m_selected = WideShown(text.selected);
  m_whole = whole;
  SetWindowTextW(m_handle, WideShown(whole).c_str());
  ShowTip();
  InvalidateRect(m_handle, nullptr, TRUE);
}

void FooterStrip::Place(int left, int top, int width, int height) {
  SetWindowPos(m_handle, nullptr, left, top, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
  ShowWindow(m_handle, height > 0 ? SW_SHOWNA : SW_HIDE);
  ShowTip();
  InvalidateRect(m_handle, nullptr, TRUE);
}

void FooterStrip::OnDpiChanged() {
  if (m_handle == nullptr) return;
  ShowTip();
  InvalidateRect(m_handle, nullptr, TRUE);
}

void FooterStrip::ShowTip() {
  RECT area{};
  GetClientRect(m_handle, &area);
  int needed = m_context.ToPixels(2 * kEdge);
  for (const std::wstring* const text : {&m_pending, &m_sums, &m_selected}) {
    if (!text->empty()) needed += m_context.TextWidth(*text, text == &m_pending) + m_context.ToPixels(kGap);
  }
  m_context.SetToolTip(m_handle, needed - m_context.ToPixels(kGap) > area.right ? m_whole : std::string());
}

// Where both sums do not fit, only that of the selected rows is drawn.
bool FooterStrip::Draw(const DRAWITEMSTRUCT& draw) const {
  if (draw.hwndItem != m_handle) return false;
  const HDC dc = draw.hDC;
  RECT area = draw.rcItem;
  FillRect(dc, &area, GetSysColorBrush(COLOR_3DFACE));
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, GetSysColor(COLOR_BTNTEXT));
  area.left += m_context.ToPixels(kEdge);
  area.right -= m_context.ToPixels(kEdge);
  const int gap = m_context.ToPixels(kGap);
  const auto write = [&](const std::wstring& text, bool bold, UINT align) {
    if (text.empty() || area.left >= area.right) return;
    const HGDIOBJ before = SelectObject(dc, m_context.Font({}, bold));
    DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &area,
              DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS | align);
    SelectObject(dc, before);
  };
  write(m_pending, true, DT_LEFT);
  if (!m_pending.empty()) area.left += m_context.TextWidth(m_pending, true) + gap;
  const int selected = m_context.TextWidth(m_selected);
  if (selected > 0 && area.left + m_context.TextWidth(m_sums) + gap + selected > area.right) {
    write(m_selected, false, DT_LEFT);
    return true;
  }
  write(m_selected, false, DT_RIGHT);
  if (selected > 0) area.right -= selected + gap;
  write(m_sums, false, DT_LEFT);
  return true;
}

}  // namespace kxrestore::win32
