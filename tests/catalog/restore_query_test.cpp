// The exact texts of the saved queries and of the listing, and the order in which they are made.
#include "catalog/restore_query.h"

#include <gtest/gtest.h>

#include "tests/catalog/recording_database.h"
#include "tests/raises.h"

namespace kxrestore::catalog {
namespace {

using catalog_test::RecordingDatabase;
using catalog_test::Script;
using Calls = std::vector<std::string>;

// How the queries of the latest versions begin.
std::string Start(const std::string& table, std::initializer_list<const char*> columns) {
  std::string text = "SELECT " + table + ".OrigName AS OrigName, Max(" + table +
                     ".DateStamp) AS DateStamp, First(" + table + ".ID) AS ID";
  for (const std::string column : columns) text += ", First(" + table + "." + column + ") AS " + column;
  return text;
}

class RestoreQuery : public ::testing::Test {
 protected:
  // The statement that lists.
  std::string Listing(std::int32_t setId, bool latest, std::string_view mask, std::string_view ext) {
    m_script->calls.clear();
    static_cast<void>(BuildRestoreQuery(m_database, setId, latest, mask, ext));
    EXPECT_TRUE(m_script->calls.back().starts_with("open 4 "));
    return m_script->calls.back().substr(7);
  }

  std::shared_ptr<Script> m_script =
      std::make_shared<Script>(Script{.queries = {{"FullCatalog", "SELECT Catalog.* FROM Catalog;"}}});
  RecordingDatabase m_database{m_script};
};

TEST_F(RestoreQuery, Listings) {
  const struct {
    std::int32_t setId;
    bool latest;
    const char *mask, *ext, *expected;
  } cases[] = {
      {7, false, "a", "= '003'",
       "SELECT FullCatalog.* from FullCatalog WHERE ((FullCatalog.SetNameID = 7) AND (FullCatalog.Extension "
       "= '003') AND (FullCatalog.OrigName Like \"*a*\") AND (FullCatalog.Status = 2) ) "},
      {-7, false, "a", "",
       "SELECT FullCatalog.* from FullCatalog WHERE ((FullCatalog.SetNameID = -7) AND (FullCatalog.OrigName "
       "Like \"*a*\") AND (FullCatalog.Status = 2) ) "},
      {7, false, "", "In (\"003\", \"002\")",
       "SELECT FullCatalog.* from FullCatalog WHERE ((FullCatalog.SetNameID = 7) AND (FullCatalog.Extension "
       "In (\"003\", \"002\")) AND (FullCatalog.Status = 2) ) "},
      {0, false, "*.doc", "= '003'",
       "SELECT * from FullCatalog WHERE ((FullCatalog.OrigName Like \"**.doc*\") AND (FullCatalog.Status = "
       "2) );"},
      {0, false, "", "= '003'", "SELECT FullCatalog.* from FullCatalog (FullCatalog.Status = 2) "},
      {0, false, "\" Or \"\"=\"", "",
       "SELECT * from FullCatalog WHERE ((FullCatalog.OrigName Like \"*\"\" Or \"\"\"\"=\"\"*\") AND "
       "(FullCatalog.Status = 2) );"},
      {7, true, "a", "",
       "SELECT FullCatalogLatestBySet.* from FullCatalogLatestBySet WHERE ((FullCatalogLatestBySet.SetNameID "
       "= 7) AND (FullCatalogLatestBySet.OrigName Like \"*a*\") AND (FullCatalogLatestBySet.Status = 2) ) "},
      {0, true, "a", "",
       "SELECT * from FullCatalogLatest WHERE ((FullCatalogLatest.OrigName Like \"*a*\") AND "
       "(FullCatalogLatest.Status = 2) );"}};
  for (const auto& [setId, latest, mask, ext, expected] : cases) {
    EXPECT_EQ(Listing(setId, latest, mask, ext), expected);
  }
}

TEST_F(RestoreQuery, SavedQueriesAreMadeAnewInTheirOrder) {
  m_script->queries["qryGetLatest"] = "something old";
  Listing(0, true, "a", "");
  const Calls ofAll = {"delete qryGetLatestBySet", "create qryGetLatestBySet", "delete qryGetLatest",
                       "create qryGetLatest",      "delete FullCatalogLatest", "create FullCatalogLatest"};
  EXPECT_EQ(Calls(m_script->calls.begin(), m_script->calls.end() - 1), ofAll);
  Listing(7, true, "a", "");
  EXPECT_EQ(Calls(m_script->calls.begin() + 4, m_script->calls.end() - 1),
            (Calls{"delete FullCatalogBySet", "create FullCatalogBySet", "delete FullCatalogLatestBySet",
                   "create FullCatalogLatestBySet"}));
  const std::pair<const char*, std::string> texts[] = {
      {"qryGetLatestBySet",
       "SELECT FullCatalogBySet.OrigName AS OrigName, Max(FullCatalogBySet.DateStamp) AS DateStamp, "
       "Max(FullCatalogBySet.ID) AS ID From FullCatalogBySet where FullCatalogBySet.Status = 2 GROUP BY "
       "FullCatalogBySet.OrigName;"},
      {"qryGetLatest",
       "SELECT FullCatalog.OrigName AS OrigName, Max(FullCatalog.DateStamp) AS DateStamp, "
       "Max(FullCatalog.ID) AS ID FROM FullCatalog where FullCatalog.Status = 2 GROUP BY "
       "FullCatalog.OrigName;"},
      {"FullCatalogLatestBySet",
       Start("FullCatalogBySet",
             {"SetNameID", "Extension", "OrigSize", "File", "Restore", "Status", "Attributes", "Filename",
              "StoreMethod", "StoreName", "LongPathID", "SetName", "Plugin", "SubFolder", "EncryptMethod"}) +
           " From FullCatalogBySet INNER JOIN qryGetLatestBySet ON FullCatalogBySet.ID = "
           "qryGetLatestBySet.ID WHERE FullCatalogBySet.Status = 2 GROUP BY FullCatalogBySet.OrigName ORDER "
           "BY First(FullCatalogBySet.DateStamp) DESC;"},
      {"FullCatalogLatest",
       Start("FullCatalog",
             {"SetNameID", "Extension", "File", "Restore", "OrigSize", "Status", "Attributes", "Filename",
              "StoreMethod", "StoreName", "LongPathID", "SetName", "SubFolder", "Plugin", "EncryptMethod"}) +
           " FROM FullCatalog INNER JOIN qryGetLatest ON qryGetLatest.ID = FullCatalog.ID WHERE "
           "FullCatalog.Status = 2 GROUP BY FullCatalog.OrigName ORDER BY First(FullCatalog.DateStamp) DESC "
           ", First(FullCatalog.ID) DESC;"}};
  for (const auto& [name, text] : texts) EXPECT_EQ(m_script->queries[name], text);
}

TEST_F(RestoreQuery, BySetTextTakesThePlaceOfTheEndOfFullCatalog) {
  const std::string set = "Catalog.SetNameID = 7 ";
  const std::pair<const char*, std::string> cases[] = {
      {"SELECT x;", "SELECT x WHERE " + set},
      {"SELECT x;\r\n-- made by y;", "SELECT x WHERE " + set},
      {"SELECT xy", "SELECT x WHERE " + set},
      {"SELECT xä", "SELECT x WHERE " + set},
      {";", " WHERE " + set},
      {"", " WHERE " + set}};
  for (const auto& [full, bySet] : cases) {
    m_script->queries["FullCatalog"] = full;
    Listing(7, true, "a", "");
    EXPECT_EQ(m_script->queries["FullCatalogBySet"], bySet);
  }
  m_script->queries["FullCatalog"] = "SELECT x;";
  Listing(7, true, "a", "= '003'");
  EXPECT_EQ(m_script->queries["FullCatalogBySet"], "SELECT x WHERE Catalog.Extension = '003' ");
}

TEST_F(RestoreQuery, ErrorsThatCount) {
  // A deletion that fails is passed over, the creation after it is not.
  m_script->failures = {{"delete FullCatalog", engine::error_number::kFileInUse}};
  EXPECT_RAISES(0, Listing(7, true, "a", ""));
  EXPECT_RAISES(0, Listing(0, true, "a", ""));
  m_script->failures = {{"create FullCatalogLatest", engine::error_number::kReadOnly}};
  EXPECT_RAISES(engine::error_number::kReadOnly, Listing(7, true, "a", ""));
  EXPECT_RAISES(engine::error_number::kReadOnly, Listing(0, true, "a", ""));
  // The queries of the latest versions end without a word; a listing that does not need them still works.
  m_script->failures = {{"delete qryGetLatestBySet", engine::error_number::kReadOnly}};
  Listing(3, false, "", "");
  EXPECT_EQ(m_script->calls.size(), 2u);
  m_script->failures = {{"open", engine::error_number::kOdbcFailed}};
  EXPECT_RAISES(engine::error_number::kOdbcFailed, Listing(7, false, "a", ""));
  m_script->failures.clear();
  m_script->queries.erase("FullCatalog");
  EXPECT_RAISES(engine::error_number::kItemNotFound, Listing(7, true, "a", ""));
}

}  // namespace
}  // namespace kxrestore::catalog
