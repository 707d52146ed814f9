// Decodes texts of a database file to UTF-8.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "engine/jet_file/bytes.h"

namespace kxrestore::engine::jet_file {

// Appends a text of the formats from 2000 on: UTF-16 or, after FF FE, one byte for each character with runs
// of UTF-16 between zeros. Unpaired surrogates are preserved, see base/utf16.h.
void AppendUnicode(std::string& out, Bytes stored);

// A text without compression: names in definitions.
void AppendPlainUtf16(std::string& out, Bytes stored);

// Texts of 1997 are in the file's code page. Invalid bytes become U+FFFD.
class CodePage {
 public:
  virtual ~CodePage() = default;
  virtual void Append(std::string& out, Bytes stored) = 0;
  // 1252 is built in; the others use the system's tables, falling back to 1252.
  static std::unique_ptr<CodePage> Find(std::uint16_t number);
};

// The system's own conversion; null when it has none.
std::unique_ptr<CodePage> FindSystemCodePage(std::uint16_t number);

}  // namespace kxrestore::engine::jet_file
