#include "bench/desktop_file.h"

#include <bit>
#include <chrono>
#include <filesystem>
#include <stdexcept>

#include "base/utf16.h"

namespace kxrestore::bench {
namespace {

using namespace engine::jet_file;  // NOLINT: all of it is about such files
using engine::Value;

constexpr std::size_t kPageSize = 4096, kHeader = 14;
constexpr std::uint16_t kPointer = 0x4000, kMovedHere = 0x8000;
constexpr std::uint32_t kLongValueOwner = 0x4C41564C;  // "LVAL"
constexpr std::size_t kPieceOfChain = 1800;

template <class Number>
void Append(std::string& bytes, Number number) {
  for (std::size_t i = 0; i < sizeof number; ++i) {
    bytes += static_cast<char>(static_cast<std::uint64_t>(number) >> (8 * i) & 0xFF);
  }
}

template <class Number>
void PutAt(std::string& bytes, std::size_t place, Number number) {
  std::string piece;
  Append(piece, number);
  bytes.replace(place, piece.size(), piece);
}

double DaysOf(const engine::DateTime& date) {
  using namespace std::chrono;
  const sys_days day =
      year(date.year) / month(static_cast<unsigned>(date.month)) / static_cast<unsigned>(date.day);
  const auto days = (day - sys_days(year(1899) / December / 30)).count();
  return static_cast<double>(days) + (date.hour * 3600 + date.minute * 60 + date.second) / 86400.0;
}

std::string FixedBytes(const Column& column, const Value& value) {
  std::string bytes;
  const engine::ValueView view = engine::ViewOf(value);
  switch (column.type) {
    case ColumnType::kDate:
      Append(bytes, std::bit_cast<std::uint64_t>(DaysOf(*engine::ToDateTime(view))));
      break;
    case ColumnType::kDouble:
      Append(bytes, std::bit_cast<std::uint64_t>(static_cast<double>(engine::ToInteger(view))));
      break;
    case ColumnType::kLong:
      Append(bytes, static_cast<std::uint32_t>(engine::ToInteger(view)));
      break;
    case ColumnType::kInteger:
      Append(bytes, static_cast<std::uint16_t>(engine::ToInteger(view)));
      break;
    default:
      throw std::runtime_error("no way to write the column " + column.name);
  }
  return bytes;
}

struct ToValue {
  Value operator()(std::monostate) const { return {}; }
  Value operator()(bool flag) const { return flag; }
  Value operator()(std::int64_t number) const { return number; }
  Value operator()(std::string_view text) const { return std::string(text); }
  Value operator()(sample::DateText date) const { return std::string(date.text); }
};

}  // namespace

DesktopFile::DesktopFile(const std::string& sample, const std::string& path) : m_sample(sample) {
  const auto as = [](const std::string& name) {
    return std::filesystem::path(std::u8string(name.begin(), name.end()));
  };
  std::filesystem::copy_file(as(sample), as(path), std::filesystem::copy_options::overwrite_existing);
  std::filesystem::permissions(as(path), std::filesystem::perms::owner_write,
                               std::filesystem::perm_options::add);
  m_file.open(as(path), std::ios::binary | std::ios::in | std::ios::out);
  m_pages = m_sample.Pages().PageCount();
}

const TableDefinition& DesktopFile::Definition(const std::string& table) const {
  const Table* found = m_sample.FindTable(table);
  if (found == nullptr) throw std::runtime_error("the sample has no table " + table);
  return found->Definition();
}

DesktopFile::Output& DesktopFile::OutputOf(const std::string& table) {
  Output& output = m_outputs[table];
  if (output.definition == nullptr) {
    output.definition = &Definition(table);
    output.room = kPageSize - kHeader;
  }
  return output;
}

void DesktopFile::Insert(sample::Table table, std::initializer_list<sample::Cell> row) {
  static constexpr const char* kNames[] = {"SetNames", "BackupAudit", "LongPaths", "Catalog"};
  std::vector<Value> values;
  if (table == sample::Table::kBackupAudit) values.emplace_back(++m_runs);
  for (const sample::Cell& cell : row) values.push_back(std::visit(ToValue(), cell));
  Add(kNames[static_cast<std::size_t>(table)], values);
}

std::string DesktopFile::EncodedText(std::string_view text) const {
  const std::u16string units = ToUtf16<char16_t>(text);
  bool narrow = true;
  for (const char16_t unit : units) narrow = narrow && unit != 0 && unit < 0x100;
  std::string bytes;
  if (m_style.texts == Texts::kMixed && !units.empty()) {
    // One byte for each character below U+0100, and runs of UTF-16 between zeros. A character whose low byte
    // is zero cannot be in such a run, so this class does not support it.
    bytes = "\xFF\xFE";
    bool compressed = true;
    for (std::size_t i = 0; i < units.size(); ++i) {
      const bool wide = units[i] >= 0x100 || i % 7 == 3;
      if (wide == compressed) {
        bytes += '\0';
        compressed = !compressed;
      }
      if (compressed) {
        bytes += static_cast<char>(units[i]);
      } else {
        Append(bytes, static_cast<std::uint16_t>(units[i]));
      }
    }
    return bytes;
  }
  if (narrow && m_style.texts == Texts::kCompressed && !units.empty()) {
    bytes = "\xFF\xFE";
    for (const char16_t unit : units) bytes += static_cast<char>(unit);
    return bytes;
  }
  for (const char16_t unit : units) Append(bytes, static_cast<std::uint16_t>(unit));
  return bytes;
}

std::string DesktopFile::EncodedMemo(const std::string& text) {
  const std::string bytes = EncodedText(text);
  const auto size = static_cast<std::uint32_t>(bytes.size());
  std::string memo;
  switch (m_style.memos) {
    case Memos::kInRow:
      Append(memo, size | 0x80000000);
      Append(memo, std::uint64_t{0});
      return memo + bytes;
    case Memos::kOnePage:
      Append(memo, size | 0x40000000);
      Append(memo, PutLongValue(bytes));
      break;
    case Memos::kChain: {
      std::uint32_t next = 0;  // the chain is written from its end
      for (std::size_t start = (bytes.size() - 1) / kPieceOfChain * kPieceOfChain;; start -= kPieceOfChain) {
        std::string piece;
        Append(piece, next);
        next = PutLongValue(piece + bytes.substr(start, kPieceOfChain));
        if (start == 0) break;
      }
      Append(memo, size);
      Append(memo, next);
    }
  }
  Append(memo, std::uint32_t{0});
  return memo;
}

// Puts each on a page of its own, for simplicity.
std::uint32_t DesktopFile::PutLongValue(const std::string& bytes) {
  const std::uint32_t page = NewPage();
  WriteDataPage(page, kLongValueOwner, {bytes}, {0});
  return page << 8;
}

std::string DesktopFile::Encoded(const TableDefinition& definition, const std::vector<Value>& row) {
  std::uint16_t columns = 0;
  std::size_t fixedEnd = 2;
  for (const Column& column : definition.columns) {
    columns = std::max<std::uint16_t>(columns, static_cast<std::uint16_t>(column.number + 1));
    if (column.fixed) fixedEnd = std::max<std::size_t>(fixedEnd, 2u + column.fixedOffset + column.length);
  }
  std::string bytes(fixedEnd, '\0'), mask((columns + 7u) / 8, '\0');
  PutAt(bytes, 0, columns);
  std::vector<std::string> variable(definition.variableColumns);
  for (std::size_t i = 0; i < definition.columns.size(); ++i) {
    const Column& column = definition.columns[i];
    const Value& value = row.at(i);
    const engine::ValueView view = engine::ViewOf(value);
    const bool set = column.type == ColumnType::kYesNo ? engine::ToBoolean(view) : !engine::IsNull(view);
    if (!set) continue;
    mask[column.number >> 3] = static_cast<char>(mask[column.number >> 3] | 1 << (column.number & 7));
    if (column.type == ColumnType::kYesNo) continue;
    if (column.fixed) {
      const std::string piece = FixedBytes(column, value);
      bytes.replace(2u + column.fixedOffset, piece.size(), piece);
    } else {
      const std::string text = engine::ToText(view);
      variable.at(column.variableIndex) =
          column.type == ColumnType::kMemo && !text.empty() ? EncodedMemo(text) : EncodedText(text);
    }
  }
  std::vector<std::uint16_t> offsets;
  for (const std::string& piece : variable) {
    offsets.push_back(static_cast<std::uint16_t>(bytes.size()));
    bytes += piece;
  }
  Append(bytes, static_cast<std::uint16_t>(bytes.size()));
  for (std::size_t i = offsets.size(); i-- > 0;) Append(bytes, offsets[i]);
  Append(bytes, static_cast<std::uint16_t>(offsets.size()));
  return bytes + mask;
}

void DesktopFile::Add(const std::string& table, const std::vector<Value>& row) {
  Output& output = OutputOf(table);
  std::string bytes = Encoded(*output.definition, row);
  ++output.count;
  if (m_style.moveEvery == 0 || output.count % static_cast<unsigned>(m_style.moveEvery) != 0) {
    Put(output, std::move(bytes), 0);
    return;
  }
  if (output.movedPage == 0 || output.movedRoom < bytes.size() + 2) {
    FinishMoved(output);
    output.movedPage = NewPage();
    output.movedRoom = kPageSize - kHeader;
    output.pages.push_back(output.movedPage);
  }
  std::string pointer;
  Append(pointer, output.movedPage << 8 | static_cast<std::uint32_t>(output.moved.size()));
  pointer += "what was here before";
  output.movedRoom -= bytes.size() + 2;
  output.moved.push_back(std::move(bytes));
  Put(output, std::move(pointer), kPointer);
}

void DesktopFile::Put(Output& output, std::string row, std::uint16_t flag) {
  if (row.size() + 2 > output.room || output.rows.size() == 255) FinishPage(output);
  if (row.size() + 2 > output.room) throw std::runtime_error("a row is larger than a page");
  output.room -= row.size() + 2;
  output.rows.push_back(std::move(row));
  output.flags.push_back(flag);
}

void DesktopFile::FinishPage(Output& output) {
  if (output.rows.empty()) return;
  const std::uint32_t page = NewPage();
  output.pages.push_back(page);
  WriteDataPage(page, output.definition->page, output.rows, output.flags);
  output.rows.clear();
  output.flags.clear();
  output.room = kPageSize - kHeader;
}

void DesktopFile::FinishMoved(Output& output) {
  if (output.moved.empty()) return;
  WriteDataPage(output.movedPage, output.definition->page, output.moved,
                std::vector<std::uint16_t>(output.moved.size(), kMovedHere));
  output.moved.clear();
}

std::uint32_t DesktopFile::NewPage() {
  return m_pages++;
}

void DesktopFile::WritePage(std::uint32_t page, const std::string& bytes) {
  m_file.seekp(static_cast<std::streamoff>(page) * static_cast<std::streamoff>(kPageSize));
  m_file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

void DesktopFile::WriteDataPage(std::uint32_t page, std::uint32_t owner, const std::vector<std::string>& rows,
                                const std::vector<std::uint16_t>& flags) {
  std::string bytes(kPageSize, '\0');
  PutAt(bytes, 0, std::uint16_t{0x0101});
  PutAt(bytes, 4, owner);
  PutAt(bytes, 12, static_cast<std::uint16_t>(rows.size()));
  std::size_t end = kPageSize;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    end -= rows[i].size();
    bytes.replace(end, rows[i].size(), rows[i]);
    PutAt(bytes, kHeader + 2 * i, static_cast<std::uint16_t>(end | flags[i]));
  }
  PutAt(bytes, 2, static_cast<std::uint16_t>(end - kHeader - 2 * rows.size()));
  WritePage(page, bytes);
}

// A map that names pages of bits.
void DesktopFile::WriteMap(const Output& output) {
  constexpr std::uint32_t kPagesOfMap = (kPageSize - 4) * 8;
  const engine::jet_file::RowPointer place = output.definition->ownedPages;
  const engine::jet_file::Page holder = m_sample.Pages().Read(place.page);
  const engine::jet_file::Bytes map = m_sample.Pages().Row(holder, place.slot);
  std::map<std::uint32_t, std::string> maps;
  for (const std::uint32_t page : output.pages) {
    std::string& bits = maps[page / kPagesOfMap];
    if (bits.empty()) {
      bits.resize(kPageSize);
      PutAt(bits, 0, std::uint16_t{0x0105});
    }
    char& byte = bits[4 + page % kPagesOfMap / 8];
    byte = static_cast<char>(byte | 1 << page % 8);
  }
  std::string row(map.Size(), '\0');
  row[0] = 1;
  for (const auto& [number, bits] : maps) {
    if (1 + 4 * (number + 1) > row.size()) throw std::runtime_error("the file is too large for its map");
    const std::uint32_t page = NewPage();
    WritePage(page, bits);
    PutAt(row, 1 + 4 * number, page);
  }
  m_file.seekp(static_cast<std::streamoff>(place.page) * static_cast<std::streamoff>(kPageSize) +
               (map.Data() - holder.Content().Data()));
  m_file.write(row.data(), static_cast<std::streamsize>(row.size()));
  std::string count;
  Append(count, output.count);
  m_file.seekp(static_cast<std::streamoff>(output.definition->page) * static_cast<std::streamoff>(kPageSize) +
               0x10);
  m_file.write(count.data(), 4);
}

void DesktopFile::Finish() {
  for (auto& [name, output] : m_outputs) {
    FinishPage(output);
    FinishMoved(output);
    WriteMap(output);
  }
  m_file.close();
  if (!m_file) throw std::runtime_error("the file cannot be written");
}

}  // namespace kxrestore::bench
