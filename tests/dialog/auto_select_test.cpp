// The auto-select tab, driven through its controls, and what its chooser lists.
#include "dialog/file_types.h"
#include "dialog/type_census.h"
#include "tests/dialog/dialog_fixture.h"

namespace kxrestore::dialog_test {
namespace {

TEST(TypeCensus, ListsTheMostFrequentTypesFirstBelowTheirGroups) {
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
  census.Count(".GZ", 4);
  controls::AutoSelect list("asFiles", nullptr, controls::AutoSelect::Style::kTypes);
  census.List(list);
  Strings rows;
  for (std::size_t number = 1; number <= list.Count(); ++number) {
    const auto entry = list.At(number);
    rows.push_back((entry.isGroup ? "- " : "") + std::string(entry.name) + " " + std::to_string(entry.size));
  }
  EXPECT_EQ(rows, (Strings{"- Documents 6", "- Archives 5", ".gz 5", ".doc 3", ".xls 2",
                           ".\xC3\xA4"
                           "b 2",
                           ".pdf 1", ".zzz 1"}));
  EXPECT_EQ(list.At(4).extension, "Text document");
  list.SetTicked(1, true);
  EXPECT_EQ(list.TickedTypes(), ".doc;.xls;.pdf;");
}

TEST(TypeCensus, ATypeStandsForItselfInAPattern) {
  EXPECT_EQ(dialog::TypePattern("doc"), ".doc");
  EXPECT_EQ(dialog::TypePattern("c#"), ".c[#]");
  EXPECT_EQ(dialog::TypePattern("a[1]"), ".a[[]1]");
  EXPECT_EQ(dialog::TypePattern("a;b"), ".a?b");
}

class AutoSelectTab : public DialogTest {
 protected:
  enum Button { kApply, kSelectAll, kUnselectAll };

