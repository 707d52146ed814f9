#include "platform/win32/list/list_columns.h"

#include <algorithm>
#include <string>

#include "platform/win32/wide_text.h"

namespace kxrestore::win32 {

namespace {

constexpr int kLeastWidth = 1800;  // twips, of the elastic column

HWND HeadingOf(HWND list) {
  return reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0));
}

}  // namespace

const ListColumns::Column ListColumns::kFiles[] = {
    {Phrase::kColumnName, ListColumn::kName, 0, false},
    {Phrase::kColumnSize, ListColumn::kSize, 1150, true},
    {Phrase::kColumnExtension, ListColumn::kExtension, 1050, false},
    {Phrase::kColumnSet, ListColumn::kSet, 1500, false},
    {Phrase::kColumnDate, ListColumn::kDate, 2050, false}};
const ListColumns::Column ListColumns::kTypes[] = {
    {Phrase::kColumnType, ListColumn::kName, 1350, false},
    {Phrase::kColumnDescription, ListColumn::kExtension, 0, false},
    {Phrase::kColumnFiles, ListColumn::kSize, 850, true}};

ListColumns::ListColumns(WindowContext& context, controls::AutoSelect::Style style) : m_context(context) {
  if (style == controls::AutoSelect::Style::kTypes) {
    m_columns = kTypes;
  } else {
    m_columns = kFiles;
  }
}

void ListColumns::Make(HWND list) {
  m_fitting = true;
  for (std::size_t index = 0; index < m_columns.size(); ++index) {
    std::wstring heading = Wide(Say(m_columns[index].heading));
    LVCOLUMNW column{LVCF_TEXT | LVCF_WIDTH | LVCF_FMT};
    column.fmt = m_columns[index].rightAligned ? LVCFMT_RIGHT : LVCFMT_LEFT;
    column.cx = m_context.ToPixels(m_columns[index].width);
    column.pszText = heading.data();
    SendMessageW(list, LVM_INSERTCOLUMNW, index, reinterpret_cast<LPARAM>(&column));
  }
  m_fitting = false;
  Fit(list);
}

void ListColumns::Fit(HWND list) {
  m_fitting = true;
  const auto put = [list](std::size_t index, int width) {
    if (SendMessageW(list, LVM_GETCOLUMNWIDTH, index, 0) != width) {
      SendMessageW(list, LVM_SETCOLUMNWIDTH, index, width);
    }
  };
  if (m_ofUser.empty()) {
    RECT area{};
    GetClientRect(list, &area);
    int rest = area.right;
    std::size_t elastic = 0;
    for (std::size_t index = 0; index < m_columns.size(); ++index) {
      const int width = m_context.ToPixels(m_columns[index].width);
      rest -= width;
      if (width == 0) {
        elastic = index;
      } else {
        put(index, width);
      }
    }
    put(elastic, std::max(rest, m_context.ToPixels(kLeastWidth)));
  } else {
    for (std::size_t index = 0; index < m_columns.size(); ++index) {
      put(index, m_context.ToPixels(m_ofUser[index]));
    }
  }
  m_fitting = false;
}

void ListColumns::Changed(const NMHEADERW& change) {
  if (m_fitting || change.pitem == nullptr || (change.pitem->mask & HDI_WIDTH) == 0) return;
  if (!Exists(change.iItem)) return;
  if (m_ofUser.empty()) {
    for (std::size_t index = 0; index < m_columns.size(); ++index) {
      HDITEMW item{HDI_WIDTH};
      SendMessageW(change.hdr.hwndFrom, HDM_GETITEMW, index, reinterpret_cast<LPARAM>(&item));
      m_ofUser.push_back(m_context.ToTwips(item.cxy));
    }
  }
  m_ofUser[static_cast<std::size_t>(change.iItem)] = m_context.ToTwips(change.pitem->cxy);
}

void ListColumns::ShowArrow(HWND list, const ListOrder& order) const {
  const HWND heading = HeadingOf(list);
  for (std::size_t index = 0; index < m_columns.size(); ++index) {
    HDITEMW item{HDI_FORMAT};
    SendMessageW(heading, HDM_GETITEMW, index, reinterpret_cast<LPARAM>(&item));
    item.fmt &= ~(HDF_SORTUP | HDF_SORTDOWN);
    if (order.Sorted() && order.Column() == m_columns[index].column) {
      item.fmt |= order.Descending() ? HDF_SORTDOWN : HDF_SORTUP;
    }
    SendMessageW(heading, HDM_SETITEMW, index, reinterpret_cast<LPARAM>(&item));
  }
}

}  // namespace kxrestore::win32
