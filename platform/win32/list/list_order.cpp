#include "platform/win32/list/list_order.h"

#include <algorithm>
#include <numeric>
#include <string>
#include <string_view>

#include "base/text.h"

namespace kxrestore::win32 {

namespace {

std::string_view TextOf(const controls::AutoSelect::Entry& entry, ListColumn column) {
  switch (column) {
    case ListColumn::kExtension:
      return entry.extension;
    case ListColumn::kSet:
      return entry.setName;
    default:
      return entry.name;
  }
}

}  // namespace

void ListOrder::Choose(ListColumn column) {
  m_descending = m_sorted && m_column == column && !m_descending;
  m_sorted = true;
  m_column = column;
  Renew();
}

void ListOrder::Renew() {
  if (!m_sorted) return;
  m_numbers.resize(m_list.Count());
  std::iota(m_numbers.begin(), m_numbers.end(), 1u);
  m_groups = 0;
  while (m_groups < std::ssize(m_numbers) && m_list.At(static_cast<std::size_t>(m_groups) + 1).isGroup)
    ++m_groups;
  if (m_column == ListColumn::kSize || m_column == ListColumn::kDate) {
    SortNumbers();
  } else {
    SortTexts();
  }
  if (m_descending) std::reverse(m_numbers.begin() + m_groups, m_numbers.end());
}

// What is compared is laid out beforehand: a million entries are compared
// twenty million times.
void ListOrder::SortNumbers() {
  std::vector<std::int64_t> keys(m_numbers.size() + 1);
  for (const std::uint32_t number : m_numbers) {
    const auto entry = m_list.At(number);
    keys[number] = m_column == ListColumn::kDate ? entry.time : entry.sizeKnown ? entry.size : -1;
  }
  std::sort(m_numbers.begin() + m_groups, m_numbers.end(), [&keys](std::uint32_t left, std::uint32_t right) {
    return keys[left] != keys[right] ? keys[left] < keys[right] : left < right;
  });
}

void ListOrder::SortTexts() {
  std::string folded;
  std::vector<std::size_t> starts(m_numbers.size() + 2);
  for (const std::uint32_t number : m_numbers) {
    starts[number] = folded.size();
    folded += FoldCase(TextOf(m_list.At(number), m_column));
  }
  starts[m_numbers.size() + 1] = folded.size();
  const auto key = [&](std::uint32_t number) {
    return std::string_view(folded).substr(starts[number], starts[number + 1] - starts[number]);
  };
  std::sort(m_numbers.begin() + m_groups, m_numbers.end(), [&](std::uint32_t left, std::uint32_t right) {
    const int order = key(left).compare(key(right));
    if (order != 0) return order < 0;
    const int exact = TextOf(m_list.At(left), m_column).compare(TextOf(m_list.At(right), m_column));
    return exact != 0 ? exact < 0 : left < right;
  });
}

}  // namespace kxrestore::win32
