#include "platform/win32/list/list_painter.h"

#include "controls/list_rows.h"
#include "platform/win32/list/list_text.h"

namespace kxrestore::win32 {

namespace {

constexpr int kCellEdges = 180;  // twips of a cell's width that its text cannot use

}  // namespace

LRESULT ListPainter::Draw(NMLVCUSTOMDRAW& draw) {
  switch (draw.nmcd.dwDrawStage) {
    case CDDS_PREPAINT:
      m_painting = draw.nmcd.hdc;
      return CDRF_NOTIFYITEMDRAW | CDRF_NOTIFYPOSTPAINT;
    case CDDS_POSTPAINT:
      m_painting = nullptr;
      return CDRF_DODEFAULT;
    case CDDS_ITEMPREPAINT:
      return DrawRow(draw);
    default:
      return CDRF_DODEFAULT;
  }
}

bool ListPainter::IsBold(std::size_t number) const {
  if (m_list.GetStyle() == controls::AutoSelect::Style::kTypes) return m_list.At(number).isGroup;
  return m_list.PendingAt(number) && m_list.TickedAt(number);
}

LRESULT ListPainter::DrawRow(NMLVCUSTOMDRAW& draw) {
  const std::size_t number = m_list.Rows().Entry(draw.nmcd.dwItemSpec);
  if (number == 0) return CDRF_DODEFAULT;
  if (IsBold(number)) {
    SelectObject(draw.nmcd.hdc, m_context.Font({}, true));
    return CDRF_NEWFONT;
  }
  const bool types = m_list.GetStyle() == controls::AutoSelect::Style::kTypes;
  if (types || !m_list.PendingAt(number)) return CDRF_DODEFAULT;
  SelectObject(draw.nmcd.hdc, StruckOut());
  draw.clrText = GetSysColor(COLOR_GRAYTEXT);
  return CDRF_NEWFONT;
}

HFONT ListPainter::StruckOut() {
  if (!m_struckOut) {
    LOGFONTW description{};
    GetObjectW(m_context.Font(), sizeof description, &description);
    description.lfStrikeOut = TRUE;
    m_struckOut.reset(CreateFontIndirectW(&description));
  }
  return m_struckOut.get();
}

std::wstring ListPainter::Fit(std::wstring text, int width, std::size_t number) const {
  if (m_painting == nullptr) return text;
  const HGDIOBJ before = SelectObject(m_painting, m_context.Font({}, IsBold(number)));
  text = FitMiddle(m_painting, text, width - m_context.ToPixels(kCellEdges));
  SelectObject(m_painting, before);
  return text;
}

}  // namespace kxrestore::win32
