#include "catalog/text_routines.h"

#include <gtest/gtest.h>

#include "base/error.h"

namespace kxrestore::catalog {
namespace {

using namespace std::string_literals;

TEST(TextRoutines, PathsAndNames) {
  EXPECT_EQ(AddBackslash("C:"), "C:\\");
  EXPECT_EQ(AddBackslash("C:\\"), "C:\\");
  EXPECT_EQ(AddBackslash(""), "\\");
  EXPECT_EQ(AddBackslash("C:/Gr\xC3\xB6\xC3\x9F"
                         "e"),
            "C:/Gr\xC3\xB6\xC3\x9F"
            "e\\");

  EXPECT_EQ(LastPathComponent("C:\\Data\\a.doc"), "a.doc");
  EXPECT_EQ(LastPathComponent("a.doc"), "a.doc");
  EXPECT_EQ(LastPathComponent("C:\\Data\\"), "");

  EXPECT_EQ(GetExtension("a.tar.gz"), "gz");
  EXPECT_EQ(GetExtension("Store.kxexag"), "kxexag");
  EXPECT_EQ(GetExtension("noext"), "");
  EXPECT_EQ(GetExtension("ends."), "");
  EXPECT_EQ(GetExtension(".hidden"), "hidden");
}

TEST(TextRoutines, NullsAndQuotes) {
  EXPECT_EQ(StripNulls("abc\0def"s), "abc");
  EXPECT_EQ(StripNulls("\0abc"s), "");
  EXPECT_EQ(StripNulls("abc"), "abc");

  EXPECT_EQ(FixQuotes(""), "");
  EXPECT_EQ(FixQuotes("plain \"text\""), "plain \"text\"");
  EXPECT_EQ(FixQuotes("'it's'"), "''it''s''");
}

TEST(TextRoutines, CountBackslashesHoldsSixteenBits) {
  EXPECT_EQ(CountBackslashes(""), 0);
  EXPECT_EQ(CountBackslashes("C:\\Data\\Reports\\a.doc"), 3);
  EXPECT_EQ(CountBackslashes(std::string(32767, '\\')), 32767);
  try {
    CountBackslashes(std::string(32768, '\\'));
    FAIL() << "no overflow";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), 6);
  }
}

}  // namespace
}  // namespace kxrestore::catalog
