#include "component/com/wide_text.h"

#include <gtest/gtest.h>

namespace kxrestore::component::com {
namespace {

TEST(WideTextTest, EveryUtf16TextComesBack) {
  const std::wstring texts[] = {
      L"",
      L"C:\\Daten\\B\u00FCro \u2013 \u6F22.txt",
      std::wstring(L"a\0b", 3),
      {wchar_t(0xD83D), wchar_t(0xDE00)},  // a pair
      {wchar_t(0xD83D)},                   // halves
      {wchar_t(0xDE00), L'x', wchar_t(0xD83D), L'y'},
      {wchar_t(0xDE00), wchar_t(0xD83D)},  // in the wrong order
      {wchar_t(0xFFFF), wchar_t(0xDBFF), wchar_t(0xDFFF)},
  };
  for (const std::wstring& text : texts) EXPECT_EQ(text, ToWide(FromWide(text)));
  EXPECT_EQ("\xF0\x9F\x98\x80", FromWide(texts[3]));
  EXPECT_EQ("\xED\xA0\xBD", FromWide(texts[4]));
}

TEST(WideTextTest, BytesThatMakeNoSenseAreReplacedOneByOne) {
  EXPECT_EQ(L"a\uFFFDb", ToWide("a\xFF"
                                "b"));
  EXPECT_EQ(L"\uFFFD", ToWide("\xC3"));                                // cut off
  EXPECT_EQ(L"\uFFFD\uFFFD", ToWide("\xC0\x80"));                      // longer than need be
  EXPECT_EQ(L"\uFFFD\uFFFD\uFFFD\uFFFD", ToWide("\xF4\x90\x80\x80"));  // beyond the last character
  EXPECT_EQ(L"\uFFFDx", ToWide("\xE2x"));
}

TEST(WideTextTest, ABstrMayBeNullOrHoldNuls) {
  EXPECT_EQ("", FromBstr(nullptr));
  const BSTR text = SysAllocStringLen(L"a\0b", 3);
  EXPECT_EQ(std::string("a\0b", 3), FromBstr(text));
  SysFreeString(text);
}

}  // namespace
}  // namespace kxrestore::component::com
