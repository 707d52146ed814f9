// The list of files selected to restore, and the ways in which the dialog ends.
#include "tests/dialog/dialog_fixture.h"

namespace kxrestore::dialog_test {
namespace {

const char* const kCancelQuestion =
    "Clear Selection?: You have selected files to restore, Cancel will clear your selections, Cancel?";

class RestoreListTest : public DialogTest {
 protected:
  RestoreListTest() {
    auto longRow = Row(10, 1, "003", "C:\\DATA\\LONG~1.DOC");
    longRow.longPathId = 7;
    MakeCatalog({Row(1, 1, "003", "C:\\Data\\a.doc"), Row(2, 1, "003", "C:\\Data\\b.doc"),
                 Row(3, 1, "003", "C:\\Data\\O'Neill.doc"), Row(4, 2, "001", "C:\\Data\\a.doc"),
                 Row(5, 1, "003", "C:\\Data\\b.doc"),
                 PluginRow(6, "Exchange Server", "Store\\MailBoxes\\Jane\\Inbox", "Jane"),
                 PluginRow(7, "Exchange Server", "Store\\MailBoxes\\Jane\\Sent", "Jane"),
                 PluginRow(8, "Exchange Server Mailbox Pat", "Store\\MailBoxes\\Pat", "Pat"),
                 PluginRow(9, "exchange Server", "C:\\Data\\mail.eml", "mail.eml"), longRow},
                Runs(), {{7, "C:\\Data\\long name.doc"}});
    form.CommenceRestore = [this] { events.push_back("CommenceRestore"); };
    form.CancelRestore = [this] { events.push_back("CancelRestore"); };
  }
  void Mark(const std::string& ids) {
    catalog->Execute("UPDATE Catalog SET Restore = ID IN (" + ids + ")");
    Click(kRefresh);
  }
  void Untick(const std::string& name) { Tick(ui().asRestoreList, name, false); }
  // Shows a dialog; ui() would show another when it is gone.
  void Show() { controls = &ui(); }
  bool Open() { return controls->form.IsOpen(); }

