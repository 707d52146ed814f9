// libFuzzer target: parses and prints any text as a statement and as a view. It may raise errors but not
// crash.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "base/error.h"
#include "engine/jet_sql/meaning/like_pattern.h"
#include "engine/jet_sql/printing/printer.h"
#include "engine/jet_sql/reading/parser.h"
#include "engine/jet_sql/reading/view_text.h"

using namespace kxrestore::engine::jet_sql;

namespace {

// Returns an empty text for a syntax error.
std::string Printed(std::string_view text, std::size_t parameters, bool saved) {
  try {
    return Print(Parse(text, parameters), SqliteDialect(saved));
  } catch (const kxrestore::Error&) {
    return {};
  }
}

void ReadView(std::string_view text) {
  for (const LikeSigns& signs : {LikeSigns{}, LikeSigns{.escape = '\\', .hasLists = true}}) {
    try {
      QueryTextOfView(text, signs);
    } catch (const kxrestore::Error&) {
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  LikePattern(text.substr(0, size / 2)).Matches(text.substr(size / 2));
  ReadView(text);
  Printed(text, 0, false);
  Printed(text, 0, true);
  Printed(text, 3, false);
  return 0;
}
