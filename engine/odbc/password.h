// The password of a connect string, to be taken out of every text that comes from a driver.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kxrestore::engine::odbc {

class Password {
 public:
  // Finds the values of PWD and PASSWORD. A value that holds ";" without braces is cut by the driver manager,
  // so the pieces behind the ";" belong to the password, too, unless they name another well-known keyword.
  explicit Password(std::string_view connect);

  // The text with "***" in the place of the password: in either case, in braces or quotes with the closing
  // one doubled, behind backslashes, percent-encoded, and cut off at the end of the text.
  std::string Hide(std::string_view text) const;

 private:
  void AddPieces(std::string_view values);
  void Add(std::string_view value, std::size_t minimum);

  std::vector<std::u32string> m_values;  // folded, the longest first
};

// The value of a keyword of a connect string up to the next ";"; empty when there is none.
std::string ValueOfKeyword(std::string_view connect, std::string_view keyword);

}  // namespace kxrestore::engine::odbc
