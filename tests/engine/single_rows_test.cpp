// Listings of the latest versions. The engine leaves out the outer GROUP BY of their saved query where this
// does not change the rows. It never does so for a dynaset.
#include <algorithm>

#include "engine/odbc/odbc_session.h"
#include "engine/odbc/saved_queries.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::engine::testing {
namespace {

constexpr char kLatest[] =
    "SELECT FullCatalog.OrigName AS OrigName, Max(FullCatalog.DateStamp) AS DateStamp, First(FullCatalog.ID) "
    "AS ID, First(FullCatalog.SetNameID) AS SetNameID, First(FullCatalog.Status) AS Status, "
    "First(FullCatalog.SetName) AS SetName FROM FullCatalog INNER JOIN Newest ON Newest.ID = FullCatalog.ID "
    "WHERE FullCatalog.Status = 2 GROUP BY FullCatalog.OrigName ORDER BY First(FullCatalog.DateStamp) DESC , "
    "First(FullCatalog.ID) DESC;";
constexpr char kNewest[] =
    "SELECT FullCatalog.OrigName AS OrigName, Max(FullCatalog.DateStamp) AS DateStamp, Max(FullCatalog.ID) "
    "AS ID FROM FullCatalog where FullCatalog.Status = 2 GROUP BY FullCatalog.OrigName;";
constexpr char kKey[] = "INTEGER PRIMARY KEY";

class SingleRows : public ::testing::TestWithParam<TestDatabaseKind> {
 protected:
  bool IsPostgres() const { return GetParam().name.starts_with("Postgres"); }

  // A column type for texts that compare without case.
  std::string CaseBlind() const { return IsPostgres() ? "TEXT COLLATE blind" : "TEXT COLLATE NOCASE"; }

  // Creates a catalog whose columns ID, OrigName and SetNames.ID have these types, and its saved queries.
  void Make(const std::string& id, const std::string& name, const std::string& setId) {
    m_database.reset();
    m_workspace = MakeDefaultWorkspace();
    m_test = GetParam().make();
    if (IsPostgres()) {
      m_test->Run(
          "CREATE COLLATION blind (provider = icu, locale = 'und-u-ks-level2', deterministic = false)");
    }
    m_test->Run(
        "CREATE TABLE Catalog (ID " + id + ", OrigName " + name +
        ", DateStamp TEXT, SetNameID INTEGER, Status INTEGER);CREATE TABLE SetNames (ID " + setId +
        ", Name TEXT);INSERT INTO SetNames VALUES (1, 'one'), (2, 'two');INSERT INTO Catalog VALUES (1, "
        "'a.doc', '2026-01-01', 1, 2), (2, 'a.doc', '2026-03-01', 2, 2), (3, 'a.doc', '2026-02-01', 1, 2), "
        "(4, 'b.doc', '2026-02-01', 1, 2), (5, 'c.xls', '2026-02-01', 9, 2), (6, 'c.xls', '2026-02-01', 2, "
        "2), (7, 'c.xls', '2026-05-01', 1, 3), (8, NULL, '2026-06-01', 1, 2), (9, NULL, NULL, 2, 2), (10, "
        "'A.DOC', '2026-01-05', 1, 2), (11, 'dead', '2026-01-05', 1, 3);CREATE VIEW FullCatalog AS SELECT "
        "Catalog.OrigName AS OrigName, Catalog.DateStamp AS DateStamp, Catalog.ID AS ID, Catalog.SetNameID "
        "AS SetNameID, Catalog.Status AS Status, SetNames.Name AS SetName FROM Catalog LEFT JOIN SetNames ON "
        "SetNames.ID = Catalog.SetNameID;");
    m_database = m_workspace->OpenDatabase(m_test->Request());
    m_database->CreateQueryDef("Newest", kNewest);
    m_database->CreateQueryDef("Latest", kLatest);
  }

  Strings Listed(const std::string& conditions, const std::string& columns = "*") {
    const std::string sql = "SELECT " + columns + " from Latest" + conditions;
    const Strings listed = Rows(*m_database, sql);
    EXPECT_EQ(listed, Rows(*m_database, sql, RecordsetType::kDynaset)) << sql;
    return listed;
  }

  void ExpectSameListings() {
    for (const char* conditions :
         {"", " WHERE ((Latest.OrigName Like \"*doc*\") AND (Latest.Status = 2) );",
          " WHERE ((Latest.SetNameID = 2) AND (Latest.OrigName Like \"*.*\") AND (Latest.Status = 2) ) ",
          " WHERE (Latest.OrigName Like \"c*\" OR Latest.SetNameID = 1)", " WHERE Latest.SetName Is Null",
          " WHERE Latest.DateStamp < '2026-02-15' AND Not (Latest.OrigName = 'b.doc')",
          " WHERE Latest.OrigName Is Null", " WHERE Latest.SetName Like \"tw*\"",
          " AS L WHERE L.ID In (3, 6) AND DateStamp <> ''"}) {
      Listed(conditions);
    }
  }

  void ExpectAsked(int groups) {
    odbc::Session session(m_test->Request().connect);
    for (const auto& [name, text] : {std::pair("Newest", kNewest), std::pair("Latest", kLatest)}) {
      odbc::DeleteSavedQuery(session, name);
      odbc::CreateSavedQuery(session, name, text);
    }
    using Use = odbc::Session::Use;
    for (const Use use : {Use::kSnapshot, Use::kDynaset}) {
      const std::string sql =
          session.FindPlan(Sql("SELECT * FROM Latest WHERE Latest.OrigName Like \"a*\" AND Status = 2"), use)
              ->sql.Text();
      int counted = 0;
      for (std::size_t at = 0; (at = sql.find("GROUP BY", at)) != std::string::npos; ++at) ++counted;
      EXPECT_EQ(counted, use == Use::kSnapshot ? groups : 2) << sql;
      const bool inside = std::min(sql.find("~*"), sql.find(" LIKE ")) < sql.rfind("GROUP BY");
      EXPECT_EQ(inside, use == Use::kSnapshot && groups == 1) << sql;
    }
  }

