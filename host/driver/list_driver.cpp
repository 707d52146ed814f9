#include "host/driver/list_driver.h"

#include "base/utf16.h"

namespace kxrestore::driver {

namespace {

constexpr int kFolder = 1;  // the column of a list of files that holds what comes before the name

}  // namespace

std::string ListDriver::Text(int row, int column) const {
  wchar_t text[1024] = L"";
  LVITEMW ask{};
  ask.iSubItem = column;
  ask.pszText = text;
  ask.cchTextMax = 1024;
  Ask(m_list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), &ask);
  return FromWide(ask.pszText ? ask.pszText : L"");
}

bool ListDriver::Ticked(int row) const {
  return Ask(m_list, LVM_GETITEMSTATE, static_cast<WPARAM>(row), LVIS_STATEIMAGEMASK) ==
         static_cast<LRESULT>(INDEXTOSTATEIMAGEMASK(2));
}

int ListDriver::Find(const std::string& text) const {
  int found = -1;
  WaitFor(m_timeout, "the list entry " + Quoted(text), [&] {
    const int count = Count();
    for (int row = 0; row < count && found < 0; ++row) {
      if (Text(row) == text || Text(row, kFolder) + Text(row) == text) found = row;
    }
    return found >= 0;
  });
  return found;
}

void ListDriver::Click(int row) const {
  Ask(m_list, LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), LPARAM{FALSE});
  RECT label{};
  label.left = LVIR_LABEL;
  if (!Ask(m_list, LVM_GETITEMRECT, static_cast<WPARAM>(row), &label)) {
    throw DriverError("there is no list entry " + std::to_string(row + 1));
  }
  PostClick(m_list, {label.left + 8, (label.top + label.bottom) / 2});
  WaitFor(m_timeout, "the list entry " + std::to_string(row + 1) + " to be selected", [&] {
    return Ask(m_list, LVM_GETITEMSTATE, static_cast<WPARAM>(row), LPARAM{LVIS_SELECTED}) == LVIS_SELECTED;
  });
}

void ListDriver::Toggle(int row) const {
  const bool before = Ticked(row);
  Ask(m_list, LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), LPARAM{FALSE});
  RECT bounds{};
  bounds.left = LVIR_BOUNDS;
  if (!Ask(m_list, LVM_GETITEMRECT, static_cast<WPARAM>(row), &bounds)) {
    throw DriverError("there is no list entry " + std::to_string(row + 1));
  }
  for (LONG x = bounds.left; x < bounds.right; ++x) {
    LVHITTESTINFO hit{};
    hit.pt = {x, (bounds.top + bounds.bottom) / 2};
    Ask(m_list, LVM_HITTEST, 0, &hit);
    if (hit.iItem == row && (hit.flags & LVHT_ONITEM) == LVHT_ONITEMSTATEICON) {
      PostClick(m_list, hit.pt);
      WaitFor(m_timeout, "the tick of " + Quoted(Text(row)) + " to change",
              [&] { return Ticked(row) != before; });
      return;
    }
  }
  throw DriverError("the list entry " + Quoted(Text(row)) + " has no tick box");
}

}  // namespace kxrestore::driver
