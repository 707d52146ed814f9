// Files of the desktop engine, read and marked without it: the same rows as their twins, one bit a mark, and
// damage that is told.
#include <algorithm>
#include <set>

#include "catalog/restore_query.h"
#include "tests/engine/desktop_samples.h"
#include "tests/engine/server_statements.h"

namespace kxrestore::engine {
namespace {

using testing::DesktopSample;
using testing::ExpectError;
using testing::Rows;
using testing::SampleCopy;
using testing::SampleFile;
using Strings = std::vector<std::string>;

Strings Sorted(Strings rows) {
  std::sort(rows.begin(), rows.end());
  return rows;
}

class DesktopSamples : public ::testing::TestWithParam<SampleFile> {
 protected:
  std::unique_ptr<Workspace> m_workspace = testing::MakeReaderWorkspace();
  std::unique_ptr<Database> m_database = m_workspace->OpenDatabase({.name = DesktopSample(GetParam().name)});
  std::unique_ptr<testing::TestDatabase> m_twinFile = testing::MakeSqliteFile(DesktopSample(GetParam().twin));
  std::unique_ptr<Database> m_twin =
      m_workspace->OpenDatabase({.name = DesktopSample(GetParam().twin), .readOnly = true});
};

TEST_P(DesktopSamples, HaveTheRowsOfTheirTwins) {
  testing::ExpectSameCatalog(*m_database, *m_twin);
  const char* const sums = "SELECT Count(*), Sum(ID), Max(DateStamp) FROM Catalog";
  EXPECT_EQ(Rows(*m_database, sums), Rows(*m_twin, sums));
}

TEST_P(DesktopSamples, AnswerWhatThePanelsAsk) {
  for (const auto& [text, ignored] : testing::PanelStatements()) {
    if (text.find("ArchiveHeader") != std::string::npos) continue;  // not a table of catalogs
    const bool ordered = text.find("ORDER BY") != std::string::npos;
    const Strings rows = Rows(*m_database, text), wanted = Rows(*m_twin, text);
    EXPECT_EQ(ordered ? rows : Sorted(rows), ordered ? wanted : Sorted(wanted)) << text;
  }
}

TEST_P(DesktopSamples, ListEveryCombinationAsTheirTwins) {
  testing::TemporaryFolder folder;
  const std::string twin = folder.File("twin.db");
  testing::WriteBytes(twin, testing::ReadBytes(DesktopSample(GetParam().twin)));
  const auto writable = m_workspace->OpenDatabase({.name = twin});
  const auto list = [](Database& database, int set, bool latest, const char* mask, const char* ext) {
    const auto rows = catalog::BuildRestoreQuery(database, set, latest, mask, ext);
    Strings found;
    for (; !rows->Eof(); rows->MoveNext()) {
      std::string& text = found.emplace_back();
      for (const char* name :
           {"ID", "OrigName", "DateStamp", "Filename", "Extension", "SetName", "OrigSize"}) {
        text += rows->Fields(name).Text() + "|";
      }
      text += rows->Fields("Restore").Boolean() ? "marked" : "";
    }
    return Sorted(std::move(found));
  };
  std::size_t listed = 0;
  for (const bool latest : {false, true}) {
    for (const int set : {0, 1, 2}) {
      for (const char* mask : {"", "doc", "[a-c]*.x??", "#"}) {
        for (const char* ext : {"", "In ('001','002')", "= '003'"}) {
          if (set == 0 && *mask == '\0') continue;  // the statement without a mask is refused
          const Strings rows = list(*m_database, set, latest, mask, ext);
          EXPECT_EQ(rows, list(*writable, set, latest, mask, ext)) << latest << set << mask << ext;
          listed += rows.size();
        }
      }
    }
  }
  EXPECT_GT(listed, 20u);
}

INSTANTIATE_TEST_SUITE_P(Formats, DesktopSamples, ::testing::ValuesIn(testing::SoundSamples()),
                         [](const auto& kind) {
                           std::string name = kind.param.name;
                           std::replace_if(
                               name.begin(), name.end(), [](char c) { return c == '-' || c == '.'; }, '_');
                           return name;
                         });

class DesktopFileTest : public ::testing::Test {
 protected:
  std::unique_ptr<Workspace> m_workspace = testing::MakeReaderWorkspace();
};

TEST_F(DesktopFileTest, Of1997) {
  const auto database = m_workspace->OpenDatabase({.name = DesktopSample("sample-1997.mdb")});
  EXPECT_EQ(Rows(*database, "Table1"),
            (Strings{"a|b|0|0|0|0|1981-12-12 00:00:00|0|False",
                     "abcdefg|hijklmnop|2|222|333333333|444.555|1974-09-21 00:00:00|3.5|True"}));
}

}  // namespace
}  // namespace kxrestore::engine
