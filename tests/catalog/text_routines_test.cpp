#include "catalog/text_routines.h"

#include "tests/raises.h"

namespace kxrestore::catalog {
namespace {

using namespace std::string_literals;

TEST(TextRoutines, PathsAndTexts) {
  EXPECT_EQ(AddBackslash("C:"), "C:\\");
  EXPECT_EQ(AddBackslash("C:\\"), "C:\\");
  EXPECT_EQ(AddBackslash("C:/"), "C:/\\");
  EXPECT_EQ(AddBackslash(""), "\\");
  EXPECT_EQ(LastPathComponent("C:\\Data\\a.doc"), "a.doc");
  EXPECT_EQ(LastPathComponent("a.doc"), "a.doc");
  EXPECT_EQ(LastPathComponent("C:\\Data\\"), "");
  EXPECT_EQ(GetExtension("a.tar.gz"), "gz");
  EXPECT_EQ(GetExtension("noext"), "");
  EXPECT_EQ(GetExtension("a.ends."), "");
  EXPECT_EQ(GetExtension(".hidden"), "hidden");
  EXPECT_EQ(GetExtension("C:\\dir.ext\\noext"), "ext\\noext");
  EXPECT_EQ(StripNulls("abc\0def"s), "abc");
  EXPECT_EQ(StripNulls("abc"), "abc");
  EXPECT_EQ(FixQuotes("plain \"text\""), "plain \"text\"");
  EXPECT_EQ(FixQuotes("'it's'"), "''it''s''");
  EXPECT_EQ(CountBackslashes("C:\\Data\\Reports\\a.doc"), 3);
  EXPECT_EQ(CountBackslashes(std::string(32767, '\\')), 32767);
  EXPECT_RAISES(6, CountBackslashes(std::string(32768, '\\')));
}

}  // namespace
}  // namespace kxrestore::catalog
