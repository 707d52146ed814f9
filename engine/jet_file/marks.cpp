#include "engine/jet_file/marks.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "engine/error_numbers.h"

namespace kxrestore::engine::jet_file {

bool Marks::Begin() {
  if (m_access) return false;
  m_access = std::make_unique<WriteAccess>(m_file.Pages().Path(), m_file.Pages().IsAce(), m_wait);
  try {
    return m_file.Refresh();
  } catch (...) {
    m_access.reset();
    throw;
  }
}

std::uint64_t Marks::PlaceOf(const FoundRow& found, const Column& column) {
  const Bytes& page = found.page.Content();
  const auto start = static_cast<std::uint64_t>(found.row.Content().Data() - page.Data());
  const std::uint64_t offset =
      std::uint64_t{found.page.Number()} * page.Size() + start + found.row.BitPlace(column);
  return offset * 8 + (column.number & 7);
}

bool Marks::At(const FoundRow& found, const Column& column) const {
  if (!m_changes.empty() && found.row.HasBit(column)) {
    if (const auto waiting = m_byPlace.find(PlaceOf(found, column)); waiting != m_byPlace.end()) {
      return m_changes[waiting->second].value;
    }
  }
  return found.row.Bit(column);
}

// The file's time does not tell of a change by another program that was made within one tick of the file
// system's clock, which can be two seconds. The first change to a page therefore compares it with the file.
void Marks::CheckPage(const Page& page) {
  if (m_checked.contains(page.Number())) return;
  const Bytes& known = page.Content();
  m_page.resize(known.Size());
  const std::uint64_t start = std::uint64_t{page.Number()} * known.Size();
  const std::size_t size = m_access->Data().ReadAt(start, m_page.data(), m_page.size());
  if (size == known.Size() && std::equal(m_page.begin(), m_page.end(), known.Data())) {
    m_checked.insert(page.Number());
    return;
  }
  m_readAgain = true;
  Raise(error_number::kDataHasChanged, "The data has changed: another program has changed page " +
                                           std::to_string(page.Number()) + " of '" + m_file.Pages().Path() +
                                           "'. Try again.");
}

void Marks::Set(const Table& table, const FoundRow& found, const Column& column, bool value) {
  if (At(found, column) == value) return;
  if (!found.row.HasBit(column)) {
    Raise(error_number::kReadOnly,
          "Cannot update. Database or object is read-only: this row of '" + table.Definition().name +
              "' in '" + m_file.Pages().Path() + "' was stored before the column '" + column.name +
              "' was made and has no room for it. Only the desktop database engine can change it.");
  }
  CheckPage(found.page);
  const std::uint64_t place = PlaceOf(found, column);
  const auto [at, isNew] = m_byPlace.try_emplace(place, m_changes.size());
  m_steps.push_back({at->second, isNew, !value});
  if (isNew) {
    m_changes.push_back({place / 8, static_cast<std::uint8_t>(1u << (column.number & 7)), value});
  } else {
    m_changes[at->second].value = value;
  }
}

// Reads the page again and writes its current content with the bits changed.
void Marks::WritePage(std::size_t first, std::size_t last) {
  const std::size_t pageSize = m_file.Pages().Format().pageSize;
  const std::uint64_t start = m_changes[first].offset / pageSize * pageSize;
  m_page.resize(pageSize);
  File& data = m_access->Data();
  if (data.ReadAt(start, m_page.data(), pageSize) != pageSize) m_file.Pages().RaiseDamaged("a page has gone");
  std::size_t low = pageSize, high = 0;
  for (std::size_t i = first; i < last; ++i) {
    const Change& change = m_changes[i];
    const auto place = static_cast<std::size_t>(change.offset - start);
    std::uint8_t& byte = m_page[place];
    byte = static_cast<std::uint8_t>(change.value ? byte | change.bit : byte & ~change.bit);
    low = std::min(low, place);
    high = std::max(high, place + 1);
  }
  data.WriteAt(start + low, m_page.data() + low, high - low);
  for (std::size_t i = first; i < last; ++i) {
    m_file.Pages().Written(m_changes[i].offset,
                           m_page[static_cast<std::size_t>(m_changes[i].offset - start)]);
  }
}

void Marks::Write() {
  if (m_changes.empty()) return;
  const std::size_t pageSize = m_file.Pages().Format().pageSize;
  for (std::size_t first = 0; first < m_changes.size();) {
    std::size_t last = first + 1;
    while (last < m_changes.size() &&
           m_changes[last].offset / pageSize == m_changes[first].offset / pageSize) {
      ++last;
    }
    WritePage(first, last);
    first = last;
  }
  m_access->Data().Sync();
  m_file.Pages().RememberStamp();
}

void Marks::Save(std::size_t number) {
  m_savepoints.resize(number + 1, m_steps.size());
  m_savepoints[number] = m_steps.size();
}

void Marks::TakeBackTo(std::size_t number) {
  const std::size_t left = number < m_savepoints.size() ? m_savepoints[number] : 0;
  while (m_steps.size() > left) {
    const Step step = m_steps.back();
    m_steps.pop_back();
    if (!step.isNew) {
      m_changes[step.change].value = step.before;
      continue;
    }
    const Change& change = m_changes.back();
    m_byPlace.erase(change.offset * 8 + static_cast<std::uint64_t>(std::countr_zero(change.bit)));
    m_changes.pop_back();
  }
}

void Marks::End() {
  m_changes.clear();
  m_steps.clear();
  m_savepoints.clear();
  m_byPlace.clear();
  m_checked.clear();
  if (m_kept || !m_access) return;
  // Some systems report a write only when the file is closed; do not take that for another program's.
  m_access->CloseData();
  m_file.Pages().RememberStamp();
  if (std::exchange(m_readAgain, false)) m_file.Pages().ForgetStamp();
  m_access.reset();
}

}  // namespace kxrestore::engine::jet_file
