#include "engine/row_store.h"

#include <cstring>
#include <utility>

namespace kxrestore::engine {
namespace {

constexpr std::size_t kBlockSize = 1 << 20;

// In the order of ValueView's alternatives.
enum Tag : char { kNullTag, kBooleanTag, kIntegerTag, kRealTag, kTextTag, kDateTag };

template <typename Plain>
void AppendBytes(std::string& block, const Plain& plain) {
  char bytes[sizeof plain];
  std::memcpy(bytes, &plain, sizeof plain);
  block.append(bytes, sizeof plain);
}

template <typename Plain>
Plain TakeBytes(const std::string& block, std::size_t& position) {
  Plain plain;
  std::memcpy(&plain, block.data() + position, sizeof plain);
  position += sizeof plain;
  return plain;
}

}  // namespace

void RowStore::BeginRow() {
  if (m_blocks.empty() || m_blocks.back().size() >= kBlockSize) {
    std::string block;
    block.reserve(kBlockSize + kBlockSize / 16);
    m_blocks.push_back(std::move(block));
  }
  m_rowStart = m_blocks.back().size();
}

void RowStore::DropRow() {
  m_blocks.back().resize(m_rowStart);
  if (m_rowStart == 0) m_blocks.pop_back();
}

void RowStore::Append(const ValueView& value) {
  std::string& block = m_blocks.back();
  block.push_back(static_cast<char>(value.index()));
  std::visit(
      [&block](const auto& held) {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, std::string_view>) {
          AppendBytes(block, static_cast<std::uint32_t>(held.size()));
          block.append(held);
        } else if constexpr (!std::is_same_v<Held, std::monostate>) {
          AppendBytes(block, held);
        }
      },
      value);
}

bool RowStore::Next(std::vector<ValueView>& values, std::size_t columns) {
  if (m_block < m_blocks.size() && m_position >= m_blocks[m_block].size()) {
    m_blocks[m_block] = std::string();  // has been read
    ++m_block;
    m_position = 0;
  }
  if (m_block >= m_blocks.size()) return false;
  const std::string& block = m_blocks[m_block];
  values.resize(columns);
  for (ValueView& value : values) {
    switch (block[m_position++]) {
      case kBooleanTag:
        value = TakeBytes<bool>(block, m_position);
        break;
      case kIntegerTag:
        value = TakeBytes<std::int64_t>(block, m_position);
        break;
      case kRealTag:
        value = TakeBytes<double>(block, m_position);
        break;
      case kDateTag:
        value = TakeBytes<DateTime>(block, m_position);
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

}  // namespace kxrestore::engine
