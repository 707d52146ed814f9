// The product's list control: entries of six values with a tick box each. It shows found files, files marked
// to restore, and, as a chooser, file types. A million entries cost what their texts weigh; equal texts (set
// names, extensions) are kept once.
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <string_view>

#include "controls/control.h"

namespace kxrestore::controls {

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

  void Clear();
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

  // The stored names of the ticked entries that are no groups, or the names of those that have none, each
  // followed by ";".
  std::string TickedTypes() const;

  std::size_t MemoryUsed() const;

  std::function<void(std::size_t)> TickChange;  // the user changed a tick
  void UserTick(std::size_t number, bool ticked);

 private:
  struct Store;
  ListPeer* List() const { return static_cast<ListPeer*>(GetPeer()); }
  void CheckNumber(std::size_t number) const;

  Style m_style;
  std::size_t m_current = 0;
  std::unique_ptr<Store> m_store;
};

}  // namespace kxrestore::controls
