// The columns of a list window: their headings, their widths, and the arrow of the one it is sorted by. One
// of them takes what the others leave, until the user moves a divider; then all stay as they are.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <span>
#include <vector>

#include "base/phrases.h"
#include "controls/auto_select.h"
#include "platform/win32/controls/window_context.h"
#include "platform/win32/list/list_order.h"

namespace kxrestore::win32 {

class ListColumns {
 public:
  ListColumns(WindowContext& context, controls::AutoSelect::Style style);

  void Make(HWND list);
  void Fit(HWND list);                    // after the list or the scale changed
  void Changed(const NMHEADERW& change);  // what the heading tells its list
  void ShowArrow(HWND list, const ListOrder& order) const;

  bool Exists(int index) const { return index >= 0 && index < static_cast<int>(m_columns.size()); }
  bool IsRightAligned(int index) const {
    return Exists(index) && m_columns[static_cast<std::size_t>(index)].rightAligned;
  }
  ListColumn At(int index) const { return m_columns[static_cast<std::size_t>(index)].column; }

 private:
  struct Column {
    Phrase heading;
    ListColumn column;
    int width;  // twips; 0: what the others leave
    bool rightAligned;
  };
  static const Column kFiles[5];
  static const Column kTypes[3];

  WindowContext& m_context;
  std::span<const Column> m_columns;
  std::vector<int> m_ofUser;  // twips; empty until the user moves a divider
  bool m_fitting = false;
};

}  // namespace kxrestore::win32
