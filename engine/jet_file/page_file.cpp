#include "engine/jet_file/page_file.h"

#include <algorithm>
#include <numeric>
#include <string_view>

#include "engine/error_numbers.h"

namespace kxrestore::engine::jet_file {
namespace {

constexpr std::size_t kBlockSize = 32 * 1024;
constexpr std::size_t kMaxBlocks = 512;  // 16 MB
constexpr std::size_t kMaxRows = 256;    // of a page: a record pointer has one byte for them
constexpr std::uint16_t kSlotOffset = 0x1FFF;

// The mask over part of page 0.
void Unmask(std::uint8_t* bytes, std::size_t size) {
  constexpr std::array<std::uint8_t, 4> kKey = {0xC7, 0xDA, 0x39, 0x6B};
  std::array<std::uint8_t, 256> state;
  std::iota(state.begin(), state.end(), std::uint8_t{0});
  std::uint8_t j = 0;
  for (std::size_t i = 0; i < state.size(); ++i) {
    j = static_cast<std::uint8_t>(j + state[i] + kKey[i % kKey.size()]);
    std::swap(state[i], state[j]);
  }
  std::uint8_t a = 0, b = 0;
  for (std::size_t i = 0; i < size; ++i) {
    b = static_cast<std::uint8_t>(b + state[++a]);
    std::swap(state[a], state[b]);
    bytes[i] ^= state[static_cast<std::uint8_t>(state[a] + state[b])];
  }
}

[[noreturn]] void RaiseEncrypted(const std::string& file) {
  Raise(error_number::kCannotCreateObject,
        "ActiveX component can't create object: '" + file +
            "' is encrypted. Only the desktop database engine can open it, and that is not installed.");
}

// The password's bytes are zero if there is none. From 2000 on they are combined with the creation date.
bool HasPassword(const Bytes& header, bool jet3) {
  const std::size_t size = jet3 ? 20 : 40;
  std::uint32_t mask = 0;
  if (!jet3) {
    const double created = header.Double(0x72);
    if (created > -2e9 && created < 2e9)
      mask = static_cast<std::uint32_t>(static_cast<std::int64_t>(created));
  }
  for (std::size_t i = 0; i < size; i += 4) {
    if (header.U32(0x42 + i) != mask) return true;
  }
  return false;
}

}  // namespace

void RaiseDamaged(const std::string& file, std::string_view what) {
  Raise(error_number::kDamaged,
        "Cannot read the database '" + file + "': it is damaged (" + std::string(what) + ").");
}

PageFile::PageFile(std::string path)
    : m_path(std::move(path)), m_file(File::Open(m_path, File::Use::kReading)) {
  m_stamp = m_file->Stamp();
  ReadHeader();
  TakeSize();
  if (m_pageCount < 3) RaiseDamaged("it ends behind its header");
  if (const Page system = Read(2); system.Type() != PageType::kTable || system.Content().U8(1) != 1) {
    // Parameters of an encryption; all zero in a plain file.
    if (m_ace && Read(0).Content().U32(0x299) != 0) RaiseEncrypted(m_path);
    RaiseDamaged("page 2 does not define the table of objects");
  }
}

void PageFile::RaiseDamaged(const std::string& what) const {
  jet_file::RaiseDamaged(m_path, what);
}

void PageFile::ReadHeader() {
  std::array<std::uint8_t, 0xA0> bytes{};
  const std::size_t size = m_file->ReadAt(0, bytes.data(), bytes.size());
  const Bytes header(bytes.data(), size, &m_path);
  const std::string_view magic = size == bytes.size() ? header.Piece(4, 16).Text() : std::string_view();
  using namespace std::string_view_literals;
  m_ace = magic == "Standard ACE DB\0"sv;
  if (!m_ace && magic != "Standard Jet DB\0"sv) {
    Raise(error_number::kUnrecognizedFormat, "Unrecognized database format '" + m_path + "'.");
  }
  const unsigned version = header.U8(0x14);
  if (m_ace ? version < 2 || version > 6 : version > 1) {
    Raise(error_number::kUnrecognizedFormat, "Unrecognized database format '" + m_path + "': version " +
                                                 std::to_string(version) + " is unknown.");
  }
  m_layout.jet3 = version == 0;
  m_layout.pageSize = m_layout.jet3 ? 2048 : 4096;
  Unmask(bytes.data() + 0x18, m_layout.jet3 ? 126 : 128);
  if (header.U32(0x3E) != 0) RaiseEncrypted(m_path);
  if (HasPassword(header, m_layout.jet3)) {
    Raise(error_number::kPassword, "Not a valid password: '" + m_path +
                                       "' is protected by one. Remove it to use the file without the desktop "
                                       "database engine.");
  }
  m_layout.codePage = header.U16(0x3C);
}

void PageFile::TakeSize() {
  m_pageCount =
      static_cast<std::uint32_t>(std::min<std::uint64_t>(m_stamp.size / m_layout.pageSize, 0xFFFFFF));
}

const PageFile::Block& PageFile::BlockOf(std::uint64_t offset) const {
  const auto number = static_cast<std::uint32_t>(offset / kBlockSize);
  if (!m_blocks.empty() && m_blocks.front().number == number) return m_blocks.front();
  if (const auto found = m_byNumber.find(number); found != m_byNumber.end()) {
    m_blocks.splice(m_blocks.begin(), m_blocks, found->second);
    return m_blocks.front();
  }
  Block block;
  block.number = number;
  if (m_blocks.size() >= kMaxBlocks) {
    Block& oldest = m_blocks.back();
    m_byNumber.erase(oldest.number);
    if (oldest.bytes.use_count() == 1) block.bytes = std::move(oldest.bytes);
    m_blocks.pop_back();
  }
  if (!block.bytes) block.bytes = std::make_shared_for_overwrite<std::uint8_t[]>(kBlockSize);
  block.size = m_file->ReadAt(std::uint64_t{number} * kBlockSize, block.bytes.get(), kBlockSize);
  m_blocks.push_front(std::move(block));
  m_byNumber[number] = m_blocks.begin();
  return m_blocks.front();
}

Page PageFile::Read(std::uint32_t number) const {
  if (number >= m_pageCount) RaiseDamaged("page " + std::to_string(number) + " lies beyond its end");
  const std::uint64_t offset = std::uint64_t{number} * m_layout.pageSize;
  const Block& block = BlockOf(offset);
  const std::size_t place = offset % kBlockSize;
  if (place + m_layout.pageSize > block.size) {
    RaiseDamaged("page " + std::to_string(number) + " lies beyond its end");
  }
  return {block.bytes, Bytes(block.bytes.get() + place, m_layout.pageSize, &m_path), number};
}

Page PageFile::Read(std::uint32_t number, PageType type) const {
  Page page = Read(number);
  if (page.Type() != type || page.Content().Data()[1] != 1) {
    RaiseDamaged("page " + std::to_string(number) + " is of type " + std::to_string(page.Content().U8(0)) +
                 " where " + std::to_string(static_cast<int>(type)) + " is expected");
  }
  return page;
}

std::uint16_t PageFile::SlotOf(const Page& page, const Layout& layout, std::uint8_t slot) {
  const Bytes& bytes = page.Content();
  const std::size_t count = bytes.U16(layout.rowCount());
  if (count > kMaxRows || slot >= count) {
    bytes.RaiseDamaged("page " + std::to_string(page.Number()) + " has no row " + std::to_string(slot));
  }
  return bytes.U16(layout.slotTable() + 2 * std::size_t{slot});
}

Bytes PageFile::Row(const Page& page, std::uint8_t slot) const {
  const std::size_t start = SlotOf(page, m_layout, slot) & kSlotOffset;
  const std::size_t end = slot == 0
                              ? m_layout.pageSize
                              : SlotOf(page, m_layout, static_cast<std::uint8_t>(slot - 1)) & kSlotOffset;
  const std::size_t table = m_layout.slotTable() + 2 * std::size_t{page.Content().U16(m_layout.rowCount())};
  if (start < table || start > end || end > m_layout.pageSize) {
    page.Content().RaiseDamaged("row " + std::to_string(slot) + " of page " + std::to_string(page.Number()) +
                                " lies outside of it");
  }
  return page.Content().Piece(start, end - start);
}

bool PageFile::Refresh() {
  const FileStamp stamp = m_file->Stamp();
  if (stamp == m_stamp) return false;
  m_stamp = stamp;
  m_blocks.clear();
  m_byNumber.clear();
  TakeSize();
  return true;
}

void PageFile::Written(std::uint64_t offset, std::uint8_t byte) {
  const auto found = m_byNumber.find(static_cast<std::uint32_t>(offset / kBlockSize));
  if (found != m_byNumber.end()) found->second->bytes[offset % kBlockSize] = byte;
}

}  // namespace kxrestore::engine::jet_file
