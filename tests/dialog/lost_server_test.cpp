// A server that sends the dialog's user away while the dialog works on its catalog, and lets him in again, or
// that has no room for what he marks.
#include <chrono>
#include <fstream>
#include <iterator>
#include <optional>
#include <thread>

#include "engine/odbc/odbc_session.h"
#include "tests/catalog/server_catalog.h"
#include "tests/dialog/dialog_fixture.h"
#include "tests/engine/odbc_test_database.h"

namespace kxrestore::dialog_test {
namespace {

using catalog_test::ServerCatalog;

constexpr char kPassword[] = "S3cret-Word";
constexpr char kFailed[] = "(3146) ODBC - call failed";
constexpr char kNoConnection[] = "(3151) ODBC - connection to '127.0.0.1' failed: ";

class LostServer : public DialogTest {
 protected:
  void SetUp() override {
    if (!ServerCatalog::HasServer()) GTEST_SKIP() << "no server";
    std::vector<sample::FileRow> rows;
    for (int id = 1; id <= kFiles; ++id) {
      rows.push_back(Row(id, 1, "003", "C:\\Data\\" + std::to_string(kFiles + id) + ".doc"));
    }
    rows.push_back(Row(kFiles + 1, 2, "001", "D:\\other.txt"));
    m_server.emplace([&](sample::CatalogSink& sink) { catalog_test::AddRows(sink, rows, Runs()); });
    m_administrator.emplace(engine::testing::ServerConnect(
        "postgres", engine::testing::ServerSetting("KX_TEST_ADMIN"), ServerCatalog::Password()));
    m_role = m_server->Database() + "_user";
    Administrate("CREATE ROLE " + m_role + " LOGIN IN ROLE " + ServerCatalog::User() + " PASSWORD '" +
                 kPassword + "'");
    UseServer(m_server->Database(), ServerCatalog::Server(), m_role, kPassword);
    form.parameters.LogFilename = m_folder.File("session.log");
    form.parameters.DebugFlag = true;
  }
  void TearDown() override {
    if (!m_server) return;
    ExpectReports({});
    std::ifstream log(m_folder.File("session.log"));
    const std::string text(std::istreambuf_iterator<char>(log), {});
    EXPECT_NE(text, "");
    EXPECT_EQ(text.find(kPassword), std::string::npos);
    m_server.reset();
    Administrate("DROP ROLE " + m_role);
  }
  void SendAway() {
    Administrate("ALTER ROLE " + m_role + " NOLOGIN");
    Administrate("SELECT pg_terminate_backend(pid) FROM pg_stat_activity WHERE usename = '" + m_role + "'");
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  void Administrate(const std::string& sql) { m_administrator->Ask(sql); }
  void LetIn() { Administrate("ALTER ROLE " + m_role + " LOGIN"); }
  // As ExpectReports; none shows the password, and all say what the driver says.
  void ExpectServerReports(const Strings& starts) {
    for (const auto& message : desktop.messages) {
      EXPECT_EQ(message.text.find(kPassword), std::string::npos) << message.text;
      EXPECT_TRUE(message.text.size() > 60 || message.text.ends_with(kNotMarked)) << message.text;
    }
    ExpectReports(starts);
  }

  static constexpr int kFiles = 400;
  static constexpr const char* kNotMarked = " file(s) could not be marked.";
  engine::testing::TemporaryFolder m_folder;
  std::optional<ServerCatalog> m_server;
  std::optional<engine::odbc::Session> m_administrator;
  std::string m_role;
};

TEST_F(LostServer, WhileItMarks) {
  ChooseRun("2 001");
  TickAll();
  Apply();
  ChooseRun();
  TickAll();
  for (const bool whileItCommits : {false, true}) {
    SCOPED_TRACE(whileItCommits ? "a commit fails" : "a statement fails");
    const auto rest = [] { std::this_thread::sleep_for(std::chrono::milliseconds(150)); };
    desktop.doEventsCount = 0;
    desktop.onDoEvents = [&] {
      // What has waited for long enough is committed before the server goes.
      if (desktop.doEventsCount == 50) rest();
      if (desktop.doEventsCount != 80) return;
      SendAway();
      if (whileItCommits) rest();
    };
    Apply();
    desktop.onDoEvents = nullptr;
    EXPECT_TRUE(ui().form.IsOpen());
    const Ids marked = m_server->Marked();
    EXPECT_TRUE(marked.contains(kFiles + 1)) << "of the run before";
    EXPECT_GE(marked.size(), 40u);
    EXPECT_LE(marked.size(), 81u);
    // The connection that broke, the one that cannot be made, and what was not marked for want of them.
    ExpectServerReports(
        {std::string(whileItCommits ? "" : "UpdateSelection: ") + (whileItCommits ? "" : kFailed),
         std::string("UpdateSelection: ") + kNoConnection,
         "AddToSetSelections: " + std::to_string(kFiles + 1 - marked.size()) + kNotMarked,
         std::string("ListCurrentSelections: ") + kNoConnection});

    Click(kRefresh);
    ExpectServerReports({std::string("ListCurrentSelections: ") + kNoConnection});
    LetIn();
    Click(kRefresh);
    EXPECT_EQ(Selected(), std::to_string(marked.size()) + " file(s) selected");
    Apply();
    EXPECT_EQ(m_server->Marked().size(), kFiles + 1u);
    EXPECT_EQ(Listed().size(), kFiles + 1u);
    m_server->Execute("UPDATE Catalog SET Restore = FALSE WHERE ID <= " + std::to_string(kFiles));
  }
}

TEST_F(LostServer, WhenItsDiskIsFull) {
  m_server->Execute(
      "CREATE FUNCTION extend() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN IF NEW.ID > 80 THEN RAISE "
      "'could not extend file: No space left on device' USING ERRCODE = 'disk_full'; END IF; RETURN NEW; "
      "END $$");
  m_server->Execute(
      "CREATE TRIGGER full_disk BEFORE UPDATE ON Catalog FOR EACH ROW EXECUTE FUNCTION extend()");
  ChooseRun();
  TickAll();
  Apply();
  ExpectServerReports({"UpdateSelection: (3026) ERROR: could not extend file: No space left on device",
                       "AddToSetSelections: " + std::to_string(kFiles - 80) + kNotMarked});
  EXPECT_EQ(m_server->Marked().size(), 80u);
  EXPECT_EQ(Selected(), "80 file(s) selected");

  m_server->Execute("DROP TRIGGER full_disk ON Catalog");
  Apply();
  EXPECT_EQ(m_server->Marked().size(), std::size_t{kFiles});
}

}  // namespace
}  // namespace kxrestore::dialog_test
