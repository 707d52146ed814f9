// Text routines: UTF-8, case, sorting, replacements for invisible characters, UTF-16.
#include "base/text.h"

#include <gtest/gtest.h>

#include <vector>

#include "base/shown_text.h"
#include "base/sorting.h"
#include "base/utf16.h"

namespace kxrestore {
namespace {

std::vector<char32_t> Characters(std::string_view text) {
  std::vector<char32_t> characters;
  for (std::size_t position = 0; position < text.size();) characters.push_back(NextCharacter(text, position));
  return characters;
}

TEST(Text, DecodesAndCountsCharacters) {
  EXPECT_EQ(Characters("aä€😀"), (std::vector<char32_t>{'a', 0xE4, 0x20AC, 0x1F600}));
  EXPECT_EQ(CharacterCount("Büro"), 4u);
  EXPECT_EQ(CharacterCount(""), 0u);
  EXPECT_EQ(LeftCharacters("äöü", 2), "äö");
  EXPECT_EQ(LeftCharacters("ab", 15), "ab");
  EXPECT_EQ(CharacterCount(std::string_view("a\0b", 3)), 3u);
}

TEST(Text, EachInvalidByteIsOneCharacterAndIsKept) {
  // A lone continuation byte, a cut sequence, an overlong slash, a surrogate, a value beyond Unicode.
  for (const char* text :
       {"\x80", "a\xC3", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xFF\xE2\x82", "\xE2\x82z"}) {
    std::string again;
    for (const char32_t character : Characters(text)) AppendCharacter(again, character);
    EXPECT_EQ(again, text);
    EXPECT_EQ(FoldCase(text), text);
  }
  EXPECT_EQ(CharacterCount("\xED\xA0\x80"), 3u);
  EXPECT_EQ(CharacterCount("a\xC3"), 2u);
}

TEST(Text, FoldsAndComparesWithoutCase) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"ÄÖÜ ÇÉ ΣΩ ДЖ", "äöü çé σω дж"},
      {"@AMZ[`az{AMZ @", "@amz[`az{amz @"},
      {"Ä:ABCDEFGHIJ\u212AÄZ", "ä:abcdefghijkäz"},   // folding shortens the Kelvin sign
      {"ŸĀā\U00010400\u1E9E×", "ÿāā\U00010428ß×"}};  // pairs of adjacent letters, and a sign between letters
  for (const auto& [text, folded] : cases) {
    EXPECT_EQ(FoldCase(text), folded);
    EXPECT_TRUE(EqualIgnoringCase(text, folded));
  }
  EXPECT_FALSE(EqualIgnoringCase("abc", "abcd"));
  EXPECT_FALSE(EqualIgnoringCase("abcd", "abc"));
  EXPECT_TRUE(ContainsIgnoringCase("C:\\Mail\\PUBLIC FOLDERS\\x", "Public Folders"));
  EXPECT_TRUE(ContainsIgnoringCase("x", ""));
  EXPECT_FALSE(ContainsIgnoringCase("ab", "abc"));
}

// The texts of one row compare equal.
TEST(Text, SortsAsPeopleRead) {
  const std::vector<std::vector<const char*>> inOrder = {{""},           {"Alpha", "alpha", "ALPHA"},
                                                         {"ALPHA 2"},    {"Arzt"},
                                                         {"A\u0308rzt"}, {"Ärzt", "äRZT"},
                                                         {"Ärzte"},      {"beta"},
                                                         {"Lodz"},       {"Łódź"},
                                                         {"Øl"},         {"Straße", "STRAẞE"},
                                                         {"Strassf"},    {"Zoo"},
                                                         {"ώ", "Ώ"},     {"Ωmega", "ωMEGA"},
                                                         {"Ещё"},        {"漢"}};
  for (std::size_t i = 0; i < inOrder.size(); ++i) {
    for (std::size_t j = 0; j < inOrder.size(); ++j) {
      for (const char* left : inOrder[i]) {
        for (const char* right : inOrder[j]) {
          const int order = CompareForSorting(left, right);
          EXPECT_EQ(order < 0, i < j) << left << " / " << right;
          EXPECT_EQ(order == 0, i == j) << left << " / " << right;
        }
      }
    }
  }
}

