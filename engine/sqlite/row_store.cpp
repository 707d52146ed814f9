#include "engine/sqlite/row_store.h"

#include <cstring>

namespace kxrestore::engine::sqlite {
namespace {

constexpr std::size_t kBlockSize = 1 << 20;

enum Tag : char { kNullTag, kIntegerTag, kRealTag, kTextTag };

template <typename Number>
void AppendBytes(std::string& block, Number number) {
  char bytes[sizeof number];
  std::memcpy(bytes, &number, sizeof number);
  block.append(bytes, sizeof number);
}

template <typename Number>
Number TakeBytes(const std::string& block, std::size_t& position) {
  Number number;
  std::memcpy(&number, block.data() + position, sizeof number);
  position += sizeof number;
  return number;
}

}  // namespace

void RowStore::Append(sqlite3_stmt* statement, std::size_t columns) {
  if (m_blocks.empty() || m_blocks.back().size() >= kBlockSize) {
    m_blocks.emplace_back().reserve(kBlockSize + kBlockSize / 16);
  }
  std::string& block = m_blocks.back();
  for (std::size_t i = 0; i < columns; ++i) {
    const int index = static_cast<int>(i);
    switch (sqlite3_column_type(statement, index)) {
      case SQLITE_NULL:
        block.push_back(kNullTag);
        break;
      case SQLITE_INTEGER:
        block.push_back(kIntegerTag);
        AppendBytes(block, static_cast<std::int64_t>(sqlite3_column_int64(statement, index)));
        break;
      case SQLITE_FLOAT:
        block.push_back(kRealTag);
        AppendBytes(block, sqlite3_column_double(statement, index));
        break;
      default: {
        const void* text = sqlite3_column_blob(statement, index);
        const auto size = static_cast<std::uint32_t>(sqlite3_column_bytes(statement, index));
        block.push_back(kTextTag);
        AppendBytes(block, size);
        if (size > 0) block.append(static_cast<const char*>(text), size);
      }
    }
  }
}

bool RowStore::Next(std::vector<ValueView>& values, std::size_t columns) {
  if (m_block < m_blocks.size() && m_position >= m_blocks[m_block].size()) {
    m_blocks[m_block] = std::string();  // what was read is not needed any more
    ++m_block;
    m_position = 0;
  }
  if (m_block >= m_blocks.size()) return false;
  const std::string& block = m_blocks[m_block];
  values.resize(columns);
  for (ValueView& value : values) {
    switch (block[m_position++]) {
      case kIntegerTag:
        value = TakeBytes<std::int64_t>(block, m_position);
        break;
      case kRealTag:
        value = TakeBytes<double>(block, m_position);
        break;
      case kTextTag: {
        const auto size = TakeBytes<std::uint32_t>(block, m_position);
        value = std::string_view(block).substr(m_position, size);
        m_position += size;
        break;
      }
      default:
        value = std::monostate();
    }
  }
  return true;
}

}  // namespace kxrestore::engine::sqlite
