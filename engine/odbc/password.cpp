#include "engine/odbc/password.h"

#include <algorithm>
#include <utility>

#include "base/text.h"

namespace kxrestore::engine::odbc {
namespace {

constexpr std::string_view kHidden = "***";
// A shorter part of a password reveals too little, and removing it would make texts unreadable.
constexpr std::size_t kMinPiece = 3;

struct Character {
  char32_t folded;
  std::size_t end;  // the byte after it
};

std::vector<Character> Characters(std::string_view text) {
  std::vector<Character> characters;
  for (std::size_t at = 0; at < text.size();) {
    const char32_t character = NextCharacter(text, at);
    characters.push_back({FoldCase(character), at});
  }
  return characters;
}

std::pair<std::string_view, std::string_view> SplitAt(std::string_view text, char separator) {
  const std::size_t at = text.find(separator);
  if (at == std::string_view::npos) return {text, {}};
  return {text.substr(0, at), text.substr(at + 1)};
}

std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

bool IsPasswordKeyword(std::string_view keyword) {
  return EqualIgnoringCase(Trimmed(keyword), "PWD") || EqualIgnoringCase(Trimmed(keyword), "PASSWORD");
}

constexpr std::string_view kKeywords =
    " driver dsn filedsn savefile server servername database uid user username port pwd password app wsid "
    "trusted_connection encrypt sslmode address network language timeout trustservercertificate ";

// Whether a part between semicolons is a setting of its own rather than the rest of a password.
bool NamesKeyword(std::string_view piece) {
  const std::string keyword(Trimmed(SplitAt(piece, '=').first));
  return piece.find('=') != std::string_view::npos && keyword.find(' ') == std::string::npos &&
         kKeywords.find(" " + FoldCase(keyword) + " ") != std::string_view::npos;
}

// A value in braces up to its closing brace; a doubled brace is part of the value. Empty when there is none.
std::string_view Braced(std::string_view value) {
  if (value.empty() || value.front() != '{') return {};
  for (std::size_t i = 1; i < value.size(); ++i) {
    if (value[i] != '}') continue;
    if (i + 1 >= value.size() || value[i + 1] != '}') return value.substr(0, i + 1);
    ++i;
  }
  return {};
}

std::string Unbraced(std::string_view braced) {
  std::string inner;
  for (std::size_t i = 1; i + 1 < braced.size(); ++i) {
    inner += braced[i];
    if (braced[i] == '}') ++i;
  }
  return inner;
}

int HexDigit(char32_t character) {
  if (character >= U'0' && character <= U'9') return static_cast<int>(character - U'0');
  if (character >= U'a' && character <= U'f') return static_cast<int>(character - U'a') + 10;
  return -1;
}

// The case-folded character that is percent-encoded at `at`, and how many characters of the text it takes; 0
// for none.
std::pair<char32_t, std::size_t> PercentDecoded(const std::vector<Character>& text, std::size_t at) {
  std::string bytes;
  for (std::size_t i = at; bytes.size() < 4 && i + 2 < text.size() && text[i].folded == U'%'; i += 3) {
    const int high = HexDigit(text[i + 1].folded), low = HexDigit(text[i + 2].folded);
    if (high < 0 || low < 0) break;
    bytes += static_cast<char>(high * 16 + low);
  }
  if (bytes.empty()) return {0, 0};
  std::size_t used = 0;
  const char32_t character = NextCharacter(bytes, used);
  return {FoldCase(character), used * 3};
}

// The end of the value that begins at `at`; `at` itself when it does not occur there. A text that ends within
// the value counts if at least `kMinPiece` characters of it are present.
std::size_t MatchEnd(const std::vector<Character>& text, std::size_t at, std::u32string_view value) {
  constexpr std::u32string_view kQuoted = U"}'\"]\\`";
  std::size_t i = at;
  for (std::size_t matched = 0; matched < value.size(); ++matched) {
    const char32_t wanted = value[matched];
    if (i >= text.size()) return matched >= kMinPiece ? i : at;
    const bool escaped = text[i].folded == U'\\' && i + 1 < text.size() && text[i + 1].folded == wanted;
    if (escaped) {
      i += 2;
    } else if (text[i].folded == wanted) {
      const bool isDoubled = kQuoted.find(wanted) != std::u32string_view::npos && i + 1 < text.size() &&
                             text[i + 1].folded == wanted &&
                             (matched + 1 == value.size() || value[matched + 1] != wanted);
      i += isDoubled ? 2 : 1;
    } else if (const auto [decoded, used] = PercentDecoded(text, i); used > 0 && decoded == wanted) {
      i += used;
    } else {
      return at;
    }
  }
  return i;
}

}  // namespace

Password::Password(std::string_view connect) {
  for (std::string_view rest = connect; !rest.empty();) {
    const std::size_t nameEnd = rest.find_first_of("=;");
    if (nameEnd == std::string_view::npos) break;
    const std::string_view keyword = rest.substr(0, nameEnd);
    const bool hasValue = rest[nameEnd] == '=';
    rest.remove_prefix(nameEnd + 1);
    if (!hasValue) continue;
    const std::string_view braced = Braced(rest);
    if (IsPasswordKeyword(keyword)) {
      Add(Unbraced(braced), 1);
      AddPieces(rest);
    }
    rest = SplitAt(rest.substr(braced.size()), ';').second;
  }
  std::stable_sort(m_values.begin(), m_values.end(),
                   [](const std::u32string& a, const std::u32string& b) { return a.size() > b.size(); });
}

// `values`: the connect string after "PWD=".
void Password::AddPieces(std::string_view values) {
  Add(SplitAt(values, ';').first, 1);
  std::size_t size = 0;  // of the whole password
  for (std::string_view tail = values; !tail.empty();) {
    const auto [piece, after] = SplitAt(tail, ';');
    if (size > 0 && NamesKeyword(piece)) break;
    Add(Trimmed(piece), kMinPiece);
    size = static_cast<std::size_t>(piece.data() + piece.size() - values.data());
    tail = after;
  }
  Add(values.substr(0, size), 1);
}

void Password::Add(std::string_view value, std::size_t minimum) {
  std::u32string folded;
  for (const Character& character : Characters(value)) folded += character.folded;
  if (folded.empty() || folded.size() < minimum) return;
  if (std::find(m_values.begin(), m_values.end(), folded) == m_values.end()) m_values.push_back(folded);
}

std::string Password::Hide(std::string_view text) const {
  if (m_values.empty()) return std::string(text);
  const std::vector<Character> characters = Characters(text);
  std::string shown;
  for (std::size_t at = 0; at < characters.size();) {
    std::size_t end = at;
    for (const std::u32string& value : m_values) end = std::max(end, MatchEnd(characters, at, value));
    if (end > at) {
      shown += kHidden;
      at = end;
    } else {
      const std::size_t start = at == 0 ? 0 : characters[at - 1].end;
      shown += text.substr(start, characters[at].end - start);
      ++at;
    }
  }
  return shown;
}

std::string ValueOfKeyword(std::string_view connect, std::string_view keyword) {
  for (std::string_view rest = connect; !rest.empty();) {
    const auto [setting, after] = SplitAt(rest, ';');
    const auto [name, value] = SplitAt(setting, '=');
    if (EqualIgnoringCase(name, keyword)) return std::string(value);
    rest = after;
  }
  return {};
}

}  // namespace kxrestore::engine::odbc
