// The automation back end: the version of the engine that it selects, its calls, and its conversion of
// results.
#include <algorithm>
#include <limits>

#include "engine/dao/dao_backend.h"
#include "engine/dao/values.h"
#include "tests/engine/dao_test_database.h"
#include "tests/engine/desktop_samples.h"

namespace kxrestore::engine::testing {
namespace {

class Dao : public ::testing::Test {
 protected:
  void SetUp() override {
    if (DaoTestDatabase::RealOneIsInstalled()) GTEST_SKIP() << "this machine has a real engine";
  }
  static bool Called(DaoTestDatabase& test, std::string_view call) {
    return std::ranges::find(test.journal.calls, call) != test.journal.calls.end();
  }
};

TEST_F(Dao, TheNewestThatCanBeCreated) {
  const Installation now{"DAO.DBEngine.120"}, broken{"DAO.DBEngine.120", true}, old{"DAO.DBEngine.36"},
      oldest{"DAO.DBEngine.35"};
  const struct {
    std::vector<Installation> installed;
    const char* made;
  } cases[] = {{{oldest, old, now}, "made DAO.DBEngine.120"},
               {{oldest, old}, "made DAO.DBEngine.36"},
               {{oldest, broken}, "made DAO.DBEngine.35"}};
  for (const auto& [installed, made] : cases) {
    DaoTestDatabase test(installed);
    test.Run("CREATE TABLE T (ID INTEGER)");
    MakeDefaultWorkspace()->OpenDatabase(test.Request());
    EXPECT_EQ(test.journal.calls.front(), made);
  }
}

TEST_F(Dao, NoneInstalled) {
  for (const std::vector<Installation>& installed :
       {std::vector<Installation>{}, {{"DAO.DBEngine.36", true}}}) {
    DaoTestDatabase test(installed);
    for (const char* piece :
         {"mdb", "Install the", "x86", installed.empty() ? "" : "DAO.DBEngine.36 is registered"}) {
      ExpectError(error_number::kCannotCreateObject, piece, [&] {
        Workspace::Backends backends;
        backends.dao = dao::MakeDaoBackend();
        backends.jetFile = jet_file::MakeJetFileBackend();
        Workspace(std::move(backends), Workspace::DesktopFiles::kEngine).OpenDatabase(test.Request());
      });
    }
    const auto read = MakeDefaultWorkspace()->OpenDatabase({.name = DesktopSample("telling-2003.mdb")});
    EXPECT_EQ(Rows(*read, "Catalog").size(), 600u) << "the file can be read without the engine";
  }
}

TEST_F(Dao, StatementsArriveUntouched) {
  DaoTestDatabase test;
  test.Run(CatalogSchema());
  const auto workspace = MakeDefaultWorkspace();
  workspace->BeginAction();
  workspace->OpenDatabase({.name = test.Request().name, .readOnly = true});
  EXPECT_TRUE(Called(test, "Workspace.OpenDatabase(\"" + test.Request().name + "\", False, True, \"\")"));
  auto database = workspace->OpenDatabase(test.Request());
  EXPECT_TRUE(Rows(*database, "SELECT ID FROM  [Catalog] WHERE File = 'bü; ro' ;").empty());
  EXPECT_TRUE(
      Called(test, "Database.OpenRecordset(\"SELECT ID FROM  [Catalog] WHERE File = 'bü; ro' ;\", 4)"));
  database->Execute("UPDATE  Catalog SET Restore = True ;", kFailOnError);
  EXPECT_TRUE(Called(test, "Database.Execute(\"UPDATE  Catalog SET Restore = True ;\", 128)"));
  database->Execute("INSERT INTO SetNames (ID) VALUES (1)");
  EXPECT_FALSE(Called(test, "DBEngine.Idle(8)")) << "the engine has not written to the disk yet";
  workspace->EndAction();
  EXPECT_TRUE(Called(test, "DBEngine.Idle(8)")) << "the end of the action waits for the disk";
  int made = 0;
  for (const std::string& call : test.journal.calls) made += call.starts_with("made");
  EXPECT_EQ(made, 1) << "an action uses one engine object";
  EXPECT_GT(test.journal.liveObjects, 0);
  database.reset();
  EXPECT_EQ(test.journal.liveObjects, 0) << "no object outlives the action and its databases";
}

TEST_F(Dao, ErrorsKeepNumberDescriptionAndSource) {
  for (const bool bare : {false, true}) {
    DaoTestDatabase test;
    test.Run("CREATE TABLE T (ID INTEGER)");
    test.journal.bareErrors = bare;
    const auto database = MakeDefaultWorkspace()->OpenDatabase(test.Request());
    try {
      database->QueryText("Nothing");
      ADD_FAILURE() << "no error";
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), error_number::kItemNotFound);
      EXPECT_EQ(error.Description(), "Item not found in this collection: 'Nothing'.");
      EXPECT_EQ(error.Source(), "DAO.QueryDefs");
    }
    test.journal.innerCause = "the driver's words";
    ExpectError(error_number::kItemNotFound, "'Nothing'. (the driver's words)",
                [&] { database->QueryText("Nothing"); });
  }
}

