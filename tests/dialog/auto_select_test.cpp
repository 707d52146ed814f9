// The auto-select tab, driven through its controls, and what its chooser lists.
#include "dialog/file_types.h"
#include "dialog/type_census.h"
#include "tests/dialog/catalog_form.h"

namespace kxrestore::dialog_test {
namespace {

TEST(TypeCensus, ListsTypesByKindTheMostFrequentFirst) {
  dialog::TypeCensus census;
  for (const char* name : {"C:\\a.DOC", "C:\\b.doc", "C:\\c.Doc", "C:\\d.pdf", "C:\\e.xls", "C:\\f.xls",
                           "C:\\x.zzz", "C:\\noext", "C:\\dir.ext\\noext", "C:\\ends.",
                           "C:\\p.\xC3\x84"
                           "b",
                           "C:\\q.\xC3\xA4"
                           "b",
                           "", "mail.tar.gz"}) {
    census.Count(name);
  }
  controls::AutoSelect list("asFiles", nullptr, controls::AutoSelect::Style::kTypes);
  census.List(list);
  Texts rows;
  for (std::size_t number = 1; number <= list.Count(); ++number) {
    const auto entry = list.At(number);
    rows.push_back((entry.isGroup ? "- " : "") + std::string(entry.name) + " " + std::to_string(entry.size));
  }
  EXPECT_EQ(rows,
            (Texts{"- Documents 6", ".doc 3", ".xls 2", ".pdf 1", "- Archives 1", ".gz 1", "- Other types 3",
                   ".\xC3\xA4"
                   "b 2",
                   ".zzz 1"}));
  EXPECT_EQ(list.At(2).extension, "Text document");
  list.SetTicked(1, true);
  EXPECT_EQ(list.TickedTypes(), ".doc;.xls;.pdf;");
}

TEST(TypeCensus, ATypeStandsForItselfInAPattern) {
  EXPECT_EQ(dialog::TypePattern("doc"), ".doc");
  EXPECT_EQ(dialog::TypePattern("c#"), ".c[#]");
  EXPECT_EQ(dialog::TypePattern("a[1]"), ".a[[]1]");
  EXPECT_EQ(dialog::TypePattern("a;b"), ".a?b");
}

class AutoSelectTab : public CatalogForm {
 protected:
  enum Button { kApply, kSelectAll, kUnselectAll };