TEST(SortingTest, DigitsSortAsNumbers) {
  const char* const inOrder[] = {"",
                                 "2",
                                 "10",
                                 "archive",
                                 "Archive 2",
                                 "archive 2b",
                                 "Archive 002c",
                                 "Archive 10",
                                 "archive 10.1",
                                 "archive 10.12",
                                 "b1",
                                 "b99999999999999999999999",
                                 "b100000000000000000000000"};
  const auto key = [](std::string_view text) {
    std::string made;
    AppendSortKey(made, text);
    return made;
  };
  for (std::size_t i = 0; i < std::size(inOrder); ++i) {
    for (std::size_t j = 0; j < std::size(inOrder); ++j) {
      EXPECT_EQ(key(inOrder[i]) < key(inOrder[j]), i < j) << inOrder[i] << " / " << inOrder[j];
    }
  }
  EXPECT_NE(key("a01"), key("a1"));
  EXPECT_EQ(key("Straße 1"), key("STRAẞE 1"));
}

TEST(ShownText, InvisibleCharactersAreReplaced) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"invoice\u202Efdp.exe", "invoice[U+202E]fdp.exe"},
      {"a\u200Eb\u200Fc\u061Cd\u2066e\u2069f\u202Ag",
       "a[U+200E]b[U+200F]c[U+061C]d[U+2066]e[U+2069]f[U+202A]g"},
      {std::string_view("\0\a\x1F\x7F", 4), "␀␇␟␡"},
      {"line\r\nbreak\ttab", "line␍␊break␉tab"},
      {"\u0085\u00AD\u200B\u2028\uFEFF\u3164\U000E0041\U0001D173",
       "[U+0085][U+00AD][U+200B][U+2028][U+FEFF][U+3164][U+E0041][U+1D173]"},
      {"\xED\xA0\xBDx\xED\xB8\x80", "[U+D83D]x[U+DE00]"},
      {"\xFFname\xC3", "\uFFFDname\uFFFD"},
      // Joiners and variation selectors are invisible in Latin names. Elsewhere a single one is part of the
      // spelling.
      {"re\u200Dport\uFE0F", "re[U+200D]port[U+FE0F]"},
      {"می\u200Cخواهم", "می\u200Cخواهم"},
      {"می\u200C\u200Cخواهم", "می\u200C[U+200C]خواهم"},
      {"\u2764\uFE0F\u200D\U0001F525", "\u2764\uFE0F\u200D\U0001F525"},
      {"\u2764\uFE0F\uFE0F", "\u2764\uFE0F[U+FE0F]"},
      {"\u202E\u200D", "[U+202E][U+200D]"},
      {"Grüße 日本 😀 עברית.doc", "Grüße 日本 😀 עברית.doc"}};
  for (const auto& [text, shown] : cases) EXPECT_EQ(Shown(text), shown);
  EXPECT_EQ(ShownLines("one\r\ntwo\nthree\tfour\rfive\x01"), "one\r\ntwo\nthree\tfour␍five␁");
}

std::string Utf8(std::u16string_view text) {
  std::string out;
  AppendUtf8(out, text);
  return out;
}

std::u16string Utf16(std::string_view text) {
  return ToUtf16<char16_t>(text);
}

TEST(Utf16Test, EveryUtf16TextIsRestored) {
  // Texts, a surrogate pair, single surrogates, a pair in the wrong order.
  const std::u16string texts[] = {u"",
                                  u"C:\\Daten\\B\u00FCro \u2013 \u6F22.txt",
                                  std::u16string(u"a\0b", 3),
                                  {0xD83D, 0xDE00},
                                  {0xD83D},
                                  {0xDE00, u'x', 0xD83D, u'y'},
                                  {0xDE00, 0xD83D},
                                  {0xFFFF, 0xDBFF, 0xDFFF}};
  for (const std::u16string& text : texts) EXPECT_EQ(text, Utf16(Utf8(text)));
  EXPECT_EQ("\xF0\x9F\x98\x80", Utf8(texts[3]));
  EXPECT_EQ("\xED\xA0\xBD", Utf8(texts[4]));
}

TEST(Utf16Test, InvalidBytesAreReplacedOneByOne) {
  const std::pair<const char*, const char16_t*> cases[] = {
      {"a\xFF!", u"a\uFFFD!"},
      {"\xC3", u"\uFFFD"},                                // cut off
      {"\xC0\x80", u"\uFFFD\uFFFD"},                      // overlong
      {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},  // beyond Unicode
      {"\xE2x", u"\uFFFDx"},
      {"\xED\xA0x", u"\uFFFD\uFFFDx"}};  // an incomplete surrogate
  for (const auto& [bytes, text] : cases) EXPECT_EQ(text, Utf16(bytes));
}

}  // namespace
}  // namespace kxrestore
