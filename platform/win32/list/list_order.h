// The order in which a list shows its entries: as they come, or sorted by a
// column, groups of file types always first. Entry numbers stay what they are.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "controls/auto_select.h"

namespace kxrestore::win32 {

enum class ListColumn { kName, kSize, kExtension, kSet, kDate };

class ListOrder {
 public:
  explicit ListOrder(const controls::AutoSelect& list) : m_list(list) {}

  bool Sorted() const { return m_sorted; }
  ListColumn Column() const { return m_column; }
  bool Descending() const { return m_descending; }

  // Sorts by a column; by the same one again the other way round.
  void Choose(ListColumn column);
  // Sorts again, when a column is chosen: entries have been added since.
  void Renew();
  void Clear() { m_numbers.clear(); }

  // Entry number of a row (from 0); rows behind those sorted so far show the
  // entries in the order of adding.
  std::size_t Entry(std::size_t row) const { return row < m_numbers.size() ? m_numbers[row] : row + 1; }

 private:
  void SortNumbers();
  void SortTexts();

  const controls::AutoSelect& m_list;
  bool m_sorted = false;
  bool m_descending = false;
  ListColumn m_column = ListColumn::kName;
  std::ptrdiff_t m_groups = 0;
  std::vector<std::uint32_t> m_numbers;
};

}  // namespace kxrestore::win32
