// Files of the desktop engine with what the samples lack: texts that mix compressed and plain, memos beside
// their rows and in chains, rows moved to other pages, names that set traps.
#include <algorithm>

#include "catalog/restore_marks.h"
#include "tests/desktop_maker/desktop_file.h"
#include "tests/engine/desktop_samples.h"

namespace kxrestore::engine {
namespace {

using kxrestore::testing::DesktopFile;
using testing::ExpectError;
using testing::Rows;
using Strings = std::vector<std::string>;
using Texts = DesktopFile::Texts;
using Memos = DesktopFile::Memos;

const Strings kNames = {"C:\\plain.txt",
                        "C:\\it's.txt",
                        "C:\\''.txt",
                        "C:\\[a-b]*?#.txt",
                        "C:\\100%_done.txt",
                        "C:\\Größe ß ÿ.txt",
                        "C:\\ārļē Заметки 文書.txt",
                        "C:\\emoji \xF0\x9F\x98\x80 and half \xED\xA0\xBD.txt",
                        "C:\\ends in a blank ",
                        "C:\\with \"quotes\" and ].txt",
                        "C:\\" + std::string(240, 'x') + ".txt",
                        "\xFF"};  // no UTF-8: becomes U+FFFD

std::vector<Value> CatalogRow(std::int64_t id, const std::string& name, const Value& longPath,
                              const std::string& original) {
  return {id,
          std::string("2026-03-01 10:00:00"),
          std::int64_t{1},
          std::string("001"),
          name,
          name,
          longPath,
          std::string("s"),
          std::int64_t{1},
          Value(),
          false,
          std::int64_t{5'000'000'000},
          std::int64_t{2},
          std::int64_t{32},
          std::string(),
          std::int64_t{0},
          original};
}

struct Made {
  const char* sample;
  DesktopFile::Style style;
};

class MadeFiles : public ::testing::TestWithParam<Made> {
 protected:
  MadeFiles() {
    DesktopFile file(testing::DesktopSample(GetParam().sample), m_path);
    file.SetStyle(GetParam().style);
    std::int64_t id = 0;
    for (const std::string& name : kNames) {
      ++id;
      m_originals.push_back(name == "\xFF" ? "" : name);
      // Up to several pages, where memos may be as long.
      const std::size_t most = GetParam().style.memos == Memos::kChain ? 20'000 : 1'000;
      while (id > 1 && m_originals.back().size() < most) m_originals.back() += " " + name;
      file.Add("Catalog", CatalogRow(id, name, id % 2 == 0 ? Value(id) : Value(), m_originals.back()));
      if (id % 2 == 0) file.Add("LongPaths", {id, m_originals.back()});
    }
    file.Finish();
  }

  static std::string Whole(const std::string& text) {
    std::string whole;
    for (const char c : text) whole += c == '\xFF' ? std::string("\xEF\xBF\xBD") : std::string(1, c);
    return whole;
  }

  testing::TemporaryFolder m_folder;
  std::string m_path = m_folder.File("made.mdb");
  Strings m_originals;
  std::unique_ptr<Workspace> m_workspace = testing::MakeReaderWorkspace();
};

TEST_P(MadeFiles, AreReadAndMarkedWhole) {
  const auto database = m_workspace->OpenDatabase({.name = m_path});
  const auto rows = database->OpenRecordset(
      "SELECT ID, Filename, OrigSize, OrigName, LongPath FROM LongPaths RIGHT JOIN Catalog ON "
      "LongPaths.PathID = "
      "Catalog.LongPathID ORDER BY ID",
      RecordsetType::kSnapshot);
  std::size_t i = 0;
  for (; !rows->Eof(); rows->MoveNext(), ++i) {
    ASSERT_LT(i, kNames.size());
    EXPECT_EQ(rows->Fields("ID").Integer(), static_cast<std::int64_t>(i) + 1);
    EXPECT_EQ(rows->Fields("Filename").Text(), Whole(kNames[i]));
    EXPECT_EQ(rows->Fields("OrigSize").Integer(), 5'000'000'000);
    EXPECT_EQ(rows->Fields("LongPath").IsNull(), i % 2 == 0);
    EXPECT_EQ(rows->Fields("OrigName").Text(), Whole(m_originals[i]));
    if (i % 2 != 0) {
      EXPECT_EQ(rows->Fields("LongPath").Text(), Whole(m_originals[i]));
    }
  }
  EXPECT_EQ(i, kNames.size());

  catalog::ConnectionSettings settings{.DBName = m_path, .connect = {}};
  const catalog::CurrentRun current{1, "001"};
  catalog::RestoreMarks marks(*m_workspace, settings, current, [](const Error& error, const std::string&) {
    ADD_FAILURE() << error.Description();
  });
  const testing::FileBytes before = testing::ReadBytes(m_path);
  m_workspace->BeginAction();
  for (std::size_t k = 0; k + 1 < kNames.size(); ++k) {
    if (k % 2 == 0) {
      EXPECT_EQ(marks.UpdateSelectionByFileName(kNames[k], true, 0, ""), catalog::MarkResult::kDone);
    } else {
      EXPECT_EQ(marks.UpdateSelectionByFile(kNames[k], true, 0, ""), catalog::MarkResult::kDone);
    }
  }
  m_workspace->EndAction();
  EXPECT_EQ(Rows(*database, "SELECT Count(*) FROM Catalog WHERE Restore = True"),
            Strings{std::to_string(kNames.size() - 1)});
  EXPECT_EQ(Rows(*database, "SELECT Count(*) FROM Catalog WHERE Filename Like \"*[[]a-b]*\""), Strings{"1"});
  const testing::FileBytes after = testing::ReadBytes(m_path);
  ASSERT_EQ(after.size(), before.size());
  std::size_t changed = 0;
  for (std::size_t k = 0; k < after.size(); ++k) changed += after[k] != before[k] ? 1 : 0;
  EXPECT_EQ(changed, kNames.size() - 1);
  EXPECT_EQ(marks.CancelAll(), catalog::MarkResult::kDone);
  EXPECT_EQ(testing::ReadBytes(m_path), before);
}

INSTANTIATE_TEST_SUITE_P(Styles, MadeFiles,
                         ::testing::Values(Made{"telling-2000.mdb", {Texts::kMixed, Memos::kOnePage, 0}},
                                           Made{"telling-2003.mdb", {Texts::kCompressed, Memos::kChain, 3}},
                                           Made{"telling-2010.accdb", {Texts::kPlain, Memos::kChain, 2}},
                                           Made{"telling-2019.accdb", {Texts::kMixed, Memos::kChain, 1}}));

}  // namespace
}  // namespace kxrestore::engine
