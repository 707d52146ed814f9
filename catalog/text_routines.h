// Helpers for paths, file names and SQL text. Returned views refer to the argument.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kxrestore::catalog {

// The path with "\" at its end; an empty path gives "\".
std::string AddBackslash(std::string_view path);

// What follows the last "\"; the whole path when there is none.
std::string_view LastPathComponent(std::string_view path);

// What follows the last "." of the name; empty when there is none.
std::string_view GetExtension(std::string_view name);

// What precedes the first NUL.
std::string_view StripNulls(std::string_view text);

// The text with every apostrophe doubled, for an SQL literal.
std::string FixQuotes(std::string_view text);
void AppendWithFixedQuotes(std::string& sql, std::string_view text);

// Error 6, Overflow, beyond 32,767.
std::int16_t CountBackslashes(std::string_view path);

}  // namespace kxrestore::catalog