  std::unique_ptr<TestDatabase> m_test;
  std::unique_ptr<Workspace> m_workspace;
  std::unique_ptr<Database> m_database;
};

TEST_P(SingleRows, OneRowPerNameInTheOrderOfTheQuery) {
  Make(kKey, "TEXT", kKey);
  Strings expected = {"c.xls|2026-02-01|6|2|2|two", "b.doc|2026-02-01|4|1|2|one",
                      "A.DOC|2026-01-05|10|1|2|one", "NULL|NULL|9|2|2|two"};
  if (IsPostgres())
    std::rotate(expected.begin(), expected.end() - 1, expected.end());  // PostgreSQL sorts NULL last
  EXPECT_EQ(Listed(""), expected);
  EXPECT_EQ(Listed(" WHERE Latest.OrigName Like \"*doc\"", "Latest.DateStamp, ID AS Number").front(),
            "2026-02-01|4");
  ExpectSameListings();
}

// GROUP BY compares these names without case, though a mask does not.
TEST_P(SingleRows, NamesThatDifferInCaseOnly) {
  if (IsPostgres()) return;  // it has no LIKE for such texts
  Make(kKey, CaseBlind(), kKey);
  EXPECT_EQ(Listed(" WHERE Latest.OrigName Like \"*.doc\"").size(), 2u);
  EXPECT_EQ(Listed(" WHERE Latest.OrigName & '' = 'a.doc'"), Strings{})
      << "the newest is A.DOC, and the older a.doc does not replace it";
  ExpectSameListings();
}

// Each name is listed once, even if a key is missing or a join repeats rows.
TEST_P(SingleRows, NecessaryGroupsStay) {
  Make("INTEGER", "TEXT", kKey);
  m_test->Run(
      "INSERT INTO Catalog VALUES (4, 'b.doc', '2026-02-01', 1, 2), (4, 'e.doc', '2026-02-02', 1, 2)");
  EXPECT_EQ(Listed("").size(), 5u);
  ExpectSameListings();

  for (const bool text : {false, true}) {
    if (text && IsPostgres()) break;  // there a text never equals a number
    Make(kKey, "TEXT", text ? "TEXT PRIMARY KEY" : "INTEGER");
    m_test->Run(std::string("INSERT INTO SetNames VALUES (") + (text ? "'01'" : "1") + ", 'one')");
    EXPECT_EQ(Listed("").size(), 4u);
    ExpectSameListings();
  }
  if (!IsPostgres()) {
    Make(kKey, "TEXT", "INTEGER");
    m_test->Run(
        "DROP TABLE SetNames; CREATE TABLE SetNames (ID INTEGER, Name TEXT, PRIMARY KEY (ID, Name)); "
        "INSERT INTO SetNames VALUES (1, 'one'), (1, 'uno')");
    EXPECT_EQ(Listed("").size(), 4u);
  }

  // The inner query has other groups than the outer one, or none.
  Make(kKey, "TEXT", kKey);
  for (const char* newest :
       {"SELECT Max(FullCatalog.ID) AS ID FROM FullCatalog GROUP BY FullCatalog.SetNameID",
        "SELECT FullCatalog.ID AS ID FROM FullCatalog WHERE FullCatalog.ID In (1, 3, 4)"}) {
    m_database->DeleteQueryDef("Newest");
    m_database->CreateQueryDef("Newest", newest);
    EXPECT_EQ(Listed("").size(), 2u);
  }
}

// The statement for a server depends on the column types. The rows alone do not show whether a group was left
// out.
TEST_P(SingleRows, StatementsForAServer) {
  if (GetParam().name == "Sqlite") return;
  const struct {
    std::string id, name, setId;
    int groups;
  } cases[] = {{kKey, "TEXT", kKey, 1},      {"BIGINT PRIMARY KEY", "VARCHAR(90)", "SMALLINT PRIMARY KEY", 1},
               {kKey, "CHAR(20)", kKey, 1},  {"INTEGER", "TEXT", kKey, 2},
               {kKey, "TEXT", "INTEGER", 2}, {kKey, "TEXT", "NUMERIC(9) PRIMARY KEY", 2}};
  for (const auto& [id, name, setId, groups] : cases) {
    SCOPED_TRACE(id + ", " + name + ", " + setId);
    Make(id, name, setId);
    ExpectAsked(groups);
  }
  Make(kKey, "TEXT", "INTEGER");
  m_test->Run("ALTER TABLE SetNames ADD PRIMARY KEY (ID, Name)");
  ExpectAsked(2);
  Make(kKey, "TEXT", kKey);
  m_test->Run("CREATE TABLE More () INHERITS (Catalog)");
  ExpectAsked(2);
}

// The kinds on which a test can create tables, except the desktop engine, which receives statements
// unchanged.
std::vector<TestDatabaseKind> Kinds() {
  auto kinds = WritableDatabaseKinds();
  std::erase_if(kinds, [](const TestDatabaseKind& kind) { return kind.name == "Dao"; });
  return kinds;
}

INSTANTIATE_TEST_SUITE_P(Engines, SingleRows, ::testing::ValuesIn(Kinds()),
                         [](const auto& kind) { return kind.param.name; });

}  // namespace
}  // namespace kxrestore::engine::testing
