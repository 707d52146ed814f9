// One table of masks for every kind of database, as a statement's and as a saved query's.
#include <algorithm>
#include <chrono>

#include "base/text.h"
#include "engine/jet_sql/meaning/like_pattern.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::engine {
namespace {

using jet_sql::LikePattern;
using Strings = std::vector<std::string>;

struct MaskCase {
  const char* mask;
  Strings matching, others;
};

const std::vector<MaskCase>& MaskCases() {
  static const std::vector<MaskCase> cases = {
      {"*", {"", "x"}, {}},
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
  return cases;
}

TEST(LikePattern, Table) {
  for (const auto& [mask, matching, others] : MaskCases()) {
    for (const std::string& text : matching) EXPECT_TRUE(LikePattern(mask).Matches(text)) << mask << text;
    for (const std::string& text : others) EXPECT_FALSE(LikePattern(mask).Matches(text)) << mask << text;
  }
  // Bytes that are no text, and those that texts of other databases cannot hold.
  for (const auto& [mask, text] : {std::pair("a?!", "a\xFF!"), std::pair("*\xC3*", "x\xC3")}) {
    EXPECT_TRUE(LikePattern(mask).Matches(text)) << mask;
  }
  EXPECT_TRUE(LikePattern("a*").Matches(std::string("a\0b", 3)));
  EXPECT_FALSE(LikePattern("a").Matches(std::string("a\0b", 3)));
  EXPECT_TRUE(LikePattern("*KX*").Matches("a\u212Ax")) << "the Kelvin sign";
}

class MaskConformance : public testing::ConformanceTest {};

TEST_P(MaskConformance, EveryKindOfDatabaseFindsTheSame) {
  Strings texts;
  for (const MaskCase& one : MaskCases()) {
    texts.insert(texts.end(), one.matching.begin(), one.matching.end());
    texts.insert(texts.end(), one.others.begin(), one.others.end());
  }
  std::sort(texts.begin(), texts.end());
  texts.erase(std::unique(texts.begin(), texts.end()), texts.end());
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
    const std::string condition = "File Like \"" + doubled(one.mask, '"') + "\"";
    Strings expected;
    const LikePattern pattern(one.mask);
    std::copy_if(texts.begin(), texts.end(), std::back_inserter(expected),
                 [&](const std::string& text) { return pattern.Matches(text); });
    Strings found;
    Sql sql("SELECT File FROM Catalog WHERE File Like ");
    const auto rows = m_database->OpenRecordset(sql.AddText(one.mask), RecordsetType::kSnapshot);
    for (; !rows->Eof(); rows->MoveNext()) found.push_back(rows->Fields("File").Text());
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, expected) << one.mask;
    found = testing::Rows(*m_database,
                          "SELECT File FROM Catalog WHERE Not (File Not " + condition.substr(5) + ")");
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, expected) << "not not " << one.mask;
    // Saved queries on files have SQLite's own LIKE, which knows the case of ASCII letters only.
    if (isFile && CharacterCount(one.mask) != std::string_view(one.mask).size()) continue;
    m_database->CreateQueryDef("Masked", "SELECT File FROM Catalog WHERE " + condition);
    found = testing::Rows(*m_database, "Masked");
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, expected) << "saved: " << one.mask;
    m_database->DeleteQueryDef("Masked");
  }
}

KX_CONFORMANCE(MaskConformance);

// Masks look for a letter in both of its ASCII forms before they fold a text.
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
}  // namespace kxrestore::engine
