// Catalogs on a server: failures to log on, missing rights, errors of the server, its types, and results that
// arrive in blocks.
#include <cstdlib>

#include "engine/jet_sql/printing/server_dialects.h"
#include "engine/odbc/odbc_session.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::engine::testing {
namespace {

class OdbcServer : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!HasTestServer()) {
      GTEST_SKIP() << "no server: scripts/test_server.sh starts one and sets KX_TEST_SERVER";
    }
    m_test = MakePostgres(Spelling::kFolded);
    m_test->Run(CatalogSchema() + CatalogRows());
    m_connect = m_test->Request().connect;
  }

  std::unique_ptr<Database> Open() { return m_workspace->OpenDatabase(m_test->Request()); }
  std::string AsUser(const std::string& user, const std::string& password = "restore") const {
    const std::size_t start = m_connect.find("DATABASE=") + 9;
    return ServerConnect(m_connect.substr(start, m_connect.find(';', start) - start), user, password);
  }

  std::unique_ptr<TestDatabase> m_test;
  std::unique_ptr<Workspace> m_workspace = MakeDefaultWorkspace();
  std::string m_connect;
};

TEST_F(OdbcServer, WhoCannotLogOn) {
  const std::string other = ";DATABASE=x;UID=u;PWD=wr0ng-secret;SERVER=";
  for (const auto& [piece, connect] :
       {std::pair("authentication failed", AsUser("kx_user", "wr0ng-secret")),
        std::pair("nowhere.invalid", "ODBC;DRIVER={sql server}" + other + "nowhere.invalid"),
        std::pair("127.0.0.1", "ODBC;DRIVER={sql server}" + other + "127.0.0.1;PORT=1"),
        std::pair("No such driver", "ODBC;DRIVER={No such driver}" + other + "No such driver")}) {
    try {
      m_workspace->OpenDatabase({.connect = connect});
      ADD_FAILURE() << "logged on with " << connect;
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), error_number::kOdbcConnectionFailed);
      EXPECT_NE(error.Description().find(piece), std::string::npos) << error.Description();
      EXPECT_EQ(error.Description().find("wr0ng-secret"), std::string::npos) << error.Description();
    }
  }
}

TEST_F(OdbcServer, ServersOfOtherKindsAreRefused) {
  ExpectError(error_number::kOdbcFailed, "'SQLite'",
              [&] { m_workspace->OpenDatabase({.connect = "ODBC;DRIVER={SQLite3};Database=:memory:"}); });
}

// The sort key for servers without a suitable collation.
TEST_F(OdbcServer, PlainLettersToSortBy) {
  using jet_sql::PostgresDialect;
  const PostgresDialect dialect(PostgresDialect::Order::kPlainLetters, false);
  EXPECT_EQ(m_test->Ask("SELECT string_agg(n, ' ' ORDER BY " +
                        dialect.SortKey("n", jet_sql::ValueKind::kText).Text() +
                        ", k) FROM (VALUES ('Zoo', 1), ('Ärzte', 1), ('ARZT', 2), ('arzt', 1)) AS v (n, k)"),
            "arzt ARZT Ärzte Zoo");
}

TEST_F(OdbcServer, MissingRights) {
  odbc::Session owner(m_connect);
  odbc::Session administrator(AsUser(ServerSetting("KX_TEST_ADMIN")));
  administrator.RunSchemaChange({"DROP ROLE IF EXISTS kx_guest",
                                 "CREATE ROLE kx_guest LOGIN PASSWORD 'restore'",
                                 "GRANT USAGE ON SCHEMA public TO kx_guest"});
  owner.RunSchemaChange({"GRANT SELECT ON setnames, fullcatalog, catalog TO kx_guest"});
  Open()->CreateQueryDef("FullCatalogBySet", "SELECT ID FROM Catalog;");
  const auto database = m_workspace->OpenDatabase({.connect = AsUser("kx_guest")});
  EXPECT_EQ(Rows(*database, "SetNames").size(), 3u);
  ExpectError(error_number::kOdbcFailed, "permission denied for table longpaths",
              [&] { Rows(*database, "LongPaths"); });
  ExpectError(error_number::kOdbcFailed, "permission denied", [&] { Mark(*database, 1); });
  ExpectError(error_number::kOdbcFailed, "permission denied for schema public",
              [&] { database->CreateQueryDef("Mine", "SELECT ID FROM Catalog;"); });
  ExpectError(error_number::kOdbcFailed, "must be owner",
              [&] { database->DeleteQueryDef("FullCatalogBySet"); });
  ExpectError(error_number::kObjectExists, "must be owner",
              [&] { database->CreateQueryDef("FullCatalogBySet", "SELECT ID FROM Catalog;"); });
  EXPECT_EQ(database->QueryText("FullCatalog").back(), ';');
}