  void LoadTypes(const std::vector<sample::FileRow>& rows) {
    MakeCatalog(rows);
    ui().tbsOptions.UserSelect(3);
  }
  void Tick(std::string_view type, bool ticked = true) {
    controls::AutoSelect& list = ui().asFiles;
    for (std::size_t number = 1; number <= list.Count(); ++number) {
      if (list.At(number).name == type) return list.UserTick(number, ticked);
    }
    FAIL() << "there is no type " << type;
  }
  void Apply() { ui().cmdAuto[kApply].UserClick(); }
};

TEST_F(AutoSelectTab, TheChooserIsFilledTheFirstTimeOnly) {
  auto dead = Live(2, "C:\\b.xls");
  dead.status = 5;
  LoadTypes({Live(1, "C:\\a.doc"), dead});
  ASSERT_EQ(ui().asFiles.Count(), 2u);
  EXPECT_EQ(ui().asFiles.At(1).name, "Documents");
  EXPECT_EQ(ui().asFiles.At(2).name, ".doc");
  EXPECT_EQ(ui().panel[2].Tag(), "ok");
  catalog->Execute("UPDATE Catalog SET Status = 2");
  ui().tbsOptions.UserSelect(1);
  ui().tbsOptions.UserSelect(3);
  EXPECT_EQ(ui().asFiles.Count(), 2u);
}

TEST_F(AutoSelectTab, AStoppedOrFailedFillIsTriedAgain) {
  MakeCatalog({Live(1, "C:\\a.doc"), Live(2, "C:\\b.xls")});
  desktop.onDoEvents = [&] {
    ui().form.UserKey(controls::Key::kEscape);
    desktop.onDoEvents = nullptr;
  };
  ui().tbsOptions.UserSelect(3);
  EXPECT_EQ(ui().asFiles.Count(), 0u);
  catalog->HideTable();
  ui().tbsOptions.UserSelect(1);
  ui().tbsOptions.UserSelect(3);
  const Strings messages = TakeMessages();
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_EQ(messages[0].substr(0, 19), "tbsOptions.Click: (");
  catalog->ShowTable();
  ui().tbsOptions.UserSelect(1);
  ui().tbsOptions.UserSelect(3);
  EXPECT_EQ(ui().asFiles.Count(), 3u);
}

TEST_F(AutoSelectTab, ApplyMarksEveryVersionOrTheLatest) {
  auto dead = Live(5, "C:\\dead.doc");
  dead.status = 3;
  auto marked = Live(6, "C:\\a.doc");
  marked.restore = true;
  LoadTypes(
      {Live(1, "C:\\a.doc"), Live(2, "C:\\a.doc"), Live(3, "C:\\b.xls"), Live(4, "C:\\doc"), dead, marked});
  Apply();
  EXPECT_EQ(catalog->Marked(), Ids{6});
  EXPECT_EQ(ui().asRestoreList.Count(), 1u) << "the list is filled although nothing was ticked";

  Tick(".doc");
  ui().chk2.UserClick();
  Apply();
  EXPECT_EQ(catalog->Marked(), Ids{6});
  ui().chk2.UserClick();
  Apply();
  EXPECT_EQ(catalog->Marked(), (Ids{1, 2, 6}));
  ui().cmdAuto[kSelectAll].UserClick();
  Apply();
  EXPECT_EQ(catalog->Marked(), (Ids{1, 2, 3, 6}));
  EXPECT_EQ(ui().asRestoreList.Count(), 4u);
  EXPECT_EQ(ui().lblCounts[0].Caption(), "4 file(s) selected");
  ui().cmdAuto[kUnselectAll].UserClick();
  EXPECT_EQ(ui().asFiles.TickedTypes(), "");
  EXPECT_EQ(TakeMessages(), Strings{});
}

TEST_F(AutoSelectTab, OddTypesMarkJustTheirFiles) {
  LoadTypes({Live(1, "C:\\a.c#"), Live(2, "C:\\a.c1"), Live(3, "C:\\a.x;y"), Live(4, "C:\\a.b[1]"),
             Live(5, "C:\\a.b1"), Live(6, "C:\\it's.o'n")});
  Tick(".c#");
  Tick(".x;y");
  Tick(".b[1]");
  Tick(".o'n");
  Apply();
  EXPECT_EQ(TakeMessages(), Strings{});
  EXPECT_EQ(catalog->Marked(), (Ids{1, 3, 4, 6}));
}

TEST_F(AutoSelectTab, ThisSetIsTheSetOrTheRunsUpToTheChosenOne) {
  LoadTypes({Row(1, 1, "001", "C:\\a.doc"), Row(2, 1, "002", "C:\\b.doc"), Row(3, 2, "001", "C:\\c.doc")});
  Tick(".doc");
  ChooseRun("1 001");
  ui().optLookIn[2].UserClick();
  Apply();
  EXPECT_EQ(catalog->Marked(), Ids{1});
  ChooseRun("1 002");
  Apply();
  EXPECT_EQ(catalog->Marked(), (Ids{1, 2}));
  ui().optLookIn[3].UserClick();
  Apply();
  EXPECT_EQ(catalog->Marked(), (Ids{1, 2, 3}));
}

TEST_F(AutoSelectTab, StoppingKeepsTheMarksAndListsNothing) {
  LoadTypes({Live(1, "C:\\a.doc"), Live(2, "C:\\b.doc"), Live(3, "C:\\c.doc"), Live(4, "C:\\d.xls")});
  Tick("Documents");
  int left = 3;
  desktop.onDoEvents = [&] {
    if (--left == 0) ui().form.UserKey(controls::Key::kEscape);
  };
  Apply();
  EXPECT_EQ(catalog->Marked().size(), 2u);
  EXPECT_EQ(ui().asRestoreList.Count(), 0u);
  Apply();
  EXPECT_EQ(catalog->Marked().size(), 4u);
  EXPECT_EQ(ui().asRestoreList.Count(), 4u);
}

TEST_F(AutoSelectTab, AFailureEndsTheRunAndKeepsItsMarks) {
  LoadTypes({Live(1, "C:\\a.doc"), Live(2, "C:\\b.doc"), Live(3, "C:\\c.xls")});
  Tick(".doc");
  catalog->Execute(
      "CREATE TRIGGER Refuse BEFORE UPDATE ON Catalog WHEN old.ID = 2 BEGIN SELECT raise(ABORT, 'refused'); "
      "END");
  Apply();
  const Strings messages = TakeMessages();
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_EQ(messages[0].substr(0, 16), "UpdateByID(2): (");
  EXPECT_EQ(catalog->Marked(), Ids{1});
  EXPECT_EQ(ui().asRestoreList.Count(), 1u);

  catalog->Execute("DROP VIEW FullCatalog");
  Apply();
  const Strings later = TakeMessages();
  ASSERT_EQ(later.size(), 1u);
  EXPECT_EQ(later[0].substr(0, 18), "ApplyAutoSelect: (");
}

}  // namespace
}  // namespace kxrestore::dialog_test
