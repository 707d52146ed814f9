// Listings and marks on every kind of database, compared with results that the test computes.
#include <algorithm>
#include <map>
#include <set>

#include "base/text.h"
#include "catalog/restore_marks.h"
#include "catalog/restore_query.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::catalog {
namespace {

using Ids = std::vector<std::int64_t>;
using IdSet = std::set<std::int64_t>;

struct Version {
  std::int64_t id;
  std::string origName, date = "2026-03-01 10:00:00";
  int setId = 1, run = 1, status = 2;
};

class CatalogConformance : public engine::testing::ConformanceTest {
 protected:
  void SetUp() override {
    ConformanceTest::SetUp();
    const auto request = m_test->Request();
    m_settings = {request.connect.empty() ? kFileCatalog : kServerCatalog, request.name, request.connect};
  }
  void Fill(const std::vector<Version>& versions) {
    std::string sql = "DELETE FROM Catalog;";
    for (const auto& [id, origName, date, setId, run, status] : versions) {
      sql +=
          "INSERT INTO Catalog (ID, OrigName, DateStamp, SetNameID, Extension, Status, Filename, Restore) "
          "VALUES (" +
          std::to_string(id) + ", '" + origName + "', '" + date + "', " + std::to_string(setId) + ", '00" +
          std::to_string(run) + "', " + std::to_string(status) + ", '" + origName + "', 0);";
    }
    m_test->Run(sql);
  }
  // The IDs of a listing, in its order.
  Ids List(std::int32_t setId, bool latest, std::string_view mask, std::string_view ext = "") {
    const auto rows = BuildRestoreQuery(*m_database, setId, latest, mask, ext);
    const auto id = rows->Fields("ID");
    Ids ids;
    for (; !rows->Eof(); rows->MoveNext()) ids.push_back(id.Integer());
    return ids;
  }
  std::string Marked() {
    return m_test->Ask(
        "SELECT coalesce(group_concat(ID), '') FROM (SELECT ID FROM Catalog WHERE Restore <> 0 ORDER BY ID) "
        "AS m");
  }

