#include "tests/engine/test_databases.h"

namespace kxrestore::engine {
namespace {

using testing::ExpectError;
using testing::Rows;
using SavedQueryConformance = testing::ConformanceTest;

TEST_P(SavedQueryConformance, LivesAndDies) {
  ExpectError(error_number::kItemNotFound, "Mine", [&] { m_database->QueryText("Mine"); });
  ExpectError(error_number::kItemNotFound, "Mine", [&] { m_database->DeleteQueryDef("Mine"); });
  ExpectError(error_number::kItemNotFound, "Catalog", [&] { m_database->DeleteQueryDef("Catalog"); });
  m_database->CreateQueryDef(
      "Mine", "SELECT ID, IIf(IsNull([Plugin]),'none',[Plugin]) AS P FROM Catalog WHERE ID In (4, 7);");
  ExpectError(error_number::kObjectExists, "mine",
              [&] { m_database->CreateQueryDef("mine", "SELECT ID FROM Catalog"); });
  ExpectError(error_number::kObjectExists, "Catalog",
              [&] { m_database->CreateQueryDef("Catalog", "SELECT 1"); });
  EXPECT_EQ(Rows(*m_database, "SELECT P FROM Mine ORDER BY ID"),
            (std::vector<std::string>{"none", "Exchange Server"}));
  EXPECT_EQ(m_database->QueryText("MINE").back(), ';');
  EXPECT_EQ(m_test->Ask("SELECT P FROM Mine ORDER BY ID"), "none") << "other programs can read it";
  // The text that is handed back makes the same query again.
  const std::string text = m_database->QueryText("Mine");
  m_database->DeleteQueryDef("mINE");
  ExpectError(error_number::kTableNotFound, "Mine",
              [&] { Rows(*m_database, "SELECT P FROM Mine ORDER BY ID"); });
  m_database->CreateQueryDef("Mine", text);
  EXPECT_EQ(m_database->QueryText("Mine"), text);
  EXPECT_EQ(Rows(*m_database, "Mine").size(), 2u);
}

TEST_P(SavedQueryConformance, RefusesTexts) {
  ExpectError(error_number::kSyntax, "FROM", [&] { m_database->CreateQueryDef("q", "SELECT FROM Catalog"); });
  ExpectError(error_number::kTextAfterEnd, "DELETE",
              [&] { m_database->CreateQueryDef("q", "SELECT ID FROM Catalog; DELETE FROM Catalog"); });
  ExpectError(error_number::kInvalidOperation, "DELETE",
              [&] { m_database->CreateQueryDef("q", "DELETE FROM Catalog"); });
  m_database->CreateQueryDef("odd ]\"name's", "SELECT ID FROM Catalog");
  m_database->DeleteQueryDef("odd ]\"name's");
  m_database->CreateQueryDef("later", "SELECT x FROM NotThereYet");
  ExpectError(error_number::kTableNotFound, "NotThereYet", [&] { Rows(*m_database, "later"); });
}

TEST_P(SavedQueryConformance, ReadsTextsOfOtherPrograms) {
  m_test->Run(
      "CREATE VIEW \"Odd One\" AS -- the files\n  SELECT \"Catalog\".\"ID\" AS \"Order\", /* x */ Name FROM "
      "\"Catalog\" LEFT OUTER JOIN SetNames ON SetNames.ID = Catalog.SetNameID WHERE Filename LIKE "
      "'%:__.doc'");
  const std::string text = m_database->QueryText("odd one");
  EXPECT_EQ(text.substr(0, 6), "SELECT");
  EXPECT_EQ(text.find('"'), std::string::npos) << text;
  EXPECT_EQ(text.find("files"), std::string::npos) << text;
  m_database->CreateQueryDef("Again", text);
  EXPECT_EQ(Rows(*m_database, "Again"), Rows(*m_database, "Odd One"));
  EXPECT_EQ(Rows(*m_database, "SELECT [Order] FROM Again ORDER BY [Order]"),
            (std::vector<std::string>{"1", "2"}));
  m_test->Run("CREATE VIEW Named (A, \"B c\") AS SELECT ID, Name FROM SetNames;");
  m_database->CreateQueryDef("NamedAgain", m_database->QueryText("Named"));
  EXPECT_EQ(Rows(*m_database, "SELECT [B c] FROM NamedAgain WHERE A = 3"),
            (std::vector<std::string>{"Archive"}));
}

TEST_P(SavedQueryConformance, ChangesOfOthersAreSeen) {
  if (!GetParam()->NoticesViewsOfOthers()) return;
  m_workspace->BeginAction();
  const auto database = m_workspace->OpenDatabase(m_test->Request());
  m_database->CreateQueryDef("Changing", "SELECT ID FROM SetNames");
  EXPECT_EQ(Rows(*database, "SELECT * FROM Changing").front(), "1");
  m_database->DeleteQueryDef("Changing");
  m_database->CreateQueryDef("Changing", "SELECT ID, Name FROM SetNames");
  EXPECT_EQ(Rows(*database, "SELECT * FROM Changing").front(), "1|Office");
  m_workspace->EndAction();
}

KX_CONFORMANCE(SavedQueryConformance);

}  // namespace
}  // namespace kxrestore::engine
