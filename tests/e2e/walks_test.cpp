// Chooses files on each page of the real window, and cancels a walk that is still running.
#include "tests/e2e/dialog_fixture.h"

namespace kxrestore::e2e {
namespace {

constexpr int kFiles = 30'000;
constexpr auto kWait = std::chrono::seconds(60);

class WalksTest : public DialogTest {
 protected:
  // Adds enough files to run 1 for a walk that takes a while.
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

TEST_F(WalksTest, EachPageMarksTheTickedFiles) {
  Ids inEvent;
  bool showing = false;
  const ComPtr<CountingSink> sink = CountingSink::Make([&] {
    inEvent = m_catalog.Marked();
    showing = driver::VisibleWindow(kFormClass) != nullptr;
  });
  Advise(m_object.Get(), sink.Get());
  EXPECT_EQ(1, Run([&](const DialogDriver& dialog) {
              dialog.SelectRun("1");
              dialog.Tick("C:\\");
              dialog.Tick("C:\\Data\\a.txt");
              EXPECT_TRUE(dialog.NodeTicked("C:\\Data\\Reports\\a very long name.xls"));
              EXPECT_FALSE(dialog.NodeTicked("C:\\Data\\a.txt"));
              dialog.Click("cmdAction(0)");
              dialog.ExpectText("lblCounts(0)", SelectedText(2));

              dialog.Tab(2);
              dialog.Click("optLookIn(1)");
              dialog.Click("chk(1)");
              dialog.Type("cboMask", "a.txt");
              dialog.Click("cmdSearch(2)");
              dialog.ExpectText("lblSearchCount", "1 File(s)");
              dialog.TickEntry("asSearch", "C:\\Data\\a.txt");
              dialog.Click("cmdSearch(0)");
              dialog.ExpectText("lblCounts(0)", SelectedText(3));

              // A group ticks its members. The text file has two versions.
              dialog.Tab(3);
              dialog.TickEntry("asFiles", "Documents");
              dialog.TickEntry("asFiles", ".pst");
              dialog.Click("cmdAuto(0)");
              dialog.ExpectText("lblCounts(0)", SelectedText(6));
              dialog.ExpectEnabled("cmdRestore(0)", true);
              dialog.Click("cmdRestore(0)");
            }));
  EXPECT_TRUE(showing);
  EXPECT_EQ((Ids{kNewA, kNewB, kNewLong, kNewY, kOldA, kBox}), inEvent);
  EXPECT_EQ(inEvent, m_catalog.Marked());
  // The result of the next run starts at 0 again.
  EXPECT_EQ(0, Run([](const DialogDriver& dialog) { dialog.Close(); }));
  EXPECT_EQ(1, sink->events);
}

// A walk that Cancel stops leaves marks that are not listed yet. Cancel lists them before it asks.
TEST_F(WalksTest, CancelAsksForTheMarksThatAStoppedApplyHasMade) {
  AddFiles();
  EXPECT_EQ(0, Run([&](const DialogDriver& dialog) {
              dialog.SelectRun("1");
              dialog.Tick("C:\\");
              dialog.Click("cmdAction(0)");
              driver::WaitFor(kWait, "marks", [&] { return Marked() > 0; });
              dialog.Click("cmdRestore(1)");
              EXPECT_EQ(dialog.MessageTitle(), "Clear Selection?");
              dialog.Answer("NO");
              const std::size_t marked = Marked();
              EXPECT_GT(marked, 0u);
              EXPECT_LT(marked, std::size_t{kFiles});
              dialog.ExpectText("lblCounts(0)", SelectedText(marked));
              // Cancel interrupts Refresh, and completes the list before it asks.
              dialog.Click("cmdRestore(2)");
              dialog.Click("cmdRestore(1)");
              dialog.Answer("YES");
            }));
  EXPECT_EQ(0u, Marked());
}

}  // namespace
}  // namespace kxrestore::e2e
