// The form as a whole: its parameters, what loading does, catalogs that cannot be used, and one thing at a
// time.
#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/dialog/dialog_fixture.h"

namespace kxrestore::dialog_test {
namespace {

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

class FormTest : public DialogTest {
 protected:
  FormTest()
      : folder(std::filesystem::temp_directory_path() /
               ("kxform_" + std::to_string(std::random_device()()))) {
    std::filesystem::create_directory(folder);
  }
  ~FormTest() override {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
  }
  std::string Path(const char* name) { return (folder / name).string(); }
  void Write(const char* name, const std::string& text) {
    std::ofstream(folder / name, std::ios::binary) << text;
  }

  std::filesystem::path folder;
};

TEST_F(FormTest, ParametersAreKeptWithoutLoading) {
  form.LogFilename(Path("session.log"));
  form.RestorePath("D:\\Back");
  EXPECT_EQ(form.curAction(), "restore");
  form.curAction(" ");
  EXPECT_EQ(form.curAction(), " ");
  form.curAction("");
  EXPECT_EQ(form.curAction(), "restore");
  EXPECT_FALSE(std::filesystem::exists(folder / "session.log"));
  EXPECT_EQ(dialog::frmRestore::StripNulls(std::string("abc\0def", 7)), "abc");
  EXPECT_EQ(dialog::frmRestore::StripNulls(std::string("\0def", 4)), "");
  EXPECT_EQ(dialog::frmRestore::StripNulls("abc"), "abc");
}

TEST_F(FormTest, EveryLoadAddsALineToTheLog) {
  MakeCatalog({});
  Write("session.log", "before\r\n");
  form.LogFilename(Path("session.log"));
  form.setLabelInVisible(false);
  ui().form.UserClose();
  form.curAction("verify");
  form.setButtonCaption("&Go");
  form.setWindowCaption("Pick");  // loaded already
  EXPECT_EQ(ReadFile(folder / "session.log"),
            "before\r\n11/16/2026 2:25:30 AM R 10.1.6 Loading restore Dialog ... \r\n"
            "11/16/2026 2:25:30 AM R 10.1.6 Loading verify Dialog ... \r\n");
  form.LogFilename(Path("no such folder/session.log"));
  form.SessionLogEntry("lost");
  form.LogFilename("");
  form.SessionLogEntry("lost");
  EXPECT_EQ(TakeMessages(), Strings{});
}

TEST_F(FormTest, EachLoadStartsAsDesignedAndKeepsTheParameters) {
  MakeCatalog({Row(1, 1, "003", "C:\\a.doc")});
  form.RestorePath("D:\\Back");
  form.setWindowCaption("Pick");
  form.setButtonCaption("&Go");
  form.setLabelCaption("Chosen");
  form.setLabelInVisible(true);
  EXPECT_EQ(ui().form.Caption(), "Pick");
  EXPECT_EQ(ui().cmdRestore[0].Caption(), "&Go");
  EXPECT_EQ(ui().lblList.Caption(), "Chosen");
  EXPECT_FALSE(ui().lblRestorePath.Visible());
  EXPECT_EQ(ui().lblRestorePath.Caption(), "Restore To: D:\\Back");
  EXPECT_EQ(ui().lblRestorePath.ToolTipText(), "Restore To: D:\\Back");
  ChooseRun();
  TickAll();
  Apply();
  desktop.answers = {platform::kAnswerNo};
  ui().form.UserClose();

  form.RestorePath("");
  EXPECT_EQ(ui().form.Caption(), "Select Files to Restore");
  EXPECT_EQ(ui().cmdRestore[0].Caption(), "Restore &Now");
  EXPECT_EQ(ui().lblList.Caption(), "Files Selected to Restore: ");
  EXPECT_TRUE(ui().lblRestorePath.Visible());
  EXPECT_EQ(ui().lblRestorePath.Caption(), "Restore To: (Original Path)");
  EXPECT_EQ(ui().lblRestorePath.ToolTipText(), "");
  EXPECT_EQ(ui().asRestoreList.Count(), 0u);
  EXPECT_EQ(ui().tvwDetails.Count(), 0u);
  EXPECT_EQ(ui().tvwSets.Count(), 7u);
}

TEST_F(FormTest, IconComesFromTheClientFolder) {
  MakeCatalog({});
  const std::string key = "Software\\Brellick Labs, Inc.\\Tarvane\\Settings";
  const std::string client = std::string("C:\\Client\0old", 13);
  platform.registry.Put(platform::kHkeyLocalMachine, key, "ClientDB",
                        {platform::kRegSz, std::vector<std::uint8_t>(client.begin(), client.end())});
  EXPECT_EQ(ui().form.IconPath(), "") << "no such file";
  EXPECT_EQ(form.ClientPath, "C:\\Client");
  ui().form.UserClose();
  platform.drives.files = {"C:\\Client\\kxicon.ico"};
  EXPECT_EQ(ui().form.IconPath(), "C:\\Client\\kxicon.ico");
  EXPECT_EQ(TakeMessages(), Strings{});
}

TEST_F(FormTest, CatalogsThatCannotBeUsedAreReportedAndLeftAlone) {
  MakeCatalog({Row(1, 1, "003", "C:\\a.doc")});
  const std::string whole = ReadFile(catalog->Path());
  Write("text.mdb",
        "this is no database, but it is long enough to have had a header of its own, if it were one");
  Write("cut.db", whole.substr(0, whole.size() / 2 + 100));
  Write("empty.db", "");
  CatalogFile bare({});
  bare.Execute("DROP VIEW IF EXISTS FullCatalog; DROP TABLE SetNames; DROP TABLE Catalog");
  struct Case {
    std::string path;
    std::int16_t type;
    std::string numbers;  // any of these
  };
  const Case cases[] = {{"", 0, "3024"},
                        {Path("missing.db"), 0, "3024"},
                        {folder.string(), 0, "3051"},
                        {Path("text.mdb"), 0, "3343"},
                        {Path("cut.db"), 0, "3049"},
                        {Path("empty.db"), 0, "3343"},
                        {bare.Path(), 0, "3078"},
                        {catalog->Path(), 7, "91"},
                        {catalog->Path(), -1, "91"},
                        {catalog->Path(), 1, "3151"}};
  for (const Case& bad : cases) {
    SCOPED_TRACE(bad.path + " as type " + std::to_string(bad.type));
    const std::string before = ReadFile(bad.path);
    form.DBName(bad.path);
    form.DBType(bad.type);
    ui();
    ASSERT_EQ(desktop.messages.size(), 1u);
    EXPECT_EQ(desktop.messages[0].title, "LoadBackupSetTree");
    EXPECT_EQ(desktop.messages[0].style, platform::kExclamation);
    EXPECT_EQ(desktop.messages[0].text.substr(0, bad.numbers.size() + 3), "(" + bad.numbers + ") ");
    // The steps after it were taken, and the dialog can be used and left.
    EXPECT_EQ(ui().lblRestorePath.Caption(), "Restore To: (Original Path)");
    Refresh();
    ui().tbsOptions.UserSelect(3);
    ASSERT_EQ(desktop.messages.size(), 3u);
    EXPECT_EQ(desktop.messages[1].title, "ListCurrentSelections");
    EXPECT_EQ(desktop.messages[2].title, "tbsOptions.Click");
    FormControls& controls = ui();
    controls.cmdRestore[1].UserClick();
    EXPECT_FALSE(controls.form.IsOpen());
    desktop.messages.clear();
    EXPECT_EQ(ReadFile(bad.path), before);
  }
  EXPECT_FALSE(std::filesystem::exists(folder / "missing.db"));
}

TEST_F(FormTest, LockedCatalogIsReportedOnceAndCanBeAppliedLater) {
  MakeCatalog({Row(1, 1, "003", "C:\\a.doc"), Row(2, 1, "003", "C:\\b.doc")});
  ChooseRun();
  TickAll();
  sqlite3* raw = nullptr;
  ASSERT_EQ(sqlite3_open(catalog->Path().c_str(), &raw), SQLITE_OK);
  const std::unique_ptr<sqlite3, int (*)(sqlite3*)> other(raw, sqlite3_close);
  ASSERT_EQ(sqlite3_exec(raw, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
  Apply();
  ASSERT_EQ(desktop.messages.size(), 2u) << "marking, and listing what is marked";
  EXPECT_EQ(desktop.messages[0].title, "UpdateSelection");
  EXPECT_EQ(desktop.messages[0].text.substr(0, 7), "(3218) ");
  EXPECT_EQ(desktop.messages[1].title, "ListCurrentSelections");
  ASSERT_EQ(sqlite3_exec(raw, "ROLLBACK", nullptr, nullptr, nullptr), SQLITE_OK);
  EXPECT_EQ(catalog->Marked(), Ids{});
  TakeMessages();
  Apply();
  EXPECT_EQ(catalog->Marked(), (Ids{1, 2}));
  EXPECT_EQ(TakeMessages(), Strings{});
}

// A back end that loses what was written when it is to commit it.
class LosingBackend : public engine::Backend {
 public:
  std::unique_ptr<engine::Database> Open(const engine::OpenRequest&) override {
    throw Error(3024, "No file.");
  }
  void Idle() override {}
  void Flush() override { Lose(); }
  void EndAction() override { Lose(); }

 private:
  [[noreturn]] static void Lose() { throw Error(3026, "Disk full."); }
};

TEST_F(FormTest, LostCommitIsReportedAndNothingIsSkippedForIt) {
  engine::Workspace::Backends backends;
  backends.sqlite = std::make_unique<LosingBackend>();
  engine::Workspace losing(std::move(backends));
  dialog::Parameters parameters;
  FormControls controls;
  platform::Platform services = platform.Get();
  dialog::FormContext context(parameters, controls, services, losing);

  bool raised = false;
  context.Command("cmdRestore.Click",
                  [&] { context.RaiseToHost("cmdRestore.Click", [&] { raised = true; }); });
  EXPECT_TRUE(raised);
  EXPECT_EQ(TakeMessages(),
            (Strings{"cmdRestore.Click: (3026) Disk full.", "cmdRestore.Click: (3026) Disk full."}));
  EXPECT_FALSE(losing.InAction());

  context.Command("A", [&] { context.Reporting("B", [] { throw Error(6, "Overflow"); }); });
  EXPECT_EQ(TakeMessages(), (Strings{"B: (6) Overflow", "B: (3026) Disk full.", "A: (3026) Disk full."}));
}

TEST_F(FormTest, WhileAWalkRunsNothingElseStarts) {
  MakeCatalog({Row(1, 1, "003", "C:\\a.doc"), Row(2, 1, "003", "C:\\b.doc"), Row(3, 1, "003", "C:\\c.doc")});
  int commits = 0;
  form.CommenceRestore = [&] { ++commits; };
  ui().cboMask.SetText("doc");
  ChooseRun();
  Tick("b.doc");
  Apply();
  ui().tvwDetails.UserCheck(NodeOf(ui().tvwDetails, "c.doc"), true);
  DuringWalk(2, [this] {
    for (int index : {0, 2, 3, 4}) ui().cmdRestore[index].UserClick();
    for (auto& button : ui().cmdAction) button.UserClick();
    ui().form.UserKey(controls::Key::kF5);
    ui().tbsOptions.UserSelect(3);
    ui().tbsOptions.UserSelect(2);
    for (auto& button : ui().cmdSearch) button.UserClick();
    EXPECT_EQ(ui().asSearch.Count(), 0u);
    EXPECT_EQ(ui().asFiles.Count(), 0u);
    ui().tbsOptions.UserSelect(1);
    // Ticks are the user's own and count when the walk comes to them.
    ui().tvwDetails.UserCheck(NodeOf(ui().tvwDetails, "a.doc"), true);
  });
  Apply();
  EXPECT_EQ(commits, 0);
  EXPECT_EQ(TakeMessages(), Strings{});
  EXPECT_EQ(Selected(), "3 file(s) selected");
  EXPECT_EQ(catalog->Marked().size(), 3u);
  ui().tbsOptions.UserSelect(3);
  EXPECT_GT(ui().asFiles.Count(), 0u) << "the chooser waits for a visit without a walk";
}

TEST_F(FormTest, LoadStoppedByTheUserShowsWhatThereIs) {
  MakeCatalog({Row(1, 1, "003", "C:\\a.doc"), Row(2, 1, "003", "C:\\b.doc"), Row(3, 1, "003", "C:\\c.doc")});
  ui();
  DuringWalk(3, [this] { ui().form.UserKey(controls::Key::kEscape); });
  ChooseRun();
  EXPECT_EQ(ui().lblTreeCount.Caption(), "2 file(s).");
  EXPECT_TRUE(ui().form.IsOpen());
  ChooseRun();
  EXPECT_EQ(ui().lblTreeCount.Caption(), "3 file(s).");
}

}  // namespace
}  // namespace kxrestore::dialog_test
