// Each way to choose files, through the windows: detail tree, search, file types.
#include <gtest/gtest.h>

#include "tests/e2e/dialog_fixture.h"

namespace kxrestore::e2e {
namespace {

using driver::DialogDriver;
using driver::ListDriver;

class PanelsTest : public DialogTest {
 protected:
  // Works the panels and leaves the dialog by its close box, keeping the marks.
  void Run(const Steps& steps) {
    EXPECT_EQ(0, RunDialog(m_object.Get(), [&](const DialogDriver& dialog) {
                steps(dialog);
                const bool marked = !m_catalog.Marked().empty();
                dialog.Close();
                if (marked) dialog.Answer("NO");
              }));
  }
};

TEST_F(PanelsTest, DetailTreeTicksFollowEachOtherAndClear) {
  Run([&](const DialogDriver& dialog) {
    dialog.SelectRun("1");
    dialog.Tick("C:\\");
    EXPECT_TRUE(dialog.NodeTicked("C:\\Data\\Reports\\b.doc"));
    EXPECT_FALSE(dialog.NodeTicked("D:\\"));
    dialog.Tick("C:\\Data\\Reports\\b.doc");
    EXPECT_FALSE(dialog.NodeTicked("C:\\Data\\Reports\\b.doc"));
    dialog.Click("cmdAction(0)");
    dialog.ExpectText("lblCounts(0)", SelectedText(2));
    EXPECT_EQ((Ids{kNewA, kNewLong}), m_catalog.Marked());

    dialog.Click("cmdAction(1)");
    const HTREEITEM drive = dialog.Tree("tvwDetails").Find({"C:\\"});
    driver::WaitFor(std::chrono::seconds(5), "the ticks to go",
                    [&] { return !dialog.Tree("tvwDetails").Ticked(drive); });
    EXPECT_FALSE(dialog.NodeTicked("C:\\Data\\a.txt"));
    EXPECT_EQ((Ids{kNewA, kNewLong}), m_catalog.Marked()) << "clearing ticks unmarks nothing";

    // Another run shows its own files, unticked.
    dialog.SelectRun("2");
    EXPECT_EQ("1 file(s).", dialog.Text("lblTreeCount"));
    EXPECT_FALSE(dialog.NodeTicked("C:\\Data\\a.txt"));
  });
}

TEST_F(PanelsTest, SearchFindsByMaskAndMarksWhatIsTicked) {
  Run([&](const DialogDriver& dialog) {
    dialog.Tab(2);
    dialog.Type("cboMask", "a.txt");
    dialog.Click("cmdSearch(2)");
    dialog.ExpectCount("asSearch", 2);
    dialog.ExpectText("lblSearchCount", "2 File(s)");
    const ListDriver found = dialog.List("asSearch");
    EXPECT_FALSE(found.Ticked(0));
    EXPECT_EQ("C:\\Data\\a.txt", found.Text(0));

    dialog.Type("cboMask", "box");
    dialog.Click("cmdSearch(2)");
    dialog.ExpectCount("asSearch", 1);
    dialog.TickEntry("asSearch", "C:\\Mail\\box.pst");
    dialog.Click("cmdSearch(0)");
    dialog.ExpectText("lblCounts(0)", SelectedText(1));
    EXPECT_EQ(Ids{kBox}, m_catalog.Marked());
  });
}

TEST_F(PanelsTest, FileTypesMarkEveryFileOfTheirKind) {
  Run([&](const DialogDriver& dialog) {
    dialog.Tab(3);
    dialog.TickEntry("asFiles", ".pst");
    dialog.Click("cmdAuto(0)");
    dialog.ExpectText("lblCounts(0)", SelectedText(1));
    EXPECT_EQ(Ids{kBox}, m_catalog.Marked());

    // A group ticks its members; both versions of the text file are of the kind.
    dialog.TickEntry("asFiles", "Documents");
    const ListDriver types = dialog.List("asFiles");
    EXPECT_TRUE(types.Ticked(types.Find(".xls")));
    dialog.TickEntry("asFiles", ".doc");
    dialog.TickEntry("asFiles", ".xls");
    dialog.Click("cmdAuto(0)");
    dialog.ExpectText("lblCounts(0)", SelectedText(4));
    EXPECT_EQ((Ids{kNewA, kOldA, kNewY, kBox}), m_catalog.Marked());
  });
}

}  // namespace
}  // namespace kxrestore::e2e
