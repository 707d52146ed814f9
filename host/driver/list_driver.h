// Operates a native list view in report mode whose rows have tick boxes.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <string>

#include "host/driver/native_windows.h"

namespace kxrestore::driver {

class ListDriver {
 public:
  ListDriver(HWND list, Timeout timeout) : m_list(list), m_timeout(timeout) {}

  int Count() const { return static_cast<int>(Ask(m_list, LVM_GETITEMCOUNT)); }
  std::string Text(int row, int column = 0) const;  // rows and columns from 0
  bool Ticked(int row) const;
  // The row with this text in its first column or, in a list of files, in folder and name together.
  int Find(const std::string& text) const;
  void Click(int row) const;   // on its text; returns when it is selected
  void Toggle(int row) const;  // its tick box; returns when it has changed

 private:
  HWND m_list;
  Timeout m_timeout;
};

}  // namespace kxrestore::driver