TEST_F(Dao, BlocksOfASnapshot) {
  DaoTestDatabase test;
  test.Run("CREATE TABLE Numbers (N INTEGER, T TEXT)");
  test.Run(
      "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1200) "
      "INSERT INTO Numbers SELECT i, 'tëxt ' || i FROM n");
  const auto database = MakeDefaultWorkspace()->OpenDatabase(test.Request());
  const std::string all = "SELECT N, T FROM Numbers ORDER BY N";
  auto rows = Rows(*database, all);
  ASSERT_EQ(rows.size(), 1200u);
  for (const std::size_t i : {0, 499, 500, 999, 1000, 1199}) {
    EXPECT_EQ(rows[i], std::to_string(i + 1) + "|tëxt " + std::to_string(i + 1));
  }
  // A row that cannot be read is an error at its position, not an early end.
  test.Run("UPDATE Numbers SET T = 'unreadable' WHERE N = 700");
  const auto recordset = database->OpenRecordset(all, RecordsetType::kSnapshot);
  for (int n = 1; n < 700; ++n, recordset->MoveNext()) ASSERT_EQ(recordset->Fields("N").Integer(), n);
  EXPECT_EQ(recordset->Fields("N").Integer(), 700);
  ExpectError(3197, "changed", [&] { recordset->Fields("T").Text(); });
  recordset->MoveNext();
  EXPECT_EQ(recordset->Fields("T").TextView(), "tëxt 701");
}

TEST(DaoValues, AreConvertedBothWays) {
  std::string text;
  const auto value = [&text](const VARIANT& variant) { return dao::ToValue(variant, text); };
  for (const Value& kept :
       {Value(), Value(true), Value(false), Value(std::int64_t{-5}), Value(0.25),
        Value(std::string("bü\0ro", 6)), Value(std::string()), Value(DateTime{2026, 3, 1, 14, 25, 30}),
        Value(DateTime{1899, 12, 30, 0, 0, 1}), Value(DateTime{1899, 12, 29, 18, 0, 0}),
        Value(DateTime{100, 1, 1, 0, 0, 0}), Value(DateTime{9999, 12, 31, 23, 59, 59})}) {
    const dao::Variant variant = dao::FromValue(kept);
    EXPECT_EQ(OwnedOf(value(variant.Raw())), kept);
  }
  EXPECT_EQ(value(dao::FromValue(std::int64_t{1} << 40).Raw()), ValueView(1099511627776.0));

  VARIANT variant{};
  variant.vt = VT_DATE;
  variant.date = 2.75;
  EXPECT_EQ(value(variant), ValueView(DateTime{1900, 1, 1, 18, 0, 0}));
  for (const double serial : {1e300, -1e300, std::numeric_limits<double>::quiet_NaN()}) {
    variant.date = serial;
    ExpectError(kxrestore::error_number::kTypeMismatch, "", [&] { value(variant); });
  }
  variant.vt = VT_CY;
  variant.cyVal.int64 = 50'000'000'000 * 10'000;
  EXPECT_EQ(value(variant), ValueView(std::int64_t{50'000'000'000}));
  variant.cyVal.int64 = 12'500;
  EXPECT_EQ(value(variant), ValueView(1.25));
  variant = {};
  VarDecFromI4(77, &variant.decVal);
  variant.vt = VT_DECIMAL;
  EXPECT_EQ(value(variant), ValueView(std::int64_t{77}));
  variant = {};
  variant.vt = VT_UI1;
  variant.bVal = 200;
  EXPECT_EQ(value(variant), ValueView(std::int64_t{200}));
  variant.vt = VT_DISPATCH;
  ExpectError(kxrestore::error_number::kTypeMismatch, "", [&] { value(variant); });
  SAFEARRAYBOUND bound{3, 0};
  dao::Variant bytes;
  bytes.Raw().vt = VT_ARRAY | VT_UI1;
  bytes.Raw().parray = SafeArrayCreate(VT_UI1, 1, &bound);
  EXPECT_EQ(value(bytes.Raw()), ValueView(std::string_view("\0\0\0", 3)));
}

}  // namespace
}  // namespace kxrestore::engine::testing
