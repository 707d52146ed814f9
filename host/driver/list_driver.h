// Works a native list view in report form whose rows carry tick boxes.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <string>

#include "host/driver/native_windows.h"

namespace kxrestore::driver {

class ListDriver {
 public:
  ListDriver(HWND list, Patience patience) : m_list(list), m_patience(patience) {}

  int Count() const { return static_cast<int>(Ask(m_list, LVM_GETITEMCOUNT)); }
  std::string Text(int row, int column = 0) const;  // rows and columns from 0
  bool Ticked(int row) const;
  int Find(const std::string& text) const;  // the row whose first column says so
  void Toggle(int row) const;               // its tick box; returns when that has changed

 private:
  HWND m_list;
  Patience m_patience;
};

}  // namespace kxrestore::driver
