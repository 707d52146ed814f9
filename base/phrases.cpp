#include "base/phrases.h"

#include <array>
#include <utility>

namespace kxrestore {

namespace {

using Table = std::array<std::string, kPhrases>;

constexpr std::string_view kKeys[] = {
#define KX_PHRASE(key, text) #key,
#include "base/phrases.inc"
#undef KX_PHRASE
};

const Table& EnglishTable() {
  static const Table table{
#define KX_PHRASE(key, text) text,
#include "base/phrases.inc"
#undef KX_PHRASE
  };
  return table;
}

Table& Current() {
  static Table table = EnglishTable();
  return table;
}

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string Unescaped(std::string_view text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\' && i + 1 < text.size() && (text[i + 1] == 'n' || text[i + 1] == '\\')) {
      plain += text[++i] == 'n' ? '\n' : '\\';
    } else {
      plain += text[i];
    }
  }
  return plain;
}

}  // namespace

const std::string& Say(Phrase phrase) {
  return Current()[static_cast<std::size_t>(phrase)];
}

std::string Say(Phrase phrase, std::initializer_list<std::string_view> values) {
  const std::string& pattern = Say(phrase);
  std::string text;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const bool place = pattern[i] == '{' && i + 2 < pattern.size() && pattern[i + 2] == '}' &&
                       pattern[i + 1] >= '1' && pattern[i + 1] < '1' + static_cast<int>(values.size());
    if (!place) {
      text += pattern[i];
      continue;
    }
    text += values.begin()[pattern[i + 1] - '1'];
    i += 2;
  }
  return text;
}

std::string_view KeyOf(Phrase phrase) {
  return kKeys[static_cast<std::size_t>(phrase)];
}

const std::string& English(Phrase phrase) {
  return EnglishTable()[static_cast<std::size_t>(phrase)];
}

std::size_t UsePhrases(std::string_view file) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (file.starts_with(kByteOrderMark)) file.remove_prefix(kByteOrderMark.size());
  Table table = EnglishTable();
  std::array<bool, kPhrases> said{};
  while (!file.empty()) {
    const std::size_t end = file.find('\n');
    const std::string_view line = Trimmed(file.substr(0, end));
    file.remove_prefix(end == std::string_view::npos ? file.size() : end + 1);
    const std::size_t equals = line.find('=');
    if (line.starts_with('#') || equals == std::string_view::npos) continue;
    const std::string_view key = Trimmed(line.substr(0, equals));
    const std::string_view text = Trimmed(line.substr(equals + 1));
    for (std::size_t i = 0; i < kPhrases && !text.empty(); ++i) {
      if (kKeys[i] != key) continue;
      table[i] = Unescaped(text);
      said[i] = true;
    }
  }
  Current() = std::move(table);
  std::size_t count = 0;
  for (const bool one : said) count += one ? 1 : 0;
  return count;
}

}  // namespace kxrestore
