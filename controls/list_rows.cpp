#include "controls/list_rows.h"

#include <algorithm>
#include <numeric>
#include <string>
#include <string_view>
#include <utility>

#include "base/text.h"

namespace kxrestore::controls {

namespace {

bool IsNumber(ListColumn column) {
  return column == ListColumn::kSize || column == ListColumn::kDate || column == ListColumn::kBackup ||
         column == ListColumn::kVersion;
}

std::string_view TextOf(const AutoSelect& list, const AutoSelect::Entry& entry, ListColumn column) {
  switch (column) {
    case ListColumn::kExtension:
      return entry.extension;
    case ListColumn::kSet:
      return entry.setName;
    case ListColumn::kFolder:
      return SplitPath(entry.name).folder;
    default:
      return list.GetStyle() == AutoSelect::Style::kFiles ? SplitPath(entry.name).name : entry.name;
  }
}

std::int64_t NumberOf(const AutoSelect& list, std::size_t number, ListColumn column) {
  if (column == ListColumn::kVersion) return static_cast<std::int64_t>(list.VersionAt(number));
  const AutoSelect::Entry entry = list.At(number);
  if (column == ListColumn::kSize) return entry.sizeKnown ? entry.size : -1;
  if (column == ListColumn::kBackup) return list.RunTime ? list.RunTime(entry) : AutoSelect::kNoTime;
  return entry.time;
}

}  // namespace

std::size_t ListRows::Count() const {
  return m_filtered ? m_shown.size() : m_list.Count();
}

std::size_t ListRows::Entry(std::size_t row) const {
  if (row >= Count()) return 0;
  if (m_filtered) return m_shown[row];
  return row < m_order.size() ? m_order[row] : row + 1;
}

std::size_t ListRows::MemoryUsed() const {
  return (m_order.capacity() + m_shown.capacity()) * sizeof(std::uint32_t) + m_passing.MemoryUsed();
}

void ListRows::SortBy(ListColumn column, bool descending) {
  m_sorted = true;
  m_column = column;
  m_descending = descending;
  Renew();
}

void ListRows::Unsort() {
  m_sorted = false;
  m_order = {};
  CollectRows();
}

void ListRows::Renew() {
  if (!m_sorted) return;
  m_order.resize(m_list.Count());
  std::iota(m_order.begin(), m_order.end(), 1u);
  m_groups = 0;
  while (m_groups < std::ssize(m_order) && Entries().IsGroup(static_cast<std::size_t>(m_groups) + 1))
    ++m_groups;
  if (IsNumber(m_column)) {
    SortNumbers();
  } else {
    SortTexts();
  }
  if (m_descending) std::reverse(m_order.begin() + m_groups, m_order.end());
  CollectRows();
}

// What is compared is laid out beforehand: a million entries are compared twenty million times.
void ListRows::SortNumbers() {
  std::vector<std::int64_t> keys(m_order.size() + 1);
  for (const std::uint32_t number : m_order) keys[number] = NumberOf(m_list, number, m_column);
  std::sort(m_order.begin() + m_groups, m_order.end(), [&keys](std::uint32_t left, std::uint32_t right) {
    return keys[left] != keys[right] ? keys[left] < keys[right] : left < right;
  });
}

// Texts that are the same but for their case stand by their exact text, and by their folder.
void ListRows::SortTexts() {
  std::string folded;
  std::vector<std::size_t> starts(m_order.size() + 2);
  for (const std::uint32_t number : m_order) {
    starts[number] = folded.size();
    AppendFolded(folded, TextOf(m_list, m_list.At(number), m_column));
  }
  starts[m_order.size() + 1] = folded.size();
  const auto key = [&](std::uint32_t number) {
    return std::string_view(folded).substr(starts[number], starts[number + 1] - starts[number]);
  };
  std::sort(m_order.begin() + m_groups, m_order.end(), [&](std::uint32_t left, std::uint32_t right) {
    if (const int order = key(left).compare(key(right)); order != 0) return order < 0;
    const auto leftEntry = m_list.At(left), rightEntry = m_list.At(right);
    const int exact = TextOf(m_list, leftEntry, m_column).compare(TextOf(m_list, rightEntry, m_column));
    if (exact != 0) return exact < 0;
    if (const int name = leftEntry.name.compare(rightEntry.name); name != 0) return name < 0;
    return left < right;
  });
}

// A filter that only asks for more than the one before looks at what passed that.
void ListRows::SetFilter(const ListFilter& filter) {
  if (filter == m_filter) return;
  const ListFilter before = std::exchange(m_filter, filter);
  const bool narrower = m_filtered && before.from == filter.from && before.to == filter.to &&
                        before.leastSize == filter.leastSize && before.mostSize == filter.mostSize &&
                        before.setId == filter.setId && filter.words.starts_with(before.words);
  m_matcher = ListMatcher(filter);
  m_filtered = !filter.IsOpen();
  m_sum = {};
  for (AutoSelect::Set& set : m_list.m_store->sets) set.shown = 0;
  if (!m_filtered) {
    m_passing = {};
    m_shown = {};
    return;
  }
  const std::size_t count = m_list.Count();
  Bits passing;
  passing.Assign(count, false);
  for (std::size_t number = 1; number <= count; ++number) {
    if (narrower && !m_passing[number - 1]) continue;
    if (Passes(m_matcher, number)) passing.Set(number - 1, true);
  }
  m_passing = std::move(passing);
  m_passing.ForEach([this](std::size_t place) { Pass(place + 1); });
  CollectRows();
}

// A group of file types shows its members, so it stays with them.
bool ListRows::Passes(const ListMatcher& matcher, std::size_t number) const {
  const AutoSelect::Store::Record& record = Entries().records[number - 1];
  using Store = AutoSelect::Store;
  if ((record.flags & Store::kGroup) != 0) return true;
  if (!matcher.MatchesNumbers(record.time, record.time != AutoSelect::kNoTime, record.size,
                              (record.flags & Store::kSizeKnown) != 0, record.setId)) {
    return false;
  }
  return !matcher.AsksForName() ||
         matcher.MatchesName(Entries().NameAt(number), (record.flags & Store::kPlainName) != 0);
}

// Counts one that passes.
void ListRows::Pass(std::size_t number) {
  const AutoSelect::Store::Record& record = Entries().records[number - 1];
  if ((record.flags & AutoSelect::Store::kGroup) != 0) return;
  ++m_sum.entries;
  if ((record.flags & AutoSelect::Store::kSizeKnown) != 0) m_sum.size += record.size;
  if (m_list.m_store->sets[Entries().SetPlace(record)].shown++ == 0) ++m_sum.sets;
}

void ListRows::CollectRows() {
  if (!m_filtered) return;
  m_shown.clear();
  for (const std::uint32_t number : m_order) {
    if (m_passing[number - 1]) m_shown.push_back(number);
  }
  for (std::size_t number = m_order.size() + 1; number <= m_passing.Size(); ++number) {
    if (m_passing[number - 1]) m_shown.push_back(static_cast<std::uint32_t>(number));
  }
}

void ListRows::Added() {
  if (!m_filtered) return;
  const std::size_t number = m_list.Count();
  const bool passes = Passes(m_matcher, number);
  m_passing.Append(passes);
  if (!passes) return;
  Pass(number);
  m_shown.push_back(static_cast<std::uint32_t>(number));
}

void ListRows::Cleared() {
  m_order.clear();
  m_shown.clear();
  m_passing.Clear();
  m_sum = {};
}

}  // namespace kxrestore::controls
