#include "controls/list_rows.h"

#include <algorithm>
#include <numeric>
#include <string>
#include <string_view>
#include <unordered_map>
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

std::optional<std::size_t> ListRows::FindName(std::string_view beginning, std::size_t start) const {
  const std::string wanted = FoldCase(beginning);
  std::string folded;  // folding may change the length
  for (std::size_t step = 0; step < Count(); ++step) {
    const std::size_t row = (start + step) % Count();
    const std::string_view name = TextOf(m_list, m_list.At(Entry(row)), ListColumn::kName);
    folded.clear();
    AppendFolded(folded, name.substr(0, wanted.size() * 4));
    if (folded.starts_with(wanted)) return row;
  }
  return std::nullopt;
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

// The keys are computed once: sorting a million entries compares some twenty million times.
void ListRows::SortNumbers() {
  std::vector<std::int64_t> keys(m_order.size() + 1);
  for (const std::uint32_t number : m_order) keys[number] = NumberOf(m_list, number, m_column);
  std::sort(m_order.begin() + m_groups, m_order.end(), [&keys](std::uint32_t left, std::uint32_t right) {
    return keys[left] != keys[right] ? keys[left] < keys[right] : left < right;
  });
}

// Entries of equal keys are ordered by their exact text, then by their whole path. A name is mostly the only
// one of its kind; folders, sets and extensions are few, so their keys are made once.
void ListRows::SortTexts() {
  struct Range {
    std::size_t start, size;
  };
  std::string keys;
  std::vector<Range> ranges(m_order.size() + 1);
  std::unordered_map<std::string_view, Range> known;
  for (const std::uint32_t number : m_order) {
    const std::string_view text = TextOf(m_list, m_list.At(number), m_column);
    if (m_column != ListColumn::kName) {
      if (const auto found = known.find(text); found != known.end()) {
        ranges[number] = found->second;
        continue;
      }
    }
    const std::size_t start = keys.size();
    m_list.m_sortKey(keys, text);
    ranges[number] = {start, keys.size() - start};
    if (m_column != ListColumn::kName) known.emplace(text, ranges[number]);
  }
  const auto key = [&](std::uint32_t number) {
    return std::string_view(keys).substr(ranges[number].start, ranges[number].size);
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

// A filter that only narrows the previous one looks at the entries that passed that.
void ListRows::SetFilter(const ListFilter& filter) {
  const ListFilter before = std::exchange(m_filter, filter);
  const bool narrower = m_filtered && before.from == filter.from && before.to == filter.to &&
                        before.minSize == filter.minSize && before.maxSize == filter.maxSize &&
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
  m_passing.ForEach([this](std::size_t place) { AddToSum(place + 1); });
  CollectRows();
}

// The filter keeps groups: they are the headings of their members.
bool ListRows::Passes(const ListMatcher& matcher, std::size_t number) const {
  using Store = AutoSelect::Store;
  const Store::Record& record = Entries().records[number - 1];
  if ((record.flags & Store::kGroup) != 0) return true;
  if (!matcher.MatchesNumbers(record.time, record.time != AutoSelect::kNoTime, record.size,
                              (record.flags & Store::kSizeKnown) != 0, record.setId)) {
    return false;
  }
  return !matcher.AsksForName() ||
         matcher.MatchesName(record.Name(), (record.flags & Store::kAsciiName) != 0);
}

// Adds an entry that passes to the sums.
void ListRows::AddToSum(std::size_t number) {
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
  AddToSum(number);
  m_shown.push_back(static_cast<std::uint32_t>(number));
}

void ListRows::Cleared() {
  m_order.clear();
  m_shown.clear();
  m_passing.Clear();
  m_sum = {};
}

}  // namespace kxrestore::controls
