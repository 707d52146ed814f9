// A password is hidden in error messages, however a driver spells it.
#include "engine/odbc/password.h"

#include <gtest/gtest.h>

namespace kxrestore::engine::odbc {
namespace {

std::string Connect(const std::string& password) {
  return "ODBC;DRIVER={sql server};DATABASE=d;SERVER=db;PORT=5;UID=u;PWD=" + password;
}

TEST(Password, IsHiddenInEverySpelling) {
  for (const auto& [password, text] : {
           std::pair("S3cret", "cannot log on with S3cret."),
           std::pair("S3cret", "dsn='UID=U;PWD=S3CRET' s3cret"),
           std::pair("ge;he;im", "PWD=ge;he;im"),
           std::pair("word1;word2", "invalid attribute 'WORD2', PWD='word1'"),
           std::pair("a}b;c", "{a}}b;c} {A}B;C}"),
           std::pair("{in brace;s}", "{in brace;s} or 'in brace;s'"),
           std::pair("it's \"me\"", "'it''s \"me\"' \"it's \"\"me\"\"\" 'it\\'s \\\"me\\\"'"),
           std::pair("back\\slash", "back\\slash back\\\\slash"),
           std::pair("größe 1%", "GRÖSSE? GRÖßE 1% gr%C3%B6%C3%9fe%201%25"),
           std::pair("a=b;c=d", "unknown attribute c=d"),
           std::pair("cut-off-here", "the connect string is ...;PWD=cut-off"),
       }) {
    const std::string shown = Password(Connect(password)).Hide(text);
    EXPECT_NE(shown.find("***"), std::string::npos) << shown;
    for (const char* piece : {"S3", "s3", "ret", "ge;", "he;", "im", "word", "WORD", "b;c", "B;C", "brace",
                              "me", "slash", "e 1%", "%20", "c=d", "cut"}) {
      if (std::string_view(piece) == "cut" && std::string_view(password) != "cut-off-here") continue;
      EXPECT_EQ(shown.find(piece), std::string::npos) << shown << " shows " << piece;
    }
  }
}

TEST(Password, NothingElseIsHidden) {
  const std::string text = "connection to server at \"db\", port 5 failed: timeout (SERVER=db)";
  EXPECT_EQ(Password(Connect("")).Hide(text), text);
  EXPECT_EQ(Password("ODBC;PWD=x9;SERVER=db;PORT=5").Hide(text), text);
  EXPECT_EQ(Password("SERVER={a;PWD=no};DATABASE=d").Hide("PWD=no};"), "PWD=no};");
  EXPECT_EQ(Password("pwd=x9;Server=db").Hide("X9 x 9 x9y"), "*** x 9 ***y");
  EXPECT_EQ(Password("PWD={x;9}};z};SERVER=db").Hide("PWD=x;9};z on db"), "PWD=*** on db");
}

}  // namespace
}  // namespace kxrestore::engine::odbc
