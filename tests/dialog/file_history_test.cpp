// The menus of files: all versions of one, and its place in its backup; and what is remembered of the lists.
#include "controls/list_rows.h"
#include "dialog/list_memory.h"
#include "platform/headless/headless_menu.h"
#include "platform/headless/recording_peer.h"
#include "tests/dialog/dialog_fixture.h"

namespace kxrestore::dialog_test {
namespace {

using platform::HeadlessMenu;

class FileHistoryTest : public DialogTest {
 protected:
  FileHistoryTest() {
    auto renamed = Row(4, 2, "001", "D:\\SHORT~1.DOC");
    renamed.origName = "C:\\d\\A.doc";
    std::vector<sample::FileRow> rows = {
        Row(1, 1, "001", "C:\\d\\a.doc"),       Row(2, 1, "003", "C:\\d\\a.doc"),
        Row(3, 1, "003", "C:\\d\\a.docx"),      renamed,
        Dead(Row(5, 1, "002", "C:\\d\\a.doc")), Row(6, 1, "003", "C:\\d\\x[1]*.doc")};
    const char* const dates[] = {"2026-01-01 10:00:00", "2026-03-01 10:00:00", "2026-03-01 10:00:00",
                                 "2026-02-01 10:00:00", "2026-02-15 10:00:00", "2026-03-01 10:00:00"};
    for (std::size_t i = 0; i < rows.size(); ++i) rows[i].dateStamp = dates[i];
    MakeCatalog(rows);
  }
  HeadlessMenu MenuOf(controls::Node node) {
    ShowTab(1);
    return HeadlessMenu(ui().tvwDetails, node.Index());
  }
  // What the list shows, row by row: name, set, run, and which version it is.
  Strings Found() {
    const AutoSelect& list = ui().asSearch;
    Strings lines;
    for (std::size_t number = 1; number <= list.Count(); ++number) {
      const auto entry = list.At(number);
      lines.push_back(std::string(entry.name) + " " + std::to_string(entry.setId) + " " +
                      std::string(entry.extension) + " " +
                      std::to_string(static_cast<int>(list.VersionAt(number))));
    }
    return lines;
  }
  // Chooses from the menu of an entry; false where it has no such item.
  bool Choose(AutoSelect& list, std::string_view name, std::string_view item) {
    if (&list == &ui().asSearch) ShowTab(2);
    for (std::size_t number = 1; number <= list.Count(); ++number) {
      if (list.At(number).name == name) return HeadlessMenu(list, number).Choose(item);
    }
    return false;
  }
  static constexpr const char* kVersions = "All versions of this file";
  static constexpr const char* kInBackup = "Show in its backup";
};

TEST_F(FileHistoryTest, AllVersionsComeFromEverySetTheNewestFirst) {
  const Strings all{"C:\\d\\a.doc 1 003 2", "C:\\d\\A.doc 2 001 1", "C:\\d\\a.doc 1 001 1"};
  ChooseRun();
  EXPECT_TRUE(MenuOf(Detail("a.doc")).Choose(kVersions));
  EXPECT_EQ(Found(), all);
  EXPECT_EQ(ui().tbsOptions.SelectedIndex(), 2);
  EXPECT_EQ(ui().lblSearchCount.Caption(), "3 File(s)");
  EXPECT_EQ(ui().cboMask.Text(), "C:\\d\\a.doc");

  // The same from a hit and from the restore list, where the renamed row goes by its stored name.
  ShowTab(2);
  Find("a.doc");
  EXPECT_EQ(ui().asSearch.Count(), 4u) << "a mask finds more";
  ui().asSearch.SetFilter({.words = "docx"});
  ui().asSearch.SortBy(controls::ListColumn::kSize, false);
  EXPECT_TRUE(Choose(ui().asSearch, "C:\\d\\A.doc", kVersions));
  EXPECT_EQ(Found(), all);
  EXPECT_FALSE(ui().asSearch.Rows().Filtered() || ui().asSearch.Rows().Sorted());
  catalog->Execute("UPDATE Catalog SET Restore = 1 WHERE ID = 4");
  Click(kRefresh);
  EXPECT_TRUE(Choose(ui().asRestoreList, "D:\\SHORT~1.DOC", kVersions));
  EXPECT_EQ(Found(), all);

  EXPECT_TRUE(Choose(ui().asSearch, "C:\\d\\A.doc", kVersions));
  EXPECT_TRUE(MenuOf(Detail("x[1]*.doc")).Choose(kVersions));
  EXPECT_EQ(Found(), Strings{"C:\\d\\x[1]*.doc 1 003 0"});
  ui().cmdSearch[kFind].UserClick();
  EXPECT_EQ(Found(), Strings{"C:\\d\\x[1]*.doc 1 003 0"}) << "the mask stands for the name";
}

TEST_F(FileHistoryTest, AFileIsShownInItsBackup) {
  ShowTab(2);
  Find("doc");
  EXPECT_TRUE(Choose(ui().asSearch, "C:\\d\\A.doc", kInBackup));
  EXPECT_EQ(ui().tbsOptions.SelectedIndex(), 1);
  EXPECT_EQ(ui().tvwSets.SelectedItem().Tag(), "2 001");
  EXPECT_EQ(ui().tvwDetails.SelectedItem().Tag(), "D:\\SHORT~1.DOC");
  EXPECT_TRUE(ui().tvwDetails.SelectedItem().Parent().Expanded());

  // A run that is shown already keeps its ticks; another one asks for those that are not applied.
  ui().tvwDetails.UserCheck(ui().tvwDetails.SelectedItem(), true);
  EXPECT_TRUE(Choose(ui().asSearch, "C:\\d\\A.doc", kInBackup));
  EXPECT_TRUE(ui().tvwDetails.SelectedItem().Checked());
  desktop.answers = {platform::Answer::kNo, platform::Answer::kYes};
  EXPECT_TRUE(Choose(ui().asSearch, "C:\\d\\a.docx", kInBackup));
  EXPECT_EQ(ui().tvwDetails.Files().pending, 1u);
  EXPECT_TRUE(Choose(ui().asSearch, "C:\\d\\a.docx", kInBackup));
  EXPECT_EQ(ui().tvwDetails.SelectedItem().Text(), "a.docx");
  ExpectReports({"Ticks not applied: ", "Ticks not applied: "});
}

TEST_F(FileHistoryTest, WhatIsNotThereAnyMoreIsSaid) {
  ShowTab(2);
  Find("A.doc");
  catalog->Execute("UPDATE Catalog SET Status = 3 WHERE ID = 4");
  EXPECT_TRUE(Choose(ui().asSearch, "C:\\d\\A.doc", kInBackup));
  ExpectReports({": The file was not found in its backup."});
  catalog->Execute("UPDATE Catalog SET Extension = '009' WHERE ID = 3");
  ShowTab(2);
  Find("docx");
  EXPECT_TRUE(Choose(ui().asSearch, "C:\\d\\a.docx", kInBackup));
  ExpectReports({": The backup of this file is not among the backup sets."});
  catalog->HideTable();
  EXPECT_TRUE(Choose(ui().asSearch, "C:\\d\\a.docx", kVersions));
  ExpectReports({"AllVersions: ("});
  EXPECT_EQ(ui().asSearch.Count(), 1u) << "what was found stays";
}

TEST_F(FileHistoryTest, MenusOfferWhatCanBeDone) {
  EXPECT_EQ(HeadlessMenu(ui().asRestoreList).Texts(), Strings());
  ShowTab(2);
  Find("docx");
  AutoSelect& list = ui().asSearch;
  EXPECT_EQ(HeadlessMenu(list).Texts(), (Strings{"Tick all shown", "Untick all shown"}));
  list.UserSelect(0, 0, true);
  HeadlessMenu menu(list, 1);
  EXPECT_EQ(menu.Texts(), (Strings{"Tick selected", "Untick selected", "-", "Tick all shown",
                                   "Untick all shown", "-", kVersions, kInBackup}));
  EXPECT_TRUE(menu.Choose("Tick selected"));
  EXPECT_TRUE(list.TickedAt(1));
  EXPECT_TRUE(menu.Choose("Untick all shown"));
  EXPECT_FALSE(list.TickedAt(1));
  ChooseRun();
  EXPECT_FALSE(MenuOf(Detail("d")).Choose(kVersions)) << "a folder";
}

TEST_F(FileHistoryTest, TheRunsDateIsKnown) {
  ShowTab(2);
  Find("docx");
  EXPECT_EQ(ui().asSearch.RunTime(ui().asSearch.At(1)), platform::TimeNumber({2026, 3, 1, 8, 0, 0}));
  AutoSelect::Entry unknown;
  unknown.setId = 9;
  EXPECT_EQ(ui().asSearch.RunTime(unknown), AutoSelect::kNoTime);
}

TEST_F(FileHistoryTest, KeysInTheMaskBoxFindAndGoOnIntoTheHits) {
  platform::PeerLog mask, hits;
  platform::Record(ui().cboMask, mask);
  platform::Record(ui().asSearch, hits);
  ui().tbsOptions.UserSelect(2, false);
  EXPECT_EQ(mask.focused, 0) << "passing by with the arrows";
  ui().tbsOptions.UserSelect(2);
  EXPECT_EQ(mask.focused, 1);
  EXPECT_FALSE(ui().cboMask.UserDown()) << "there are no hits to go into";
  ui().cboMask.UserType("docx");
  ui().cboMask.UserEnter();
  EXPECT_EQ(ui().asSearch.Count(), 1u);
  EXPECT_TRUE(ui().cboMask.UserDown());
  EXPECT_EQ(hits.focused, 1);
}

TEST_F(FileHistoryTest, MasksAndTheLookOfListsAreRemembered) {
  using controls::ListColumn;
  const controls::ListLook look{
      {{ListColumn::kFolder, 3000}, {ListColumn::kName, 700}}, true, true, ListColumn::kSize};
  desktop.user = [&](controls::Form&) {
    ShowTab(2);
    for (int i = 0; i < 25; ++i) Find("m" + std::to_string(i) + "*");
    ui().asSearch.SetLook(look);
  };
  form.ShowModal();
  desktop.user = [&](controls::Form&) {
    ShowTab(2);
    ASSERT_EQ(ui().cboMask.Items().size(), 20u);
    EXPECT_EQ(ui().cboMask.Items().front() + ui().cboMask.Items().back(), "m5*m24*");
    EXPECT_EQ(ui().asSearch.Look(), look);
    EXPECT_EQ(ui().asRestoreList.Look(), controls::ListLook());
    Find("m7*");
    EXPECT_EQ(ui().cboMask.Items().size(), 20u);
  };
  form.ShowModal();
  PutSetting(platform::kHkeyCurrentUser, "SearchListColumns",
             "name 5,name 6,folder x,size -1,date 99999999,bogus 3,,set 40;date*");
  EXPECT_EQ(ui().asSearch.Look(), (controls::ListLook{{{ListColumn::kName, 5}, {ListColumn::kSet, 40}}}));
  EXPECT_EQ(dialog::LookText(dialog::LookOf("size 1,name 2;backup+")), "size 1,name 2;backup+");
  EXPECT_EQ(dialog::LookText(dialog::LookOf("")), "");
}

}  // namespace
}  // namespace kxrestore::dialog_test
