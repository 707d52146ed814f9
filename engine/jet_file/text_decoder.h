// Texts of a database file as UTF-8.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "engine/jet_file/bytes.h"

namespace kxrestore::engine::jet_file {

// Appends a text of the formats from 2000 on: UTF-16, or, when it begins with FF FE, one byte a character
// with pieces of UTF-16 between zeros. Half of a surrogate pair is kept, as base/utf16.h has it.
void AppendUnicode(std::string& out, Bytes stored);

// A text without the compressed form: names in definitions.
void AppendPlainUtf16(std::string& out, Bytes stored);

// Texts of 1997 are bytes in the code page of the file. Bytes that mean nothing become U+FFFD.
class CodePage {
 public:
  virtual ~CodePage() = default;
  virtual void Append(std::string& out, Bytes stored) = 0;
  // 1252 is known everywhere; the others as far as the system knows them, else as 1252.
  static std::unique_ptr<CodePage> Find(std::uint16_t number);
};

// The system's own conversion; null when it has none.
std::unique_ptr<CodePage> FindSystemCodePage(std::uint16_t number);

}  // namespace kxrestore::engine::jet_file
