// Synchronises the selection of a list window with the model: the native control selects rows, the model
// entries, which keep their selection when the rows change.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include "controls/auto_select.h"
#include "platform/win32/win32.h"

namespace kxrestore::win32 {

class ListSelection {
 public:
  explicit ListSelection(controls::AutoSelect& list) : m_list(list) {}
  void Attach(HWND window) { m_window = window; }

  // Of LVN_ITEMCHANGED and LVN_ODSTATECHANGED.
  void Changed(const NMLISTVIEW& change);
  void Changed(const NMLVODSTATECHANGE& change);
  void SelectAll();
  void SelectOnly(LRESULT row);  // and focuses it

  // Bracket a change of the rows. After KeepFocus the focus stays on the same entry.
  void KeepFocus();
  void BeforeOtherRows();
  void AfterOtherRows();

 private:
  LRESULT Send(UINT message, WPARAM wide = 0, LPARAM extra = 0) const {
    return SendMessageW(m_window, message, wide, extra);
  }
  void SetState(WPARAM row, UINT state, UINT mask) const;
  void Report(int first, int last, UINT before, UINT now);

  controls::AutoSelect& m_list;
  HWND m_window = nullptr;
  std::size_t m_focused = 0;  // entry
  bool m_showing = false;     // the native selection is being set from the model
};

}  // namespace kxrestore::win32
