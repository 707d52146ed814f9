#include "base/text.h"

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

TEST(Text, FoldsBeyondAscii) {
  EXPECT_EQ(FoldCase("ÄÖÜ ÇÉ ΣΩ ДЖ"), "äöü çé σω дж");
  EXPECT_EQ(FoldCase("@AMZ[`az{AMZ @"), "@amz[`az{amz @");
  EXPECT_EQ(FoldCase("Ä:ABCDEFGHIJ\u212AÄZ"), "ä:abcdefghijkäz");  // one gets shorter
  EXPECT_EQ(FoldCase(U'Ÿ'), U'ÿ');                                 // folds to a smaller code point
  EXPECT_EQ(FoldCase(U'\u0100'), U'\u0101');                       // alternating pairs
  EXPECT_EQ(FoldCase(U'\u0101'), U'\u0101');
  EXPECT_EQ(FoldCase(U'\u212A'), U'k');  // Kelvin sign
  EXPECT_EQ(FoldCase(U'\U00010400'), U'\U00010428');
  EXPECT_EQ(FoldCase(U'\u1E9E'), U'ß');
  EXPECT_EQ(FoldCase(U'×'), U'×');  // lies within a range of letters
  EXPECT_EQ(FoldCase(U'@'), U'@');
  EXPECT_EQ(FoldCase(U'['), U'[');
}

TEST(Text, ComparesWithoutCase) {
  EXPECT_TRUE(EqualIgnoringCase("Straße ÄRGER", "STRAßE ärger"));
  EXPECT_TRUE(EqualIgnoringCase("\u212Aelvin", "kelvin"));
  EXPECT_FALSE(EqualIgnoringCase("abc", "abcd"));
  EXPECT_FALSE(EqualIgnoringCase("abcd", "abc"));
  EXPECT_TRUE(ContainsIgnoringCase("C:\\Mail\\PUBLIC FOLDERS\\x", "Public Folders"));
  EXPECT_TRUE(ContainsIgnoringCase("x", ""));
  EXPECT_FALSE(ContainsIgnoringCase("ab", "abc"));
}

TEST(Text, SortsAsPeopleRead) {
  const std::vector<std::string> inOrder = {"",      "Alpha", "alpha", "ALPHA 2", "beta",
                                            "Gamma", "Ärger", "ärger", "Ö"};
  for (std::size_t i = 0; i < inOrder.size(); ++i) {
    for (std::size_t j = 0; j < inOrder.size(); ++j) {
      const int order = CompareForSorting(inOrder[i], inOrder[j]);
      EXPECT_EQ(order < 0, i < j) << inOrder[i] << " / " << inOrder[j];
      EXPECT_EQ(order == 0, i == j) << inOrder[i] << " / " << inOrder[j];
    }
  }
}

}  // namespace
}  // namespace kxrestore
