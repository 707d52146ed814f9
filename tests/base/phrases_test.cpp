// The table of the dialog's texts, and the packaged translations.
#include "base/phrases.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

namespace kxrestore {
namespace {

class Phrases : public testing::Test {
 protected:
  void TearDown() override { UsePhrases({}); }
};

std::multiset<char> PlacesIn(const std::string& text) {
  std::multiset<char> places;
  for (std::size_t i = 0; i + 2 < text.size(); ++i) {
    if (text[i] == '{' && text[i + 2] == '}') places.insert(text[i + 1]);
  }
  return places;
}

TEST_F(Phrases, AFileReplacesItsPhrasesAndTheOthersStayEnglish) {
  EXPECT_EQ(UsePhrases("\xEF\xBB\xBF# comment = none\r\n"
                       "  ThisFolder =  (dieser = Ordner)\t\r\n"
                       "ColumnName=a\\nb\\\\n\\x\n"
                       "no line at all\nUnknownKey = text\nColumnSize =\n= nothing\n"
                       "ColumnDate = first\nColumnDate = second"),
            3U);
  EXPECT_EQ(Say(Phrase::kThisFolder), "(dieser = Ordner)");
  EXPECT_EQ(Say(Phrase::kColumnName), "a\nb\\n\\x");
  EXPECT_EQ(Say(Phrase::kColumnDate), "second");
  EXPECT_EQ(Say(Phrase::kColumnSize), "Size");
  EXPECT_EQ(UsePhrases({}), 0U);
  EXPECT_EQ(Say(Phrase::kThisFolder), "(this folder)");
}

TEST_F(Phrases, PlacesAreFilledInAnyOrderAndNotTwice) {
  UsePhrases("ColumnName = {2} of {1}, {3} {0} {} {1\nColumnSize = {1}{1}");
  EXPECT_EQ(Say(Phrase::kColumnName, {"{2}", "b"}), "b of {2}, {3} {0} {} {1");
  EXPECT_EQ(Say(Phrase::kColumnSize, {"x"}), "xx");
  EXPECT_EQ(OneOrMore(1, Phrase::kColumnName, Phrase::kColumnSize), Phrase::kColumnName);
  EXPECT_EQ(OneOrMore(0, Phrase::kColumnName, Phrase::kColumnSize), Phrase::kColumnSize);
}

// A new phrase must be added to every translation.
TEST_F(Phrases, TranslationsHaveEveryPhraseWithItsPlaces) {
  std::size_t files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(KX_LANGUAGES)) {
    SCOPED_TRACE(entry.path().filename());
    std::ifstream file(entry.path(), std::ios::binary);
    const std::string text(std::istreambuf_iterator<char>(file), {});
    const std::size_t held = UsePhrases(text);
    EXPECT_EQ(held, kPhrases);
    for (std::size_t i = 0; i < kPhrases; ++i) {
      const auto phrase = static_cast<Phrase>(i);
      const std::string line = "\n" + std::string(KeyOf(phrase)) + " = ";
      const std::size_t place = text.find(line);
      EXPECT_NE(place, std::string::npos) << "missing:" << line;
      EXPECT_EQ(text.find(line, place + 1), std::string::npos) << "twice:" << line;
      EXPECT_EQ(PlacesIn(Say(phrase)), PlacesIn(English(phrase))) << KeyOf(phrase);
    }
    ++files;
  }
  EXPECT_GT(files, 0U);
}

}  // namespace
}  // namespace kxrestore