  void LoadTypes(const std::vector<FileRow>& rows, const std::vector<sample::RunRow>& runs = {}) {
    Load(rows, runs);
    ShowTab(3);
  }
  void Tick(std::string_view type, bool ticked = true) {
    controls::AutoSelect& list = Ui().asFiles;
    for (std::size_t number = 1; number <= list.Count(); ++number) {
      if (list.At(number).name == type) return list.UserTick(number, ticked);
    }
    FAIL() << "there is no type " << type;
  }
  void Apply() { Ui().cmdAuto[kApply].UserClick(); }
};

TEST_F(AutoSelectTab, TheChooserIsFilledTheFirstTimeOnly) {
  auto dead = Live(2, "C:\\b.xls");
  dead.status = 5;
  LoadTypes({Live(1, "C:\\a.doc"), dead});
  EXPECT_EQ(Names(Ui().asFiles), (Texts{"Documents", ".doc"}));
  EXPECT_EQ(Ui().panel[2].Tag(), "ok");
  file->Execute("UPDATE Catalog SET Status = 2");
  ShowTab(1);
  ShowTab(3);
  EXPECT_EQ(Ui().asFiles.Count(), 2u);
}

TEST_F(AutoSelectTab, AStoppedOrFailedFillIsTriedAgain) {
  Load({Live(1, "C:\\a.doc"), Live(2, "C:\\b.xls")});
  platform.desktop.onDoEvents = [&] {
    Ui().form.UserKey(controls::Key::kEscape);
    platform.desktop.onDoEvents = nullptr;
  };
  ShowTab(3);
  EXPECT_EQ(Ui().asFiles.Count(), 0u);
  file->Execute("ALTER TABLE Catalog RENAME TO Elsewhere");
  ShowTab(1);
  ShowTab(3);
  const Texts messages = Messages();
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_EQ(messages[0].substr(0, 18), "tbsOptions.Click|(");
  file->Execute("ALTER TABLE Elsewhere RENAME TO Catalog");
  ShowTab(1);
  ShowTab(3);
  EXPECT_EQ(Ui().asFiles.Count(), 3u);
}

TEST_F(AutoSelectTab, ApplyMarksEveryVersionOrTheLatest) {
  auto dead = Live(5, "C:\\dead.doc");
  dead.status = 3;
  auto marked = Live(6, "C:\\a.doc");
  marked.restore = true;
  LoadTypes(
      {Live(1, "C:\\a.doc"), Live(2, "C:\\A.DOC"), Live(3, "C:\\b.xls"), Live(4, "C:\\doc"), dead, marked});
  Apply();
  EXPECT_EQ(file->Marked(), Ids{6});
  EXPECT_EQ(Ui().asRestoreList.Count(), 1u) << "the list is filled although nothing was ticked";

  Tick(".doc");
  Ui().chk2.UserClick();
  Apply();
  EXPECT_EQ(file->Marked(), Ids{6});
  Ui().chk2.UserClick();
  Apply();
  EXPECT_EQ(file->Marked(), (Ids{1, 2, 6}));
  Ui().cmdAuto[kSelectAll].UserClick();
  Apply();
  EXPECT_EQ(file->Marked(), (Ids{1, 2, 3, 6}));
  EXPECT_EQ(Ui().asRestoreList.Count(), 4u);
  EXPECT_EQ(Ui().lblCounts[0].Caption(), "4 file(s) selected");
  Ui().cmdAuto[kUnselectAll].UserClick();
  EXPECT_EQ(Ui().asFiles.TickedTypes(), "");
  EXPECT_EQ(Messages(), Texts{});
}

TEST_F(AutoSelectTab, OddTypesMarkJustTheirFiles) {
  LoadTypes({Live(1, "C:\\a.c#"), Live(2, "C:\\a.c1"), Live(3, "C:\\a.x;y"), Live(4, "C:\\a.b[1]"),
             Live(5, "C:\\a.b1"), Live(6, "C:\\it's.o'n")});
  Tick(".c#");
  Tick(".x;y");
  Tick(".b[1]");
  Tick(".o'n");
  Apply();
  EXPECT_EQ(Messages(), Texts{});
  EXPECT_EQ(file->Marked(), (Ids{1, 3, 4, 6}));
}

TEST_F(AutoSelectTab, ThisSetIsTheSetOrTheRunsUpToTheChosenOne) {
  auto second = Live(2, "C:\\b.doc"), other = Live(3, "C:\\c.doc");
  second.extension = "002";
  other.setId = 2;
  LoadTypes({Live(1, "C:\\a.doc"), second, other},
            {CompletedRun(1, "001", 1), CompletedRun(1, "002", 2), CompletedRun(2, "001", 3)});
  Tick(".doc");
  const controls::Node newest = Ui().tvwSets.Item("Sets\\Set 1").Child();
  Ui().tvwSets.UserClickNode(newest.Next());
  Ui().optLookIn[2].UserClick();
  Apply();
  EXPECT_EQ(file->Marked(), Ids{1});
  Ui().tvwSets.UserClickNode(newest);
  Apply();
  EXPECT_EQ(file->Marked(), (Ids{1, 2}));
  Ui().optLookIn[3].UserClick();
  Apply();
  EXPECT_EQ(file->Marked(), (Ids{1, 2, 3}));
}

TEST_F(AutoSelectTab, StoppingKeepsTheMarksAndListsNothing) {
  LoadTypes({Live(1, "C:\\a.doc"), Live(2, "C:\\b.doc"), Live(3, "C:\\c.doc"), Live(4, "C:\\d.xls")});
  Tick("Documents");
  int left = 3;
  platform.desktop.onDoEvents = [&] {
    if (--left == 0) Ui().form.UserKey(controls::Key::kEscape);
  };
  Apply();
  EXPECT_EQ(file->Marked().size(), 2u);
  EXPECT_EQ(Ui().asRestoreList.Count(), 0u);
  Apply();
  EXPECT_EQ(file->Marked().size(), 4u);
  EXPECT_EQ(Ui().asRestoreList.Count(), 4u);
}

TEST_F(AutoSelectTab, AFailureEndsTheRunAndKeepsItsMarks) {
  LoadTypes({Live(1, "C:\\a.doc"), Live(2, "C:\\b.doc"), Live(3, "C:\\c.xls")});
  Tick(".doc");
  file->Execute(
      "CREATE TRIGGER Refuse BEFORE UPDATE ON Catalog WHEN old.ID = 2 BEGIN SELECT raise(ABORT, 'refused'); "
      "END");
  Apply();
  const Texts messages = Messages();
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_EQ(messages[0].substr(0, 15), "UpdateByID(2)|(");
  EXPECT_EQ(file->Marked(), Ids{1});
  EXPECT_EQ(Ui().asRestoreList.Count(), 1u);

  file->Execute("DROP VIEW FullCatalog");
  Apply();
  const Texts later = Messages();
  ASSERT_EQ(later.size(), 1u);
  EXPECT_EQ(later[0].substr(0, 17), "ApplyAutoSelect|(");
}

}  // namespace
}  // namespace kxrestore::dialog_test
