#include "base/utf16.h"

#include <gtest/gtest.h>

namespace kxrestore {
namespace {

std::string Utf8(std::u16string_view text) {
  std::string out;
  AppendUtf8(out, text);
  return out;
}

std::u16string Utf16(std::string_view text) {
  return ToUtf16<char16_t>(text);
}

TEST(Utf16Test, EveryUtf16TextComesBack) {
  const std::u16string texts[] = {
      u"",
      u"C:\\Daten\\B\u00FCro \u2013 \u6F22.txt",
      std::u16string(u"a\0b", 3),
      {0xD83D, 0xDE00},  // a pair
      {0xD83D},          // halves
      {0xDE00, u'x', 0xD83D, u'y'},
      {0xDE00, 0xD83D},  // in the wrong order
      {0xFFFF, 0xDBFF, 0xDFFF},
  };
  for (const std::u16string& text : texts) EXPECT_EQ(text, Utf16(Utf8(text)));
  EXPECT_EQ("\xF0\x9F\x98\x80", Utf8(texts[3]));
  EXPECT_EQ("\xED\xA0\xBD", Utf8(texts[4]));
}

TEST(Utf16Test, BytesThatMakeNoSenseAreReplacedOneByOne) {
  EXPECT_EQ(u"a\uFFFDb", Utf16("a\xFF"
                               "b"));
  EXPECT_EQ(u"\uFFFD", Utf16("\xC3"));                                // cut off
  EXPECT_EQ(u"\uFFFD\uFFFD", Utf16("\xC0\x80"));                      // longer than need be
  EXPECT_EQ(u"\uFFFD\uFFFD\uFFFD\uFFFD", Utf16("\xF4\x90\x80\x80"));  // beyond the last character
  EXPECT_EQ(u"\uFFFDx", Utf16("\xE2x"));
  EXPECT_EQ(u"\uFFFD\uFFFDx", Utf16("\xED\xA0x"));  // no whole half
}

}  // namespace
}  // namespace kxrestore
