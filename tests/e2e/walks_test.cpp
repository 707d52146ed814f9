// Through real windows: each way to choose files, what the user does while the dialog works, and a commit
// that fails. The list and the questions tell what the catalog holds.
#include <sqlite3.h>

#include "tests/e2e/dialog_fixture.h"

namespace kxrestore::e2e {
namespace {

constexpr int kFiles = 30'000;
constexpr auto kWait = std::chrono::seconds(60);

class WalksTest : public DialogTest {
 protected:
  // Fills run 1 with enough files for a walk that takes a while.
  void AddFiles() {
    m_catalog.Execute(
        "WITH RECURSIVE n(i) AS (SELECT 1000 UNION ALL SELECT i + 1 FROM n WHERE i < " +
        std::to_string(1000 + kFiles - 1) +
        ") INSERT INTO Catalog (ID, DateStamp, SetNameID, Extension, Filename, File, Restore, OrigSize, "
        "Status, OrigName) "
        "SELECT i, c.DateStamp, c.SetNameID, c.Extension, 'C:\\Many\\' || i || '.txt', i || '.txt', 0, 1, 2, "
        "'C:\\Many\\' || i || '.txt' FROM n, (SELECT * FROM Catalog WHERE ID = 1) AS c");
  }
  std::size_t Marked() const { return m_catalog.Marked().size(); }
};

TEST_F(WalksTest, EachWayToChooseMarksWhatItShows) {
  Ids inEvent;
  bool showing = false;
  const ComPtr<CountingSink> sink = CountingSink::Make([&] {
    inEvent = m_catalog.Marked();
    showing = driver::VisibleWindow(kFormClass) != nullptr;
  });
  Advise(m_object.Get(), sink.Get());
  EXPECT_EQ(1, Run([&](const DialogDriver& dialog) {
              const std::string root = "C:\\Data", reports = root + "\\Reports";
              dialog.SelectRun("1");
              EXPECT_EQ("4 file(s).", dialog.Text("lblTreeCount"));
              dialog.Tick("C:\\");
              EXPECT_FALSE(dialog.NodeTicked("D:\\"));
              dialog.Tick(root + "\\a.txt");
              EXPECT_TRUE(dialog.NodeTicked(reports + "\\a very long name.xls"));
              EXPECT_FALSE(dialog.NodeTicked(root + "\\a.txt"));
              EXPECT_EQ(Marked(), 0u) << "a tick alone marks nothing";
              EXPECT_FALSE(dialog.Enabled("cmdRestore(0)"));
              dialog.Click("cmdAction(0)");
              dialog.ExpectText("lblCounts(0)", SelectedText(2));
              EXPECT_EQ((Ids{kNewB, kNewLong}), m_catalog.Marked());
              dialog.Click("cmdAction(1)");
              driver::WaitFor(kWait, "the ticks to go", [&] { return !dialog.NodeTicked(reports); });
              EXPECT_EQ(Marked(), 2u) << "clearing ticks unmarks nothing";

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
              EXPECT_EQ((Ids{kNewB, kNewLong, kOldA}), m_catalog.Marked());

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
  EXPECT_TRUE(showing);
  EXPECT_EQ((Ids{kNewA, kNewB, kNewLong, kNewY, kOldA, kBox}), inEvent);
  EXPECT_EQ(inEvent, m_catalog.Marked());
  // The next run of the same object begins with 0 again.
  EXPECT_EQ(0, Run([](const DialogDriver& dialog) { dialog.Close(); }));
  EXPECT_EQ(1, sink->events);
}

// A walk that Cancel stops has left marks that no list has shown: they are listed, and the question is asked.
TEST_F(WalksTest, CancelAsksForTheMarksThatAStoppedApplyHasMade) {
  AddFiles();
  EXPECT_EQ(0, Run([&](const DialogDriver& dialog) {
              dialog.SelectRun("1");
              dialog.Tick("C:\\");
              dialog.Click("cmdAction(0)");
              driver::WaitFor(kWait, "marks", [&] { return Marked() > 0; });
              dialog.Click("cmdRestore(1)");
              dialog.Answer("NO");
              const std::size_t marked = Marked();
              EXPECT_GT(marked, 0u);
              EXPECT_LT(marked, std::size_t{kFiles});
              dialog.ExpectText("lblCounts(0)", SelectedText(marked));
              // Refresh and Cancel pressed together: the list that Cancel cuts off is filled before it asks.
              dialog.Click("cmdRestore(2)");
              dialog.Click("cmdRestore(1)");
              dialog.Answer("YES");
            }));
  EXPECT_EQ(0u, Marked());
}

TEST_F(WalksTest, RestoreNowPressedDuringAnApplyTakesEffectWhenThatHasEnded) {
  AddFiles();
  EXPECT_EQ(1, Run([&](const DialogDriver& dialog) {
              dialog.SelectRun("1");
              dialog.Tick("D:\\");
              dialog.Click("cmdAction(0)");
              dialog.ExpectText("lblCounts(0)", SelectedText(1));
              dialog.Tick("C:\\");
              dialog.Click("cmdAction(0)");
              driver::WaitFor(kWait, "marks", [&] { return Marked() > 1; });
              dialog.Click("cmdRestore(0)");
            }));
  EXPECT_EQ(Marked(), std::size_t{kFiles} + 4);
  EXPECT_EQ(1, m_sink->events);
}

// A reader keeps the commit from its file: it is reported, the list shows the mark that is still there,
// without its tick, and nothing is restored that nobody asked for.
TEST_F(WalksTest, AnUpdateWhoseCommitFailsSaysSoAndListsWhatIsMarked) {
  for (const std::int64_t id : {kNewA, kNewY}) m_catalog.Mark(id);
  sqlite3* raw = nullptr;
  ASSERT_EQ(SQLITE_OK,
            sqlite3_open_v2(FromWide(m_catalog.Path()).c_str(), &raw, SQLITE_OPEN_READWRITE, nullptr));
  const std::unique_ptr<sqlite3, int (*)(sqlite3*)> reader(raw, sqlite3_close_v2);
  EXPECT_EQ(0, Run([&](const DialogDriver& dialog) {
              dialog.WaitForForm();
              dialog.Click("cmdRestore(2)");
              dialog.ExpectCount("asRestoreList", 2);
              dialog.TickEntry("asRestoreList", "D:\\y.txt");
              EXPECT_EQ(SQLITE_OK,
                        sqlite3_exec(raw, "BEGIN; SELECT * FROM Catalog", nullptr, nullptr, nullptr));
              dialog.Click("cmdRestore(3)");
              EXPECT_EQ(dialog.MessageTitle(), "ApplyListChanges");
              EXPECT_TRUE(dialog.MessageText().starts_with("(3260)")) << dialog.MessageText();
              dialog.Answer("OK");
              EXPECT_EQ(dialog.MessageText(), "1 file(s) could not be marked.");
              dialog.Answer("OK");
              EXPECT_EQ(SQLITE_OK, sqlite3_exec(raw, "COMMIT", nullptr, nullptr, nullptr));
              dialog.ExpectCount("asRestoreList", 2);
              EXPECT_EQ((Ids{kNewA, kNewY}), m_catalog.Marked());
              // It is still without its tick: pressing again does it.
              dialog.Click("cmdRestore(3)");
              dialog.ExpectCount("asRestoreList", 1);
              EXPECT_EQ(Ids{kNewA}, m_catalog.Marked());
              dialog.Close();
              dialog.Answer("NO");
            }));
  EXPECT_EQ(0, m_sink->events);
}

}  // namespace
}  // namespace kxrestore::e2e
