// Part of a database file, with bounds-checked access to its numbers. They are little-endian unless the name
// says otherwise.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace kxrestore::engine::jet_file {

// Error 3049 for inconsistent file content; `what` names the place and the inconsistency.
[[noreturn]] void RaiseDamaged(const std::string& file, std::string_view what);

// A view; its source defines how long the bytes are valid. `file` is named in errors.
class Bytes {
 public:
  Bytes() = default;
  Bytes(const std::uint8_t* data, std::size_t size, const std::string* file)
      : m_data(data), m_size(size), m_file(file) {}

  std::size_t Size() const { return m_size; }
  const std::uint8_t* Data() const { return m_data; }
  const std::string* File() const { return m_file; }
  std::string_view Text() const { return {reinterpret_cast<const char*>(m_data), m_size}; }

  // Error 3049 outside the range.
  Bytes Piece(std::size_t offset, std::size_t size) const {
    Check(offset, size);
    return {m_data + offset, size, m_file};
  }
  Bytes From(std::size_t offset) const {
    Check(offset, 0);
    return {m_data + offset, m_size - offset, m_file};
  }

  std::uint8_t U8(std::size_t offset) const {
    Check(offset, 1);
    return m_data[offset];
  }
  std::uint16_t U16(std::size_t offset) const { return static_cast<std::uint16_t>(Number<2>(offset)); }
  std::uint32_t U32(std::size_t offset) const { return static_cast<std::uint32_t>(Number<4>(offset)); }
  std::uint64_t U64(std::size_t offset) const { return Number<8>(offset); }
  std::uint32_t U32BigEndian(std::size_t offset) const {
    const std::uint32_t value = U32(offset);
    return value << 24 | (value & 0xFF00) << 8 | (value >> 8 & 0xFF00) | value >> 24;
  }
  double Double(std::size_t offset) const { return std::bit_cast<double>(U64(offset)); }
  float Single(std::size_t offset) const { return std::bit_cast<float>(U32(offset)); }

  [[noreturn]] void RaiseDamaged(std::string_view what) const { jet_file::RaiseDamaged(*m_file, what); }

 private:
  void Check(std::size_t offset, std::size_t size) const {
    if (offset > m_size || size > m_size - offset) RaiseDamaged("a piece lies outside of its page");
  }
  template <std::size_t Size>
  std::uint64_t Number(std::size_t offset) const {
    Check(offset, Size);
    std::uint64_t value = 0;
    for (std::size_t i = Size; i-- > 0;) value = value << 8 | m_data[offset + i];
    return value;
  }

  const std::uint8_t* m_data = nullptr;
  std::size_t m_size = 0;
  const std::string* m_file = nullptr;
};

}  // namespace kxrestore::engine::jet_file
