// The selection of a list window. What the native control keeps selected are rows; what the user selected are
// entries, which the model knows.
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
  void SelectOnly(LRESULT row);  // and puts the focus there

  // Around a change of the rows. The entry that had the focus keeps it where KeepFocus was called before.
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
  bool m_showing = false;     // selecting rows that the model has selected
};

}  // namespace kxrestore::win32
