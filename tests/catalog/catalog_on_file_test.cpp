// Listings and marks on a catalog file, with the right answers worked out beside the database.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <optional>

#include "catalog/restore_marks.h"
#include "catalog/restore_query.h"
#include "engine/error_numbers.h"
#include "tests/catalog/catalog_file.h"

namespace kxrestore::catalog {
namespace {

using catalog_test::CatalogFile;
using catalog_test::Live;
using sample::FileRow;
using Ids = std::vector<std::int64_t>;
using IdSet = std::set<std::int64_t>;

std::vector<FileRow> Versions() {
  std::vector<FileRow> rows;
  const char* const names[] = {"C:\\Reports\\a.doc", "C:\\Reports\\b.doc", "D:\\x\\report.xls",
                               "D:\\x\\plain.txt"};
  // Every name in every set and run, twice; the numbers jump about, dates tie, some versions are not live,
  // and a higher number may carry an older date.
  for (std::int64_t step = 0; step < 72; ++step) {
    FileRow row = Live(1 + step * 37 % 73, names[step % 4]);
    row.setId = 1 + step / 4 % 3;
    row.extension = "00" + std::to_string(1 + step / 12 % 3);
    row.dateStamp = "2026-03-0" + std::to_string(1 + row.id % 3) + " 10:00:00";
    row.status = step % 7 == 3 ? 5 : 2;
    rows.push_back(row);
  }
  return rows;
}

class CatalogOnFile : public ::testing::Test {
 protected:
  std::unique_ptr<engine::Database> Open(const CatalogFile& file) {
    return OpenCatalog(*m_workspace, {.dbName = file.Path()});
  }
  // The numbers listed, in the order of the listing.
  Ids List(const CatalogFile& file, std::int32_t setId, bool latest, std::string_view mask,
           std::string_view ext = "") {
    const auto database = Open(file);
    const auto rows = BuildRestoreQuery(*database, setId, latest, mask, ext);
    const auto id = rows->Fields("ID");
    Ids ids;
    for (; !rows->Eof(); rows->MoveNext()) ids.push_back(id.Integer());
    return ids;
  }
  int ListError(const CatalogFile& file, std::int32_t setId, bool latest, std::string_view mask) {
    try {
      List(file, setId, latest, mask);
      return 0;
    } catch (const Error& error) {
      return error.Number();
    }
  }
  RestoreMarks Marks(const CatalogFile& file) {
    m_settings.dbName = file.Path();
    return {*m_workspace, m_settings, m_current, [this](const Error& error, const std::string& routine) {
              m_reports.push_back(routine + " " + std::to_string(error.Number()));
            }};
  }

