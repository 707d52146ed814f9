// The form as a whole: its parameters, loading, unusable catalogs, the host's events, keys, and settings that
// persist.
#include <filesystem>
#include <fstream>
#include <sstream>

#include "controls/list_rows.h"
#include "dialog/list_memory.h"
#include "engine/sqlite/sqlite_backend.h"
#include "platform/headless/recording_peer.h"
#include "tests/dialog/dialog_fixture.h"
#include "tests/dialog/hooked_engine.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::dialog_test {
namespace {

std::string ReadFile(const std::filesystem::path& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

class FormTest : public DialogTest {
 protected:
  std::string Path(const char* name) const { return m_folder.File(name); }
  void Write(const char* name, const std::string& text) const {
    std::ofstream(Path(name), std::ios::binary) << text;
  }

 private:
  engine::testing::TemporaryFolder m_folder;
};

TEST_F(FormTest, EachLoadStartsAsDesignedWithTheParametersAndIsLogged) {
  MakeCatalog({Row(1, 1, "003", "C:\\a.doc")});
  Write("session.log", "before\r\n");
  form.parameters.LogFilename = Path("session.log");
  form.parameters.RestorePath = "D:\\Back";
  ChooseRun();
  TickAll();
  Apply();
  desktop.answers.assign(2, platform::Answer::kNo);
  ui().form.UserClose();

  form.parameters.curAction = "verify";
  form.parameters.RestorePath = "";
  EXPECT_EQ(ui().lblRestorePath.Caption(), "Restore To: (Original Path)");
  EXPECT_EQ(ui().lblRestorePath.ToolTipText(), "");
  EXPECT_EQ(ui().asRestoreList.Count(), 0u);
  EXPECT_EQ(ui().tvwDetails.Count(), 0u);
  EXPECT_EQ(ui().tvwSets.Count(), 7u);
  Click(kRefresh);
  Click(kCancel);
  ExpectReports({"Clear Selection?: ", "Clear Selection?: You have selected files to verify, Cancel"});
  EXPECT_EQ(ReadFile(Path("session.log")),
            "before\r\n11/16/2026 2:25:30 AM R 10.1.6 Loading restore Dialog ... \r\n"
            "11/16/2026 2:25:30 AM R 10.1.6 Loading verify Dialog ... \r\n");
  form.parameters.LogFilename = Path("no such folder/session.log");
  form.SessionLogEntry("lost");
  EXPECT_EQ(form.parameters.Action(), "verify");
  form.parameters.curAction = " ";
  EXPECT_EQ(form.parameters.Action(), " ");
  form.parameters.curAction = "";
  EXPECT_EQ(form.parameters.Action(), "restore");
  for (const std::string text : {"abc", ""}) {
    EXPECT_EQ(form.StripNulls(text + '\0' + "def"), text);
    form.setWindowCaption(text);
    form.setButtonCaption(text);
    form.setLabelCaption(text);
    for (const auto& caption : {ui().form.Caption(), ui().cmdRestore[0].Caption(), ui().lblList.Caption()})
      EXPECT_EQ(caption, text) << "an empty caption applies, too";
  }
}

TEST_F(FormTest, IconComesFromTheClientFolder) {
  MakeCatalog({});
  platform.drives.files = {"C:\\Client\\kxicon.ico"};
  form.parameters.RestorePath = " ";
  EXPECT_EQ(ui().form.IconPath(), "") << "the folder is not set";
  EXPECT_EQ(ui().lblRestorePath.Caption(), "Restore To:  ") << "a blank is a valid path";
  ui().form.UserClose();
  platform.drives.files.clear();
  PutSetting(platform::kHkeyLocalMachine, "ClientDB", std::string("C:\\Client\0old", 13));
  EXPECT_EQ(ui().form.IconPath(), "") << "the file does not exist";
  ui().form.UserClose();
  platform.drives.files = {"C:\\Client\\kxicon.ico"};
  EXPECT_EQ(ui().form.IconPath(), "C:\\Client\\kxicon.ico");
}

TEST_F(FormTest, UnusableCatalogsAreReportedAndNotChanged) {
  MakeCatalog({Row(1, 1, "003", "C:\\a.doc")});
  const std::string whole = ReadFile(catalog->Path());
  Write("text.mdb",
        "this is no database, but long enough to have had a header, if it were one" + whole.substr(99));
  Write("cut.db", whole.substr(0, whole.size() / 2 + 100));
  Write("empty.db", "");
  CatalogFile bare({});
  bare.Execute("DROP VIEW IF EXISTS FullCatalog; DROP TABLE SetNames; DROP TABLE Catalog");
  const struct {
    std::string path;
    std::int16_t type;
    std::string number;
  } cases[] = {{"", 0, "3024"},
               {Path("missing.db"), 0, "3024"},
               {std::filesystem::temp_directory_path().string(), 0, "3051"},
               {Path("text.mdb"), 0, "3343"},
               {Path("cut.db"), 0, "3049"},
               {Path("empty.db"), 0, "3343"},
               {bare.Path(), 0, "3078"},
               {catalog->Path(), 7, "91"},
               {catalog->Path(), -1, "91"},
               {catalog->Path(), 1, "3151"}};
  for (const auto& [path, type, number] : cases) {
    SCOPED_TRACE(path + " as type " + std::to_string(type));
    const std::string before = ReadFile(path);
    form.parameters.DBName = path;
    form.parameters.DBType = type;
    ui();
    ASSERT_EQ(desktop.messages.size(), 1u);
    EXPECT_EQ(desktop.messages[0].style, platform::MessageStyle::kWarning);
    // The load completes its remaining steps, and the dialog can be used and closed.
    EXPECT_EQ(ui().lblRestorePath.Caption(), "Restore To: (Original Path)");
    Click(kRefresh);
    ShowTab(3);
    ExpectReports(
        {"LoadBackupSetTree: (" + number + ") ", "ListCurrentSelections: (", "tbsOptions.Click: ("});
    FormControls& controls = ui();
    Click(kCancel);  // lists the marks first
    ExpectReports({"ListCurrentSelections: ("});
    EXPECT_FALSE(controls.form.IsOpen());
    EXPECT_EQ(ReadFile(path), before);
  }
  EXPECT_FALSE(std::filesystem::exists(Path("missing.db")));
}

TEST_F(FormTest, ACatalogThatAnotherProgramLocksCanBeUsedOnceItIsUnlocked) {
  MakeCatalog({Row(1, 1, "003", "C:\\a.doc"), Row(2, 1, "003", "C:\\b.doc")});
  ChooseRun();
  TickAll();
  OtherProgram other(catalog->Path());
  other.Execute("BEGIN EXCLUSIVE");
  desktop.doEventsCount = 0;
  Apply();
  EXPECT_GT(desktop.doEventsCount, 20u) << "messages run while it waits";
  ExpectReports({"UpdateSelection: (3218) ", "AddToSetSelections: 2 file(s) could not be marked.",
                 "ListCurrentSelections: ("});
  desktop.onDoEvents = [&] {
    other.Execute("COMMIT");
    EXPECT_EQ(catalog->Marked(), Ids{});
    desktop.onDoEvents = nullptr;
  };
  ShowTab(2);
  Find("doc");
  EXPECT_EQ(ui().asSearch.Count(), 2u) << "unlocked while it waits";
  ShowTab(1);
  Apply();
  EXPECT_EQ(catalog->Marked(), (Ids{1, 2}));
}

TEST_F(FormTest, AFailedCommitIsReportedAndTheMarksAreListed) {
  const EngineHooks failingCommits{.before = [](const std::string&) { throw Error(3026, "Disk full."); }};
  const auto databases = MakeHookedWorkspace(failingCommits, engine::sqlite::MakeSqliteBackend());
  BareContext bare(platform.Get(), *databases);
  dialog::FormContext& context = bare.context;
  int listed = 0, raised = 0;
  context.ListMarksAnew = [&] {
    ++listed;
    context.ListingMarks();
  };
  for (const bool evenThen : {false, true}) {
    context.Command("Click", [&] {
      context.RaiseToHost(
          "Click", [&] { ++raised; }, evenThen);
    });
    EXPECT_EQ(raised, evenThen);
    EXPECT_EQ(listed, evenThen ? 2 : 1);
    ExpectReports({"Click: (3026) Disk full.", "Click: (3026) Disk full.", "Click: (3026) Disk full."});
    EXPECT_FALSE(databases->InAction());
  }
  context.Command("A", [&] { context.Reporting("B", [] { throw Error(6, "Overflow"); }); });
  ExpectReports({"B: (6) Overflow", "B: (3026) Disk full.", "A: (3026) Disk full.", "A: (3026) Disk full."});
}

TEST_F(FormTest, AFailedStepOfTheLoadSkipsTheLaterOnesSilently) {
  form.parameters.RestorePath = "D:\\Back";
  platform.drives.drives = {{"E:\\", 5, "DISC"}};
  PutSetting(platform::kHkeyLocalMachine, "ClientDB", "C:\\Client");
  platform.registry.fault = [](std::string_view operation) -> long {
    return operation == "ReadValue" ? throw std::runtime_error("no registry") : 0;
  };
  desktop.user = [&](controls::Form&) {
    EXPECT_EQ(ui().splitH.Top(), 3396) << "earlier steps took effect";
    EXPECT_EQ(ui().tvwSets.Count(), 0u);
    EXPECT_EQ(ui().lblRestorePath.Caption(), "Restore To:");
  };
  form.ShowModal();
  EXPECT_EQ(desktop.showCount, 1u);
  EXPECT_TRUE(desktop.messages.empty());
}

TEST_F(FormTest, EachTabShowsItsControlsAgain) {
  MakeCatalog({});
  controls::Control* const shown[] = {&ui().lblMask, &ui().cboMask, &ui().chk1, &ui().tvwDetails};
  for (controls::Control* const control : shown) control->SetVisible(false);
  for (const int tab : {2, 1}) ShowTab(tab);
  for (const controls::Control* const control : shown) EXPECT_TRUE(control->Visible()) << control->Name();
}

TEST_F(FormTest, RestoreNowCallsTheHostOnceWithTheMarksCommittedAndTheCatalogUnlocked) {
  MakeCatalog({Row(1, 1, "003", "C:\\a.doc"), Row(2, 1, "003", "C:\\b.doc")});
  FormControls& controls = ui();
  int raised = 0;
  form.CommenceRestore = [&] {
    ++raised;
    EXPECT_EQ(catalog->Marked(), (Ids{1, 2}));
    catalog->Execute("BEGIN EXCLUSIVE; UPDATE Catalog SET Restore = 0 WHERE ID = 1; COMMIT");
    // Input of the user while the host restores is ignored.
    for (auto& button : controls.cmdRestore) button.UserClick();
    controls.form.UserClose();
    Escape();
    controls.tvwSets.UserClickNode(controls.tvwSets.Item(1));
    EXPECT_TRUE(controls.form.IsOpen());
  };
  ChooseRun();
  TickAll();
  Apply();
  Click(kRestoreNow);
  EXPECT_EQ(raised, 1);
  EXPECT_FALSE(controls.form.IsOpen());
  EXPECT_EQ(catalog->Marked(), Ids{2});
}

TEST_F(FormTest, KeysInTheMaskBoxSearchAndMoveToTheHits) {
  MakeCatalog({Row(1, 1, "003", "C:\\a.docx")});
  platform::PeerLog mask, hits;
  platform::Record(ui().cboMask, mask);
  platform::Record(ui().asSearch, hits);
  ui().tbsOptions.UserSelect(2, false);
  EXPECT_EQ(mask.focused, 0) << "a tab selected by an arrow key keeps the focus";
  ui().tbsOptions.UserSelect(2);
  EXPECT_EQ(mask.focused, 1);
  EXPECT_FALSE(ui().cboMask.UserDown()) << "there are no hits";
  ui().cboMask.UserType("docx");
  ui().cboMask.UserEnter();
  EXPECT_EQ(ui().asSearch.Count(), 1u);
  EXPECT_TRUE(ui().cboMask.UserDown());
  EXPECT_EQ(hits.focused, 1);
  EXPECT_EQ(ui().asSearch.RunTime(ui().asSearch.At(1)), platform::TimeNumber({2026, 3, 1, 8, 0, 0}));
  AutoSelect::Entry unknown;
  unknown.setId = 9;
  EXPECT_EQ(ui().asSearch.RunTime(unknown), AutoSelect::kNoTime);
}

TEST_F(FormTest, MasksAndTheLookOfListsAreRemembered) {
  MakeCatalog({Row(1, 1, "003", "C:\\a.docx")});
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

TEST_F(FormTest, HelpFollowsTheKeyboardFocus) {
  MakeCatalog({Row(1, 1, "003", "C:\\a.docx")});
  EXPECT_TRUE(ui().lblHelp.Caption().starts_with("INSTRUCTIONS: "));
  ui().cmdRestore[kRefresh].UserKeyboardEnter();
  EXPECT_EQ(ui().lblHelp.Tag(), "Refresh");
  EXPECT_TRUE(ui().lblHelp.Caption().starts_with("REFRESH LIST"));
  ui().tvwSets.UserKeyboardEnter();
  EXPECT_EQ(ui().lblHelp.Tag(), "tvwSets");
  ui().cmdRestore[kRestoreNow].UserKeyboardEnter();  // disabled
  EXPECT_EQ(ui().lblHelp.Tag(), "tvwSets");
}

TEST_F(FormTest, NodesOfTheSetTreeHaveTheirKeys) {
  MakeCatalog({});
  EXPECT_EQ(ui().tvwSets.Item("Sets").Text(), "Online Backups");
  EXPECT_EQ(ui().tvwSets.Item("Sets\\Set 1").Text(), "Set 1");
  EXPECT_TRUE(ui().tvwSets.Find("3/1/2026 8:00:00 AM")) << "a permanent run's key is the bare date";
  EXPECT_EQ(ui().tvwSets.SelectedItem(), ui().tvwSets.Item(1));
  for (int index = 1; index <= 7; ++index) EXPECT_EQ(ui().tvwSets.Item(index).Image(), 0);
}

}  // namespace
}  // namespace kxrestore::dialog_test
