// The exact texts of the saved queries and of the listing, and the order in which the queries are created.
#include "catalog/restore_query.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tests/catalog/recording_database.h"
#include "tests/engine/cases.h"
#include "tests/raises.h"

namespace kxrestore::catalog {
namespace {

using catalog_test::RecordingDatabase;
using catalog_test::Script;
using engine::testing::ReadCases;
using Calls = std::vector<std::string>;

class RestoreQuery : public ::testing::Test {
 protected:
  // The statement of the listing.
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
  // Set, "all" or "latest", mask and restriction of the runs, separated by "|".
  for (const auto& [text, expected] : ReadCases("restore_queries.txt", "listings")) {
    std::istringstream parts(text);
    std::string set, versions, mask, ext;
    for (std::string* part : {&set, &versions, &mask, &ext}) std::getline(parts, *part, '|');
    EXPECT_EQ(Listing(std::stoi(set), versions == "latest", mask, ext), expected.at(0));
  }
}

TEST_F(RestoreQuery, SavedQueriesAreReplacedInOrder) {
  m_script->queries["qryGetLatest"] = "something old";
  Listing(0, true, "a", "");
  const Calls ofAll = {"delete qryGetLatestBySet", "create qryGetLatestBySet", "delete qryGetLatest",
                       "create qryGetLatest",      "delete FullCatalogLatest", "create FullCatalogLatest"};
  EXPECT_EQ(Calls(m_script->calls.begin(), m_script->calls.end() - 1), ofAll);
  Listing(7, true, "a", "");
  EXPECT_EQ(Calls(m_script->calls.begin() + 4, m_script->calls.end() - 1),
            (Calls{"delete FullCatalogBySet", "create FullCatalogBySet", "delete FullCatalogLatestBySet",
                   "create FullCatalogLatestBySet"}));
  for (const auto& [name, text] : ReadCases("restore_queries.txt", "saved queries")) {
    EXPECT_EQ(m_script->queries[name], text.at(0));
  }
}

TEST_F(RestoreQuery, BySetTextReplacesTheEndOfFullCatalog) {
  for (const auto& [full, expected] : {std::pair("SELECT x;", "SELECT x"),
                                       {"SELECT x;\r\n-- made by y;", "SELECT x"},
                                       {"SELECT xy", "SELECT x"},
                                       {"SELECT xä", "SELECT x"},
                                       {";", ""},
                                       {"", ""}}) {
    m_script->queries["FullCatalog"] = full;
    Listing(7, true, "a", "");
    EXPECT_EQ(m_script->queries["FullCatalogBySet"], expected + std::string(" WHERE Catalog.SetNameID = 7 "));
  }
  m_script->queries["FullCatalog"] = "SELECT x;";
  Listing(7, true, "a", "= '003'");
  EXPECT_EQ(m_script->queries["FullCatalogBySet"], "SELECT x WHERE Catalog.Extension = '003' ");
}

TEST_F(RestoreQuery, ErrorsThatAreRaised) {
  // An error of a deletion is ignored, an error of the creation after it is raised.
  m_script->failures = {{"delete FullCatalog", engine::error_number::kFileInUse}};
  EXPECT_RAISES(0, Listing(7, true, "a", ""));
  EXPECT_RAISES(0, Listing(0, true, "a", ""));
  m_script->failures = {{"create FullCatalogLatest", engine::error_number::kReadOnly}};
  EXPECT_RAISES(engine::error_number::kReadOnly, Listing(7, true, "a", ""));
  EXPECT_RAISES(engine::error_number::kReadOnly, Listing(0, true, "a", ""));
  // An error in a query of the latest versions is not reported if the listing does not need the query.
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
