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
  int Find(const std::string& text) const;  // the row with this text in its first column
  void Toggle(int row) const;               // its tick box; returns when it has changed

 private:
  HWND m_list;
  Timeout m_timeout;
};

}  // namespace kxrestore::driver
