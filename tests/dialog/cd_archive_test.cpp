// The archive branch of the set tree and the panel that adds a disc, with the databases as files whose names
// are the drive paths.
#include "tests/dialog/dialog_fixture.h"

namespace kxrestore::dialog_test {
namespace {

constexpr const char* kArchive = "C:\\dev\\wrk\\qvs\\tarvane source\\client\\CDArchive.mdb";
constexpr const char* kDisc = "D:\\backup!mdb1";
constexpr const char* kTable =
    "CREATE TABLE ArchiveHeader (ID INTEGER PRIMARY KEY, Volume TEXT, YYYY TEXT, MM TEXT, SetName TEXT, "
    "Taken DATETIME, Share REAL, Done BOOLEAN);";

class CdArchiveTest : public DialogTest {
 protected:
  void SetUp() override {
#ifdef _WIN32
    GTEST_SKIP() << "the paths would be those of real drives";
#endif
    m_before = std::filesystem::current_path();
    m_folder =
        std::filesystem::temp_directory_path() / ("kxarchive_" + std::to_string(std::random_device()()));
    std::filesystem::create_directory(m_folder);
    std::filesystem::current_path(m_folder);
    MakeCatalog({}, Runs());
  }
  void TearDown() override {
    if (m_folder.empty()) return;
    std::filesystem::current_path(m_before);
    std::filesystem::remove_all(m_folder);
  }

  static std::string Insert(const std::string& values) {
    return "INSERT INTO ArchiveHeader (Volume, YYYY, MM, SetName) VALUES " + values + ";";
  }
  // Makes the file if need be; the answer is the first row of the last query, "a|b|c".
  static std::string Sql(const char* path, const std::string& sql) {
    sqlite3* raw = nullptr;
    const int opened = sqlite3_open(path, &raw);
    const std::unique_ptr<sqlite3, int (*)(sqlite3*)> database(raw, sqlite3_close);
    std::string row;
    const auto collect = [](void* target, int columns, char** values, char**) {
      auto& text = *static_cast<std::string*>(target);
      if (!text.empty()) return 0;
      for (int i = 0; i < columns; ++i) text.append(i == 0 ? "" : "|").append(values[i] ? values[i] : "Null");
      return 0;
    };
    if (opened != SQLITE_OK || sqlite3_exec(raw, sql.c_str(), collect, &row, nullptr) != SQLITE_OK) {
      ADD_FAILURE() << sqlite3_errmsg(raw);
    }
    return row;
  }
  void PutDisc(const std::string& sql) {
    Sql(kDisc, std::string(kTable) + sql);
    platform.drives.drives = {{"C:\\", 3, "System"}, {"D:\\", 5, "BACKUPS"}};
    platform.drives.files = {kDisc};
  }
  void Start() {
    ui().tvwSets.UserClickNode(ui().tvwSets.Item("ArchAdd"));
    ui().DriveCD.UserSelect("D:");
    ui().cmdCD.UserClick();
  }
  void Open() {
    ui().tvwSets.UserClickNode(NodeOf(ui().tvwSets, "Archive Sets"));
  }

  // The branch, one line a node, indented by its depth.
  Strings Branch() {
    Strings lines;
    Lines(NodeOf(ui().tvwSets, "Archive Sets").Child(), "", lines);
    return lines;
  }

 private:
  static void Lines(controls::Node node, const std::string& indent, Strings& lines) {
    for (; node; node = node.Next()) {
      lines.push_back(indent + std::string(node.Text()));
      Lines(node.Child(), indent + " ", lines);
    }
  }

