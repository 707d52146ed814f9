// libFuzzer target: whatever the text, it is parsed and printed or refused, never more.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "base/error.h"
#include "engine/jet_sql/like_pattern.h"
#include "engine/jet_sql/literals.h"
#include "engine/jet_sql/parser.h"
#include "engine/jet_sql/printer.h"

using namespace kxrestore::engine::jet_sql;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  LikePattern(text.substr(0, size / 2)).Matches(text.substr(size / 2));
  ExtractedLiterals extracted;
  const bool usable = ExtractLiterals(text, extracted);
  bool parsed = false;
  try {
    const std::string saved = Print(Parse(text), SqliteDialect(true));
    parsed = true;
    Print(Parse(text), SqliteDialect(false));
    if (usable) Print(Parse(extracted.key), SqliteDialect(false));
    if (saved.find('"') == std::string::npos) Parse(saved);
  } catch (const kxrestore::Error& error) {
    // Taking the literals out must not change whether a text is a statement.
    if (parsed && usable && extracted.key.find(kParameterMark) != std::string::npos && error.Number() != 3075)
      abort();
  }
  return 0;
}
