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
  // Texts, a pair, halves, halves in the wrong order.
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

TEST(Utf16Test, BytesThatMakeNoSenseAreReplacedOneByOne) {
  const std::pair<const char*, const char16_t*> cases[] = {
      {"a\xFF!", u"a\uFFFD!"},
      {"\xC3", u"\uFFFD"},                                // cut off
      {"\xC0\x80", u"\uFFFD\uFFFD"},                      // longer than need be
      {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},  // beyond the last character
      {"\xE2x", u"\uFFFDx"},
      {"\xED\xA0x", u"\uFFFD\uFFFDx"}};  // no whole half
  for (const auto& [bytes, text] : cases) EXPECT_EQ(text, Utf16(bytes));
}

}  // namespace
}  // namespace kxrestore
