// The pages of a desktop-engine file, read through a small cache. Supports all formats from 1997 to 2019;
// Layout describes their differences.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <unordered_map>

#include "engine/jet_file/bytes.h"
#include "engine/jet_file/file.h"

namespace kxrestore::engine::jet_file {

// Offsets in the two families of formats, from the start of a page or structure.
struct Layout {
  bool jet3 = false;  // format of 1997: one byte where later ones have two
  std::uint32_t pageSize = 4096;
  std::uint16_t codePage = 1252;  // of Jet 3 texts

  // Data pages.
  std::size_t rowCount() const { return jet3 ? 0x08 : 0x0C; }
  std::size_t slotTable() const { return jet3 ? 0x0A : 0x0E; }
};

enum class PageType : std::uint8_t { kData = 1, kTable = 2, kNode = 3, kLeaf = 4, kUsageMap = 5 };

// The bytes of one page, valid during its lifetime, independently of the cache.
class Page {
 public:
  Page() = default;
  Page(std::shared_ptr<const std::uint8_t[]> block, Bytes bytes, std::uint32_t number)
      : m_block(std::move(block)), m_bytes(bytes), m_number(number) {}

  explicit operator bool() const { return m_block != nullptr; }
  const Bytes& Content() const { return m_bytes; }
  std::uint32_t Number() const { return m_number; }
  PageType Type() const { return static_cast<PageType>(m_bytes.Data()[0]); }

 private:
  std::shared_ptr<const std::uint8_t[]> m_block;
  Bytes m_bytes;
  std::uint32_t m_number = 0;
};

// A reference within the file: a page and a row of it.
struct RowPointer {
  std::uint32_t page = 0;
  std::uint8_t slot = 0;
  static RowPointer From(std::uint32_t stored) { return {stored >> 8, static_cast<std::uint8_t>(stored)}; }
  friend bool operator==(const RowPointer&, const RowPointer&) = default;
};

class PageFile {
 public:
  // Errors: those of File::Open; 3343 for another kind of file, 3049 for a damaged one, 3031 for one with a
  // password and 429 for an encrypted one, which only the desktop engine opens.
  explicit PageFile(std::string path);

  const std::string& Path() const { return m_path; }
  const Layout& Format() const { return m_layout; }
  bool IsAce() const { return m_ace; }
  std::uint32_t PageCount() const { return m_pageCount; }  // whole pages

  // Error 3049 for a page beyond the end.
  Page Read(std::uint32_t number) const;
  // The same, and checks the page's type.
  Page Read(std::uint32_t number, PageType type) const;
  // A row of a data page, whatever its flags.
  Bytes Row(const Page& page, std::uint8_t slot) const;
  // The offset of that row, with its flags.
  static std::uint16_t SlotOf(const Page& page, const Layout& layout, std::uint8_t slot);

  // Drops the cache if another program has written to the file, and returns whether it has.
  bool Refresh();
  // Updates the cache with a byte that this program has just written.
  void Written(std::uint64_t offset, std::uint8_t byte);
  void RememberStamp() { m_stamp = m_file->Stamp(); }  // the latest change is this program's own
  void ForgetStamp() { m_stamp = {}; }                 // the next Refresh finds a change

  [[noreturn]] void RaiseDamaged(const std::string& what) const;

 private:
  struct Block {
    std::uint32_t number = 0;
    std::shared_ptr<std::uint8_t[]> bytes;
    std::size_t size = 0;
  };

  void ReadHeader();
  void TakeSize();
  const Block& BlockOf(std::uint64_t offset) const;

  std::string m_path;
  std::unique_ptr<File> m_file;
  FileStamp m_stamp;
  Layout m_layout;
  bool m_ace = false;
  std::uint32_t m_pageCount = 0;
  mutable std::list<Block> m_blocks;  // most recently used first
  mutable std::unordered_map<std::uint32_t, std::list<Block>::iterator> m_byNumber;
};

}  // namespace kxrestore::engine::jet_file
