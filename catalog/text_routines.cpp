#include "catalog/text_routines.h"

#include <limits>

#include "base/error.h"

namespace kxrestore::catalog {

std::string AddBackslash(std::string_view path) {
  std::string result(path);
  if (!path.ends_with('\\')) result += '\\';
  return result;
}

std::string_view LastPathComponent(std::string_view path) {
  return path.substr(path.rfind('\\') + 1);
}

std::string_view GetExtension(std::string_view name) {
  const auto point = name.rfind('.');
  return point == std::string_view::npos ? std::string_view() : name.substr(point + 1);
}

std::string_view StripNulls(std::string_view text) {
  return text.substr(0, text.find('\0'));
}

std::string FixQuotes(std::string_view text) {
  std::string result;
  AppendWithFixedQuotes(result, text);
  return result;
}

void AppendWithFixedQuotes(std::string& sql, std::string_view text) {
  for (auto quote = text.find('\''); quote != std::string_view::npos; quote = text.find('\'')) {
    sql.append(text.substr(0, quote + 1)).push_back('\'');
    text.remove_prefix(quote + 1);
  }
  sql.append(text);
}

std::int16_t CountBackslashes(std::string_view path) {
  std::int16_t count = 0;
  for (const char character : path) {
    if (character != '\\') continue;
    if (count == std::numeric_limits<std::int16_t>::max())
      throw Error(error_number::kOverflow, "Overflow", "KXRestore");
    ++count;
  }
  return count;
}

}  // namespace kxrestore::catalog
