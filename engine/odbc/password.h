// The password of a connect string, to be removed from every text that comes from a driver.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kxrestore::engine::odbc {

class Password {
 public:
  // Finds the values of PWD and PASSWORD. The driver manager cuts a value with an unbraced ";", so the parts
  // after the ";" belong to the password, too, unless they begin with another well-known keyword.
  explicit Password(std::string_view connect);

  // The text with the password replaced by "***": in upper or lower case, in braces or quotes with the
  // closing one doubled, after backslashes, percent-encoded, and truncated at the end of the text.
  std::string Hide(std::string_view text) const;

 private:
  void AddPieces(std::string_view values);
  void Add(std::string_view value, std::size_t minimum);

  std::vector<std::u32string> m_values;  // case-folded, longest first
};

// The value of a keyword of a connect string up to the next ";"; empty when it is absent.
std::string ValueOfKeyword(std::string_view connect, std::string_view keyword);

}  // namespace kxrestore::engine::odbc
