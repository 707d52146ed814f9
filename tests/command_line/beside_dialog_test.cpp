// The command line marks the same rows as the dialog: each case uses both on one sample catalog and compares
// the marks.
#include "host/catalog_maker/sample_catalog.h"
#include "host/command_line/output.h"
#include "tests/command_line/command_line_fixture.h"
#include "tests/dialog/dialog_fixture.h"

namespace kxrestore::command_line_test {
namespace {

using dialog_test::Ids;

class BesideDialogTest : public dialog_test::DialogTest {
 protected:
  BesideDialogTest() {
    MakeCatalog({});
    sample::SampleOptions options;
    options.rows = 4000;
    std::filesystem::remove(catalog->Path());
    sample::MakeCatalog(catalog->Path(), options);
    ui();  // loads the form
  }

  void FindAndMark(const std::string& mask) {
    ShowTab(2);
    Find(mask);
    for (std::size_t i = 1; i <= ui().asSearch.Count(); ++i) ui().asSearch.UserTick(i, true);
    ui().cmdSearch[dialog_test::kApplyFound].UserClick();
  }
  void MarkTypes(std::initializer_list<const char*> types) {
    ShowTab(3);
    for (const char* type : types) Tick(ui().asFiles, type);
    ui().cmdAuto[dialog_test::kApplyTypes].UserClick();
  }

  // Expects that the command line sets the same marks as the dialog has set, and that there are some.
  void ExpectSame(Words words) {
    const Ids byDialog = catalog->Marked();
    catalog->Execute("UPDATE Catalog SET Restore = 0");
    words.push_back("--catalog=" + catalog->Path());
    const Outcome outcome = m_commandLine.Run(words);
    EXPECT_EQ(outcome.code, ExitCode::kDone) << outcome.err;
    EXPECT_FALSE(byDialog.empty());
    EXPECT_EQ(catalog->Marked(), byDialog);
    catalog->Execute("UPDATE Catalog SET Restore = 0");
  }

  CommandLine m_commandLine;
};

TEST_F(BesideDialogTest, MasksMarkTheSameRows) {
  FindAndMark("*.pdf");
  ExpectSame({"mark", "*.pdf"});
  FindAndMark("an[a-m]*#");
  ExpectSame({"mark", "an[a-m]*#"});
  FindAndMark("e");  // with the mail server's aggregates
  ExpectSame({"mark", "e"});
  ui().chk1.UserClick();
  FindAndMark("*.doc");
  ExpectSame({"mark", "*.doc", "--newest"});
}

TEST_F(BesideDialogTest, SetsAndRunsMarkTheSameRows) {
  ChooseNode("Daily Documents");
  FindAndMark("*.xls");
  ExpectSame({"mark", "*.xls", "--set", "daily documents"});
  ChooseNode("1 002");
  ui().optLookIn[0].UserClick();
  FindAndMark("*.xls");
  ExpectSame({"mark", "*.xls", "--set=1", "--up-to=002"});
  ui().chk1.UserClick();
  FindAndMark("*.d");
  ExpectSame({"mark", "*.d", "--set=1", "--up-to=002", "--newest"});
}

TEST_F(BesideDialogTest, TypesMarkTheSameRows) {
  MarkTypes({".jpg", ".doc"});
  ExpectSame({"mark", "--type=jpg", "--type", ".DOC"});
  ChooseNode("1 003");
  ui().optLookIn[2].UserClick();
  ui().chk2.UserClick();
  MarkTypes({});
  ExpectSame({"mark", "--type=jpg", "--type=doc", "--set=1", "--up-to=003", "--newest"});
}

TEST_F(BesideDialogTest, AWholeRunIsTheDetailTreeTicked) {
  ChooseNode("1 003");
  TickAll();
  Apply();
  ExpectSame({"mark", "--set=1", "--run=003"});
}

TEST_F(BesideDialogTest, UnmarkingIsUnticking) {
  const std::string file = "--catalog=" + catalog->Path();
  ASSERT_EQ(m_commandLine.Run({"mark", "--set=7", file}).code, ExitCode::kDone);
  const Ids all = catalog->Marked();
  Click(dialog_test::kRefresh);
  controls::AutoSelect& list = ui().asRestoreList;
  ASSERT_EQ(list.Count(), all.size());
  for (std::size_t i = 1; i <= list.Count(); ++i) {
    if (list.At(i).extension == "002") list.UserTick(i, false);
  }
  Click(dialog_test::kUpdate);
  const Ids byDialog = catalog->Marked();
  EXPECT_FALSE(byDialog.empty());
  EXPECT_LT(byDialog.size(), all.size());

  ASSERT_EQ(m_commandLine.Run({"mark", "--set=7", file}).code, ExitCode::kDone);
  ASSERT_EQ(catalog->Marked(), all);
  EXPECT_EQ(m_commandLine.Run({"unmark", "--set=7", "--run=002", file}).code, ExitCode::kDone);
  EXPECT_EQ(catalog->Marked(), byDialog);
}

TEST_F(BesideDialogTest, TheListsHoldTheSameFiles) {
  FindAndMark("e");
  dialog_test::Strings listed;
  for (const std::string& name : Listed()) cli::AppendJsonText(listed.emplace_back(), name);
  std::sort(listed.begin(), listed.end());
  std::istringstream lines(m_commandLine.Run({"list", "--json", "--catalog", catalog->Path()}).out);
  dialog_test::Strings names;
  for (std::string line; std::getline(lines, line);) {
    const std::size_t name = line.find("\"name\":") + 7;
    names.push_back(line.substr(name, line.size() - 1 - name));
  }
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, listed);
}

}  // namespace
}  // namespace kxrestore::command_line_test
