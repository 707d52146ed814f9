// The dialog and the sample host on a catalog that a database server keeps, over the driver that hosts ask
// for.
#include "tests/catalog/server_catalog.h"

#include <gtest/gtest.h>

#include <fstream>
#include <optional>

#include "component/com/wide_text.h"
#include "tests/e2e/dialog_fixture.h"
#include "tests/e2e/program.h"
#include "tests/e2e/registry_keys.h"

namespace kxrestore::e2e {
namespace {

using catalog_test::ServerCatalog;
using component::com::ToWide;
using driver::DialogDriver;
using driver::ListDriver;

class ServerCatalogTest : public DialogTest {
 protected:
  void SetUp() override {
    if (!ServerCatalog::HasServer()) GTEST_SKIP() << "no server";
    m_server.emplace(TestCatalog::AddRows);
  }
  Ids Marked() { return m_server->Marked(); }

  std::optional<ServerCatalog> m_server;
};

TEST_F(ServerCatalogTest, FilesAreChosenAndRestored) {
  Text none(L"");
  m_object->put_DB(&none);
  m_object->put_DBType(1);
  m_object->put_DBServer(Text(ToWide(ServerCatalog::Server())));
  m_object->put_DBDatabase(Text(ToWide(m_server->Database())));
  m_object->put_DBUser(Text(ToWide(ServerCatalog::User())));
  m_object->put_DBPass(Text(ToWide(ServerCatalog::Password())));
  Ids inEvent;
  m_sink = CountingSink::Make([&] { inEvent = Marked(); });
  Advise(m_object.Get(), m_sink.Get());
  EXPECT_EQ(1, RunDialog(m_object.Get(), [&](const DialogDriver& dialog) {
              dialog.SelectRun("1");
              EXPECT_EQ("4 file(s).", dialog.Text("lblTreeCount"));
              dialog.Tick("C:\\Data\\Reports");
              EXPECT_TRUE(Marked().empty()) << "a tick alone marks nothing";
              dialog.Click("cmdAction(0)");
              dialog.ExpectText("lblCounts(0)", SelectedText(2));
              EXPECT_EQ((Ids{kNewB, kNewLong}), Marked());

              // The older version of a name that the search has found twice is left out.
              dialog.Tab(2);
              dialog.Click("optLookIn(1)");
              dialog.Type("cboMask", "a.txt");
              dialog.Click("cmdSearch(2)");
              dialog.ExpectCount("asSearch", 2);
              dialog.Click("chk(1)");
              dialog.Click("cmdSearch(2)");
              dialog.ExpectCount("asSearch", 1);
              dialog.ExpectText("lblSearchCount", "1 File(s)");
              dialog.TickEntry("asSearch", "C:\\Data\\a.txt");
              dialog.Click("cmdSearch(0)");
              dialog.ExpectText("lblCounts(0)", SelectedText(3));
              EXPECT_EQ((Ids{kNewB, kNewLong, kOldA}), Marked());

              dialog.Tab(3);
              dialog.TickEntry("asFiles", ".pst");
              dialog.Click("cmdAuto(0)");
              dialog.ExpectText("lblCounts(0)", SelectedText(4));
              dialog.Click("cmdRestore(0)");
            }));
  EXPECT_EQ(1, m_sink->events);
  EXPECT_EQ((Ids{kNewB, kNewLong, kOldA, kBox}), inEvent);
  EXPECT_EQ(inEvent, Marked());
}

TEST_F(ServerCatalogTest, TheSampleHostRestoresFromIt) {
  const Registered registered;
  const std::wstring script = m_catalog.Folder() + L"steps.txt", dll = DllPath();
  std::ofstream(script.c_str())
      << "wait-form\nselect-run 3\ntick C:\\Mail\nclick cmdAction(0)\n"
         "expect-caption lblCounts(0) \"1 file(s) selected\"\nclick cmdRestore(0)\nwait-closed\n";
  Program host(L'"' + dll.substr(0, dll.find_last_of(L'\\') + 1) +
               L"host\\restore_host.exe\" --db-type 1 --server " + ToWide(ServerCatalog::Server()) +
               L" --database " + ToWide(m_server->Database()) + L" --user " + ToWide(ServerCatalog::User()) +
               L" --password " + ToWide(ServerCatalog::Password()) + L" --script \"" + script + L'"');
  EXPECT_EQ(0, host.Wait());
  EXPECT_EQ("CommenceRestore\nrestore: C:\\Mail\\box.pst\nDefineRestoreSet = 1\n", host.Output());
  EXPECT_EQ(Ids{kBox}, Marked());
}

}  // namespace
}  // namespace kxrestore::e2e
