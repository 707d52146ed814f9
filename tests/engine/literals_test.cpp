#include "engine/jet_sql/literals.h"

#include <gtest/gtest.h>

#include "engine/jet_sql/lexer.h"

namespace kxrestore::engine::jet_sql {
namespace {

// The key with "?" for each literal, then the literals.
std::string Extracted(std::string_view source) {
  ExtractedLiterals extracted;
  if (!ExtractLiterals(source, extracted)) return "refused";
  std::string shown = extracted.key;
  for (char& c : shown) {
    if (c == kParameterMark) c = '?';
  }
  for (std::size_t i = 0; i < extracted.count; ++i) {
    const Literal& literal = extracted.literals[i];
    shown += " {" +
             (literal.kind == Literal::Kind::kText      ? literal.text
              : literal.kind == Literal::Kind::kInteger ? std::to_string(literal.integer)
                                                        : std::to_string(literal.real)) +
             "}";
  }
  return shown;
}

TEST(Literals, TakesOperandsOfComparisons) {
  EXPECT_EQ(Extracted("WHERE (((Catalog.ID)=1234));"), "WHERE (((Catalog.ID)=?)); {1234}");
  EXPECT_EQ(Extracted("a = -5 and b<>1.5"), "a = ? and b<>? {-5} {1.500000}");
  EXPECT_EQ(Extracted("x='it''s' or y=\"say \"\"hi\"\"\""), "x=? or y=? {it's} {say \"hi\"}");
  EXPECT_EQ(Extracted("n Like \"*a*\" and m not like'b'"), "n Like ? and m not like? {*a*} {b}");
  EXPECT_EQ(Extracted("x=''"), "x=? {}");
}

TEST(Literals, LeavesEverythingElse) {
  for (const char* text :
       {"x In ('a', \"b\")", "x Between 1 And 2", "[a=5]", "[x = 'y'] + 1", "x = True",
        "d >= #1/2/2026 3:04 PM#", "'a = 5'", "x = a1", "x = 5a", "x = 1e5", "x = 99999999999999999999",
        "x = 1.2.3", "x = -y", "unlike 5", "x = (5)", "t1.c2 + 3"}) {
    EXPECT_EQ(Extracted(text), text);
  }
  EXPECT_EQ(Extracted("a like2 and b=3"), "a like2 and b=? {3}");
}

TEST(Literals, RefusesWhatIsNotClosed) {
  for (const char* text : {"x='abc", "x=\"abc", "'abc", "[abc", "#1/2", "a \x01 b"}) {
    EXPECT_EQ(Extracted(text), "refused") << text;
  }
}

}  // namespace
}  // namespace kxrestore::engine::jet_sql
