// The exact texts of the saved queries and of the listing, and the order in which they are made.
#include "catalog/restore_query.h"

#include <gtest/gtest.h>

#include "tests/catalog/recording_database.h"

namespace kxrestore::catalog {
namespace {

using catalog_test::RecordingDatabase;
using catalog_test::Script;
using Calls = std::vector<std::string>;

constexpr char kFullCatalogText[] = "SELECT Catalog.* FROM Catalog;";

class RestoreQuery : public ::testing::Test {
 protected:
  std::string Listing(std::int32_t setId, bool latest, std::string_view mask, std::string_view ext) {
    m_script->calls.clear();
    BuildRestoreQuery(m_database, setId, latest, mask, ext);
    return m_script->calls.back();
  }
  int ErrorOf(std::int32_t setId, bool latest) {
    try {
      BuildRestoreQuery(m_database, setId, latest, "a", "");
      return 0;
    } catch (const Error& error) {
      return error.Number();
    }
  }

  std::shared_ptr<Script> m_script =
      std::make_shared<Script>(Script{.queries = {{"FullCatalog", kFullCatalogText}}});
  RecordingDatabase m_database{m_script};
};

TEST_F(RestoreQuery, LatestQueriesAreMadeAnew) {
  m_script->queries["qryGetLatest"] = "something old";
  CreateLatestQueries(m_database);
  EXPECT_EQ(m_script->calls, (Calls{"delete qryGetLatestBySet", "create qryGetLatestBySet",
                                    "delete qryGetLatest", "create qryGetLatest"}));
  EXPECT_EQ(m_script->queries["qryGetLatestBySet"],
            "SELECT FullCatalogBySet.OrigName AS OrigName, Max(FullCatalogBySet.DateStamp) AS DateStamp, "
            "Max(FullCatalogBySet.ID) AS ID From FullCatalogBySet where FullCatalogBySet.Status = 2 GROUP BY "
            "FullCatalogBySet.OrigName;");
  EXPECT_EQ(
      m_script->queries["qryGetLatest"],
      "SELECT FullCatalog.OrigName AS OrigName, Max(FullCatalog.DateStamp) AS DateStamp, Max(FullCatalog.ID) "
      "AS ID FROM FullCatalog where FullCatalog.Status = 2 GROUP BY FullCatalog.OrigName;");
}

TEST_F(RestoreQuery, LatestQueriesEndWithoutAWordAtAnyOtherError) {
  m_script->failures = {{"delete qryGetLatestBySet", engine::error_number::kReadOnly}};
  CreateLatestQueries(m_database);
  EXPECT_EQ(m_script->calls, Calls{"delete qryGetLatestBySet"});
  // A listing that does not need them still works.
  EXPECT_EQ(Listing(3, false, "", ""),
            "open 4 SELECT FullCatalog.* from FullCatalog WHERE ((FullCatalog.SetNameID = 3) AND "
            "(FullCatalog.Status = 2) ) ");
}

TEST_F(RestoreQuery, ListingOfAllVersions) {
  EXPECT_EQ(Listing(7, false, "a", "= '003'"),
            "open 4 SELECT FullCatalog.* from FullCatalog WHERE ((FullCatalog.SetNameID = 7) AND "
            "(FullCatalog.Extension = '003') AND (FullCatalog.OrigName Like \"*a*\") AND (FullCatalog.Status "
            "= 2) ) ");
  EXPECT_EQ(Listing(-7, false, "a", ""),
            "open 4 SELECT FullCatalog.* from FullCatalog WHERE ((FullCatalog.SetNameID = -7) AND "
            "(FullCatalog.OrigName Like \"*a*\") AND (FullCatalog.Status = 2) ) ");
  EXPECT_EQ(Listing(7, false, "", "In (\"003\", \"002\")"),
            "open 4 SELECT FullCatalog.* from FullCatalog WHERE ((FullCatalog.SetNameID = 7) AND "
            "(FullCatalog.Extension In (\"003\", \"002\")) AND (FullCatalog.Status = 2) ) ");
  EXPECT_EQ(Listing(0, false, "*.doc", "= '003'"),
            "open 4 SELECT * from FullCatalog WHERE ((FullCatalog.OrigName Like \"**.doc*\") AND "
            "(FullCatalog.Status = 2) );");
  EXPECT_EQ(Listing(0, false, "", "= '003'"),
            "open 4 SELECT FullCatalog.* from FullCatalog (FullCatalog.Status = 2) ");
}

TEST_F(RestoreQuery, LatestOfASet) {
  EXPECT_EQ(Listing(7, true, "a", ""),
            "open 4 SELECT FullCatalogLatestBySet.* from FullCatalogLatestBySet WHERE "
            "((FullCatalogLatestBySet.SetNameID = 7) AND (FullCatalogLatestBySet.OrigName Like \"*a*\") AND "
            "(FullCatalogLatestBySet.Status = 2) ) ");
  EXPECT_EQ(m_script->calls.size(), 9u);
  EXPECT_EQ(Calls(m_script->calls.begin() + 4, m_script->calls.begin() + 8),
            (Calls{"delete FullCatalogBySet", "create FullCatalogBySet", "delete FullCatalogLatestBySet",
                   "create FullCatalogLatestBySet"}));
  EXPECT_EQ(
      m_script->queries["FullCatalogLatestBySet"],
      "SELECT FullCatalogBySet.OrigName AS OrigName, Max(FullCatalogBySet.DateStamp) AS DateStamp, "
      "First(FullCatalogBySet.ID) AS ID, First(FullCatalogBySet.SetNameID) AS SetNameID, "
      "First(FullCatalogBySet.Extension) AS Extension, First(FullCatalogBySet.OrigSize) AS OrigSize, "
      "First(FullCatalogBySet.File) AS File, First(FullCatalogBySet.Restore) AS Restore, "
      "First(FullCatalogBySet.Status) AS Status, First(FullCatalogBySet.Attributes) AS Attributes, "
      "First(FullCatalogBySet.Filename) AS Filename, First(FullCatalogBySet.StoreMethod) AS StoreMethod, "
      "First(FullCatalogBySet.StoreName) AS StoreName, First(FullCatalogBySet.LongPathID) AS LongPathID, "
      "First(FullCatalogBySet.SetName) AS SetName, First(FullCatalogBySet.Plugin) AS Plugin, "
      "First(FullCatalogBySet.SubFolder) AS SubFolder, First(FullCatalogBySet.EncryptMethod) AS "
      "EncryptMethod "
      "From FullCatalogBySet INNER JOIN qryGetLatestBySet ON FullCatalogBySet.ID = qryGetLatestBySet.ID "
      "WHERE "
      "FullCatalogBySet.Status = 2 GROUP BY FullCatalogBySet.OrigName ORDER BY "
      "First(FullCatalogBySet.DateStamp) "
      "DESC;");
}

TEST_F(RestoreQuery, BySetTextTakesThePlaceOfTheEndOfFullCatalog) {
  const auto bySet = [&](std::string fullCatalog, std::string_view ext) {
    m_script->queries["FullCatalog"] = std::move(fullCatalog);
    Listing(7, true, "a", ext);
    return m_script->queries["FullCatalogBySet"];
  };
  EXPECT_EQ(bySet("SELECT x;", ""), "SELECT x WHERE Catalog.SetNameID = 7 ");
  EXPECT_EQ(bySet("SELECT x;\r\n-- made by y;", ""), "SELECT x WHERE Catalog.SetNameID = 7 ");
  EXPECT_EQ(bySet("SELECT xy", ""), "SELECT x WHERE Catalog.SetNameID = 7 ");
  EXPECT_EQ(bySet("SELECT x;", "= '003'"), "SELECT x WHERE Catalog.Extension = '003' ");
  EXPECT_EQ(bySet(";", ""), " WHERE Catalog.SetNameID = 7 ");
  EXPECT_EQ(bySet("", ""), " WHERE Catalog.SetNameID = 7 ");
}

TEST_F(RestoreQuery, LatestOfAllSets) {
  EXPECT_EQ(Listing(0, true, "a", ""),
            "open 4 SELECT * from FullCatalogLatest WHERE ((FullCatalogLatest.OrigName Like \"*a*\") AND "
            "(FullCatalogLatest.Status = 2) );");
  EXPECT_EQ(Calls(m_script->calls.begin() + 4, m_script->calls.end() - 1),
            (Calls{"delete FullCatalogLatest", "create FullCatalogLatest"}));
  EXPECT_EQ(
      m_script->queries["FullCatalogLatest"],
      "SELECT FullCatalog.OrigName AS OrigName, Max(FullCatalog.DateStamp) AS DateStamp, "
      "First(FullCatalog.ID) AS "
      "ID, First(FullCatalog.SetNameID) AS SetNameID, First(FullCatalog.Extension) AS Extension, "
      "First(FullCatalog.File) AS File, First(FullCatalog.Restore) AS Restore, First(FullCatalog.OrigSize) "
      "AS "
      "OrigSize, First(FullCatalog.Status) AS Status, First(FullCatalog.Attributes) AS Attributes, "
      "First(FullCatalog.Filename) AS Filename, First(FullCatalog.StoreMethod) AS StoreMethod, "
      "First(FullCatalog.StoreName) AS StoreName, First(FullCatalog.LongPathID) AS LongPathID, "
      "First(FullCatalog.SetName) AS SetName, First(FullCatalog.SubFolder) AS SubFolder, "
      "First(FullCatalog.Plugin) AS Plugin, First(FullCatalog.EncryptMethod) AS EncryptMethod FROM "
      "FullCatalog "
      "INNER JOIN qryGetLatest ON qryGetLatest.ID = FullCatalog.ID WHERE FullCatalog.Status = 2 GROUP BY "
      "FullCatalog.OrigName ORDER BY First(FullCatalog.DateStamp) DESC , First(FullCatalog.ID) DESC;");
}

TEST_F(RestoreQuery, ADoubleQuoteStaysInsideTheMask) {
  EXPECT_EQ(
      Listing(0, false, "\" Or \"\"=\"", ""),
      "open 4 SELECT * from FullCatalog WHERE ((FullCatalog.OrigName Like \"*\"\" Or \"\"\"\"=\"\"*\") AND "
      "(FullCatalog.Status = 2) );");
}

TEST_F(RestoreQuery, ErrorsThatCount) {
  // A deletion that fails is passed over, the creation after it is not.
  m_script->failures = {{"delete FullCatalog", engine::error_number::kFileInUse}};
  EXPECT_EQ(ErrorOf(7, true), 0);
  EXPECT_EQ(ErrorOf(0, true), 0);
  m_script->failures = {{"create FullCatalogLatest", engine::error_number::kReadOnly}};
  EXPECT_EQ(ErrorOf(7, true), engine::error_number::kReadOnly);
  EXPECT_EQ(ErrorOf(0, true), engine::error_number::kReadOnly);
  m_script->failures = {{"open", engine::error_number::kOdbcFailed}};
  EXPECT_EQ(ErrorOf(7, false), engine::error_number::kOdbcFailed);

  m_script->failures.clear();
  m_script->queries.erase("FullCatalog");
  EXPECT_EQ(ErrorOf(7, true), engine::error_number::kItemNotFound);
}

}  // namespace
}  // namespace kxrestore::catalog
