// A server that goes away while the dialog works on its catalog, and comes back.
#include <chrono>
#include <fstream>
#include <sstream>

#include "engine/odbc/odbc_session.h"
#include "tests/catalog/server_catalog.h"
#include "tests/dialog/cut_line.h"
#include "tests/dialog/dialog_fixture.h"
#include "tests/engine/odbc_test_database.h"

namespace kxrestore::dialog_test {
namespace {

using catalog_test::ServerCatalog;
using engine::testing::ServerConnect;
using engine::testing::ServerSetting;

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
    m_role = m_server->Database() + "_user";
    Administrate("CREATE ROLE " + m_role + " LOGIN IN ROLE " + ServerCatalog::User() + " PASSWORD '" +
                 kPassword + "'");
    const std::string server = ServerCatalog::Server();
    m_line.emplace(static_cast<std::uint16_t>(std::stoi(server.substr(server.find('=') + 1))));
    UseServer(m_server->Database(), "127.0.0.1;PORT=" + std::to_string(m_line->Port()), m_role, kPassword);
    form.LogFilename(m_folder.File("session.log"));
    form.DebugFlag(true);
  }
  void TearDown() override {
    if (!m_server) return;
    std::ifstream log(m_folder.File("session.log"));
    std::ostringstream text;
    text << log.rdbuf();
    EXPECT_NE(text.str(), "");
    EXPECT_EQ(text.str().find(kPassword), std::string::npos);
    m_server.reset();
    Administrate("DROP ROLE " + m_role);
  }
  static void Administrate(const std::string& sql) {
    engine::odbc::Session(
        ServerConnect("postgres", ServerSetting("KX_TEST_ADMIN"), ServerSetting("KX_TEST_PASSWORD")), false,
        nullptr)
        .Ask(sql);
  }
  // What was reported: so many messages, the first of them beginning so. None shows the password.
  void ExpectReports(std::size_t count, const std::string& start) {
    const Strings messages = TakeMessages();
    ASSERT_EQ(messages.size(), count) << (messages.empty() ? "" : messages.back());
    EXPECT_EQ(messages.front().substr(0, start.size()), start) << messages.front();
    EXPECT_GT(messages.front().size(), start.size() + 10) << "the driver's own words are missing";
    for (const auto& message : messages) EXPECT_EQ(message.find(kPassword), std::string::npos) << message;
  }

  static constexpr int kFiles = 400;
  engine::testing::TemporaryFolder m_folder;
  std::optional<ServerCatalog> m_server;
  std::optional<CutLine> m_line;
  std::string m_role;
};

TEST_F(LostServer, WhileItMarks) {
  ChooseRun("2 001");
  TickAll();
  Apply();
  ChooseRun();
  TickAll();
  EXPECT_EQ(TakeMessages(), Strings{});
  for (const bool whileItCommits : {false, true}) {
    SCOPED_TRACE(whileItCommits ? "a commit fails" : "a statement fails");
    const auto rest = [] { std::this_thread::sleep_for(std::chrono::milliseconds(150)); };
    desktop.doEventsCount = 0;
    desktop.onDoEvents = [&] {
      // What has waited for long enough is committed before the line is cut.
      if (desktop.doEventsCount == 50) rest();
      if (desktop.doEventsCount != 80) return;
      m_line->Cut();
      if (whileItCommits) rest();
    };
    Apply();
    desktop.onDoEvents = nullptr;
    EXPECT_TRUE(ui().form.IsOpen());
    if (whileItCommits) {
      ExpectReports(1, std::string("AddToSetSelections: ") + kFailed);
    } else {
      ExpectReports(2, std::string("UpdateSelection: ") + kFailed);  // and the list
    }
    const Ids marked = m_server->Marked();
    EXPECT_TRUE(marked.contains(kFiles + 1)) << "of the run before";
    EXPECT_GE(marked.size(), 45u);
    EXPECT_LE(marked.size(), 81u);

    Refresh();
    ExpectReports(1, std::string("ListCurrentSelections: ") + kNoConnection);
    m_line->Mend();
    Refresh();
    EXPECT_EQ(Selected(), std::to_string(marked.size()) + " file(s) selected");
    Apply();
    EXPECT_EQ(TakeMessages(), Strings{});
    EXPECT_EQ(m_server->Marked().size(), kFiles + 1u);
    EXPECT_EQ(Listed().size(), kFiles + 1u);
    m_server->Execute("UPDATE Catalog SET Restore = FALSE WHERE ID <= " + std::to_string(kFiles));
  }
}

TEST_F(LostServer, WhileItLists) {
  m_server->Execute(
      "INSERT INTO Catalog (ID, SetNameID, Extension, Filename, OrigName, Status) SELECT g, 1, '002', 'C:\\' "
      "|| g, "
      "'C:\\' || g, 2 FROM generate_series(1000, 40000) AS g");
  ui().tbsOptions.UserSelect(2);
  ui().cboMask.UserType("C:");
  DuringWalk(10, [this] { m_line->Cut(); });
  ui().cmdSearch[2].UserClick();
  ExpectReports(1, std::string("AdvancedSearch: ") + kFailed);
  EXPECT_EQ(ui().form.MousePointer(), controls::MousePointer::kDefault);
  EXPECT_LT(ui().asSearch.Count(), 39'000u);
  m_line->Mend();
  ui().cmdSearch[2].UserClick();
  EXPECT_EQ(TakeMessages(), Strings{});
  EXPECT_EQ(ui().asSearch.Count(), 39'001u + kFiles);
}

TEST_F(LostServer, BeforeTheDialogShows) {
  m_line->Cut();
  form.ShowModal();
  ExpectReports(1, std::string("LoadBackupSetTree: ") + kNoConnection);
  m_line->Mend();
  form.DBPass(std::string("not ") + kPassword);
  form.ShowModal();
  ExpectReports(1, std::string("LoadBackupSetTree: ") + kNoConnection);
  form.DBPass(kPassword);
  form.ShowModal();
  EXPECT_EQ(TakeMessages(), Strings{});
}

}  // namespace
}  // namespace kxrestore::dialog_test
