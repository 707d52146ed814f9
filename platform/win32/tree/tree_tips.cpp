#include "platform/win32/tree/tree_tips.h"

#include "platform/win32/wide_text.h"

namespace kxrestore::win32 {

namespace {

constexpr int kWidth = 6000;  // twips
constexpr int kOffset = 270;  // twips, below the pointer

TTTOOLINFOW ToolOf(HWND owner) {
  TTTOOLINFOW tool{TTTOOLINFOW_V1_SIZE};
  tool.uFlags = TTF_IDISHWND | TTF_TRACK | TTF_ABSOLUTE;
  tool.hwnd = owner;
  tool.uId = reinterpret_cast<UINT_PTR>(owner);
  return tool;
}

}  // namespace

TreeTips::~TreeTips() {
  if (m_window != nullptr) DestroyWindow(m_window);
}

void TreeTips::See(UINT message, LPARAM extra) {
  const POINT place{GET_X_LPARAM(extra), GET_Y_LPARAM(extra)};
  switch (message) {
    case WM_MOUSEMOVE:
      if (m_tree.Tip) FollowPointer(place);
      break;
    case WM_MOUSEHOVER:
      ShowAt(place);
      break;
    case WM_MOUSELEAVE:
    case WM_MOUSEWHEEL:
    case WM_KILLFOCUS:
      m_hovered = nullptr;
      Hide();
      break;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
    case WM_RBUTTONDOWN:
    case WM_KEYDOWN:
      Hide();
      break;
    default:
      break;
  }
}

void TreeTips::FollowPointer(POINT place) {
  const HTREEITEM item = m_native.HitTest(place).hItem;
  if (item == m_hovered && m_hovered != nullptr) return;
  m_hovered = item;
  Hide();
  TRACKMOUSEEVENT track{sizeof track, TME_HOVER | TME_LEAVE, m_native.Handle(), HOVER_DEFAULT};
  TrackMouseEvent(&track);
}

void TreeTips::ShowAt(POINT place) {
  const TVHITTESTINFO hit = m_native.HitTest(place);
  const std::uint32_t node = m_items.NodeOf(hit.hItem);
  if (node == 0 || (hit.flags & TVHT_ONITEM) == 0) return;
  const std::string text = m_tree.UserTip({&m_tree, node});
  ClientToScreen(m_native.Handle(), &place);
  Show(place, text);
}

void TreeTips::Show(POINT place, const std::string& text) {
  Hide();
  const HWND owner = m_native.Handle();
  if (text.empty() || owner == nullptr) return;
  std::wstring wide = WideShownLines(text);
  TTTOOLINFOW tool = ToolOf(owner);
  tool.lpszText = wide.data();
  if (m_window == nullptr) {
    const ActivationScope scope(m_context.ActivationContext());
    m_window =
        CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, 0,
                        0, 0, 0, m_context.FormHandle(), nullptr, m_context.Module(), nullptr);
    if (m_window == nullptr) return;
    m_owner = owner;
    SendMessageW(m_window, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
  } else {
    SendMessageW(m_window, TTM_UPDATETIPTEXTW, 0, reinterpret_cast<LPARAM>(&tool));
  }
  SendMessageW(m_window, TTM_SETMAXTIPWIDTH, 0, m_context.ToPixels(kWidth));
  SendMessageW(m_window, TTM_TRACKPOSITION, 0, MAKELPARAM(place.x, place.y + m_context.ToPixels(kOffset)));
  SendMessageW(m_window, TTM_TRACKACTIVATE, TRUE, reinterpret_cast<LPARAM>(&tool));
  m_shown = true;
}

void TreeTips::Hide() {
  if (!m_shown) return;
  m_shown = false;
  TTTOOLINFOW tool = ToolOf(m_owner);
  SendMessageW(m_window, TTM_TRACKACTIVATE, FALSE, reinterpret_cast<LPARAM>(&tool));
}

}  // namespace kxrestore::win32
