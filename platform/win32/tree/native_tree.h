// Calls of a native tree control, bypassing other handlers of the window's messages. Their cost differs
// widely between systems; the notes say which ones to avoid.
#pragma once

#include <cstdint>
#include <string_view>

#include "platform/win32/win32.h"

namespace kxrestore::win32 {

class NativeTree {
 public:
  void Attach(HWND window);
  HWND Handle() const { return m_window; }

  void Detach() { m_window = nullptr; }  // before the window is destroyed; later calls do nothing

  LRESULT Send(UINT message, WPARAM wide = 0, LPARAM extra = 0) const {
    if (m_window == nullptr) return 0;
    return CallWindowProcW(m_procedure, m_window, message, wide, extra);
  }

  // Creates an item for a node. Images and the presence of children come from callbacks. The text is stored
  // in the item: with a callback the control would ask for it and measure it for every item at each layout.
  // `after` may be TVI_FIRST or TVI_LAST; for any other item, and for the parent, the control may search from
  // the oldest item on.
  HTREEITEM Insert(HTREEITEM parent, HTREEITEM after, std::uint32_t node, std::string_view text, UINT state);
  void Delete(HTREEITEM item) const { Send(TVM_DELETEITEM, 0, reinterpret_cast<LPARAM>(item)); }

  std::uint32_t Parameter(HTREEITEM item) const;  // the node of an item; 0 without one
  UINT State(HTREEITEM item, UINT mask) const {
    return static_cast<UINT>(Send(TVM_GETITEMSTATE, reinterpret_cast<WPARAM>(item), mask)) & mask;
  }
  void SetState(HTREEITEM item, UINT state, UINT mask) const;
  void SetText(HTREEITEM item, std::string_view text);
  void Expand(HTREEITEM item, bool expanded) const {
    Send(TVM_EXPAND, expanded ? TVE_EXPAND : TVE_COLLAPSE, reinterpret_cast<LPARAM>(item));
  }

  HTREEITEM Next(UINT relation, HTREEITEM item = nullptr) const {
    return reinterpret_cast<HTREEITEM>(Send(TVM_GETNEXTITEM, relation, reinterpret_cast<LPARAM>(item)));
  }
  HTREEITEM Selected() const { return Next(TVGN_CARET); }
  void Select(HTREEITEM item) const { Send(TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(item)); }
  void ScrollTo(HTREEITEM item) const {
    Send(TVM_SELECTITEM, TVGN_FIRSTVISIBLE, reinterpret_cast<LPARAM>(item));
  }
  TVHITTESTINFO HitTest(POINT point) const;
  bool TextBounds(HTREEITEM item, RECT& bounds) const;

  // Tells screen readers that the state of an item has changed.
  void Announce(HTREEITEM item) const;

  // Suspends layout and painting during its lifetime.
  class Pause {
   public:
    explicit Pause(NativeTree& tree);
    ~Pause();
    Pause(const Pause&) = delete;
    Pause& operator=(const Pause&) = delete;

   private:
    NativeTree& m_tree;
  };
  bool Paused() const { return m_pauses > 0; }

 private:
  wchar_t* WideText(std::string_view text);

  HWND m_window = nullptr;
  WNDPROC m_procedure = nullptr;
  int m_pauses = 0;
  bool m_shown = false;
  wchar_t m_text[2 * MAX_PATH];
};

}  // namespace kxrestore::win32
