#include "platform/win32/tree/native_tree.h"

#include <cstring>
#include <iterator>
#include <string>

#include "base/shown_text.h"
#include "base/text.h"

namespace kxrestore::win32 {

namespace {

bool HasVisibleStyle(HWND window) {
  return (GetWindowLongPtrW(window, GWL_STYLE) & WS_VISIBLE) != 0;
}

}  // namespace

void NativeTree::Attach(HWND window) {
  m_window = window;
  m_procedure = reinterpret_cast<WNDPROC>(GetClassLongPtrW(window, GCLP_WNDPROC));
}

wchar_t* NativeTree::WideText(std::string_view text) {
  constexpr std::size_t kLongest = MAX_PATH - 1;  // a tree control shows no more
  const std::string shown = Shown(text.size() > kLongest ? LeftCharacters(text, kLongest) : text);
  text = shown.size() > kLongest ? LeftCharacters(shown, kLongest) : shown;
  const int length = MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), m_text,
                                         static_cast<int>(std::size(m_text)) - 1);
  m_text[length] = L'\0';
  return m_text;
}

HTREEITEM NativeTree::Insert(HTREEITEM parent, HTREEITEM after, std::uint32_t node, std::string_view text,
                             UINT state) {
  TVINSERTSTRUCTW insert{parent, after, {}};
  TVITEMW& item = insert.item;
  item.mask = TVIF_TEXT | TVIF_PARAM | TVIF_STATE | TVIF_CHILDREN | TVIF_IMAGE | TVIF_SELECTEDIMAGE;
  item.pszText = WideText(text);
  item.lParam = node;
  item.state = state;
  item.stateMask = TVIS_EXPANDED | TVIS_BOLD | TVIS_STATEIMAGEMASK;
  item.cChildren = I_CHILDRENCALLBACK;
  item.iImage = item.iSelectedImage = I_IMAGECALLBACK;
  return reinterpret_cast<HTREEITEM>(Send(TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&insert)));
}

std::uint32_t NativeTree::Parameter(HTREEITEM item) const {
  TVITEMW query{TVIF_PARAM | TVIF_HANDLE};
  query.hItem = item;
  if (item == nullptr || Send(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&query)) == 0) return 0;
  return static_cast<std::uint32_t>(query.lParam);
}

void NativeTree::SetState(HTREEITEM item, UINT state, UINT mask) const {
  if (State(item, mask) == state) return;
  TVITEMW change{TVIF_STATE | TVIF_HANDLE};
  change.hItem = item;
  change.state = state;
  change.stateMask = mask;
  Send(TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&change));
}

void NativeTree::SetText(HTREEITEM item, std::string_view text) {
  TVITEMW change{TVIF_TEXT | TVIF_HANDLE};
  change.hItem = item;
  change.pszText = WideText(text);
  Send(TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&change));
}

TVHITTESTINFO NativeTree::HitTest(POINT point) const {
  TVHITTESTINFO hit{};
  hit.pt = point;
  Send(TVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit));
  return hit;
}

bool NativeTree::TextBounds(HTREEITEM item, RECT& bounds) const {
  std::memcpy(&bounds, &item, sizeof item);  // the message reads the item from the rectangle
  return Send(TVM_GETITEMRECT, TRUE, reinterpret_cast<LPARAM>(&bounds)) != 0;
}

void NativeTree::Announce(HTREEITEM item) const {
  if (item == nullptr) return;
  const LRESULT child = Send(TVM_MAPHTREEITEMTOACCID, reinterpret_cast<WPARAM>(item));
  NotifyWinEvent(EVENT_OBJECT_STATECHANGE, m_window, OBJID_CLIENT,
                 child != 0 ? static_cast<LONG>(child) : CHILDID_SELF);
}

NativeTree::Pause::Pause(NativeTree& tree) : m_tree(tree) {
  if (m_tree.m_pauses++ > 0) return;
  m_tree.m_shown = HasVisibleStyle(m_tree.m_window);
  m_tree.Send(WM_SETREDRAW, FALSE);
}

NativeTree::Pause::~Pause() {
  if (--m_tree.m_pauses > 0 || m_tree.m_window == nullptr) return;
  m_tree.Send(WM_SETREDRAW, TRUE);
  // Some systems show a hidden window whose redraw is resumed.
  if (!m_tree.m_shown && HasVisibleStyle(m_tree.m_window)) ShowWindow(m_tree.m_window, SW_HIDE);
}

}  // namespace kxrestore::win32
