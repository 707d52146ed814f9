// Each way to choose files, through the windows, on a catalog file and on a catalog that a database server
// keeps, over the driver that hosts ask for.
#include <fstream>

#include "component/com/wide_text.h"
#include "tests/catalog/server_catalog.h"
#include "tests/e2e/dialog_fixture.h"
#include "tests/e2e/program.h"
#include "tests/e2e/registry_keys.h"

namespace kxrestore::e2e {
namespace {

using catalog_test::ServerCatalog;
using component::com::ToWide;
using driver::DialogDriver;

class ChoosingTest : public DialogTest {
 protected:
  // `marked` asks the catalog, beside the dialog.
  void ChooseAndRestore(const std::function<Ids()>& marked) {
    Ids inEvent;
    bool showing = false;
    m_sink = CountingSink::Make([&] {
      inEvent = marked();
      showing = driver::VisibleWindow(kFormClass) != nullptr;
    });
    Advise(m_object.Get(), m_sink.Get());
    EXPECT_EQ(1, RunDialog(m_object.Get(), [&](const DialogDriver& dialog) {
                const std::string root = "C:\\Data", reports = root + "\\Reports";
                dialog.SelectRun("1");
                EXPECT_EQ("4 file(s).", dialog.Text("lblTreeCount"));
                dialog.Tick("C:\\");
                EXPECT_FALSE(dialog.NodeTicked("D:\\"));
                dialog.Tick(root + "\\a.txt");
                EXPECT_TRUE(dialog.NodeTicked(reports + "\\a very long name.xls"));
                EXPECT_FALSE(dialog.NodeTicked(root + "\\a.txt"));
                EXPECT_TRUE(marked().empty()) << "a tick alone marks nothing";
                EXPECT_FALSE(dialog.Enabled("cmdRestore(0)"));
                dialog.Click("cmdAction(0)");
                dialog.ExpectText("lblCounts(0)", SelectedText(2));
                EXPECT_EQ((Ids{kNewB, kNewLong}), marked());
                dialog.Click("cmdAction(1)");
                driver::WaitFor(std::chrono::seconds(5), "the ticks to go",
                                [&] { return !dialog.NodeTicked(reports); });
                EXPECT_EQ((Ids{kNewB, kNewLong}), marked()) << "clearing ticks unmarks nothing";

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
                EXPECT_EQ((Ids{kNewB, kNewLong, kOldA}), marked());

                // A group ticks its members; both versions of the text file are of the kind.
                dialog.Tab(3);
                dialog.TickEntry("asFiles", "Documents");
                const driver::ListDriver types = dialog.List("asFiles");
                EXPECT_TRUE(types.Ticked(types.Find(".doc")));
                dialog.TickEntry("asFiles", ".pst");
                dialog.Click("cmdAuto(0)");
                dialog.ExpectText("lblCounts(0)", SelectedText(6));
                dialog.ExpectEnabled("cmdRestore(0)", true);
                dialog.Click("cmdRestore(0)");
              }));
    EXPECT_EQ(1, m_sink->events);
    EXPECT_TRUE(showing);
    EXPECT_EQ((Ids{kNewA, kNewB, kNewLong, kNewY, kOldA, kBox}), inEvent);
    EXPECT_EQ(inEvent, marked());

    // The next run of the same object begins with 0 again.
    EXPECT_EQ(0, RunDialog(m_object.Get(), [](const DialogDriver& dialog) { dialog.Close(); }));
    EXPECT_EQ(1, m_sink->events);
  }
};

TEST_F(ChoosingTest, OnAFile) {
  ChooseAndRestore([&] { return m_catalog.Marked(); });
}

TEST_F(ChoosingTest, OnAServer) {
  if (!ServerCatalog::HasServer()) GTEST_SKIP() << "no server";
  ServerCatalog server(TestCatalog::AddRows);
  const std::wstring address = ToWide(ServerCatalog::Server()), database = ToWide(server.Database()),
                     user = ToWide(ServerCatalog::User()), password = ToWide(ServerCatalog::Password());
  Text none(L"");
  m_object->put_DB(&none);
  m_object->put_DBType(1);
  m_object->put_DBServer(Text(address));
  m_object->put_DBDatabase(Text(database));
  m_object->put_DBUser(Text(user));
  m_object->put_DBPass(Text(password));
  ChooseAndRestore([&] { return server.Marked(); });

  // The sample host passes all of that on.
  server.Execute("UPDATE Catalog SET Restore = FALSE");
  const Registered registered;
  const std::wstring script = m_catalog.Folder() + L"steps.txt";
  std::ofstream(script.c_str()) << "wait-form\nselect-run 3\ntick C:\\Mail\nclick cmdAction(0)\n"
                                   "expect-caption lblCounts(0) \"1 file(s) selected\"\n"
                                   "click cmdRestore(0)\nwait-closed\n";
  Program host(L'"' + HostFolder() + L"restore_host.exe\" --db-type 1 --server " + address + L" --database " +
               database + L" --user " + user + L" --password " + password + L" --script \"" + script + L'"');
  EXPECT_EQ(0, host.Wait());
  EXPECT_EQ("CommenceRestore\nrestore: C:\\Mail\\box.pst\nDefineRestoreSet = 1\n", host.Output());
  EXPECT_EQ(Ids{kBox}, server.Marked());
}

}  // namespace
}  // namespace kxrestore::e2e