TEST_F(OdbcServer, AViewOfOthersIsNeverLost) {
  const auto database = Open();
  database->CreateQueryDef("FullCatalogBySet", "SELECT ID FROM Catalog;");
  m_test->Run("CREATE VIEW reports AS SELECT * FROM fullcatalogbyset");
  ExpectError(error_number::kOdbcFailed, "reports", [&] { database->DeleteQueryDef("FullCatalogBySet"); });
  EXPECT_EQ(m_test->Ask("SELECT count(*) FROM reports"), "7");
}

TEST_F(OdbcServer, AFullDiskIsReportedAsOne) {
  m_test->Run(
      "CREATE FUNCTION extend() RETURNS trigger LANGUAGE plpgsql AS 'BEGIN RAISE ''no space left'' USING "
      "ERRCODE = ''disk_full''; END'; CREATE TRIGGER full_disk BEFORE UPDATE ON Catalog FOR EACH ROW EXECUTE "
      "FUNCTION extend()");
  ExpectError(error_number::kDiskFull, "no space left", [&] { Mark(*Open(), 1); });
}

TEST_F(OdbcServer, AStatementMayTakeAMinute) {
  odbc::Session session(m_connect);
  for (const char* table : {"Catalog", "SetNames"}) {
    ASSERT_NE(session.Tables().Find(table), nullptr);  // the driver sets a timeout of its own for this
    EXPECT_EQ(session.Ask("SELECT current_setting('statement_timeout')").at(0).at(0), "1min");
  }
}

TEST_F(OdbcServer, TextsOfAnyLengthInBlocks) {
  m_test->Run(
      "CREATE TABLE texts (id integer PRIMARY KEY, filename text); INSERT INTO texts SELECT g, repeat('ä', g "
      "* 7) || chr(128512) || g FROM generate_series(1, 1500) AS g; INSERT INTO texts (id) VALUES (1501)");
  // The driver converts texts to the client encoding, which the environment can set.
  for (const char* encoding : {"", "LATIN1"}) {
    SCOPED_TRACE(encoding);
    if (*encoding != 0) setenv("PGCLIENTENCODING", encoding, 1);
    const auto database = Open();
    unsetenv("PGCLIENTENCODING");
    const auto rows =
        database->OpenRecordset("SELECT ID, Filename FROM Texts ORDER BY ID", RecordsetType::kSnapshot);
    std::string expected;
    for (int id = 1; !rows->Eof() && id <= 1500; rows->MoveNext(), ++id) {
      expected += "äääääää";
      ASSERT_EQ(rows->Fields("Filename").Text(), expected + "\xF0\x9F\x98\x80" + std::to_string(id)) << id;
    }
    EXPECT_TRUE(rows->Fields("Filename").IsNull());
    rows->MoveNext();
    EXPECT_TRUE(rows->Eof());
  }
}

TEST_F(OdbcServer, KindsOfTheServer) {
  m_test->Run(
      "CREATE TABLE kinds (id bigint PRIMARY KEY, stamp timestamp, flag smallint, number numeric(12, 2), day "
      "date, code char(3)); INSERT INTO kinds VALUES (5000000000, '2026-02-03 04:05:06', 1, 2.5, "
      "'2026-07-08', 'ab')");
  const auto database = Open();
  EXPECT_EQ(Rows(*database,
                 "SELECT ID, Stamp, Flag, Number, Day FROM Kinds WHERE Stamp = '2026-02-03 04:05:06' AND "
                 "Flag = True AND Code = 'ab' AND ID = 5000000000"),
            (Strings{"5000000000|2026-02-03 04:05:06|1|2.5|2026-07-08 00:00:00"}));
  database->Execute("UPDATE Kinds SET Flag = False WHERE Stamp < #3/1/2026#", kFailOnError);
  EXPECT_EQ(m_test->Ask("SELECT flag FROM kinds"), "0");
  const auto dynaset = database->OpenRecordset("Kinds", RecordsetType::kDynaset);
  Change(*dynaset, "Flag", true);
  Change(*dynaset, "Stamp", DateTime{2027, 1, 2, 3, 4, 5});
  EXPECT_EQ(m_test->Ask("SELECT stamp || ' ' || flag FROM kinds"), "2027-01-02 03:04:05 1");
}

}  // namespace
}  // namespace kxrestore::engine::testing