  ConnectionSettings m_settings;
};

TEST_P(CatalogConformance, ListingsFindTheirVersions) {
  // Each name occurs twice in every set and run. The IDs are not in order, dates are equal, some versions are
  // not live, and a higher ID may have an older date.
  const char* const names[] = {"C:\\Reports\\a.doc", "C:\\Reports\\b.doc", "D:\\x\\report.xls",
                               "D:\\x\\plain.txt"};
  std::vector<Version> all;
  for (int step = 0; step < 72; ++step) {
    const int id = 1 + step * 37 % 73;
    all.push_back({id, names[step % 4], "2026-03-0" + std::to_string(1 + id % 3) + " 10:00:00",
                   1 + step / 4 % 3, 1 + step / 12 % 3, step % 7 == 3 ? 5 : 2});
  }
  Fill(all);
  const std::pair<const char*, IdSet> filters[] = {
      {"", {1, 2, 3}}, {"In (\"003\", \"001\")", {3, 1}}, {"= '002'", {2}}};
  const std::pair<const char*, const char*> masks[] = {{"report", "report"}, {"*.DOC", ".doc"}, {"", ""}};
  for (const bool latest : {false, true}) {
    for (const int setId : {0, 1, 3}) {
      for (const auto& [filter, runs] : filters) {
        std::map<std::string, std::int64_t> newest;  // the highest ID of the live versions in the source
        for (const auto& row : all) {
          const bool source = setId == 0 || (*filter == 0 ? row.setId == setId : runs.count(row.run) != 0);
          if (source && row.status == 2) newest[row.origName] = std::max(newest[row.origName], row.id);
        }
        for (const auto& [mask, piece] : masks) {
          if (setId == 0 && *mask == 0) continue;
          IdSet expected;
          for (const auto& row : all) {
            if (row.status != 2 || (latest && newest[row.origName] != row.id)) continue;
            if (setId != 0 && (row.setId != setId || runs.count(row.run) == 0)) continue;
            if (ContainsIgnoringCase(row.origName, piece)) expected.insert(row.id);
          }
          const Ids found = List(setId, latest, mask, filter);
          SCOPED_TRACE(::testing::Message() << setId << " " << latest << " " << mask << " " << filter);
          EXPECT_EQ(IdSet(found.begin(), found.end()), expected);
          EXPECT_EQ(found.size(), expected.size()) << "a row is listed twice";
        }
      }
    }
  }
}

// The first listing creates a saved query before the one that it refers to. The later ones replace queries to
// which others refer.
TEST_P(CatalogConformance, SavedQueriesReferToEachOther) {
  for (const auto& [setId, listed] :
       {std::pair(1, Ids{7, 4, 3, 2}), std::pair(2, Ids{5}), std::pair(1, Ids{7, 4, 3, 2})}) {
    m_workspace->BeginAction();
    m_database = m_workspace->OpenDatabase(m_test->Request());
    Ids found = List(setId, true, "*");
    std::sort(found.rbegin(), found.rend());
    EXPECT_EQ(found, listed);
    m_database->Close();
    m_workspace->EndAction();
    EXPECT_EQ(AskQuery("SELECT count(*) FROM FullCatalogLatestBySet"), std::to_string(listed.size()))
        << "other connections see the query after the action";
  }
}

TEST_P(CatalogConformance, LatestOfAllSetsAreSortedAndHaveTheirColumns) {
  EXPECT_EQ(List(0, true, "*"), (Ids{5, 7, 4, 3, 2}));
  const auto rows = BuildRestoreQuery(*m_database, 0, true, "ÄRG", "");
  ASSERT_FALSE(rows->Eof());
  std::string texts;
  for (const char* name :
       {"OrigName", "SetName", "SetNameID", "Extension", "StoreName", "Restore", "DateStamp"}) {
    texts += rows->Fields(name).Text() + "|";
  }
  EXPECT_EQ(texts, "D:\\Ärger.txt|büro|2|001|s5|True|2026-03-01 00:00:00|");
  EXPECT_TRUE(rows->Fields("OrigSize").IsNull());
  rows->MoveNext();
  EXPECT_TRUE(rows->Eof());
}

TEST_P(CatalogConformance, NamesThatDifferOnlyInCaseAreOneFile) {
  const char* const names[] = {"C:\\Report.doc", "C:\\REPORT.DOC", "C:\\Ärger.txt", "C:\\äRGER.TXT",
                               "Ωμέγα.x",        "ΩΜΈΓΑ.X",        "Журнал",        "ЖУРНАЛ",
                               "C:\\Arger.txt",  "Straße",         "STRASSE"};
  std::vector<Version> versions;
  for (const char* name : names) versions.push_back({static_cast<std::int64_t>(versions.size()) + 1, name});
  Fill(versions);
  const Ids newest = {2, 4, 6, 8, 9, 10, 11};
  for (const int setId : {0, 1}) {
    Ids found = List(setId, true, "*");
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, newest);
    // A dynaset uses the saved queries unchanged.
    const std::string query = setId == 0 ? "FullCatalogLatest" : "FullCatalogLatestBySet";
    const auto rows = m_database->OpenRecordset("SELECT ID, OrigName FROM " + query + " ORDER BY ID",
                                                engine::RecordsetType::kDynaset);
    for (const std::int64_t id : newest) {
      ASSERT_FALSE(rows->Eof());
      EXPECT_EQ(rows->Fields("ID").Integer(), id);
      EXPECT_EQ(rows->Fields("OrigName").Text(), names[id - 1]);
      rows->MoveNext();
    }
    EXPECT_TRUE(rows->Eof());
  }
  EXPECT_EQ(List(0, true, "port"), Ids{2});
}

