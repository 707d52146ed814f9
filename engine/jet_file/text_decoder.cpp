#include "engine/jet_file/text_decoder.h"

#include <array>
#include <string_view>

#include "base/text.h"
#include "base/utf16.h"

namespace kxrestore::engine::jet_file {
namespace {

void AppendLatin(std::string& out, std::uint8_t byte) {
  if (byte < 0x80) {
    out.push_back(static_cast<char>(byte));
  } else {
    out.push_back(static_cast<char>(0xC0 | byte >> 6));
    out.push_back(static_cast<char>(0x80 | (byte & 0x3F)));
  }
}

// The second half of a pair may start with a zero byte, too.
bool IsPair(std::uint16_t first, std::uint16_t second) {
  return (first & 0xFC00) == 0xD800 && (second & 0xFC00) == 0xDC00;
}

class Windows1252 final : public CodePage {
 public:
  void Append(std::string& out, Bytes stored) override {
    // Bytes 80 to 9F; the five without a character map to themselves.
    static constexpr std::array<char16_t, 32> kUpper = {
        0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
        0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
        0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};
    for (std::size_t i = 0; i < stored.Size(); ++i) {
      const std::uint8_t byte = stored.Data()[i];
      if (byte >= 0x80 && byte < 0xA0) {
        AppendCharacter(out, kUpper[byte - 0x80u]);
      } else {
        AppendLatin(out, byte);
      }
    }
  }
};

}  // namespace

void AppendPlainUtf16(std::string& out, Bytes stored) {
  const std::size_t units = stored.Size() / 2;
  std::array<char16_t, 256> buffer;
  for (std::size_t done = 0; done < units;) {
    std::size_t count = 0;
    while (count < buffer.size() && done < units) buffer[count++] = stored.U16(2 * done++);
    // Do not split a surrogate pair at the end of the buffer.
    if (count > 1 && done < units && (buffer[count - 1] & 0xFC00) == 0xD800) {
      --count;
      --done;
    }
    AppendUtf8(out, std::u16string_view(buffer.data(), count));
  }
}

void AppendUnicode(std::string& out, Bytes stored) {
  const std::uint8_t* data = stored.Data();
  const std::size_t size = stored.Size();
  if (size < 2 || data[0] != 0xFF || data[1] != 0xFE) {
    AppendPlainUtf16(out, stored);
    return;
  }
  out.reserve(out.size() + size);
  for (std::size_t i = 2; i < size;) {
    if (data[i] != 0) {
      AppendLatin(out, data[i++]);
      continue;
    }
    // Compressed from here to the zero at the start of a character.
    const std::size_t start = ++i;
    while (i + 1 < size && (data[i] != 0 || (i > start && IsPair(stored.U16(i - 2), stored.U16(i))))) i += 2;
    AppendPlainUtf16(out, stored.Piece(start, i - start));
    ++i;
  }
}

std::unique_ptr<CodePage> CodePage::Find(std::uint16_t number) {
  if (number != 1252) {
    if (auto found = FindSystemCodePage(number)) return found;
  }
  return std::make_unique<Windows1252>();
}

}  // namespace kxrestore::engine::jet_file
