// The list of files selected to restore, and the ways in which the dialog ends.
#include "tests/dialog/dialog_fixture.h"

namespace kxrestore::dialog_test {
namespace {

const char* const kCancelQuestion =
    "Clear Selection?: You have selected files to restore, Cancel will clear your selections, Cancel?";

class RestoreListTest : public DialogTest {
 protected:
  RestoreListTest() {
    MakeCatalog({Row(1, 1, "003", "C:\\Data\\a.doc"), Row(2, 1, "003", "C:\\Data\\b.doc"),
                 Row(3, 1, "003", "C:\\Data\\O'Neill.doc"), Row(4, 2, "001", "C:\\Data\\a.doc"),
                 Row(5, 1, "003", "C:\\Data\\b.doc"),
                 PluginRow(6, "Exchange Server", "Store\\MailBoxes\\Jane\\Inbox", "Jane"),
                 PluginRow(7, "Exchange Server", "Store\\MailBoxes\\Jane\\Sent", "Jane"),
                 PluginRow(8, "Exchange Server Mailbox Pat", "Store\\MailBoxes\\Pat", "Pat"),
                 PluginRow(9, "Exchange Serve", "C:\\Data\\mail.eml", "mail.eml")});
    form.CommenceRestore = [this] { events.push_back("CommenceRestore"); };
    form.CancelRestore = [this] { events.push_back("CancelRestore"); };
  }
  void Mark(const std::string& ids) {
    catalog->Execute("UPDATE Catalog SET Restore = 1 WHERE ID IN (" + ids + ")");
    Refresh();
  }
  void Untick(const std::string& name) {
    for (std::size_t i = 1; i <= ui().asRestoreList.Count(); ++i) {
      if (ui().asRestoreList.At(i).name == name) return ui().asRestoreList.UserTick(i, false);
    }
    ADD_FAILURE() << "not listed: " << name;
  }
  void Click(int index) { ui().cmdRestore[index].UserClick(); }
  bool Open() { return controls->form.IsOpen(); }
  void TakeControls() { controls = &ui(); }