  FormControls* controls = nullptr;
  Strings events;
};

TEST_F(RestoreListTest, ListsMarkedRowsOfEverySetUnderTheNamesThatTheUserKnows) {
  EXPECT_FALSE(ui().cmdRestore[kRestoreNow].Enabled());
  Mark("1, 4, 6, 8, 9, 10");
  EXPECT_EQ(Listed(), (Strings{"C:\\Data\\a.doc", "C:\\Data\\a.doc", "C:\\Data\\long name.doc",
                               "C:\\Data\\mail.eml", "Exchange Server Mailbox Pat.kxexag", "Jane.kxexag"}));
  const auto entry = ui().asRestoreList.At(2);
  EXPECT_EQ(entry.setName, "Set 2");
  EXPECT_EQ(entry.setId, 2);
  EXPECT_EQ(entry.extension, "001");
  EXPECT_EQ(entry.size, 104);
  EXPECT_EQ(entry.time, platform::TimeNumber({2026, 3, 1, 10, 0, 0}));
  EXPECT_TRUE(ui().asRestoreList.TickedAt(2));
  EXPECT_EQ(Selected(), "6 file(s) selected");
  EXPECT_TRUE(ui().cmdRestore[kRestoreNow].Enabled());
  Mark("0");
  EXPECT_EQ(Selected(), "0 file(s) selected");
  EXPECT_FALSE(ui().cmdRestore[kRestoreNow].Enabled());
}

TEST_F(RestoreListTest, UpdateUnmarksTheFirstRowOfANameAndEveryRowOfAnAggregate) {
  Mark("1, 2, 3, 5, 6, 7, 10");
  for (const char* name :
       {"C:\\Data\\b.doc", "C:\\Data\\O'Neill.doc", "Jane.kxexag", "C:\\Data\\long name.doc"}) {
    Untick(name);
  }
  Click(kUpdate);
  EXPECT_EQ(catalog->Marked(), (Ids{1, 5}));
  EXPECT_EQ(Listed(), (Strings{"C:\\Data\\a.doc", "C:\\Data\\b.doc"}));
  EXPECT_EQ(Selected(), "2 file(s) selected");
}

TEST_F(RestoreListTest, StoppingAndFailingKeepWhatIsListedAndMarked) {
  Mark("1, 2, 3");
  catalog->Execute("UPDATE Catalog SET Restore = 1");
  EscapeAt(3);
  Click(kRefresh);
  EXPECT_EQ(ui().asRestoreList.Count(), 2u);
  EXPECT_EQ(Selected(), "3 file(s) selected");
  EXPECT_TRUE(ui().form.IsOpen());
  EXPECT_FALSE(form.parameters.StopRequested);
  ui().form.UserKey(controls::Key::kF5);
  EXPECT_EQ(Selected(), "10 file(s) selected");

  Mark("1, 2, 3");
  for (int i = 1; i <= 3; ++i) ui().asRestoreList.UserTick(i, false);
  EscapeAt(2);
  Click(kUpdate);
  EXPECT_EQ(catalog->Marked(), (Ids{2, 3}));
  EXPECT_EQ(ui().asRestoreList.Count(), 3u);

  catalog->Execute("DROP TABLE LongPaths");
  Click(kRefresh);
  ExpectReports({"ListCurrentSelections: (3078) "});
  EXPECT_EQ(ui().asRestoreList.Count(), 3u);
}

TEST_F(RestoreListTest, RestoreNowRaisesOnceWithTheMarksCommittedAndTheCatalogFree) {
  Show();
  form.CommenceRestore = [this] {
    events.push_back("CommenceRestore");
    EXPECT_TRUE(Open());
    EXPECT_EQ(catalog->Marked(), (Ids{1, 2, 3, 5, 6, 7, 8, 9, 10}));
    catalog->Execute("BEGIN EXCLUSIVE; UPDATE Catalog SET Restore = 0 WHERE ID = 1; COMMIT");
    // A host that lets messages run while it restores.
    for (auto& button : ui().cmdRestore) button.UserClick();
    ui().form.UserClose();
    Escape();
    ui().tvwSets.UserClickNode(ui().tvwSets.Item(1));
    EXPECT_TRUE(Open());
  };
  ChooseRun();
  TickAll();
  Tick("MailBoxes");
  Apply();
  ASSERT_EQ(catalog->Marked().size(), 8u) << "one of two rows of the same name";
  catalog->Execute("UPDATE Catalog SET Restore = 1 WHERE ID = 5");
  Click(kRestoreNow);
  EXPECT_EQ(events, Strings{"CommenceRestore"});
  EXPECT_FALSE(Open());
  EXPECT_EQ(catalog->Marked(), (Ids{2, 3, 5, 6, 7, 8, 9, 10}));
}

TEST_F(RestoreListTest, CancelAndCloseDuringAWalkTakeTheirStepsOnceItHasEnded) {
  Show();
  Mark("1, 2, 3");
  desktop.answers = {platform::Answer::kNo, platform::Answer::kNo};
  DuringWalk(2, [this] {
    Click(kCancel);
    EXPECT_TRUE(desktop.messages.empty()) << "asked in the middle of the walk";
    EXPECT_TRUE(form.parameters.StopRequested);
  });
  Click(kRefresh);
  EXPECT_TRUE(Open());
  EXPECT_FALSE(form.parameters.StopRequested);
  DuringWalk(3, [this] { controls->form.UserClose(); });
  ChooseRun();
  EXPECT_EQ(controls->tvwDetails.Count(), 4u) << "C:, Data and two files";
  EXPECT_FALSE(Open());
  ExpectReports({kCancelQuestion, kCancelQuestion});
}

}  // namespace
}  // namespace kxrestore::dialog_test
