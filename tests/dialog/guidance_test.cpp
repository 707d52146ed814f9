// What leads the user on: hints in what is empty, advice under errors, help that follows the keyboard.
#include "dialog/advice.h"
#include "engine/error_numbers.h"
#include "tests/dialog/dialog_fixture.h"

namespace kxrestore::dialog_test {
namespace {

class GuidanceTest : public DialogTest {
 protected:
  void SetUp() override {
    MakeCatalog(
        {Row(1, 1, "003", "C:\\a.doc"), Row(2, 2, "001", "C:\\b.doc"), Dead(Row(3, 1, "002", "C:\\c.doc"))});
  }
};

TEST_F(GuidanceTest, EmptyTreesAndListsSayWhatToDo) {
  EXPECT_EQ(ui().tvwDetails.EmptyText(), "Choose a backup on the left to see its files.");
  EXPECT_EQ(ui().asRestoreList.EmptyText(),
            "Nothing is marked to restore yet. Tick files above and press Apply.");
  ChooseRun("1 002");
  EXPECT_EQ(ui().tvwDetails.EmptyText(), "This backup holds no files.");
  EscapeAt(1);
  ChooseRun();
  EXPECT_EQ(ui().tvwDetails.EmptyText(), "Stopped. Choose the backup again to see its files.");

  ShowTab(2);
  const std::string before = ui().asSearch.EmptyText();
  ui().optLookIn[0].UserClick();
  Find("*.foo");
  EXPECT_EQ(ui().asSearch.EmptyText(),
            "No file matches *.foo in this set. Look in all sets, or try a shorter mask.");
  ui().optLookIn[1].UserClick();
  Find("*.foo");
  EXPECT_EQ(ui().asSearch.EmptyText(), "No file matches *.foo in any set. Try a shorter mask.");
  ui().cmdSearch[kClearFound].UserClick();
  EXPECT_EQ(ui().asSearch.EmptyText(), before);

  catalog->HideTable();
  ChooseRun();
  EXPECT_TRUE(ui().tvwDetails.EmptyText().starts_with("The files could not be read."));
  ExpectReports({"LoadBackupSetDetail: ("});
}

TEST_F(GuidanceTest, MarksOfAnEarlierTimeAreToldOfOnOpening) {
  catalog->Execute("UPDATE Catalog SET Restore = 1 WHERE ID < 3");
  const std::string told = "2 files are still marked from before: press Refresh to see them.";
  ui().form.UserShown();
  EXPECT_EQ(ui().asRestoreList.EmptyText(), told);
  EXPECT_EQ(ui().asRestoreList.Count(), 0U);
  Click(kRefresh);
  EXPECT_EQ(Listed().size(), 2U);
  desktop.answers = {platform::Answer::kYes};
  Click(kClearList);
  ExpectReports({"Clear Selection? "});
  EXPECT_NE(ui().asRestoreList.EmptyText(), told);
}

TEST_F(GuidanceTest, UnderAnErrorALineSaysWhatToDo) {
  catalog->Execute("ALTER TABLE Catalog RENAME TO Gone");
  Click(kRefresh);
  ASSERT_EQ(desktop.messages.size(), 1U);
  const std::string text = desktop.messages[0].text;
  EXPECT_TRUE(text.starts_with("(3078) ")) << text;
  EXPECT_TRUE(text.ends_with("\n\n" + Say(dialog::AdviceFor(3078)))) << text;
  desktop.messages.clear();
  EXPECT_EQ(dialog::AdviceFor(engine::error_number::kFileInUse), Phrase::kAdviceWait);
  EXPECT_EQ(dialog::AdviceFor(error_number::kOutOfMemory), Phrase::kAdviceMemory);
}

TEST_F(GuidanceTest, HelpFollowsTheKeyboardAsItDoesThePointer) {
  ui().cmdRestore[kRefresh].UserKeyboardEnter();
  EXPECT_EQ(ui().lblHelp.Tag(), "Refresh");
  EXPECT_TRUE(ui().lblHelp.Caption().starts_with("REFRESH LIST"));
  ui().tvwSets.UserKeyboardEnter();
  EXPECT_EQ(ui().lblHelp.Tag(), "tvwSets");
  ui().cmdRestore[kRestoreNow].UserKeyboardEnter();  // disabled
  EXPECT_EQ(ui().lblHelp.Tag(), "tvwSets");
}

}  // namespace
}  // namespace kxrestore::dialog_test
