// One table of masks for every kind of database, in statements and in saved queries.
#include <algorithm>
#include <chrono>
#include <set>

#include "base/text.h"
#include "engine/jet_sql/meaning/like_pattern.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::engine::testing {
namespace {

using jet_sql::LikePattern;

struct MaskCase {
  const char* mask;
  Strings matching, others;
};

std::vector<MaskCase> MaskCases() {
  return {{"*", {"", "x"}, {}},
          {"", {""}, {"a"}},
          {"abc", {"ABC"}, {"abcd", "ab"}},
          {"a*", {"Abc"}, {"ba"}},
          {"ab*ba", {"abba"}, {"aba"}},
          {"*a*b*", {"xaxb"}, {"xbxa"}},
          {"**a**", {"xax"}, {"x"}},
          {"*axb*", {"xaXb", "äxaxb", "x axxaxbx"}, {"ax", "xb", "äxb", "axä"}},
          {"?", {"ä", "漢"}, {"", "äö"}},
          {"[a-c]x", {"Bx"}, {"dx"}},
          {"[A-C]x", {"Bx", "bx"}, {"dx", "_x"}},
          {"[!a-c]x", {"dx"}, {"Ax", "x"}},
          {"a[?]b", {"a?b"}, {"axb"}},
          {"a[*][#][[]", {"a*#["}, {"axb"}},
          {"*[!ä]b", {"xb"}, {"äb"}},
          {"[-a]", {"-", "a"}, {"b"}},
          {"[a-]", {"-", "a"}, {"b"}},
          {"[z-a]", {"m"}, {"-"}},
          {"[Z-a]", {"m"}, {"_", "^"}},
          {"[^a]", {"^", "A"}, {"b"}},
          {"[\\a]", {"\\", "A"}, {"b"}},
          {"[ä-ö]", {"Ö"}, {"ü"}},
          {"*ärger*", {"GROßER ÄRGER!"}, {"Arger"}},
          {"ж?м*", {"ЖЁМ.TXT"}, {"жм"}},
          {"[", {"["}, {"]"}},
          {"a[b", {"A[B"}, {"ab"}},
          {"*[*", {"a[b"}, {"ab"}},
          {"[]a", {"a"}, {"[]a"}},
          {"a[]b", {"ab"}, {"axb"}},
          {"[!]", {"!"}, {"x"}},
          {"*?", {"x"}, {""}},
          {"?*", {"x"}, {""}},
          {"##.#", {"12.3"}, {"1a.3", "१२.३"}},
          {"*[0-9]", {"v1.0"}, {"v1."}},
          {"100%_\\d", {"100%_\\D"}, {"100xx\\d"}},
          {"(a|b)+.^$", {"(a|b)+.^$"}, {"a"}},
          {"c:\\$*", {"C:\\$Recycle.Bin"}, {"C:\\x"}},
          {"it's {1}", {"IT'S {1}"}, {"its {1}"}}};
}

TEST(LikePattern, Table) {
  for (const auto& [mask, matching, others] : MaskCases()) {
    for (const std::string& text : matching) EXPECT_TRUE(LikePattern(mask).Matches(text)) << mask << text;
    for (const std::string& text : others) EXPECT_FALSE(LikePattern(mask).Matches(text)) << mask << text;
  }
  // Bytes that are not UTF-8, and null characters, which other databases do not store.
  for (const auto& [mask, text] : {std::pair("a?!", "a\xFF!"), std::pair("*\xC3*", "x\xC3")}) {
    EXPECT_TRUE(LikePattern(mask).Matches(text)) << mask;
  }
  EXPECT_TRUE(LikePattern("a*").Matches(std::string("a\0b", 3)));
  EXPECT_FALSE(LikePattern("a").Matches(std::string("a\0b", 3)));
  EXPECT_TRUE(LikePattern("*KX*").Matches("a\u212Ax")) << "the Kelvin sign";
}

class MaskConformance : public ConformanceTest {
 protected:
  Strings Files(const Sql& sql) {
    return Sorted(Rows(*m_database->OpenRecordset(sql, RecordsetType::kSnapshot)));
  }
};

TEST_P(MaskConformance, EveryKindOfDatabaseFindsTheSame) {
  std::set<std::string> texts;
  for (const MaskCase& one : MaskCases()) {
    texts.insert(one.matching.begin(), one.matching.end());
    texts.insert(one.others.begin(), one.others.end());
  }
  const auto doubled = [](std::string text, char quote) {
    for (std::size_t at = 0; (at = text.find(quote, at)) != std::string::npos; at += 2)
      text.insert(at, 1, quote);
    return text;
  };
  std::string insert = "DELETE FROM Catalog;";
  for (const std::string& text : texts) {
    insert += "INSERT INTO Catalog (ID, File) VALUES (" + std::to_string(insert.size()) + ", '" +
              doubled(text, '\'') + "');";
  }
  m_test->Run(insert);
  const bool isFile = !GetParam().name.starts_with("Postgres");
  for (const MaskCase& one : MaskCases()) {
    SCOPED_TRACE(one.mask);
    const std::string quoted = "\"" + doubled(one.mask, '"') + "\"",
                      select = "SELECT File FROM Catalog WHERE ";
    Strings expected;
    const LikePattern pattern(one.mask);
    std::copy_if(texts.begin(), texts.end(), std::back_inserter(expected),
                 [&](const std::string& text) { return pattern.Matches(text); });
    EXPECT_EQ(Files(Sql(select + "File Like ").AddText(one.mask)), expected);
    EXPECT_EQ(Files(Sql(select + "Not (File Not Like " + quoted + ")")), expected);
    // Saved queries in files use SQLite's own LIKE, which ignores the case of ASCII letters only.
    if (isFile && CharacterCount(one.mask) != std::string_view(one.mask).size()) continue;
    m_database->CreateQueryDef("Masked", select + "File Like " + quoted);
    EXPECT_EQ(Files(Sql("Masked")), expected) << "saved";
    m_database->DeleteQueryDef("Masked");
  }
}

KX_CONFORMANCE(MaskConformance);

// Before a text is folded, a mask searches for both ASCII cases of a letter, unless it is K or S.
TEST(LikePattern, OnlyTwoLettersBeyondAsciiFoldIntoIt) {
  for (char32_t character = 0x80; character <= 0x10FFFF; ++character) {
    const char32_t folded = FoldCase(character);
    EXPECT_TRUE(folded >= 0x80 || folded == 'k' || folded == 's') << static_cast<std::uint32_t>(character);
  }
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
}  // namespace kxrestore::engine::testing
