#include "controls/auto_select.h"

#include <limits>

#include "controls/auto_select_store.h"
#include "controls/errors.h"
#include "controls/list_rows.h"

namespace kxrestore::controls {

AutoSelect::AutoSelect(std::string name, Container* container, Style style)
    : Control(Kind::kAutoSelect, std::move(name), container),
      m_style(style),
      m_store(std::make_unique<Store>()),
      m_rows(std::make_unique<ListRows>(*this)) {}

AutoSelect::~AutoSelect() {
  AttachPeer(nullptr);
}  // destroys the peer before the entries that it reads

void AutoSelect::Clear() {
  m_current = 0;
  m_store = std::make_unique<Store>(m_store->pendingTick);
  m_rows->Cleared();
  if (List() != nullptr) List()->Cleared();
}

std::size_t AutoSelect::Add(const Entry& entry, bool ticked) {
  m_store->Add(entry, ticked);
  m_rows->Added();
  const std::size_t count = m_store->Count();
  if (List() != nullptr) List()->EntriesAdded(count);
  return count;
}

std::size_t AutoSelect::Count() const {
  return m_store->Count();
}

void AutoSelect::CheckNumber(std::size_t number) const {
  if (number < 1 || number > m_store->Count()) ThrowSubscriptOutOfRange();
}

void AutoSelect::SetCurrent(std::size_t number) {
  CheckNumber(number);
  m_current = number;
}

std::int16_t AutoSelect::SetId() const {
  const std::int64_t setId = At(m_current).setId;
  if (setId == kNoSetId) ThrowTypeMismatch();
  if (setId < std::numeric_limits<std::int16_t>::min() || setId > std::numeric_limits<std::int16_t>::max()) {
    ThrowOverflow();
  }
  return static_cast<std::int16_t>(setId);
}

AutoSelect::Entry AutoSelect::At(std::size_t number) const {
  CheckNumber(number);
  return m_store->At(number);
}

bool AutoSelect::TickedAt(std::size_t number) const {
  CheckNumber(number);
  return m_store->ticks[number - 1];
}

void AutoSelect::SetTicked(std::size_t number, bool ticked) {
  CheckNumber(number);
  if (!m_store->IsGroup(number)) {
    const std::size_t group = m_store->Tick(number, ticked);
    if (List() != nullptr) List()->TicksChanged(number, number);
    if (List() != nullptr && group != 0) List()->TicksChanged(group, group);
    return;
  }
  m_store->Tick(number, ticked);
  const std::int64_t group = m_store->records[number - 1].setId;
  for (std::size_t member = 1; member <= m_store->Count(); ++member) {
    if (member != number && m_store->records[member - 1].setId == group) m_store->Tick(member, ticked);
  }
  if (List() != nullptr) List()->TicksChanged(1, m_store->Count());
}

void AutoSelect::TickAll(bool ticked) {
  m_store->TickAll(ticked);
  if (List() != nullptr && m_store->Count() != 0) List()->TicksChanged(1, m_store->Count());
}

void AutoSelect::SetPendingTick(bool ticked) {
  m_store->pendingTick = ticked;
  m_store->CountPending();
}

bool AutoSelect::PendingAt(std::size_t number) const {
  CheckNumber(number);
  return m_store->IsPending(number);
}

std::size_t AutoSelect::PendingCount() const {
  return m_store->pending;
}

void AutoSelect::Settle(std::size_t number, bool ticked) {
  CheckNumber(number);
  if (m_store->settled[number - 1] == ticked) return;
  m_store->Settle(number, ticked);
  if (List() != nullptr) List()->TicksChanged(number, number);
}

void AutoSelect::SettleAll(bool ticked) {
  for (std::size_t number = 1; number <= m_store->Count(); ++number) m_store->Settle(number, ticked);
  if (List() != nullptr && m_store->Count() != 0) List()->TicksChanged(1, m_store->Count());
}

std::string AutoSelect::TickedTypes() const {
  std::string types;
  for (std::size_t number = 1; number <= m_store->Count(); ++number) {
    if (!m_store->ticks[number - 1] || m_store->IsGroup(number)) continue;
    const Entry type = m_store->At(number);
    types.append(type.storedName.empty() ? type.name : type.storedName).append(";");
  }
  return types;
}

std::size_t AutoSelect::MemoryUsed() const {
  return sizeof *m_store + m_store->records.MemoryUsed() + m_store->ticks.MemoryUsed() +
         m_store->settled.MemoryUsed() + m_store->selected.MemoryUsed() + m_store->several.MemoryUsed() +
         m_store->newest.MemoryUsed() + m_store->texts.MemoryUsed() + m_store->pool.MemoryUsed() +
         m_rows->MemoryUsed();
}

void AutoSelect::SetSize(std::size_t number, std::int64_t size, bool known) {
  CheckNumber(number);
  auto& record = m_store->records[number - 1];
  if (!m_store->IsGroup(number)) {
    const bool wasKnown = (record.flags & Store::kSizeKnown) != 0;
    const std::int64_t more = (known ? size : 0) - (wasKnown ? record.size : 0);
    m_store->all.size += more;
    if (m_store->selected[number - 1]) m_store->ofSelected.size += more;
    if (m_rows->Filtered() && m_rows->Shows(number)) m_rows->m_sum.size += more;
  }
  record.size = size;
  record.flags = static_cast<std::uint8_t>(known ? record.flags | Store::kSizeKnown
                                                 : record.flags & ~unsigned{Store::kSizeKnown});
  if (List() != nullptr) List()->TicksChanged(number, number);
}

void AutoSelect::UserTick(std::size_t number, bool ticked) {
  if (number < 1 || number > m_store->Count() || !AcceptsUser()) return;
  SetTicked(number, ticked);
  if (TickChange) TickChange(number);
}

}  // namespace kxrestore::controls
