#include "engine/row_store.h"

#include <cstring>
#include <utility>

namespace kxrestore::engine {
namespace {

constexpr std::size_t kBlockSize = 1 << 20;

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

struct Packer {
  std::string& block;
  void operator()(std::monostate) const { block.push_back(kNullTag); }
  void operator()(bool value) const { Pack(kBooleanTag, value); }
  void operator()(std::int64_t value) const { Pack(kIntegerTag, value); }
  void operator()(double value) const { Pack(kRealTag, value); }
  void operator()(const DateTime& value) const { Pack(kDateTag, value); }
  void operator()(std::string_view value) const {
    Pack(kTextTag, static_cast<std::uint32_t>(value.size()));
    block.append(value);
  }

 private:
  template <typename Plain>
  void Pack(Tag tag, const Plain& plain) const {
    block.push_back(tag);
    AppendBytes(block, plain);
  }
};

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
  std::visit(Packer{m_blocks.back()}, value);
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