  std::unique_ptr<engine::Workspace> m_workspace = engine::MakeDefaultWorkspace();
  ConnectionSettings m_settings;
  CurrentRun m_current{.setId = 1, .extension = "001"};
  std::vector<std::string> m_reports;
};

TEST_F(CatalogOnFile, ListingsFindWhatTheyStandFor) {
  const auto all = Versions();
  const CatalogFile file(all);
  struct Filter {
    const char* text;
    IdSet extensions;
  };
  const Filter filters[] = {{"", {}}, {"In (\"003\", \"001\")", {3, 1}}, {"= '002'", {2}}};

  for (const std::int32_t setId : {0, 1, 3}) {
    for (const bool latest : {false, true}) {
      for (const std::string mask : {"report", "*.DOC", ""}) {
        for (const auto& filter : filters) {
          if (setId == 0 && mask.empty()) continue;
          const auto inFilter = [&](const FileRow& row) {
            return filter.extensions.empty() || filter.extensions.count(std::stoi(row.extension)) != 0;
          };
          std::map<std::string, std::int64_t> newest;  // highest number among the live versions looked at
          for (const auto& row : all) {
            const bool source =
                setId == 0 || (filter.extensions.empty() ? row.setId == setId : inFilter(row));
            if (source && row.status == 2) newest[row.origName] = std::max(newest[row.origName], row.id);
          }
          IdSet expected;
          for (const auto& row : all) {
            if (row.status != 2 || (latest && newest[row.origName] != row.id)) continue;
            if (setId != 0 && (row.setId != setId || !inFilter(row))) continue;
            std::string lower = row.origName;
            std::transform(lower.begin(), lower.end(), lower.begin(), ::tolower);
            if (mask == "report" && lower.find("report") == std::string::npos) continue;
            if (mask == "*.DOC" && lower.find(".doc") == std::string::npos) continue;
            expected.insert(row.id);
          }
          const Ids found = List(file, setId, latest, mask, filter.text);
          SCOPED_TRACE(testing::Message() << setId << " " << latest << " " << mask << " " << filter.text);
          EXPECT_EQ(IdSet(found.begin(), found.end()), expected);
          EXPECT_EQ(found.size(), expected.size()) << "a row is listed twice";
        }
      }
    }
  }
}

TEST_F(CatalogOnFile, LatestOfAllSetsComeNewestFirstAndCarryTheirColumns) {
  auto old = Live(9, "a");
  old.dateStamp = "2026-01-01 00:00:00";
  auto first = Live(3, "b"), second = Live(5, "c");
  second.plugin = "Exchange Server";
  second.setId = 2;
  const CatalogFile file({old, first, second});
  EXPECT_EQ(List(file, 0, true, "*"), (Ids{5, 3, 9}));

  const auto database = Open(file);
  const auto rows = BuildRestoreQuery(*database, 0, true, "c", "");
  ASSERT_FALSE(rows->Eof());
  EXPECT_EQ(rows->Fields("OrigName").Text(), "c");
  EXPECT_EQ(rows->Fields("SetName").Text(), "Set 2");
  EXPECT_EQ(rows->Fields("SetNameID").Integer(), 2);
  EXPECT_EQ(rows->Fields("OrigSize").Integer(), 105);
  EXPECT_EQ(rows->Fields("Plugin").Text(), "Exchange Server");
  EXPECT_EQ(rows->Fields("File").Text(), "c");
  EXPECT_EQ(engine::ToDateTime(rows->Fields("DateStamp").Value()), (engine::DateTime{2026, 3, 1, 10, 0, 0}));
  rows->MoveNext();
  EXPECT_TRUE(rows->Eof());
}

TEST_F(CatalogOnFile, MasksAsUsersWriteThem) {
  const char* const names[] = {"C:\\a.doc",      "C:\\b.docx",     "D:\\report1.xls",   "D:\\report12.xls",
                               "E:\\100%.txt",   "E:\\100x.txt",   "F:\\a_b",           "F:\\axb",
                               "G:\\it's",       "G:\\say \"hi\"", "H:\\Gr\xC3\x96SSE", "H:\\gr\xC3\xB6sse",
                               "I:\\odd[1].txt", "J:\\no.7",       "J:\\no.x"};
  std::vector<FileRow> rows;
  for (const char* name : names) rows.push_back(Live(static_cast<std::int64_t>(rows.size()) + 1, name));
  const CatalogFile file(rows);
  const std::pair<const char*, Ids> cases[] = {{"*.doc", {1, 2}},
                                               {"report?.xls", {3}},
                                               {":\\[a-e]*", {1, 2, 7, 8}},
                                               {"100%", {5}},
                                               {"a_b", {7}},
                                               {"it's", {9}},
                                               {"\"", {10}},
                                               {"say \"hi\"", {10}},
                                               {"gr\xC3\xB6sse", {11, 12}},
                                               {"GR\xC3\x96", {11, 12}},
                                               {"odd[[]1", {13}},
                                               {"no.#", {14}},
                                               {"' Or ''='", {}},
                                               {"\" Or \"\"=\"", {}},
                                               {"*\") Or (Status = 2) Or (OrigName Like \"", {}},
                                               {";", {}},
                                               {"--", {}},
                                               {"?:\\no.[!0-9]", {15}}};
  for (const auto& [mask, expected] : cases) {
    SCOPED_TRACE(mask);
    for (const bool latest : {false, true}) {
      Ids found = List(file, 0, latest, mask);
      std::sort(found.begin(), found.end());
      EXPECT_EQ(found, expected);
      found = List(file, 1, latest, mask);
      std::sort(found.begin(), found.end());
      EXPECT_EQ(found, expected);
    }
  }
  // A list that is never closed finds the bracket or is refused; it never finds everything.
  for (const char* mask : {"[", "odd[1"}) {
    try {
      EXPECT_EQ(List(file, 0, false, mask), Ids{13});
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), 93) << error.Description();
    }
  }
  EXPECT_NE(ListError(file, 0, false, ""), 0) << "all sets without a mask is no statement";
}

