// The product's list control: entries of six values with a tick box each. It shows found files, files marked
// to restore, and, as a chooser, file types. Set names and extensions are stored once however often they
// occur.
//
// Entries are identified by their number, from 1, in the order of adding. Rows are what the user sees: the
// entries that pass the filter, in the chosen order (controls/list_rows.h).
#pragma once

#include <concepts>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/sorting.h"
#include "controls/control.h"
#include "controls/footer.h"
#include "controls/list_columns.h"
#include "controls/list_filter.h"

namespace kxrestore::controls {

class ListRows;

class AutoSelect : public Control {
 public:
  static constexpr std::int64_t kNoTime = std::numeric_limits<std::int64_t>::min();
  static constexpr std::int64_t kNoSetId = std::numeric_limits<std::int64_t>::min();

  // One entry. Texts that the list returns are valid until it is cleared.
  struct Entry {
    std::string_view name;  // as shown
    std::int64_t size = 0;  // bytes; for a file type the number of its files
    bool sizeKnown = true;
    std::string_view extension;  // of the run; for a file type its description
    std::int64_t setId = 0;      // kNoSetId when it is no number; for a file type its group, 0 without one
    std::string_view setName;
    std::int64_t time = kNoTime;  // platform::TimeNumber of the date
    std::string_view date;        // shown instead when the catalog holds no valid date
    std::string_view storedName;  // the name in the catalog, which marking compares
    bool isGroup = false;         // a group of file types; added before its members
  };

  enum class Style { kFiles, kTypes };

  AutoSelect(std::string name, Container* container, Style style);
  ~AutoSelect() override;

  Style GetStyle() const { return m_style; }

  void Clear();                                              // the entries; columns, order and filter stay
  std::size_t Add(const Entry& entry, bool ticked = false);  // the new entry's number, from 1
  std::size_t Count() const;

  // Chooses the entry that the accessors below read. Error 9 outside 1..Count.
  void SetCurrent(std::size_t number);
  std::size_t Current() const { return m_current; }
  bool Ticked() const { return TickedAt(m_current); }
  std::string_view FileName() const { return At(m_current).name; }
  std::string_view StoredName() const { return At(m_current).storedName; }
  std::string_view Extension() const { return At(m_current).extension; }
  std::int16_t SetId() const;  // error 6 beyond 16 bit, 13 when it is no number

  Entry At(std::size_t number) const;
  bool TickedAt(std::size_t number) const;
  // Ticking a group ticks its members; a group is ticked when all of its members are.
  void SetTicked(std::size_t number, bool ticked);
  void TickAll(bool ticked);
  // For a file type whose files were counted again.
  void SetSize(std::size_t number, std::int64_t size, bool known);

  // A tick is pending while it differs from the mark in the catalog. Add is given the mark as its tick;
  // Settle says what the mark is now. Groups are never pending.
  // Restricts that to entries with this tick: where only set ticks, or only removed ones, can be applied.
  void SetPendingTick(bool ticked);
  bool PendingAt(std::size_t number) const;
  std::size_t PendingCount() const;
  void Settle(std::size_t number, bool ticked);
  void SettleAll(bool ticked);

  // The ticked entries other than groups by stored name, or by name without one, each followed by ";".
  std::string TickedTypes() const;

  // Sums without the groups, updated with every change: no call iterates over the entries.
  struct Sum {
    std::size_t entries = 0;
    std::int64_t size = 0;  // total of the known sizes
    std::size_t sets = 0;   // number of different sets; 0 for the selection
  };
  Sum All() const;
  Sum Shown() const;
  Sum Selected() const;
  struct Set {
    std::int64_t id = 0;
    std::string_view name;
    std::size_t entries = 0, shown = 0;
  };
  const std::vector<Set>& Sets() const;  // in the order of their first entries

  const ListRows& Rows() const;
  void SortBy(ListColumn column, bool descending);
  void Unsort();
  void SortAddedIn();  // sorts again if entries have been added since
  void SetSortKey(SortKey sortKey) { m_sortKey = std::move(sortKey); }
  void SetFilter(const ListFilter& filter);
  bool FilterShown() const { return m_filterShown; }  // the line in which the user edits it
  void ShowFilter(bool shown);                        // hiding the line clears the filter
  ListLook Look() const;
  void SetLook(const ListLook& look);

  // Which of the listed entries are versions of one file; the case of names is ignored. kOnly until
  // FindVersions has seen every entry; each call looks at up to `max` more.
  enum class Version : std::uint8_t { kOnly, kOlder, kNewest };
  void FindVersions(std::size_t max = std::numeric_limits<std::size_t>::max());
  bool VersionsFound() const;
  Version VersionAt(std::size_t number) const;
  // The date of an entry's run, kNoTime when it is unknown.
  std::function<std::int64_t(const Entry&)> RunTime;

  std::size_t MemoryUsed() const;

  // Describes the line below the entries; without it there is none.
  std::function<FooterText()> DescribeFooter;

  std::function<void(std::size_t)> TickChange;  // the user changed a tick
  void UserTick(std::size_t number, bool ticked);
  void UserTickSelected(bool ticked);
  void UserTickShown(bool ticked);
  // Rows, from 0, both inclusive.
  void UserSelect(std::size_t firstRow, std::size_t lastRow, bool selected);
  bool SelectedAt(std::size_t number) const;
  std::size_t SelectedCount() const;                 // with groups
  std::vector<std::size_t> SelectedEntries() const;  // in the order of their rows
  // Sorts by a column; a second time in descending order.
  void UserSort(ListColumn column);
  void UserFilter(const ListFilter& filter);
  void UserShowFilter(bool shown);
  void UserArrange(std::vector<ListLook::Column> columns);

 private:
  friend class ListRows;
  struct Store;
  ListPeer* List() const { return static_cast<ListPeer*>(GetPeer()); }
  void CheckNumber(std::size_t number) const;
  template <std::predicate<std::size_t> Choose>
  void UserTickWhere(bool ticked, Choose&& choose);
  void RowsChanged();

  Style m_style;
  std::size_t m_current = 0;
  bool m_filterShown = false;
  SortKey m_sortKey = AppendSortKey;
  std::vector<ListLook::Column> m_columns;
  std::unique_ptr<Store> m_store;
  std::unique_ptr<ListRows> m_rows;
};

}  // namespace kxrestore::controls
