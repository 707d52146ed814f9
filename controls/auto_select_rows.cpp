// The rows of the list control: order, filter, columns, selection and sums.
#include "controls/auto_select.h"
#include "controls/auto_select_store.h"
#include "controls/list_rows.h"

namespace kxrestore::controls {

AutoSelect::Sum AutoSelect::All() const {
  return m_store->all;
}

AutoSelect::Sum AutoSelect::Shown() const {
  return m_rows->Filtered() ? m_rows->Sum() : m_store->all;
}

AutoSelect::Sum AutoSelect::Selected() const {
  return m_store->ofSelected;
}

const std::vector<AutoSelect::Set>& AutoSelect::Sets() const {
  return m_store->sets;
}

const ListRows& AutoSelect::Rows() const {
  return *m_rows;
}

void AutoSelect::RowsChanged() {
  if (List() != nullptr) List()->RowsChanged();
}

void AutoSelect::SortBy(ListColumn column, bool descending) {
  if (column == ListColumn::kVersion) FindVersions();
  m_rows->SortBy(column, descending);
  RowsChanged();
}

void AutoSelect::Unsort() {
  if (!m_rows->Sorted()) return;
  m_rows->Unsort();
  RowsChanged();
}

void AutoSelect::SortAddedIn() {
  if (!m_rows->Stale()) return;
  m_rows->Renew();
  RowsChanged();
}

// Hidden entries lose their selection: the user could not see what a command would act on.
void AutoSelect::SetFilter(const ListFilter& filter) {
  if (filter == m_rows->Filter()) return;
  m_rows->SetFilter(filter);
  if (m_store->ofSelected.entries != 0 && m_rows->Filtered()) {
    Bits hidden;
    hidden.Assign(m_store->Count(), false);
    m_store->selected.ForEach([&](std::size_t place) { hidden.Set(place, !m_rows->Shows(place + 1)); });
    hidden.ForEach([&](std::size_t place) { m_store->Select(place + 1, false); });
  }
  RowsChanged();
}

void AutoSelect::ShowFilter(bool shown) {
  if (m_filterShown == shown) return;
  m_filterShown = shown;
  if (!shown) SetFilter({});
  Notify(Property::kValue);
}

ListLook AutoSelect::Look() const {
  return {m_columns, m_rows->Sorted(), m_rows->Descending(), m_rows->Column()};
}

void AutoSelect::SetLook(const ListLook& look) {
  m_columns = look.columns;
  if (look.sorted) {
    SortBy(look.by, look.descending);
  } else {
    Unsort();
  }
  Notify(Property::kAppearance);
}

void AutoSelect::FindVersions(std::size_t max) {
  if (VersionsFound()) return;
  m_store->FindVersions(max);
  if (VersionsFound() && List() != nullptr) List()->RowsChanged();
}

bool AutoSelect::VersionsFound() const {
  return m_store->versioned == m_store->Count() && !m_store->search;
}

AutoSelect::Version AutoSelect::VersionAt(std::size_t number) const {
  CheckNumber(number);
  if (!VersionsFound() || !m_store->several[number - 1]) return Version::kOnly;
  return m_store->newest[number - 1] ? Version::kNewest : Version::kOlder;
}

template <std::predicate<std::size_t> Choose>
void AutoSelect::UserTickWhere(bool ticked, Choose&& choose) {
  if (!AcceptsUser()) return;
  for (std::size_t number = 1; number <= m_store->Count(); ++number) {
    if (!choose(number)) continue;
    // A group ticks its members. Under a filter the members are ticked one by one and the group follows them.
    if (m_store->IsGroup(number)) {
      if (!m_rows->Filtered()) SetTicked(number, ticked);
    } else {
      m_store->Tick(number, ticked);
    }
    if (TickChange) TickChange(number);
  }
  if (List() != nullptr && m_store->Count() != 0) List()->TicksChanged(1, m_store->Count());
}

void AutoSelect::UserTickSelected(bool ticked) {
  UserTickWhere(ticked, [this](std::size_t number) { return m_store->selected[number - 1]; });
}

void AutoSelect::UserTickShown(bool ticked) {
  UserTickWhere(ticked, [this](std::size_t number) { return m_rows->Shows(number); });
}

void AutoSelect::UserSelect(std::size_t firstRow, std::size_t lastRow, bool selected) {
  const std::size_t rows = m_rows->Count();
  if (rows == 0 || !AcceptsUser()) return;
  if (!selected && firstRow == 0 && lastRow >= rows - 1) {
    m_store->SelectNone();
  } else {
    for (std::size_t row = firstRow; row <= lastRow && row < rows; ++row) {
      m_store->Select(m_rows->Entry(row), selected);
    }
  }
  if (List() != nullptr) List()->SelectionChanged();
}

bool AutoSelect::SelectedAt(std::size_t number) const {
  CheckNumber(number);
  return m_store->selected[number - 1];
}

std::size_t AutoSelect::SelectedCount() const {
  return m_store->selected.Count();
}

std::vector<std::size_t> AutoSelect::SelectedEntries() const {
  std::vector<std::size_t> numbers;
  for (std::size_t row = 0; row < m_rows->Count(); ++row) {
    const std::size_t number = m_rows->Entry(row);
    if (m_store->selected[number - 1]) numbers.push_back(number);
  }
  return numbers;
}

void AutoSelect::UserSort(ListColumn column) {
  if (!AcceptsUser()) return;
  SortBy(column, m_rows->Sorted() && m_rows->Column() == column && !m_rows->Descending());
}

void AutoSelect::UserFilter(const ListFilter& filter) {
  if (AcceptsUser()) SetFilter(filter);
}

void AutoSelect::UserShowFilter(bool shown) {
  if (AcceptsUser()) ShowFilter(shown);
}

void AutoSelect::UserArrange(std::vector<ListLook::Column> columns) {
  m_columns = std::move(columns);
}

}  // namespace kxrestore::controls
