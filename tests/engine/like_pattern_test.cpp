#include "engine/jet_sql/like_pattern.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "base/text.h"

namespace kxrestore::engine::jet_sql {
namespace {

struct Case {
  const char* mask;
  const char* text;
  bool matches;
};

// Masks look for a letter in both of its ASCII forms before they fold a text.
TEST(LikePattern, OnlyTwoLettersBeyondAsciiFoldIntoIt) {
  for (char32_t character = 0x80; character <= 0x10FFFF; ++character) {
    const char32_t folded = FoldCase(character);
    if (folded < 0x80) {
      EXPECT_TRUE(folded == 'k' || folded == 's') << static_cast<std::uint32_t>(character);
    }
  }
  EXPECT_TRUE(LikePattern("*KX*").Matches("a\u212Ax"));
}

TEST(LikePattern, Table) {
  const Case cases[] = {
      {"*", "", true},
      {"", "", true},
      {"", "a", false},
      {"abc", "ABC", true},
      {"abc", "abcd", false},
      {"a*", "Abc", true},
      {"*c", "abC", true},
      {"*B*", "abc", true},
      {"*b*", "ac", false},
      {"ab*ba", "aba", false},
      {"ab*ba", "abba", true},
      {"a*b*c", "a__b__c", true},
      {"a*b*c", "a__c__b", false},
      {"*a*b*", "xbxa", false},
      {"a?c", "abc", true},
      {"a?c", "ac", false},
      {"?", "ä", true},
      {"??", "ä", false},
      {"*.??", "x.gz", true},
      {"file#", "file7", true},
      {"file#", "filex", false},
      {"[a-c]x", "Bx", true},
      {"[a-c]x", "dx", false},
      {"[!a-c]x", "dx", true},
      {"[!a-c]x", "Ax", false},
      {"[!a-c]x", "x", false},
      {"[abz]", "z", true},
      {"[*]", "*", true},
      {"[*]", "x", false},
      {"a[?]b", "a?b", true},
      {"[#]1", "#1", true},
      {"[-a]", "-", true},
      {"[a-]", "-", true},
      {"[ä-ö]", "Ö", true},
      {"*ärger*", "GROßER ÄRGER!", true},
      {"*ДОМ*", "мой дом", true},
      {"[", "[", true},
      {"a[b", "A[B", true},
      {"*[*", "a[b", true},
      {"[]a", "a", true},
      {"[!]", "!", true},
      {"100%", "100%", true},
      {"100%", "1000", false},
      {"a_c", "abc", false},
      {"c:\\dir\\*", "C:\\Dir\\x", true},
      {"*?", "", false},
      {"?*", "x", true},
      {"*[0-9]", "v1.0", true},
      {"[z-a]", "m", true},
      {"*k*", "\u212A", true},
  };
  for (const Case& c : cases)
    EXPECT_EQ(LikePattern(c.mask).Matches(c.text), c.matches) << c.mask << " / " << c.text;
}

TEST(LikePattern, BytesThatAreNoTextDoNotDisturb) {
  EXPECT_TRUE(
      LikePattern("a?b").Matches("a\xFF"
                                 "b"));
  EXPECT_TRUE(LikePattern("*\xC3*").Matches("x\xC3"));
  EXPECT_TRUE(LikePattern("a*").Matches(std::string_view("a\0b", 3)));
  EXPECT_FALSE(LikePattern("a").Matches(std::string_view("a\0b", 3)));
}

// Nested backtracking would take years here.
TEST(LikePattern, HostileMaskStaysLinearInItsStars) {
  std::string mask, text(20000, 'a');
  for (int i = 0; i < 200; ++i) mask += "*a?";
  const LikePattern pattern(mask + "*[b]");
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(pattern.Matches(text));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

}  // namespace
}  // namespace kxrestore::engine::jet_sql
