#include "base/shown_text.h"

#include <gtest/gtest.h>

namespace kxrestore {
namespace {

TEST(ShownText, WhatCannotBeSeenHasAStandIn) {
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
      // In Latin names joiners and variation selectors show nothing; elsewhere they belong to the spelling,
      // once.
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

}  // namespace
}  // namespace kxrestore
