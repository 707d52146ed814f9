#include "platform/win32/list/list_selection.h"

#include <limits>
#include <utility>

#include "controls/list_rows.h"

namespace kxrestore::win32 {

namespace {

constexpr std::size_t kMaxReselected = 10'000;  // rows; the cost of each grows with the number selected
constexpr auto kAllRows = static_cast<WPARAM>(-1);
constexpr std::size_t kLastRow = std::numeric_limits<std::size_t>::max();

}  // namespace

void ListSelection::SetState(WPARAM row, UINT state, UINT mask) const {
  LVITEMW item{};
  item.state = state;
  item.stateMask = mask;
  Send(LVM_SETITEMSTATE, row, reinterpret_cast<LPARAM>(&item));
}

void ListSelection::Changed(const NMLISTVIEW& change) {
  const bool all = change.iItem < 0;
  Report(all ? 0 : change.iItem, all ? std::numeric_limits<int>::max() : change.iItem, change.uOldState,
         change.uNewState);
}

void ListSelection::Changed(const NMLVODSTATECHANGE& change) {
  Report(change.iFrom, change.iTo, change.uOldState, change.uNewState);
}

void ListSelection::Report(int first, int last, UINT before, UINT now) {
  if (m_showing || ((before ^ now) & LVIS_SELECTED) == 0) return;
  m_list.UserSelect(static_cast<std::size_t>(first), static_cast<std::size_t>(last),
                    (now & LVIS_SELECTED) != 0);
  if (m_list.SelectedCount() == static_cast<std::size_t>(Send(LVM_GETSELECTEDCOUNT))) return;
  // The native control does not report every change.
  m_list.UserSelect(0, kLastRow, false);
  for (LRESULT row = -1; (row = Send(LVM_GETNEXTITEM, static_cast<WPARAM>(row), LVNI_SELECTED)) >= 0;) {
    m_list.UserSelect(static_cast<std::size_t>(row), static_cast<std::size_t>(row), true);
  }
}

void ListSelection::SelectAll() {
  SetState(kAllRows, LVIS_SELECTED, LVIS_SELECTED);
}

void ListSelection::SelectOnly(LRESULT row) {
  if (row >= Send(LVM_GETITEMCOUNT)) return;
  SetState(kAllRows, 0, LVIS_SELECTED);
  SetState(static_cast<WPARAM>(row), LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
  Send(LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), FALSE);
}

void ListSelection::KeepFocus() {
  const LRESULT row = Send(LVM_GETNEXTITEM, kAllRows, LVNI_FOCUSED);
  m_focused = row < 0 ? 0 : m_list.Rows().Entry(static_cast<std::size_t>(row));
}

void ListSelection::BeforeOtherRows() {
  m_showing = true;
  SetState(kAllRows, 0, m_focused != 0 ? LVIS_SELECTED | LVIS_FOCUSED : LVIS_SELECTED);
}

void ListSelection::AfterOtherRows() {
  const std::size_t focused = std::exchange(m_focused, 0), selected = m_list.SelectedCount();
  const std::size_t rows = m_list.Rows().Count();
  const bool all = selected == rows && rows != 0;
  const bool some = !all && selected != 0 && selected <= kMaxReselected;
  if (all) SelectAll();
  for (std::size_t row = 0; row < rows && (some || focused != 0); ++row) {
    const std::size_t number = m_list.Rows().Entry(row);
    if (some && m_list.SelectedAt(number)) SetState(row, LVIS_SELECTED, LVIS_SELECTED);
    if (number != focused) continue;
    SetState(row, LVIS_FOCUSED, LVIS_FOCUSED);
    Send(LVM_ENSUREVISIBLE, row, FALSE);
    if (!some) break;
  }
  m_showing = false;
  if (!all && !some) m_list.UserSelect(0, kLastRow, false);
}

}  // namespace kxrestore::win32
