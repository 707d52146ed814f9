#include "engine/jet_file/table_definition.h"

#include <algorithm>
#include <set>

#include "base/text.h"
#include "engine/error_numbers.h"

namespace kxrestore::engine::jet_file {
namespace {

constexpr std::size_t kMaxPages = 64;  // a definition with 255 columns of long names takes less
constexpr std::size_t kMaxColumns = 1024, kMaxIndexes = 256;
constexpr std::size_t kIndexColumns = 10;
constexpr std::uint16_t kNoColumn = 0xFFFF;

// Offsets of a definition and the sizes of its parts.
struct Places {
  std::size_t rowCount, columnsEver, variableColumns, columns, logicalIndexes, realIndexes, ownedPages, rest;
  std::size_t keyCount, descriptor, realIndex, logicalIndex;
};
constexpr Places kJet3 = {0x0C, 0x15, 0x17, 0x19, 0x1B, 0x1F, 0x23, 0x2B, 8, 18, 39, 20};
constexpr Places kJet4 = {0x10, 0x29, 0x2B, 0x2D, 0x2F, 0x33, 0x37, 0x3F, 12, 25, 52, 28};

// All pages of a definition joined: the first one whole, the others without their headers.
std::vector<std::uint8_t> JoinPages(const PageFile& file, std::uint32_t first) {
  std::vector<std::uint8_t> joined;
  std::size_t count = 0;
  for (std::uint32_t number = first; number != 0;) {
    if (++count > kMaxPages)
      file.RaiseDamaged("the definition on page " + std::to_string(first) + " has no end");
    const Page page = file.Read(number, PageType::kTable);
    const Bytes bytes = count == 1 ? page.Content() : page.Content().From(8);
    joined.insert(joined.end(), bytes.Data(), bytes.Data() + bytes.Size());
    number = page.Content().U32(4);
  }
  return joined;
}

class Reader {
 public:
  Reader(const PageFile& file, CodePage& codePage, Bytes bytes)
      : m_jet3(file.Format().jet3), m_places(m_jet3 ? kJet3 : kJet4), m_codePage(codePage), m_bytes(bytes) {}

  void Read(TableDefinition& table) {
    table.rowCount = m_bytes.U32(m_places.rowCount);
    table.variableColumns = m_bytes.U16(m_places.variableColumns);
    table.ownedPages = RowPointer::From(m_bytes.U32(m_places.ownedPages));
    const std::size_t columns = m_bytes.U16(m_places.columns);
    const std::size_t logical = m_bytes.U32(m_places.logicalIndexes);
    const std::size_t real = m_bytes.U32(m_places.realIndexes);
    const std::size_t ever = m_bytes.U16(m_places.columnsEver);
    if (columns > kMaxColumns || logical > kMaxIndexes || real > kMaxIndexes || ever > kMaxColumns) {
      m_bytes.RaiseDamaged("the definition on page " + std::to_string(table.page) + " is too large");
    }
    std::size_t place = m_places.rest + real * m_places.keyCount;
    for (std::size_t i = 0; i < columns; ++i, place += m_places.descriptor) {
      table.columns.push_back(ReadColumn(m_bytes.Piece(place, m_places.descriptor)));
    }
    std::set<std::uint16_t> numbers;
    for (Column& column : table.columns) {
      column.name = TakeName(place);
      if (column.number >= std::max<std::size_t>(ever, 1) || !numbers.insert(column.number).second) {
        m_bytes.RaiseDamaged("the columns on page " + std::to_string(table.page) + " are numbered wrong");
      }
    }
    for (std::size_t i = 0; i < real; ++i, place += m_places.realIndex) {
      table.indexes.push_back(ReadIndex(m_bytes.Piece(place, m_places.realIndex)));
    }
    for (std::size_t i = 0; i < logical; ++i, place += m_places.logicalIndex) {
      const Bytes index = m_bytes.Piece(place, m_places.logicalIndex).From(m_jet3 ? 0 : 4);
      const std::uint32_t number = index.U32(4);
      if (number < table.indexes.size() && index.U8(19) == 1) table.indexes[number].primary = true;
    }
  }

 private:
  Column ReadColumn(Bytes bytes) const {
    Column column;
    column.type = static_cast<ColumnType>(bytes.U8(0));
    column.number = bytes.U16(m_jet3 ? 0x01 : 0x05);
    column.variableIndex = bytes.U16(m_jet3 ? 0x03 : 0x07);
    column.scale = bytes.U8(m_jet3 ? 0x0A : 0x0C);
    column.fixed = (bytes.U8(m_jet3 ? 0x0D : 0x0F) & 1) != 0;
    column.fixedOffset = bytes.U16(m_jet3 ? 0x0E : 0x15);
    column.length = bytes.U16(m_jet3 ? 0x10 : 0x17);
    return column;
  }

  std::string TakeName(std::size_t& place) {
    const std::size_t size = m_jet3 ? m_bytes.U8(place) : m_bytes.U16(place);
    place += m_jet3 ? 1 : 2;
    const Bytes bytes = m_bytes.Piece(place, size);
    place += size;
    std::string name;
    if (m_jet3) {
      m_codePage.Append(name, bytes);
    } else {
      AppendPlainUtf16(name, bytes);
    }
    return name;
  }

  Index ReadIndex(Bytes bytes) const {
    Index index;
    const std::size_t start = m_jet3 ? 0 : 4;
    for (std::size_t i = 0; i < kIndexColumns; ++i) {
      const std::uint16_t number = bytes.U16(start + 3 * i);
      if (number == kNoColumn) continue;
      index.columns.push_back(number);
      index.ascending.push_back(bytes.U8(start + 3 * i + 2) == 1);
    }
    index.root = bytes.U32(m_jet3 ? 0x22 : 0x26);
    index.unique = (bytes.U8(m_jet3 ? 0x26 : 0x2E) & 1) != 0;
    return index;
  }

  bool m_jet3;
  const Places& m_places;
  CodePage& m_codePage;
  Bytes m_bytes;
};

}  // namespace

const Column* TableDefinition::Find(std::string_view columnName) const {
  const auto found = std::find_if(columns.begin(), columns.end(), [&](const Column& column) {
    return EqualIgnoringCase(column.name, columnName);
  });
  return found == columns.end() ? nullptr : &*found;
}

bool TableDefinition::IsIndexed(const Column& column) const {
  return std::any_of(indexes.begin(), indexes.end(), [&](const Index& index) {
    return std::find(index.columns.begin(), index.columns.end(), column.number) != index.columns.end();
  });
}

TableDefinition ReadTableDefinition(const PageFile& file, CodePage& codePage, std::uint32_t page,
                                    std::string name) {
  const std::vector<std::uint8_t> joined = JoinPages(file, page);
  TableDefinition table;
  table.page = page;
  table.name = std::move(name);
  Reader(file, codePage, Bytes(joined.data(), joined.size(), &file.Path())).Read(table);
  return table;
}

}  // namespace kxrestore::engine::jet_file
