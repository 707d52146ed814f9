// The exact marking statements, and the effect of an error on an operation.
#include "catalog/restore_marks.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/catalog/recording_database.h"

namespace kxrestore::catalog {
namespace {

using catalog_test::RecordingBackend;
using catalog_test::Script;
using Calls = std::vector<std::string>;

TEST(Connection, ConnectStrings) {
  EXPECT_EQ(BuildConnectString("Cat", "SRV\\X", "", "ignored"),
            "ODBC;DRIVER={sql server};DATABASE=Cat;SERVER=SRV\\X;Trusted_Connection=Yes;");
  EXPECT_EQ(BuildConnectString("Cat", "SRV", "sa", ""),
            "ODBC;DRIVER={sql server};DATABASE=Cat;SERVER=SRV;UID=sa;PWD=");
}

class RestoreMarksOnServer : public ::testing::Test {
 protected:
  RestoreMarks Marks() {
    return {m_workspace, m_settings, m_current, [this](const Error& error, const std::string& routine) {
              m_reports.push_back(routine + " " + std::to_string(error.Number()));
            }};
  }

  std::shared_ptr<Script> m_script = std::make_shared<Script>();
  ConnectionSettings m_settings{.DBType = kServerCatalog, .DBName = "not used", .connect = "ODBC;x"};
  CurrentRun m_current{.setId = 11, .extension = "042"};
  engine::Workspace m_workspace{{.odbc = std::make_unique<RecordingBackend>(m_script)}};
  Calls m_reports;
};

TEST_F(RestoreMarksOnServer, Statements) {
  m_script->columns = {"Restore", "File"};
  m_script->rows = {{false, "Store"}, {false, "store"}, {true, "Store"}, {false, std::monostate()}};
  const std::string joined =
      "LongPaths.LongPath FROM LongPaths RIGHT JOIN [Catalog] ON LongPaths.PathID = Catalog.LongPathID WHERE "
      "(((Catalog.SetNameID)=";
  const std::string byFile =
      "open 2 SELECT Catalog.SetNameID, Catalog.Extension, Catalog.Filename, Catalog.File, Catalog.Plugin, "
      "Catalog.Restore, IIf(IsNull([LongPath]),[Catalog.Filename],[LongPath]) AS RestoreFile, " +
      joined;
  const std::string byName =
      "open 2 SELECT Catalog.SetNameID, Catalog.Extension, Catalog.Filename, Catalog.Restore, " + joined;
  const std::string clear =
      "execute 128 UPDATE [Catalog] SET [Catalog].Restore = False WHERE (((Catalog.Restore)=True));";
  auto marks = Marks();
  const struct {
    std::function<MarkResult()> mark;
    Calls calls;
    MarkResult result = MarkResult::kDone;
  } cases[] = {
      {[&] { return marks.UpdateByID(std::numeric_limits<std::int32_t>::min()); },
       {"execute 128 UPDATE [Catalog] SET [Catalog].Restore = True WHERE (((Catalog.ID)=-2147483648));"},
       MarkResult::kNoRow},
      {[&] { return marks.ClearSelections(); }, {clear}},
      {[&] { return marks.CancelAll(); }, {clear}},
      {[&] { return marks.UpdateSelectionByFile("Store", true, 5, "x'y"); },
       {byFile + "5) AND ((Catalog.Extension)='x'y')); ", "edit 0", "update 0", "edit 2", "update 2",
        "close recordset", "close database"}},
      {[&] { return marks.UpdateSelectionByFile("", false, 0, ""); },  // an empty name is not NULL
       {byFile + "11) AND ((Catalog.Extension)='042')); ", "close recordset", "close database"},
       MarkResult::kNoRow},
      {[&] { return marks.UpdateSelectionByFileName("C:\\O'Neil.doc", false, 0, ""); },
       {byName + "11) AND ((Catalog.Extension)='042') AND ((Catalog.Filename)='C:\\O''Neil.doc')); ",
        "edit 0", "update 0"}}};
  for (const auto& [mark, calls, result] : cases) {
    m_script->calls.clear();
    EXPECT_EQ(mark(), result);
    EXPECT_EQ(m_script->calls.front(), "connect |ODBC;x");
    EXPECT_EQ(Calls(m_script->calls.begin() + 1, m_script->calls.end()), calls);
  }
  EXPECT_EQ(m_script->rows[0][0], engine::Value(false));
  EXPECT_EQ(m_script->rows[2][0], engine::Value(true)) << "the first row only";
  EXPECT_TRUE(m_reports.empty());
}

TEST_F(RestoreMarksOnServer, ErrorsAreReportedUnderTheOperationsTag) {
  m_script->columns = {"Restore", "File"};
  m_script->rows = {{false, "a"}, {false, "a"}};
  m_script->failures = {{"execute", 3146}, {"update 1", 3260}};
  auto marks = Marks();
  const auto tryAll = [&] {
    EXPECT_EQ(marks.UpdateByID(-5), MarkResult::kFailed);
    EXPECT_EQ(marks.CancelAll(), MarkResult::kFailed);
    EXPECT_EQ(marks.ClearSelections(), MarkResult::kFailed);
    EXPECT_EQ(marks.UpdateSelectionByFile("a", true, 1, "001"), MarkResult::kFailed);
  };
  tryAll();
  EXPECT_EQ(m_script->rows[0][0], engine::Value(true)) << "the mark made before the error stays";
  m_script->failures = {{"connect", 3151}};
  EXPECT_EQ(marks.UpdateSelectionByFileName("a", true, 1, "001"), MarkResult::kFailed);
  m_settings.DBType = 7;  // another kind of database
  tryAll();
  EXPECT_EQ(m_reports, (Calls{"UpdateByID(-5) 3146", "CancelAll 3146", "ClearSelections 3146",
                              "UpdateSelection 3260", "UpdateSelection 3151", "UpdateByID(-5) 91",
                              "CancelAll 91", "ClearSelections 91", "UpdateSelection 91"}));
}

}  // namespace
}  // namespace kxrestore::catalog