  FormControls* controls = nullptr;
  Strings events;
};

TEST_F(RestoreListTest, ListsMarkedRowsOfEverySetUnderTheNamesThatTheUserKnows) {
  EXPECT_FALSE(ui().cmdRestore[0].Enabled());
  Mark("1, 4, 6, 8, 9");
  EXPECT_EQ(Listed(), (Strings{"C:\\Data\\a.doc", "C:\\Data\\a.doc", "Jane.kxexag",
                               "Exchange Server Mailbox Pat.kxexag", "C:\\Data\\mail.eml"}));
  const auto entry = ui().asRestoreList.At(2);
  EXPECT_EQ(entry.setName, "Set 2");
  EXPECT_EQ(entry.setId, 2);
  EXPECT_EQ(entry.extension, "001");
  EXPECT_EQ(entry.size, 104);
  EXPECT_EQ(entry.time, platform::TimeNumber({2026, 3, 1, 10, 0, 0}));
  EXPECT_TRUE(ui().asRestoreList.TickedAt(2));
  EXPECT_EQ(Selected(), "5 file(s) selected");
  EXPECT_TRUE(ui().cmdRestore[0].Enabled());

  catalog->Execute("UPDATE Catalog SET Restore = 0");
  Refresh();
  EXPECT_EQ(Selected(), "0 file(s) selected");
  EXPECT_EQ(ui().lblSearchCount.Caption(), "0 File(s)");
  EXPECT_FALSE(ui().cmdRestore[0].Enabled());
  EXPECT_EQ(TakeMessages(), Strings{});
}

TEST_F(RestoreListTest, LongPathIsShownAndTheStoredNameIsKept) {
  auto row = Row(1, 1, "003", "C:\\DATA\\LONG~1.DOC");
  row.longPathId = 7;
  MakeCatalog({row, Row(2, 1, "003", "C:\\Data\\x.doc")}, Runs(), {{7, "C:\\Data\\long name.doc"}});
  Mark("1, 2");
  ASSERT_EQ(Listed(), (Strings{"C:\\Data\\long name.doc", "C:\\Data\\x.doc"}));
  Untick("C:\\Data\\long name.doc");
  Click(3);
  EXPECT_EQ(catalog->Marked(), Ids{2});
}

TEST_F(RestoreListTest, UpdateUnmarksTheFirstRowOfANameAndEveryRowOfAnAggregate) {
  Mark("1, 2, 3, 5, 6, 7");
  Untick("C:\\Data\\b.doc");
  Untick("C:\\Data\\O'Neill.doc");
  Untick("Jane.kxexag");
  Click(3);
  EXPECT_EQ(catalog->Marked(), (Ids{1, 5}));
  EXPECT_EQ(Listed(), (Strings{"C:\\Data\\a.doc", "C:\\Data\\b.doc"}));
  EXPECT_EQ(Selected(), "2 file(s) selected");
  EXPECT_EQ(TakeMessages(), Strings{});
}

TEST_F(RestoreListTest, StoppedListingLeavesCountsAndFormAndUsesTheStopUp) {
  Mark("1, 2, 3");
  catalog->Execute("UPDATE Catalog SET Restore = 1");
  DuringWalk(3, [this] { ui().form.UserKey(controls::Key::kEscape); });
  Refresh();
  EXPECT_EQ(ui().asRestoreList.Count(), 2u);
  EXPECT_EQ(Selected(), "3 file(s) selected");
  EXPECT_TRUE(ui().form.IsOpen());
  EXPECT_FALSE(form.StopRequested);
  ui().form.UserKey(controls::Key::kF5);
  EXPECT_EQ(Selected(), "9 file(s) selected");
}

TEST_F(RestoreListTest, StoppedUpdateKeepsTheRestOfTheList) {
  Mark("1, 2, 3");
  for (int i = 1; i <= 3; ++i) ui().asRestoreList.UserTick(i, false);
  DuringWalk(2, [this] { ui().form.UserKey(controls::Key::kEscape); });
  Click(3);
  EXPECT_EQ(catalog->Marked(), (Ids{2, 3}));
  EXPECT_EQ(ui().asRestoreList.Count(), 3u);
}

TEST_F(RestoreListTest, RestoreNowRaisesOnceWithTheMarksCommittedAndTheCatalogFree) {
  TakeControls();
  form.CommenceRestore = [this] {
    events.push_back("CommenceRestore");
    EXPECT_TRUE(Open());
    EXPECT_EQ(catalog->Marked(), (Ids{1, 2, 3, 5, 6, 7, 8, 9}));
    catalog->Execute("BEGIN EXCLUSIVE; UPDATE Catalog SET Restore = 0 WHERE ID = 1; COMMIT");
    // A host that lets messages run while it restores.
    for (int index = 0; index < 5; ++index) Click(index);
    ui().form.UserClose();
    ui().form.UserKey(controls::Key::kEscape);
    ui().tvwSets.UserClickNode(ui().tvwSets.Item(1));
    EXPECT_TRUE(Open());
  };
  ChooseRun();
  TickAll();
  ui().tvwDetails.UserCheck(NodeOf(ui().tvwDetails, "MailBoxes"), true);
  Apply();
  ASSERT_EQ(catalog->Marked().size(), 7u) << "one of two rows of the same name";
  catalog->Execute("UPDATE Catalog SET Restore = 1 WHERE ID = 5");
  Click(0);
  EXPECT_EQ(events, Strings{"CommenceRestore"});
  EXPECT_FALSE(Open());
  EXPECT_EQ(catalog->Marked(), (Ids{2, 3, 5, 6, 7, 8, 9}));
  EXPECT_EQ(TakeMessages(), Strings{});
}

TEST_F(RestoreListTest, CancelAsksOnlyForASelectionAndNoKeepsTheDialog) {
  TakeControls();
  Mark("1, 4");
  desktop.answers = {platform::kAnswerNo, platform::kAnswerYes};
  Click(1);
  EXPECT_TRUE(Open());
  EXPECT_EQ(events, Strings{});
  EXPECT_EQ(catalog->Marked(), (Ids{1, 4}));
  EXPECT_EQ(desktop.messages.back().style, 36);

  ui().form.UserKey(controls::Key::kEscape);
  EXPECT_FALSE(Open());
  EXPECT_EQ(events, Strings{"CancelRestore"});
  EXPECT_EQ(catalog->Marked(), Ids{});
  EXPECT_EQ(TakeMessages(), (Strings{kCancelQuestion, kCancelQuestion}));

  TakeControls();  // of the next dialog
  Click(1);
  EXPECT_FALSE(Open());
  EXPECT_EQ(events, (Strings{"CancelRestore", "CancelRestore"}));
  EXPECT_EQ(TakeMessages(), Strings{});
}

TEST_F(RestoreListTest, ClosingAsksTheSameButNoClosesAndKeepsTheMarks) {
  form.curAction("verify");
  TakeControls();
  Mark("1");
  desktop.answers = {platform::kAnswerNo};
  ui().form.UserClose();
  EXPECT_FALSE(Open());
  EXPECT_EQ(events, Strings{});
  EXPECT_EQ(catalog->Marked(), Ids{1});
  EXPECT_EQ(TakeMessages(),
            Strings{"Clear Selection?: You have selected files to verify, Cancel will clear your "
                    "selections, Cancel?"});

  TakeControls();
  Refresh();
  desktop.answers = {platform::kAnswerYes};
  ui().form.UserClose();
  EXPECT_FALSE(Open());
  EXPECT_EQ(events, Strings{"CancelRestore"});
  EXPECT_EQ(catalog->Marked(), Ids{});
  TakeMessages();

  TakeControls();
  ui().form.UserClose();
  EXPECT_FALSE(Open());
  EXPECT_EQ(events, Strings{"CancelRestore"});
  EXPECT_EQ(TakeMessages(), Strings{});
}

TEST_F(RestoreListTest, ClearAsksAndClearsTheMarksOfEverySet) {
  Mark("1, 4");
  catalog->Execute("UPDATE Catalog SET Restore = 1 WHERE ID = 2");  // not listed
  desktop.answers = {platform::kAnswerNo, platform::kAnswerYes};
  Click(4);
  EXPECT_EQ(catalog->Marked(), (Ids{1, 2, 4}));
  Click(4);
  EXPECT_EQ(catalog->Marked(), Ids{});
  EXPECT_EQ(Listed(), Strings{});
  EXPECT_EQ(Selected(), "0 file(s) selected");
  EXPECT_EQ(TakeMessages(), (Strings{"Clear Selection? : Clear All Selected Files? ",
                                     "Clear Selection? : Clear All Selected Files? "}));
  EXPECT_TRUE(ui().form.IsOpen());
  EXPECT_EQ(events, Strings{});
}

TEST_F(RestoreListTest, CancelAndCloseDuringAWalkTakeTheirStepsOnceItHasEnded) {
  TakeControls();
  Mark("1, 2, 3");
  desktop.answers = {platform::kAnswerNo};
  DuringWalk(2, [this] {
    Click(1);
    EXPECT_TRUE(desktop.messages.empty()) << "asked in the middle of the walk";
    EXPECT_TRUE(form.StopRequested);
  });
  Refresh();
  EXPECT_EQ(TakeMessages(), Strings{kCancelQuestion});
  EXPECT_TRUE(Open());
  EXPECT_FALSE(form.StopRequested);

  desktop.answers = {platform::kAnswerNo};
  DuringWalk(3, [this] { controls->form.UserClose(); });
  ChooseRun();
  EXPECT_EQ(controls->tvwDetails.Count(), 4u) << "C:, Data and two files";
  EXPECT_FALSE(Open());
  EXPECT_EQ(TakeMessages(), Strings{kCancelQuestion});
}

TEST_F(RestoreListTest, FailedListingIsReportedAndKeepsTheList) {
  Mark("1");
  catalog->Execute("DROP TABLE LongPaths");
  Refresh();
  ASSERT_EQ(desktop.messages.size(), 1u);
  EXPECT_EQ(desktop.messages[0].title, "ListCurrentSelections");
  EXPECT_EQ(desktop.messages[0].text.substr(0, 7), "(3078) ");
  EXPECT_EQ(desktop.messages[0].style, platform::kExclamation);
  EXPECT_EQ(Listed(), Strings{"C:\\Data\\a.doc"});
}

}  // namespace
}  // namespace kxrestore::dialog_test