TEST_F(CatalogOnFile, SavedQueriesAreTheSameAfterEachCallAndNeedFullCatalog) {
  CatalogFile file({Live(1, "a"), Live(2, "a")});
  const std::string names = "SELECT count(*) FROM sqlite_master WHERE type = 'view'";
  EXPECT_EQ(List(file, 1, true, "a"), Ids{2});
  EXPECT_EQ(List(file, 0, true, "a"), Ids{2});
  const IdSet views = file.Query(names);
  EXPECT_EQ(views, IdSet{6});
  EXPECT_EQ(List(file, 1, true, "a"), Ids{2});
  EXPECT_EQ(List(file, 2, true, "a"), Ids{});
  EXPECT_EQ(file.Query(names), views);

  file.Execute("DROP VIEW FullCatalog");
  EXPECT_EQ(ListError(file, 1, true, "a"), engine::error_number::kItemNotFound);
  EXPECT_NE(ListError(file, 0, true, "a"), 0);
  EXPECT_NE(ListError(file, 1, false, "a"), 0);
}

TEST_F(CatalogOnFile, MarksByIdAndClearing) {
  auto other = Live(2, "b");
  other.setId = 2;
  other.restore = true;
  CatalogFile file({Live(1, "a"), other, Live(3, "c")});
  auto marks = Marks(file);
  EXPECT_TRUE(marks.UpdateByID(3));
  EXPECT_TRUE(marks.UpdateByID(3));
  EXPECT_TRUE(marks.UpdateByID(99));
  EXPECT_EQ(file.Marked(), (IdSet{2, 3}));
  EXPECT_TRUE(marks.ClearSelections());
  EXPECT_EQ(file.Marked(), IdSet{});
  EXPECT_TRUE(marks.CancelAll());
  EXPECT_TRUE(marks.UpdateByID(2));
  EXPECT_TRUE(marks.CancelAll());
  EXPECT_EQ(file.Marked(), IdSet{});
  EXPECT_TRUE(m_reports.empty());
}

TEST_F(CatalogOnFile, MarksByFileAndByFileName) {
  std::vector<FileRow> rows;
  for (const std::int64_t id : {1, 2, 3, 4, 5, 6, 7}) {
    rows.push_back(Live(id, "C:\\O'Neil.doc"));
    rows.back().file = "Store";
  }
  rows[3].setId = 2;
  rows[4].extension = "002";
  rows[5].file = "store";
  rows[6].file.reset();
  CatalogFile file(rows);
  auto marks = Marks(file);

  EXPECT_TRUE(marks.UpdateSelectionByFile("Store", true, 0, ""));
  EXPECT_EQ(file.Marked(), (IdSet{1, 2, 3}));
  EXPECT_TRUE(marks.UpdateSelectionByFile("Store", false, 1, "001"));
  EXPECT_TRUE(marks.UpdateSelectionByFile("nobody", true, 1, "001"));
  EXPECT_EQ(file.Marked(), IdSet{});
  EXPECT_TRUE(marks.UpdateSelectionByFile("Store", true, 2, ""));
  EXPECT_EQ(file.Marked(), IdSet{4});

  EXPECT_TRUE(marks.UpdateSelectionByFileName("C:\\O'Neil.doc", true, 1, "001"));
  EXPECT_EQ(file.Marked().size(), 2u);
  EXPECT_TRUE(marks.UpdateSelectionByFileName("C:\\O'Neil.doc", false, 1, "001"));
  EXPECT_EQ(file.Marked(), IdSet{4}) << "the first row is the same one each time";
  EXPECT_TRUE(marks.UpdateSelectionByFileName("C:\\O'Neil.doc", true, 1, "002"));
  EXPECT_TRUE(marks.UpdateSelectionByFileName("nobody", true, 1, "001"));
  EXPECT_EQ(file.Marked(), (IdSet{4, 5}));
  EXPECT_TRUE(m_reports.empty());
}

TEST_F(CatalogOnFile, FailuresAreReportedAndChangeNothing) {
  auto odd = Live(1, "a");
  odd.extension = "x'y";
  CatalogFile file({odd, Live(2, "b")});
  auto marks = Marks(file);
  EXPECT_FALSE(marks.UpdateSelectionByFileName("a", true, 1, "x'y"));
  EXPECT_FALSE(marks.UpdateSelectionByFile("a", true, 1, "x'y"));
  EXPECT_EQ(m_reports, (std::vector<std::string>{"UpdateSelection 3075", "UpdateSelection 3075"}));
  EXPECT_EQ(file.Marked(), IdSet{});

  m_reports.clear();
  m_settings.dbName += ".missing";
  EXPECT_FALSE(marks.UpdateByID(2));
  EXPECT_FALSE(marks.CancelAll());
  EXPECT_EQ(m_reports, (std::vector<std::string>{"UpdateByID(2) 3024", "CancelAll 3024"}));
}

}  // namespace
}  // namespace kxrestore::catalog
