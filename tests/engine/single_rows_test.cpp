// Listings of the latest versions, which are read without the outer groups of their saved query where that
// gives the same rows. A dynaset is always read with them.
#include "tests/engine/test_databases.h"

namespace kxrestore::engine {
namespace {

using testing::Rows;
using Strings = std::vector<std::string>;

constexpr char kBody[] =
    "SELECT FullCatalog.OrigName AS OrigName, Max(FullCatalog.DateStamp) AS DateStamp, First(FullCatalog.ID) "
    "AS ID, First(FullCatalog.SetNameID) AS SetNameID, First(FullCatalog.Status) AS Status, "
    "First(FullCatalog.SetName) AS SetName FROM FullCatalog INNER JOIN Newest ON Newest.ID = FullCatalog.ID ";
constexpr char kGroups[] = "GROUP BY FullCatalog.OrigName ";
constexpr char kOrder[] = "ORDER BY First(FullCatalog.DateStamp) DESC , First(FullCatalog.ID) DESC;";
constexpr char kLive[] = "WHERE FullCatalog.Status = 2 ";

class SingleRows : public ::testing::Test {
 protected:
  // Makes a catalog with these columns of its key, names and sets, and the saved queries over it.
  void Make(const std::string& id, const std::string& name, const std::string& setId) {
    m_database.reset();
    m_test = testing::SqliteKind().Make();
    m_test->Run(
        "CREATE TABLE Catalog (ID " + id + ", OrigName " + name +
        ", DateStamp TEXT, SetNameID INTEGER, Status INTEGER);"
        "CREATE TABLE SetNames (ID " +
        setId +
        ", Name TEXT);"
        "INSERT INTO SetNames VALUES (1, 'one'), (2, 'two');"
        "INSERT INTO Catalog VALUES (1, 'a.doc', '2026-01-01', 1, 2), (2, 'a.doc', '2026-03-01', 2, 2),"
        " (3, 'a.doc', '2026-02-01', 1, 2), (4, 'b.doc', '2026-02-01', 1, 2),"
        " (5, 'c.xls', '2026-02-01', 9, 2), (6, 'c.xls', '2026-02-01', 2, 2),"
        " (7, 'c.xls', '2026-05-01', 1, 3), (8, NULL, '2026-06-01', 1, 2), (9, NULL, NULL, 2, 2),"
        " (10, 'A.DOC', '2026-01-05', 1, 2), (11, 'dead', '2026-01-05', 1, 3);"
        "CREATE VIEW FullCatalog AS SELECT Catalog.OrigName AS OrigName, Catalog.DateStamp AS DateStamp,"
        " Catalog.ID AS ID, Catalog.SetNameID AS SetNameID, Catalog.Status AS Status, SetNames.Name AS"
        " SetName FROM Catalog LEFT JOIN SetNames ON SetNames.ID = Catalog.SetNameID;");
    m_database = m_workspace->OpenDatabase(m_test->Request());
    m_database->CreateQueryDef(
        "Newest",
        "SELECT FullCatalog.OrigName AS OrigName, Max(FullCatalog.DateStamp) AS DateStamp, "
        "Max(FullCatalog.ID) AS ID FROM FullCatalog where FullCatalog.Status = 2 GROUP BY "
        "FullCatalog.OrigName;");
    m_database->CreateQueryDef("Latest", std::string(kBody) + kLive + kGroups + kOrder);
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
          " WHERE Latest.OrigName Is Null", " AS L WHERE L.ID In (3, 6) AND DateStamp <> ''"}) {
      Listed(conditions);
    }
  }

  std::unique_ptr<testing::TestDatabase> m_test;
  std::unique_ptr<Workspace> m_workspace = MakeDefaultWorkspace();
  std::unique_ptr<Database> m_database;
};

TEST_F(SingleRows, OneRowANameInTheOrderOfTheQuery) {
  Make("INTEGER PRIMARY KEY", "TEXT", "INTEGER PRIMARY KEY");
  EXPECT_EQ(Listed(""),
            (Strings{"c.xls|2026-02-01|6|2|2|two", "b.doc|2026-02-01|4|1|2|one", "a.doc|2026-02-01|3|1|2|one",
                     "A.DOC|2026-01-05|10|1|2|one", "NULL|NULL|9|2|2|two"}));
  EXPECT_EQ(Listed(" WHERE Latest.OrigName Like \"*doc\"", "Latest.DateStamp, ID AS Number").front(),
            "2026-02-01|4");
  ExpectSameListings();
}

// The names are the same to the grouping though not to a mask.
TEST_F(SingleRows, NamesThatDifferInCaseOnly) {
  Make("INTEGER PRIMARY KEY", "TEXT COLLATE NOCASE", "INTEGER PRIMARY KEY");
  EXPECT_EQ(Listed(" WHERE Latest.OrigName Like \"*.doc\"").size(), 2u);
  EXPECT_EQ(Listed(" WHERE Latest.OrigName & '' = 'a.doc'"), Strings{})
      << "the newest is A.DOC, and an older one does not take its place";
  ExpectSameListings();
}

// Rows that a key or a join does not keep single still come out once a name.
TEST_F(SingleRows, GroupsThatAreNeededStay) {
  Make("INTEGER", "TEXT", "INTEGER PRIMARY KEY");
  m_test->Run(
      "INSERT INTO Catalog VALUES (4, 'b.doc', '2026-02-01', 1, 2), (4, 'e.doc', '2026-02-02', 1, 2)");
  EXPECT_EQ(Listed("").size(), 6u);
  ExpectSameListings();

  Make("INTEGER PRIMARY KEY", "TEXT", "INTEGER");
  m_test->Run("INSERT INTO SetNames VALUES (1, 'one')");
  EXPECT_EQ(Listed("").size(), 5u);
  ExpectSameListings();

  // The groups of the two queries are not the same.
  Make("INTEGER PRIMARY KEY", "TEXT", "INTEGER PRIMARY KEY");
  m_database->DeleteQueryDef("Newest");
  m_database->CreateQueryDef(
      "Newest", "SELECT Max(FullCatalog.ID) AS ID FROM FullCatalog GROUP BY FullCatalog.SetNameID");
  Listed("");
  m_database->DeleteQueryDef("Newest");
  m_database->CreateQueryDef(
      "Newest", "SELECT FullCatalog.ID AS ID FROM FullCatalog WHERE FullCatalog.ID In (1, 3, 4)");
  EXPECT_EQ(Listed("").size(), 2u);
}

}  // namespace
}  // namespace kxrestore::engine
