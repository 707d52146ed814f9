// The columns of a list window: headings, widths, order and the sort arrow. One elastic column takes the
// width that the others leave, until the user moves a divider. The model stores the user's arrangement
// (AutoSelect::Look).
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <span>

#include "base/phrases.h"
#include "controls/auto_select.h"
#include "platform/win32/controls/window_context.h"

namespace kxrestore::win32 {

using controls::ListColumn;

class ListColumns {
 public:
  ListColumns(WindowContext& context, controls::AutoSelect& list);

  void Make(HWND list);
  void Fit(HWND list);                    // after a change of size or resolution
  void Arrange(HWND list);                // from the model
  void Changed(const NMHEADERW& change);  // HDN_ITEMCHANGED
  void ReportOrder(HWND list);            // after a column was dragged
  void ShowArrow(HWND list) const;

  bool Exists(int index) const { return index >= 0 && index < static_cast<int>(m_columns.size()); }
  bool IsRightAligned(int index) const {
    return Exists(index) && m_columns[static_cast<std::size_t>(index)].rightAligned;
  }
  ListColumn At(int index) const { return m_columns[static_cast<std::size_t>(index)].column; }

 private:
  struct Column {
    Phrase heading;
    ListColumn column;
    int width;  // twips; 0: elastic
    bool rightAligned;
  };
  static const Column kFiles[8];
  static const Column kTypes[3];
  const controls::ListLook::Column* OfUser(ListColumn column) const;

  WindowContext& m_context;
  controls::AutoSelect& m_list;
  std::span<const Column> m_columns;
  std::vector<controls::ListLook::Column> m_ofUser;  // empty until the user arranges them
  bool m_fitting = false;
};

}  // namespace kxrestore::win32
