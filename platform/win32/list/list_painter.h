// How the rows of a list are drawn: groups of file types stand out, and so do ticks that wait to be applied;
// what was unticked is struck out.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <string>

#include "controls/auto_select.h"
#include "platform/win32/controls/window_context.h"

namespace kxrestore::win32 {

class ListPainter {
 public:
  ListPainter(WindowContext& context, const controls::AutoSelect& list) : m_context(context), m_list(list) {}

  LRESULT Draw(NMLVCUSTOMDRAW& draw);  // the answer to NM_CUSTOMDRAW
  // The text of an entry as it is drawn in a column of this width; as it is while nothing is drawn.
  std::wstring Fit(std::wstring text, int width, std::size_t number) const;
  void OnDpiChanged() { m_struckOut.reset(); }

 private:
  bool IsBold(std::size_t number) const;
  LRESULT DrawRow(NMLVCUSTOMDRAW& draw);
  HFONT StruckOut();

  WindowContext& m_context;
  const controls::AutoSelect& m_list;
  FontHandle m_struckOut;
  HDC m_painting = nullptr;  // while rows are painted
};

}  // namespace kxrestore::win32
