#include "base/text.h"

#include "base/sorting.h"

#include <gtest/gtest.h>

#include <vector>

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

TEST(Text, EveryStrayByteIsOneCharacterAndSurvives) {
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
      {"Ä:ABCDEFGHIJ\u212AÄZ", "ä:abcdefghijkäz"},   // the Kelvin sign gets shorter
      {"ŸĀā\U00010400\u1E9E×", "ÿāā\U00010428ß×"}};  // alternating pairs, and no letter between letters
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

// The texts of a row are equal.
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

TEST(SortingTest, DigitsCountAsTheNumberThatTheyWrite) {
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

}  // namespace
}  // namespace kxrestore
