#include "platform/win32/list/list_columns.h"

#include <algorithm>
#include <string>
#include <vector>

#include "controls/list_rows.h"
#include "platform/win32/wide_text.h"

namespace kxrestore::win32 {

namespace {

constexpr int kMinWidth = 1500;  // twips, of the elastic column
constexpr int kMinStored = 150;  // of any column in the user's arrangement

HWND HeadingOf(HWND list) {
  return reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0));
}

}  // namespace

const ListColumns::Column ListColumns::kFiles[] = {
    {Phrase::kColumnName, ListColumn::kName, 2100, false},
    {Phrase::kColumnFolder, ListColumn::kFolder, 0, false},
    {Phrase::kColumnSize, ListColumn::kSize, 1050, true},
    {Phrase::kColumnDate, ListColumn::kDate, 2050, false},
    {Phrase::kColumnVersion, ListColumn::kVersion, 920, false},
    {Phrase::kColumnBackup, ListColumn::kBackup, 2050, false},
    {Phrase::kColumnSet, ListColumn::kSet, 1300, false},
    {Phrase::kColumnExtension, ListColumn::kExtension, 1050, false}};
const ListColumns::Column ListColumns::kTypes[] = {
    {Phrase::kColumnType, ListColumn::kName, 1350, false},
    {Phrase::kColumnFiles, ListColumn::kSize, 850, true},
    {Phrase::kColumnDescription, ListColumn::kExtension, 0, false}};

ListColumns::ListColumns(WindowContext& context, controls::AutoSelect& list)
    : m_context(context), m_list(list) {
  if (list.GetStyle() == controls::AutoSelect::Style::kTypes) {
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
  Arrange(list);
}

const controls::ListLook::Column* ListColumns::OfUser(ListColumn column) const {
  const auto place = std::find_if(m_ofUser.begin(), m_ofUser.end(),
                                  [column](const auto& one) { return one.column == column; });
  return place == m_ofUser.end() ? nullptr : &*place;
}

// Columns missing from the stored arrangement are appended with their designed widths.
void ListColumns::Arrange(HWND list) {
  m_ofUser = m_list.Look().columns;
  std::vector<int> order;
  const auto add = [&](ListColumn column) {
    for (std::size_t index = 0; index < m_columns.size(); ++index) {
      if (m_columns[index].column == column) order.push_back(static_cast<int>(index));
    }
  };
  std::erase_if(m_ofUser, [this](const auto& one) {
    return std::none_of(m_columns.begin(), m_columns.end(),
                        [&](const Column& column) { return column.column == one.column; });
  });
  for (const auto& column : m_ofUser) add(column.column);
  for (const Column& column : m_columns) {
    if (OfUser(column.column) != nullptr) continue;
    add(column.column);
    if (!m_ofUser.empty()) m_ofUser.push_back({column.column, std::max(column.width, kMinWidth)});
  }
  if (order.size() == m_columns.size()) {
    SendMessageW(list, LVM_SETCOLUMNORDERARRAY, order.size(), reinterpret_cast<LPARAM>(order.data()));
  }
  Fit(list);
}

void ListColumns::Fit(HWND list) {
  m_fitting = true;
  const auto put = [list](std::size_t index, int width) {
    if (SendMessageW(list, LVM_GETCOLUMNWIDTH, index, 0) != width) {
      SendMessageW(list, LVM_SETCOLUMNWIDTH, index, width);
    }
  };
  RECT area{};
  GetClientRect(list, &area);
  int rest = area.right;
  std::size_t elastic = m_columns.size();
  for (std::size_t index = 0; index < m_columns.size(); ++index) {
    const auto* const ofUser = OfUser(m_columns[index].column);
    const int twips = ofUser != nullptr ? std::max(ofUser->width, kMinStored) : m_columns[index].width;
    if (twips == 0) {
      elastic = index;
      continue;
    }
    rest -= m_context.ToPixels(twips);
    put(index, m_context.ToPixels(twips));
  }
  if (elastic < m_columns.size()) put(elastic, std::max(rest, m_context.ToPixels(kMinWidth)));
  m_fitting = false;
}

void ListColumns::Changed(const NMHEADERW& change) {
  if (m_fitting || change.pitem == nullptr || (change.pitem->mask & HDI_WIDTH) == 0) return;
  if (!Exists(change.iItem)) return;
  ReportOrder(GetParent(change.hdr.hwndFrom));
  for (auto& column : m_ofUser) {
    if (column.column == At(change.iItem)) column.width = m_context.ToTwips(change.pitem->cxy);
  }
  m_list.UserArrange(m_ofUser);
}

void ListColumns::ReportOrder(HWND list) {
  std::vector<int> order(m_columns.size());
  if (!SendMessageW(list, LVM_GETCOLUMNORDERARRAY, order.size(), reinterpret_cast<LPARAM>(order.data()))) {
    return;
  }
  std::vector<controls::ListLook::Column> columns;
  for (const int index : order) {
    if (!Exists(index)) return;
    const auto* const known = OfUser(At(index));
    const auto pixels =
        static_cast<int>(SendMessageW(list, LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(index), 0));
    columns.push_back({At(index), known != nullptr ? known->width : m_context.ToTwips(pixels)});
  }
  m_ofUser = columns;
  m_list.UserArrange(std::move(columns));
}

void ListColumns::ShowArrow(HWND list) const {
  const controls::ListRows& rows = m_list.Rows();
  const HWND heading = HeadingOf(list);
  for (std::size_t index = 0; index < m_columns.size(); ++index) {
    HDITEMW item{HDI_FORMAT};
    SendMessageW(heading, HDM_GETITEMW, index, reinterpret_cast<LPARAM>(&item));
    const int before = item.fmt;
    item.fmt &= ~(HDF_SORTUP | HDF_SORTDOWN);
    if (rows.Sorted() && rows.Column() == m_columns[index].column) {
      item.fmt |= rows.Descending() ? HDF_SORTDOWN : HDF_SORTUP;
    }
    if (item.fmt != before) SendMessageW(heading, HDM_SETITEMW, index, reinterpret_cast<LPARAM>(&item));
  }
}

}  // namespace kxrestore::win32