  std::filesystem::path m_before, m_folder;
};

TEST_F(CdArchiveTest, TheBranchIsThereWhereItCanBeUsed) {
  EXPECT_FALSE(ui().tvwSets.Find("ArchAdd"));
  ui().form.Unload();

  platform.drives.drives = {{"C:\\", 3, "System"}, {"E:\\", 5, {}}, {"F:\\", 5, {}}};
  form.Load();
  EXPECT_EQ(ui().tvwSets.Item("ArchAdd").Text(), "Append new Archive CD ...");
  EXPECT_EQ(ui().DriveCD.Drives(), (Strings{"E:", "F:"}));
  ui().form.Unload();

  platform.drives.drives.clear();
  platform.drives.files = {kArchive};
  form.Load();
  EXPECT_TRUE(ui().tvwSets.Find("ArchAdd"));
}

TEST_F(CdArchiveTest, TheBranchIsReadOnce) {
  Sql(kArchive,
      kTable + Insert("('A', '2025', '11', 'Office'), ('A', '2025', '11', 'Home'), ('A', '2025', '12', "
                      "'Office'), ('B', '2025', '12', 'Office'), ('B', '2026', '12', 'Office'), "
                      "('A', '2025', '11', 'Office')"));
  platform.drives.files = {kArchive};
  const Strings expected{"Append new Archive CD ...",
                         "Volume A",
                         " Backups for 2025",
                         "  Backups for 2025-11",
                         "   Office",
                         "   Home",
                         "  Backups for 2025-12",
                         "   Office",
                         "Volume B",
                         " Backups for 2025",
                         "  Backups for 2025-12",
                         "   Office",
                         " Backups for 2026",
                         "  Backups for 2026-12",
                         "   Office"};
  Open();
  EXPECT_EQ(Branch(), expected);
  Sql(kArchive, Insert("('C', '2026', '1', 'Office')"));
  Open();
  ui().tvwSets.UserExpand(NodeOf(ui().tvwSets, "Archive Sets"), true);
  EXPECT_EQ(Branch(), expected);
  EXPECT_EQ(TakeMessages(), Strings{});
}

TEST_F(CdArchiveTest, WithoutTheDatabaseItIsAskedForOnce) {
  platform.drives.drives = {{"D:\\", 5, "BACKUPS"}};
  Open();
  const Strings messages = TakeMessages();
  ASSERT_EQ(messages.size(), 2u);
  EXPECT_EQ(messages[0], ": Requires CD Archives Database");
  EXPECT_EQ(messages[1].substr(0, 23), "LoadUpArchives: (3024) ");
  Open();
  EXPECT_EQ(TakeMessages(), Strings{});
  EXPECT_EQ(Branch().size(), 1u);
}

TEST_F(CdArchiveTest, ThePanelShowsTheChosenVolumeAndChecksTheLastDrive) {
  platform.drives.drives = {{"D:\\", 5, "ONE"}, {"E:\\", 5, "  "}};
  platform.drives.files = {"D:\\backup!mdb"};
  ui().tvwSets.UserClickNode(ui().tvwSets.Item("ArchAdd"));
  ASSERT_TRUE(ui().frLoadCD.IsShown());
  ui().DriveCD.UserSelect("D:");
  EXPECT_EQ(ui().txtVL.Text(), "ONE");
  EXPECT_FALSE(ui().cmdCD.Enabled());
  EXPECT_EQ(ui().lblCD[2].Caption(), "disc Contains no backup data.");
  EXPECT_TRUE(ui().lblCD[2].Visible());

  platform.drives.files = {"E:\\backup!mdb.old"};
  ui().DriveCD.UserSelect("E:");
  EXPECT_EQ(ui().txtVL.Text(), "(no label)");
  EXPECT_TRUE(ui().cmdCD.Enabled());
  EXPECT_FALSE(ui().lblCD[2].Visible());

  platform.drives.files.clear();
  ui().DriveCD.UserSelect("D:");
  EXPECT_TRUE(ui().cmdCD.Enabled()) << "is left as it was";
  ui().cmdCD.UserClick();
  EXPECT_EQ(ui().lblCD[2].Caption(), "disc Contains no backup data.");
  EXPECT_EQ(TakeMessages(), Strings{});
}

TEST_F(CdArchiveTest, StartAddsWhatTheArchiveLacks) {
  Sql(kArchive, kTable + Insert("('A', '2025', '11', 'Office')"));
  PutDisc(
      Insert("('A', '2025', '11', 'Office'), ('B', '2026', '01', 'It''s'), ('B', '2026', '01', 'It''s')") +
      "INSERT INTO ArchiveHeader VALUES (50, 'B', NULL, '02', 'b\xC3\xBCro', '2026-03-01 08:09:10', 0.1, "
      "1);");
  platform.drives.files.push_back(kArchive);
  Open();
  EXPECT_EQ(Branch().size(), 5u);
  Start();
  EXPECT_EQ(TakeMessages(), Strings{": 2 archived backup(s) added."});
  EXPECT_EQ(Sql(kArchive, "SELECT count(*) FROM ArchiveHeader"), "3");
  EXPECT_EQ(
      Sql(kArchive, "SELECT Volume, YYYY, MM, SetName, Taken, Share, Done FROM ArchiveHeader WHERE Done"),
      "B|Null|02|b\xC3\xBCro|2026-03-01 08:09:10|0.1|1");
  EXPECT_EQ(Sql(kArchive, "SELECT SetName, Taken FROM ArchiveHeader WHERE YYYY = '2026'"), "It's|Null");
  EXPECT_EQ(Branch(),
            (Strings{"Append new Archive CD ...", "Volume A", " Backups for 2025", "  Backups for 2025-11",
                     "   Office", "Volume B", " Backups for 2026", "  Backups for 2026-01", "   It's",
                     " Backups for ", "  Backups for -02", "   b\xC3\xBCro"}));
  EXPECT_EQ(ui().ProgressBar1.Value(), ui().ProgressBar1.Max());

  ui().cmdCD.UserClick();
  EXPECT_EQ(TakeMessages(), Strings{": 0 archived backup(s) added."});
  EXPECT_EQ(Sql(kArchive, "SELECT count(*) FROM ArchiveHeader"), "3");
}

TEST_F(CdArchiveTest, ADiscThatCannotBeReadChangesNothing) {
  Sql(kArchive, kTable + Insert("('A', '2025', '11', 'Office')"));
  PutDisc("DROP TABLE ArchiveHeader; CREATE TABLE Other (x)");
  Start();
  Strings messages = TakeMessages();
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_EQ(messages[0].substr(0, 12), "cmdCD.Click:");
  EXPECT_EQ(ui().lblCD[2].Caption(), "The disc was not added.");

  Sql(kDisc, "CREATE TABLE ArchiveHeader (Something TEXT)");
  ui().cmdCD.UserClick();
  EXPECT_EQ(TakeMessages().size(), 1u);
  std::filesystem::resize_file(kDisc, 100);
  ui().cmdCD.UserClick();
  EXPECT_EQ(TakeMessages().size(), 1u);
  EXPECT_EQ(Sql(kArchive, "SELECT count(*) FROM ArchiveHeader"), "1");
}

TEST_F(CdArchiveTest, ChoosingAnotherNodeAfterAddingStillWorks) {
  Sql(kArchive, kTable + Insert("('A', '2025', '11', 'Office')"));
  PutDisc(Insert("('B', '2026', '01', 'Home')"));
  Open();
  ui().tvwSets.UserClickNode(ui().tvwSets.Item("ArchAdd"));
  ui().DriveCD.UserSelect("D:");
  DuringWalk(1, [this] { ui().tvwSets.UserClickNode(NodeOf(ui().tvwSets, "Volume A")); });
  ui().cmdCD.UserClick();
  EXPECT_EQ(TakeMessages(), Strings{": 1 archived backup(s) added."});
  ChooseRun("1 002");
  EXPECT_EQ(ui().lblCurrSet.Caption(), "Current Set: ");
}

}  // namespace
}  // namespace kxrestore::dialog_test
