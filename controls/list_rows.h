// The visible entries of a list and their order: as added, or sorted by a column. Entries that are file types
// always come first; entries that the filter rejects have no row. Sorting costs four bytes per entry, a
// filter four bytes per row and one bit per entry; without either, rows are entries.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "controls/auto_select_store.h"

namespace kxrestore::controls {

class ListRows {
 public:
  explicit ListRows(const AutoSelect& list) : m_list(list) {}

  std::size_t Count() const;
  // Entry number of a row (from 0), 0 where there is none. Entries added since the last sort follow the
  // sorted rows in the order of adding.
  std::size_t Entry(std::size_t row) const;
  // The next row, from `start` on and then from the top, whose name begins with a text, ignoring case.
  std::optional<std::size_t> FindName(std::string_view beginning, std::size_t start) const;
  bool Shows(std::size_t number) const { return !Filtered() || m_passing[number - 1]; }

  bool Sorted() const { return m_sorted; }
  ListColumn Column() const { return m_column; }
  bool Descending() const { return m_descending; }
  // Whether entries were added since the rows were sorted.
  bool Stale() const { return m_sorted && m_order.size() != m_list.Count(); }
  void Renew();  // sorts them again

  bool Filtered() const { return m_filtered; }
  const ListFilter& Filter() const { return m_filter; }
  const AutoSelect::Sum& Sum() const { return m_sum; }  // of the entries that pass, while filtered

  std::size_t MemoryUsed() const;

 private:
  friend class AutoSelect;  // reports every change
  void SortBy(ListColumn column, bool descending);
  void Unsort();
  void SetFilter(const ListFilter& filter);
  void Added();    // an entry, the last one
  void Cleared();  // order and filter stay

  const AutoSelect::Store& Entries() const { return *m_list.m_store; }
  bool Passes(const ListMatcher& matcher, std::size_t number) const;
  void AddToSum(std::size_t number);
  void CollectRows();
  void SortNumbers();
  void SortTexts();

  const AutoSelect& m_list;
  bool m_sorted = false;
  bool m_descending = false;
  ListColumn m_column = ListColumn::kName;
  std::ptrdiff_t m_groups = 0;         // how many; they stay on top
  std::vector<std::uint32_t> m_order;  // entry numbers, while sorted

  bool m_filtered = false;
  ListFilter m_filter;
  ListMatcher m_matcher{ListFilter()};
  Bits m_passing;                      // one per entry, while filtered
  std::vector<std::uint32_t> m_shown;  // entry numbers, while filtered
  AutoSelect::Sum m_sum;
};

}  // namespace kxrestore::controls
