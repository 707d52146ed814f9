// Draws the rows of a list: groups of file types and ticks not yet applied in bold, removed ticks struck out.
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
  // The text of an entry, shortened to a column of `width` pixels while rows are being painted.
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
