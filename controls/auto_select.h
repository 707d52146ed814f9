// The product's list control: entries of six values with a tick box each. It shows found files, files marked
// to restore, and, as a chooser, file types. A million entries cost what their texts weigh; equal texts (set
// names, extensions) are kept once.
//
// Entries are named by their number, from 1, in the order of adding. Rows are what is seen: the entries that
// the filter lets pass, in the order chosen (controls/list_rows.h).
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

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

  // What one entry stands for. Texts handed out are valid until the list is cleared.
  struct Entry {
    std::string_view name;  // as shown
    std::int64_t size = 0;  // bytes; for a file type the number of its files
    bool sizeKnown = true;
    std::string_view extension;  // of the run; for a file type its description
    std::int64_t setId = 0;  // kNoSetId when it is no number; of a file type its group, 0 when it has none
    std::string_view setName;
    std::int64_t time = kNoTime;  // platform::TimeNumber of the date
    std::string_view date;        // what stands in place of a date that is none
    std::string_view storedName;  // the catalog's own name of the entry, that marking compares
    bool isGroup = false;         // a group of file types; it is added before its members
  };

  enum class Style { kFiles, kTypes };

  AutoSelect(std::string name, Container* container, Style style);
  ~AutoSelect() override;

  Style GetStyle() const { return m_style; }

  void Clear();                                              // the entries; columns, order and filter stay
  std::size_t Add(const Entry& entry, bool ticked = false);  // the new entry's number, from 1
  std::size_t Count() const;

  // The entry that the following reads speak of; error 9 outside 1..Count.
  void SetCurrent(std::size_t number);
  std::size_t Current() const { return m_current; }
  bool Ticked() const { return TickedAt(m_current); }
  std::string_view FileName() const { return At(m_current).name; }
  std::string_view StoredName() const { return At(m_current).storedName; }
  std::string_view Extension() const { return At(m_current).extension; }
  std::int16_t SetId() const;  // error 6 beyond 16 bit, 13 when it is no number

  Entry At(std::size_t number) const;
  bool TickedAt(std::size_t number) const;
  // A group passes its tick on to its members; a member's tick leaves its group ticked when all members are.
  void SetTicked(std::size_t number, bool ticked);
  void TickAll(bool ticked);
  // Another size, of a file type whose files were counted anew.
  void SetSize(std::size_t number, std::int64_t size, bool known);

  // A tick is pending until the catalog holds what it says. An entry is added with the tick that the catalog
  // has; settling says which one it has now. Groups are never pending.
  bool PendingAt(std::size_t number) const;
  std::size_t PendingCount() const;
  void Settle(std::size_t number, bool ticked);
  void SettleAll(bool ticked);

  // The stored names of the ticked entries that are no groups, or the names of those that have none, each
  // followed by ";".
  std::string TickedTypes() const;

  // Sums without the groups, kept as entries come and go; no call walks over the entries.
  struct Sum {
    std::size_t entries = 0;
    std::int64_t size = 0;  // of the sizes that are known
    std::size_t sets = 0;   // that they are of; not known of the selected ones
  };
  Sum All() const;
  Sum Shown() const;
  Sum Selected() const;
  struct Set {
    std::int64_t id = 0;
    std::string_view name;
    std::size_t entries = 0, shown = 0;
  };
  const std::vector<Set>& Sets() const;  // of the entries, as they came

  const ListRows& Rows() const;
  void SortBy(ListColumn column, bool descending);
  void Unsort();
  void SortAddedIn();  // sorts again where entries have been added since
  void SetFilter(const ListFilter& filter);
  bool FilterShown() const { return m_filterShown; }  // the line to type it into
  // Closing the line opens the filter.
  void ShowFilter(bool shown);
  ListLook Look() const;
  void SetLook(const ListLook& look);

  // Which of the listed entries are versions of one file, names that differ in case only being one. kOnly
  // until FindVersions has seen every entry; it looks at `most` further ones a call.
  enum class Version : std::uint8_t { kOnly, kOlder, kNewest };
  void FindVersions(std::size_t most = std::numeric_limits<std::size_t>::max());
  bool VersionsFound() const;
  Version VersionAt(std::size_t number) const;
  // The date of the run that an entry is of, kNoTime when nobody knows it.
  std::function<std::int64_t(const Entry&)> RunTime;

  std::size_t MemoryUsed() const;

  // The line below the entries; none without it.
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
  // By a column; by the same one again the other way round.
  void UserSort(ListColumn column);
  void UserFilter(const ListFilter& filter);
  void UserShowFilter(bool shown);
  void UserArrange(std::vector<ListLook::Column> columns);

 private:
  friend class ListRows;
  struct Store;
  ListPeer* List() const { return static_cast<ListPeer*>(GetPeer()); }
  void CheckNumber(std::size_t number) const;
  template <class Choose>
  void UserTickWhere(bool ticked, Choose&& choose);
  void RowsChanged();

  Style m_style;
  std::size_t m_current = 0;
  bool m_filterShown = false;
  std::vector<ListLook::Column> m_columns;
  std::unique_ptr<Store> m_store;
  std::unique_ptr<ListRows> m_rows;
};

}  // namespace kxrestore::controls
