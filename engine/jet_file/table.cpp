#include "engine/jet_file/table.h"

#include <algorithm>

#include "engine/jet_file/usage_map.h"

namespace kxrestore::engine::jet_file {
namespace {

constexpr std::uint16_t kPointer = 0x4000;  // the row is stored elsewhere
constexpr std::uint16_t kMovedHere = 0x8000;
constexpr int kMaxMoves = 4;
constexpr std::size_t kMaxSlots = 256;

// The first word of a long value.
constexpr std::uint32_t kInRow = 0x80000000, kInOneRow = 0x40000000, kLength = 0x3FFFFFFF;
constexpr std::size_t kLongValueHeader = 12;

}  // namespace

Page Table::DataPage(std::uint32_t number) const {
  Page page = m_file.Read(number, PageType::kData);
  if (page.Content().U32(4) != m_definition.page) {
    m_file.RaiseDamaged("page " + std::to_string(number) + " is not of the table '" + m_definition.name +
                        "'");
  }
  return page;
}

const std::vector<std::uint32_t>& Table::Pages() {
  if (!m_pages) m_pages = ReadUsageMap(m_file, m_definition.ownedPages);
  return *m_pages;
}

bool Table::Take(const Page& page, std::uint8_t slot, FoundRow& found) {
  const Layout& layout = m_file.Format();
  const std::uint16_t first = PageFile::SlotOf(page, layout, slot);
  if ((first & kMovedHere) != 0) return false;  // deleted, or the target of another page's pointer
  found.home = {page.Number(), slot};
  if ((first & kPointer) == 0) {
    found.page = page;
    found.row = Row(layout, m_definition, m_file.Row(page, slot));
    return true;
  }
  std::uint16_t place = first;
  Page at = page;
  for (int moves = 0; moves < kMaxMoves; ++moves) {
    const RowPointer next = RowPointer::From(at.Content().U32(place & 0x1FFF));
    at = DataPage(next.page);
    place = PageFile::SlotOf(at, layout, next.slot);
    if ((place & kPointer) != 0 && (place & kMovedHere) != 0) break;  // deleted
    if ((place & kPointer) != 0) continue;
    found.page = at;
    found.row = Row(layout, m_definition, m_file.Row(at, next.slot));
    return true;
  }
  m_file.RaiseDamaged("row " + std::to_string(slot) + " of page " + std::to_string(page.Number()) +
                      " has moved to where no row is");
}

bool Table::Walk::Next(FoundRow& found) {
  for (;;) {
    while (m_slot < m_slots) {
      if (m_table->Take(m_page, static_cast<std::uint8_t>(m_slot++), found)) return true;
    }
    const auto& pages = m_table->Pages();
    if (m_index >= pages.size()) return false;
    m_page = m_table->DataPage(pages[m_index++]);
    m_slot = 0;
    m_slots = m_page.Content().U16(m_table->m_file.Format().rowCount());
    if (m_slots > kMaxSlots) {
      m_table->m_file.RaiseDamaged("page " + std::to_string(m_page.Number()) + " claims " +
                                   std::to_string(m_slots) + " rows");
    }
  }
}

bool Table::Find(RowPointer home, FoundRow& found) {
  const auto& pages = Pages();
  if (!std::binary_search(pages.begin(), pages.end(), home.page)) return false;
  const Page page = DataPage(home.page);
  if (home.slot >= page.Content().U16(m_file.Format().rowCount())) return false;
  return Take(page, home.slot, found);
}

void Table::AppendStoredText(std::string& out, const Bytes& bytes) const {
  if (m_file.Format().jet3) {
    m_codePage.Append(out, bytes);
  } else {
    AppendUnicode(out, bytes);
  }
}

void Table::AppendText(std::string& out, const Column& column, const Bytes& stored) const {
  if (column.type != ColumnType::kMemo) {
    AppendStoredText(out, stored);
    return;
  }
  if (stored.Size() == 0) return;
  const std::uint32_t header = stored.U32(0);
  if ((header & kInRow) != 0) {
    AppendStoredText(out, stored.Piece(kLongValueHeader, header & kLength));
    return;
  }
  const std::vector<std::uint8_t> value = LongValue(stored);
  AppendStoredText(out, Bytes(value.data(), value.size(), &m_file.Path()));
}

std::vector<std::uint8_t> Table::LongValue(const Bytes& stored) const {
  std::vector<std::uint8_t> value;
  if (stored.Size() == 0) return value;
  const std::uint32_t header = stored.U32(0);
  const std::size_t length = header & kLength;
  const auto append = [&](const Bytes& bytes) {
    value.insert(value.end(), bytes.Data(), bytes.Data() + std::min(bytes.Size(), length - value.size()));
  };
  if ((header & kInRow) != 0) {
    append(stored.Piece(kLongValueHeader, length));
    return value;
  }
  const bool chained = (header & kInOneRow) == 0;
  RowPointer next = RowPointer::From(stored.U32(4));
  // Every row of the chain but the last must contribute data, so that the loop ends.
  while (value.size() < length) {
    const Page page = m_file.Read(next.page, PageType::kData);
    if (page.Content().Piece(4, 4).Text() != "LVAL") {
      m_file.RaiseDamaged("page " + std::to_string(next.page) + " holds no long values");
    }
    Bytes bytes = m_file.Row(page, next.slot);
    if (chained) {
      next = RowPointer::From(bytes.U32(0));
      bytes = bytes.From(4);
    }
    append(bytes);
    const bool ends = !chained || next == RowPointer{};
    if (value.size() < length && (ends || bytes.Size() == 0)) {
      m_file.RaiseDamaged("a long value ends before its length");
    }
    if (value.size() > std::size_t{m_file.PageCount()} * m_file.Format().pageSize) {
      m_file.RaiseDamaged("a long value is longer than the file");
    }
  }
  return value;
}

}  // namespace kxrestore::engine::jet_file
