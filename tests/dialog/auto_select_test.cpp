// The auto-select tab, driven through its controls, and what its chooser lists.
#include "dialog/auto_select.h"

#include "catalog/type_census.h"
#include "dialog/restore_list.h"
#include "dialog/type_list.h"
#include "tests/dialog/dialog_fixture.h"

namespace kxrestore::dialog_test {
namespace {

TEST(TypeCensus, ListsTheMostFrequentTypesFirstBelowTheirGroups) {
  catalog::TypeCensus census;
  for (const char* name : {"C:\\a.DOC", "C:\\b.doc", "C:\\c.Doc", "C:\\d.pdf", "C:\\e.xls", "C:\\f.xls",
                           "C:\\x.zzz", "C:\\noext", "C:\\dir.ext\\noext", "C:\\ends.", "C:\\p.\xC3\x84y",
                           "C:\\q.\xC3\xA4y", "", "mail.tar.gz"}) {
    census.Count(name);
  }
  census.Count(".GZ", 4);
  AutoSelect list("asFiles", nullptr, AutoSelect::Style::kTypes);
  dialog::ListTypes(census, list);
  Strings rows;
  for (std::size_t number = 1; number <= list.Count(); ++number) {
    const auto entry = list.At(number);
    rows.push_back((entry.isGroup ? "- " : "") + std::string(entry.name) + " " + std::to_string(entry.size));
  }
  EXPECT_EQ(rows, (Strings{"- Documents 6", "- Archives 5", ".gz 5", ".doc 3", ".\xC3\xA4y 2", ".xls 2",
                           ".pdf 1", ".zzz 1"}));
  EXPECT_EQ(list.At(4).extension, "Text document");
  list.SetTicked(1, true);
  EXPECT_EQ(list.TickedTypes(), ".doc;.xls;.pdf;");
}

TEST(TypeCensus, EachTypeEndsInASemicolon) {
  EXPECT_EQ(catalog::PatternsOf(".doc;x;;.xls"), (Strings{"*.doc", "*x", "*"}));
  EXPECT_EQ(catalog::PatternsOf(""), Strings{});
}

class AutoSelectTab : public DialogTest {
 protected:
  void LoadTypes(const std::vector<sample::FileRow>& rows) {
    MakeCatalog(rows);
    ShowTab(3);
  }
  void ShowTabAgain() {
    ShowTab(1);
    ShowTab(3);
  }
  AutoSelect& Types() { return ui().asFiles; }
  void ApplyTypes() { ui().cmdAuto[kApplyTypes].UserClick(); }
};

TEST_F(AutoSelectTab, TheChooserIsFilledOnceUnlessThatWasStoppedOrFailed) {
  MakeCatalog({Live(1, "C:\\a.doc"), Live(2, "C:\\b.xls"), Dead(Live(3, "C:\\c.zip"))});
  ui();
  desktop.onDoEvents = [&] {
    Escape();
    desktop.onDoEvents = nullptr;
  };
  ShowTab(3);
  EXPECT_EQ(Types().Count(), 0u);
  catalog->HideTable();
  ShowTabAgain();
  ExpectReports({"tbsOptions.Click: ("});
  catalog->ShowTable();
  for (int visit = 0; visit < 2; ++visit) {
    ShowTabAgain();
    EXPECT_EQ(Names(Types()), (Strings{".doc", ".xls", "Documents"}));
    catalog->Execute("UPDATE Catalog SET Status = 2");
  }
}

TEST_F(AutoSelectTab, ApplyMarksEveryVersionOrTheLatest) {
  auto marked = Live(6, "C:\\a.doc");
  marked.restore = true;
  LoadTypes({Live(1, "C:\\a.doc"), Live(2, "C:\\a.doc"), Live(3, "C:\\b.xls"), Live(4, "C:\\doc"),
             Dead(Live(5, "C:\\dead.doc")), marked});
  ApplyTypes();
  EXPECT_EQ(catalog->Marked(), Ids{6});
  EXPECT_EQ(ui().asRestoreList.Count(), 1u) << "the list is filled although nothing was ticked";

  Tick(Types(), ".doc");
  ui().chk2.UserClick();
  ApplyTypes();
  EXPECT_EQ(catalog->Marked(), Ids{6});
  ui().chk2.UserClick();
  ApplyTypes();
  EXPECT_EQ(catalog->Marked(), (Ids{1, 2, 6}));
  ui().cmdAuto[kSelectTypes].UserClick();
  ApplyTypes();
  EXPECT_EQ(catalog->Marked(), (Ids{1, 2, 3, 6}));
  EXPECT_EQ(ui().asRestoreList.Count(), 4u);
  EXPECT_EQ(Selected(), "4 file(s) selected");
  ui().cmdAuto[kUnselectTypes].UserClick();
  EXPECT_EQ(Types().TickedTypes(), "");
}

TEST_F(AutoSelectTab, TheBoxIsReadForEachTypeAndTheLastPatternStaysTheExtension) {
  MakeCatalog({Live(1, "C:\\a.doc"), Live(2, "C:\\a.doc"), Live(3, "C:\\b.xls"), Live(4, "C:\\b.xls")});
  BareContext bare(platform.Get(), *workspace);
  auto& [parameters, controls, services, context] = bare;
  context.connection.DBName = catalog->Path();
  dialog::SetTree setTree(context);
  dialog::RestoreList restoreList(context, {});
  const dialog::AutoSelectPanel panel(context, setTree, restoreList);
  controls.panel[2].SetVisible(true);
  for (const char* type : {".doc", ".xls"}) {
    AutoSelect::Entry entry;
    entry.name = type;
    controls.asFiles.Add(entry, true);
  }
  DuringWalk(2, [&] {
    controls.chk2.UserClick();
    controls.optLookIn[2].SetValue(true);  // read once, before the first type; there is no set 9
    context.choice.m_lngSetID = 9;
  });
  controls.cmdAuto[kApplyTypes].UserClick();
  EXPECT_EQ(catalog->Marked(), (Ids{1, 2, 4}));
  EXPECT_EQ(context.choice.m_strExtension, "*.xls");
}

TEST_F(AutoSelectTab, OddTypesMarkJustTheirFilesInTheChosenRuns) {
  LoadTypes({Live(1, "C:\\a.c#"), Live(2, "C:\\a.c1"), Live(3, "C:\\a.x;y"), Row(4, 1, "002", "C:\\a.b[1]"),
             Live(5, "C:\\a.b1"), Row(6, 2, "001", "C:\\it's.o'n")});
  for (const char* type : {".c#", ".x;y", ".b[1]", ".o'n"}) Tick(Types(), type);
  const std::pair<const char*, Ids> cases[] = {
      {"1 001", {1, 3}}, {"1 002", {1, 3, 4}}, {"Online Backups", {1, 3, 4, 6}}};
  for (const auto& [node, marked] : cases) {
    ChooseNode(node);
    ui().optLookIn[marked.contains(6) ? 3 : 2].UserClick();
    ApplyTypes();
    EXPECT_EQ(catalog->Marked(), marked) << node;
  }
}

TEST_F(AutoSelectTab, StoppingAndFailingKeepTheMarksThatAreMade) {
  LoadTypes({Live(1, "C:\\a.doc"), Live(2, "C:\\b.doc"), Live(3, "C:\\c.doc"), Live(4, "C:\\d.doc"),
             Live(5, "C:\\e.xls")});
  Tick(Types(), "Documents");
  ui().asRestoreList.Add({});
  EscapeAt(3);
  ApplyTypes();
  EXPECT_EQ(catalog->Marked().size(), 3u) << "pending messages run after each row";
  EXPECT_EQ(ui().asRestoreList.Count(), 1u) << "a stop leaves the list as it was";

  catalog->Execute(
      "UPDATE Catalog SET Restore = 0; CREATE TRIGGER Refuse BEFORE UPDATE ON Catalog WHEN old.ID = 2 BEGIN "
      "SELECT raise(ABORT, 'refused'); END");
  ApplyTypes();
  ExpectReports({"UpdateByID(2): (", "ApplyAutoSelect: 1 file(s) could not be marked."});
  EXPECT_EQ(catalog->Marked(), (Ids{1, 3, 4, 5}));
  EXPECT_EQ(ui().asRestoreList.Count(), 4u);
  catalog->Execute("DROP TRIGGER Refuse");
  ApplyTypes();
  EXPECT_EQ(catalog->Marked().size(), 5u);
  catalog->Execute("DROP VIEW FullCatalog");
  ApplyTypes();
  ExpectReports({"ApplyAutoSelect: ("});
}

Strings Counts(const AutoSelect& list) {
  Strings counts;
  for (std::size_t number = 1; number <= list.Count(); ++number) {
    const AutoSelect::Entry entry = list.At(number);
    counts.push_back(std::string(entry.name) + (entry.sizeKnown ? " " + std::to_string(entry.size) : " ?"));
  }
  std::sort(counts.begin(), counts.end());
  return counts;
}

class TypeCountsTest : public AutoSelectTab {
 protected:
  void SetUp() override {
    MakeCatalog({Row(1, 1, "003", "C:\\a.doc"), Row(2, 1, "003", "C:\\b.DOCX"), Row(3, 1, "002", "C:\\a.doc"),
                 Row(4, 1, "003", "C:\\x.doc.bak"), Row(5, 2, "001", "C:\\c.xls"),
                 Row(6, 2, "001", "C:\\d.docs\\e"), Dead(Row(7, 1, "003", "C:\\dead.doc"))});
  }
};

TEST_F(TypeCountsTest, ACountIsWhatThePatternMarksInWhatIsLookedIn) {
  ShowTab(3);
  EXPECT_EQ(Counts(Types()), (Strings{".bak 1", ".doc 5", ".docx 1", ".xls 1", "Documents 6"}));
  ui().chk2.UserClick();  // the newest of each
  EXPECT_EQ(Counts(Types()), (Strings{".bak 1", ".doc 4", ".docx 1", ".xls 1", "Documents 5"}));
  ui().chk2.UserClick();
  ChooseRun("1 003");
  ui().optLookIn[2].UserClick();
  EXPECT_EQ(Counts(Types()), (Strings{".bak 1", ".doc 4", ".docx 1", ".xls 0", "Documents 4"}));
  ChooseRun("1 002");  // looks in that run and those before it
  EXPECT_EQ(Counts(Types()), (Strings{".bak 0", ".doc 1", ".docx 0", ".xls 0", "Documents 1"}));
  Tick(Types(), ".doc");
  ApplyTypes();
  EXPECT_EQ(catalog->Marked(), Ids{3});
}

TEST_F(TypeCountsTest, ATypeSaysWhichOthersItTakes) {
  ShowTab(3);
  Strings said;
  for (std::size_t number = 1; number <= Types().Count(); ++number)
    said.emplace_back(Types().At(number).extension);
  EXPECT_EQ(std::count(said.begin(), said.end(), "Text document; takes .docx, too"), 1);
  EXPECT_EQ(std::count(said.begin(), said.end(), "Text document"), 1);
}

// Counting keeps nobody waiting: a click cuts it off, and it is taken up again afterwards; Esc ends it.
TEST_F(TypeCountsTest, CountingGivesWayToTheUser) {
  ShowTab(3);
  bool clicked = false;
  desktop.onDoEvents = [&] {
    if (desktop.engineWorks || std::exchange(clicked, true)) return;
    EXPECT_EQ(Counts(Types())[0], ".bak ?");
    Click(kRefresh);
    EXPECT_EQ(Counts(Types())[0], ".bak ?");
  };
  ui().chk2.UserClick();
  desktop.onDoEvents = nullptr;
  EXPECT_TRUE(clicked);
  EXPECT_EQ(Counts(Types())[1], ".doc 4");

  EscapeAt(2);
  ui().chk2.UserClick();
  desktop.onDoEvents = nullptr;
  EXPECT_EQ(Counts(Types())[1], ".doc ?");
  EXPECT_TRUE(ui().form.IsOpen());
  Click(kRefresh);  // is not taken up by what has nothing to do with it
  EXPECT_EQ(Counts(Types())[1], ".doc ?");
  ui().chk2.UserClick();
  EXPECT_EQ(Counts(Types())[1], ".doc 4");
}

TEST_F(TypeCountsTest, AFailedCountSaysNothing) {
  ShowTab(3);
  catalog->HideTable();
  ui().chk2.UserClick();
  EXPECT_EQ(Counts(Types())[1], ".doc ?");
  catalog->ShowTable();
}

}  // namespace
}  // namespace kxrestore::dialog_test