// No text of the user ends the mask in the statement. The meaning of masks is tested with the engine.
TEST_P(CatalogConformance, MasksStayMasks) {
  Fill({{1, "C:\\a.doc"}, {2, "G:\\it''s"}, {3, "G:\\say \"hi\""}, {4, "H:\\GrÖSSE"}, {5, "I:\\odd[1].txt"}});
  const std::pair<const char*, Ids> cases[] = {{"it's", {2}},
                                               {"\"", {3}},
                                               {"say \"hi\"", {3}},
                                               {"grösse", {4}},
                                               {"odd[[]1", {5}},
                                               {"' Or ''='", {}},
                                               {"\" Or \"\"=\"", {}},
                                               {"*\") Or (Status = 2) Or (OrigName Like \"", {}},
                                               {";", {}},
                                               {"--", {}}};
  for (const auto& [mask, expected] : cases) {
    for (const int setId : {0, 1}) EXPECT_EQ(List(setId, setId == 1, mask), expected) << mask;
  }
  // An unclosed list finds the bracket or is refused. It never finds everything.
  for (const char* mask : {"[", "odd[1"}) {
    try {
      EXPECT_EQ(List(0, false, mask), Ids{5});
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), 93) << error.Description();
    }
  }
  EXPECT_THROW(List(0, false, ""), Error) << "the statement for all sets needs a mask";
}

TEST_P(CatalogConformance, Marks) {
  m_test->Run(
      "DELETE FROM Catalog WHERE ID > 4; INSERT INTO Catalog (ID, SetNameID, Extension, Filename, File, "
      "Restore) VALUES "
      "(11, 1, '001', 'C:\\O''Neil.doc', 'Store', 0), (12, 1, '001', 'C:\\O''Neil.doc', 'Store', 0), "
      "(13, 2, '001', 'C:\\O''Neil.doc', 'Store', 0), (14, 1, '002', 'C:\\O''Neil.doc', 'Store', 0), "
      "(15, 1, '001', 'C:\\O''Neil.doc', 'store', 0), (16, 1, '001', 'C:\\O''Neil.doc', NULL, 0)");
  CurrentRun current{1, "001"};
  std::string reported;
  RestoreMarks marks(*m_workspace, m_settings, current, [&](const Error& error, const std::string& routine) {
    reported += routine + " " + std::to_string(error.Number());
  });
  const std::string name = "C:\\O'Neil.doc";
  const struct {
    std::function<MarkResult()> mark;
    std::string marked;
    MarkResult result = MarkResult::kDone;
  } steps[] = {
      {[&] { return marks.UpdateByID(3); }, "3,4"},
      {[&] { return marks.UpdateByID(99); }, "3,4", MarkResult::kNoRow},
      {[&] { return marks.ClearSelections(); }, ""},
      {[&] { return marks.UpdateSelectionByFile("Store", true, 0, ""); }, "11,12"},
      {[&] { return marks.UpdateSelectionByFile("Store", true, 2, ""); }, "11,12,13"},
      {[&] { return marks.UpdateSelectionByFile("nobody", true, 1, "001"); }, "11,12,13", MarkResult::kNoRow},
      {[&] { return marks.UpdateSelectionByFile("Store", false, 1, "001"); }, "13"},
      {[&] { return marks.UpdateSelectionByFileName(name, true, 1, "002"); }, "13,14"},
      {[&] { return marks.UpdateSelectionByFileName("nobody", true, 1, "001"); }, "13,14",
       MarkResult::kNoRow},
      {[&] { return marks.CancelAll(); }, ""}};
  for (const auto& [mark, marked, result] : steps) {
    EXPECT_EQ(mark(), result) << reported;
    EXPECT_EQ(Marked(), marked);
  }
  EXPECT_EQ(marks.UpdateSelectionByFileName(name, true, 0, ""), MarkResult::kDone);
  EXPECT_EQ(Marked().size(), 2u) << "only the first of several rows";
  EXPECT_EQ(marks.UpdateSelectionByFileName(name, false, 0, ""), MarkResult::kDone);
  EXPECT_EQ(Marked(), "") << "the same row is the first again";
  EXPECT_EQ(reported, "");
  EXPECT_EQ(marks.UpdateSelectionByFile("a", true, 1, "x'y"), MarkResult::kFailed);
  EXPECT_EQ(marks.UpdateSelectionByFileName("a", true, 1, "x'y"), MarkResult::kFailed);
  EXPECT_EQ(reported, "UpdateSelection 3075UpdateSelection 3075");
}

KX_CONFORMANCE(CatalogConformance);

}  // namespace
}  // namespace kxrestore::catalog
