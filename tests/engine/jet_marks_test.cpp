// Marking files of the desktop engine in place: a mark changes one bit and nothing else, a mark that cannot
// be set is refused before anything is written, and saved queries stay outside the file.
#include <algorithm>
#include <bit>
#include <cstdlib>
#include <sstream>

#include "engine/jet_file/file.h"
#include "tests/engine/desktop_samples.h"
#ifndef _WIN32
#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <thread>
#endif

namespace kxrestore::engine::testing {
namespace {

constexpr const char* kMarkByName =
    "SELECT Catalog.SetNameID, Catalog.Extension, Catalog.Filename, Catalog.Restore, LongPaths.LongPath FROM "
    "LongPaths RIGHT JOIN [Catalog] ON LongPaths.PathID = Catalog.LongPathID WHERE (((Catalog.SetNameID)=1) "
    "AND ((Catalog.Extension)='001') AND ((Catalog.Filename)=";
constexpr const char* kClear =
    "UPDATE [Catalog] SET [Catalog].Restore = False WHERE (((Catalog.Restore)=True));";

Strings Marked(Database& database) {
  return Rows(database, "SELECT ID FROM Catalog WHERE Restore = True ORDER BY ID");
}

class DesktopMarks : public ::testing::Test {
 protected:
  // Marks in all the ways of the dialog, in one user action: by ID, by file name and by file.
  void MarkEveryWay(const OpenRequest& request) {
    m_workspace->BeginAction();
    const Strings ids = Rows(*m_workspace->OpenDatabase(request), "SELECT ID FROM Catalog ORDER BY ID");
    for (std::size_t i = 0; i < ids.size(); i += 3)
      Mark(*m_workspace->OpenDatabase(request), std::stoi(ids[i]));
    const Strings names = Rows(*m_workspace->OpenDatabase(request),
                               "SELECT Filename FROM Catalog WHERE SetNameID = 1 AND Extension = '001'");
    for (const std::string& name : names) {
      const auto database = m_workspace->OpenDatabase(request);
      const auto rows = database->OpenRecordset(Sql(kMarkByName).AddText(name).Add(")); "),
                                                RecordsetType::kDynaset, {"Restore"});
      ASSERT_FALSE(rows->Eof()) << name;
      Change(*rows, "Restore", true);
    }
    const auto database = m_workspace->OpenDatabase(request);
    const auto rows = database->OpenRecordset("SELECT ID, Restore FROM Catalog WHERE SetNameID = 2",
                                              RecordsetType::kDynaset);
    for (; !rows->Eof(); rows->MoveNext()) {
      Change(*rows, "Restore", rows->Fields("ID").Integer() % 2 == 0);
    }
    m_workspace->EndAction();
  }

  std::unique_ptr<Workspace> m_workspace = MakeReaderWorkspace();
};

TEST_F(DesktopMarks, ChangeOneBitEachAndCanBeCleared) {
  for (const auto& [name, twin] : kSoundSamples) {
    // Not every row of these two can be marked.
    if (std::string_view(name).starts_with("restore") || std::string_view(name).starts_with("added"))
      continue;
    SCOPED_TRACE(name);
    const SampleCopy copy(name), other(twin);
    MarkEveryWay(copy.Request());
    MarkEveryWay(other.Request());
    const auto database = m_workspace->OpenDatabase(copy.Request());
    const auto twinDatabase = m_workspace->OpenDatabase(other.Request());
    const Strings marked = Marked(*database);
    EXPECT_EQ(marked, Marked(*twinDatabase));
    EXPECT_GT(marked.size(), 10u);
    const std::string now = ReadBytes(copy.Path());
    for (const std::size_t place : copy.Changed()) {
      const int change = (now[place] ^ copy.Original()[place]) & 0xFF;
      EXPECT_TRUE(std::has_single_bit(static_cast<unsigned>(change))) << place;
    }
    if (std::string_view(name).starts_with("marked")) continue;
    EXPECT_EQ(copy.Changed().size(), marked.size());
    EXPECT_EQ(database->Execute(kClear, kFailOnError), static_cast<std::int64_t>(marked.size()));
    EXPECT_TRUE(Marked(*database).empty());
    EXPECT_TRUE(copy.Changed().empty()) << "every byte has its old value";
    EXPECT_EQ(database->Execute(kClear, kFailOnError), 0);
  }
}

TEST_F(DesktopMarks, AreVisibleBeforeTheirGroupIsWritten) {
  const SampleCopy copy("telling-2003.mdb");
  const std::string lockFile = copy.Beside("telling-2003.ldb");
  m_workspace->BeginAction();
  const auto database = m_workspace->OpenDatabase(copy.Request());
  Mark(*database, 1007);
  EXPECT_EQ(Marked(*database), Strings{"1007"});
  EXPECT_TRUE(copy.Changed().empty());
  EXPECT_TRUE(std::filesystem::exists(lockFile)) << "it announces this program to the engine";
  m_workspace->Flush();
  EXPECT_EQ(copy.Changed(), std::vector<std::size_t>{0x47C0E});
  EXPECT_FALSE(std::filesystem::exists(lockFile));
  m_workspace->EndAction();
  EXPECT_EQ(copy.Changed().size(), 1u);
}

TEST_F(DesktopMarks, AreRefusedWhereTheyCannotBeSetInPlace) {
  const struct {
    const char *name, *sql;
    int number;
    const char* piece;
  } cases[] = {{"restore-index-2003.mdb", "UPDATE Catalog SET Restore = True WHERE ID = 1007",
                error_number::kReadOnly, "index"},
               {"added-column-2003.mdb", "UPDATE Catalog SET Restore = True WHERE ID = 1007",
                error_number::kReadOnly, "no room"},
               {"telling-2003.mdb", "UPDATE Catalog SET Status = 3 WHERE ID = 1007",
                error_number::kCannotCreateObject, "Status"},
               {"telling-2003.mdb", "UPDATE Catalog SET Restore = True, Status = 3 WHERE ID = 1007",
                error_number::kCannotCreateObject, "Status"},
               {"telling-2003.mdb", "UPDATE BackupAudit SET Permanent = True",
                error_number::kCannotCreateObject, "Permanent"},
               {"telling-2003.mdb", "INSERT INTO SetNames (ID, Name) VALUES (77, 'x')",
                error_number::kCannotCreateObject, "adding rows"},
               {"telling-2003.mdb", "DELETE FROM Catalog WHERE ID = 1007", error_number::kCannotCreateObject,
                "deleting rows"}};
  for (const auto& [name, sql, number, piece] : cases) {
    const SampleCopy copy(name);
    for (const bool inAction : {false, true}) {
      if (inAction) m_workspace->BeginAction();
      const auto database = m_workspace->OpenDatabase(copy.Request());
      ExpectError(number, piece, [&, text = sql] { database->Execute(text, kFailOnError); });
      if (inAction) m_workspace->EndAction();
    }
    EXPECT_TRUE(copy.Changed().empty()) << sql;
  }
  // Rows that were written after the column was added have a bit for it.
  const SampleCopy copy("added-column-2003.mdb");
  const auto database = m_workspace->OpenDatabase(copy.Request());
  Mark(*database, 1599);
  EXPECT_EQ(copy.Changed().size(), 1u);
}

TEST_F(DesktopMarks, SavedQueriesLiveBesideTheFile) {
  const SampleCopy copy("telling-2019.accdb");
  const auto first = m_workspace->OpenDatabase(copy.Request());
  const std::string full = first->QueryText("fullcatalog");
  EXPECT_NE(full.find("Catalog LEFT JOIN SetNames ON Catalog.SetNameID = SetNames.ID;"), std::string::npos)
      << full;
  EXPECT_NE(full.find("SetNames.Name AS SetName"), std::string::npos) << full;
  ExpectError(error_number::kObjectExists, "FULLCATALOG",
              [&] { first->CreateQueryDef("FULLCATALOG", "SELECT ID FROM Catalog;"); });
  ExpectError(error_number::kObjectExists, "SetNames",
              [&] { first->CreateQueryDef("SetNames", "SELECT ID FROM Catalog;"); });
  // A deleted query of the file is hidden, and a new one replaces it, in every workspace of this program.
  const auto second = MakeReaderWorkspace()->OpenDatabase(copy.Request());
  EXPECT_EQ(Rows(*second, "FullCatalog").size(), 600u);
  first->DeleteQueryDef("FullCatalog");
  ExpectError(error_number::kTableNotFound, "FullCatalog", [&] { Rows(*second, "FullCatalog"); });
  ExpectError(error_number::kItemNotFound, "FullCatalog", [&] { second->QueryText("FullCatalog"); });
  first->CreateQueryDef("FullCatalog", "SELECT ID FROM Catalog WHERE ID < 1003");
  EXPECT_EQ(Rows(*second, "SELECT * FROM FullCatalog ORDER BY ID"), (Strings{"1001", "1002"}));
  EXPECT_TRUE(copy.Changed().empty());
}

TEST_F(DesktopMarks, OfAnExclusiveFileLeaveTheRowsOfARecordsetValid) {
  const SampleCopy copy("telling-2003.mdb");
  // Makes sure that the file's time shows the writing.
  std::filesystem::last_write_time(copy.Path(),
                                   std::filesystem::last_write_time(copy.Path()) - std::chrono::hours(1));
  const auto database = m_workspace->OpenDatabase({.name = copy.Path(), .exclusive = true});
  const auto rows =
      database->OpenRecordset("SELECT ID, Restore FROM Catalog WHERE ID < 1004", RecordsetType::kDynaset);
  for (std::size_t marked = 1; !rows->Eof(); rows->MoveNext(), ++marked) {
    Change(*rows, "Restore", true);
    EXPECT_EQ(Marked(*database).size(), marked);
  }
}

#ifndef _WIN32
// Locks one byte of a file, as another program that has the file open does.
class OtherProgramsLock {
 public:
  OtherProgramsLock(const std::string& path, off_t start)
      : m_descriptor(open(path.c_str(), O_RDWR | O_CREAT, 0600)) {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = start;
    lock.l_len = 1;
    EXPECT_EQ(fcntl(m_descriptor, F_OFD_SETLK, &lock), 0);
  }
  ~OtherProgramsLock() { close(m_descriptor); }

 private:
  int m_descriptor;
};

TEST_F(DesktopMarks, AreRefusedWhileAnotherProgramHasTheFile) {
  const SampleCopy copy("telling-2010.accdb");
  const std::string lockFile = copy.Beside("telling-2010.laccdb");
  const auto database = m_workspace->OpenDatabase(copy.Request());
  const auto expectRefused = [&](const char* piece) {
    ExpectError(error_number::kFileInUse, piece, [&] { Mark(*database, 1007); });
    EXPECT_TRUE(copy.Changed().empty());
    EXPECT_EQ(Rows(*database, "SELECT Count(*) FROM Catalog"), Strings{"600"}) << "reading still works";
  };
  const auto entryOf = [](const std::string& machine) {
    std::string entry(64, '\0');
    machine.copy(entry.data(), 31);
    std::string_view("Admin").copy(entry.data() + 32, 32);
    return entry;
  };
  const std::string entry = entryOf("OTHERPC");
  WriteBytes(lockFile, entry);
  expectRefused("'OTHERPC', user 'Admin'");
  EXPECT_EQ(ReadBytes(lockFile), entry) << "the other program's entry stays";
  {
    const OtherProgramsLock lock(lockFile, 0x10000001);
    expectRefused("'OTHERPC', user 'Admin'");
  }
  std::filesystem::remove(lockFile);
  for (const auto& [file, start] : {std::pair(lockFile, 0x10000001), {copy.Path(), 0}}) {
    const OtherProgramsLock lock(file, start);
    expectRefused("another program");
  }
  // An entry of a program that has ended on this machine is ignored.
  WriteBytes(lockFile, entryOf(jet_file::MachineName()));
  Mark(*database, 1007);
  EXPECT_EQ(copy.Changed().size(), 1u);
  EXPECT_FALSE(std::filesystem::exists(lockFile));
}

void MarkedByOthers(std::string& bytes) {
  bytes[0x47C0E] = static_cast<char>(bytes[0x47C0E] | 4);  // ID 1007
}

TEST_F(DesktopMarks, FollowAChangeByAnotherProgram) {
  const SampleCopy copy("telling-2003.mdb");
  m_workspace->BeginAction();
  const auto database = m_workspace->OpenDatabase(copy.Request());
  const auto open = [&] {
    return database->OpenRecordset("SELECT ID, Restore FROM Catalog WHERE ID > 1006",
                                   RecordsetType::kDynaset);
  };
  const auto change = [&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    copy.Change(MarkedByOthers);
  };
  const auto rows = open();
  EXPECT_TRUE(Marked(*database).empty());
  change();
  EXPECT_EQ(Marked(*database), Strings{"1007"});
  // The row may be a different one now.
  ExpectError(error_number::kRecordDeleted, "Catalog", [&] { Change(*rows, "Restore", true); });
  Mark(*database, 1008);
  m_workspace->Flush();
  EXPECT_EQ(copy.Changed().size(), 2u);
  // A change that the mark itself is the first to see.
  const auto again = open();
  change();
  ExpectError(error_number::kRecordDeleted, "Catalog", [&] { Change(*again, "Restore", true); });
  m_workspace->EndAction();
  EXPECT_EQ(copy.Changed().size(), 1u);
}

// The file's time does not show a change within one tick of the file system's clock. The page is therefore
// compared before a mark is written to it.
TEST_F(DesktopMarks, AreRefusedOnAPageThatHasChanged) {
  const SampleCopy copy("telling-2003.mdb");
  const auto database = m_workspace->OpenDatabase(copy.Request());
  EXPECT_TRUE(Marked(*database).empty());
  const auto time = std::filesystem::last_write_time(copy.Path());
  copy.Change(MarkedByOthers);
  std::filesystem::last_write_time(copy.Path(), time);
  ExpectError(error_number::kDataHasChanged, "page 71", [&] { Mark(*database, 1008); });
  EXPECT_EQ(copy.Changed().size(), 1u);
  Mark(*database, 1008);
  EXPECT_EQ(Marked(*database), (Strings{"1007", "1008"}));
}

// A statement that fails at page 91 takes back what it has changed on the pages before, and nothing else.
TEST_F(DesktopMarks, OfAStatementThatFailsAreTakenBack) {
  const SampleCopy copy("telling-2003.mdb");
  const auto database = m_workspace->OpenDatabase(copy.Request());
  database->BeginTrans();
  Mark(*database, 1001);
  EXPECT_EQ(Marked(*database), Strings{"1001"});
  const auto time = std::filesystem::last_write_time(copy.Path());
  copy.Change([](std::string& bytes) { bytes[91 * 4096 + 0x80] ^= 1; });
  std::filesystem::last_write_time(copy.Path(), time);
  ExpectError(error_number::kDataHasChanged, "page 91",
              [&] { database->Execute("UPDATE Catalog SET Restore = Not Restore", kFailOnError); });
  EXPECT_EQ(Marked(*database), Strings{"1001"});
  database->CommitTrans();
  EXPECT_EQ(copy.Changed().size(), 2u);
}

// mdbtools, an independent reader, finds the same rows marked.
TEST_F(DesktopMarks, AreSeenByAnotherReader) {
  if (std::system("command -v mdb-export >/dev/null") != 0) GTEST_SKIP() << "mdbtools is not installed";
  for (const char* name : {"telling-2000.mdb", "overflow-2003.mdb", "telling-2019.accdb"}) {
    const SampleCopy copy(name);
    MarkEveryWay(copy.Request());
    const std::string table = copy.Beside("table.csv");
    const std::string command = "mdb-export '" + copy.Path() + "' Catalog > '" + table + "'";
    ASSERT_EQ(std::system(command.c_str()), 0);
    std::istringstream lines(ReadBytes(table));
    Strings marked;
    std::string line;
    for (std::getline(lines, line); std::getline(lines, line);) {
      // No text of the samples has a comma before the mark, the eleventh column.
      std::istringstream fields(line);
      std::string field, id;
      std::getline(fields, id, ',');
      for (int i = 1; i <= 10; ++i) std::getline(fields, field, ',');
      if (field == "1") marked.push_back(id);
    }
    std::sort(marked.begin(), marked.end());
    EXPECT_EQ(marked, Marked(*m_workspace->OpenDatabase(copy.Request()))) << name;
  }
}

TEST_F(DesktopMarks, OfAKilledProgramAreTheFirstOnes) {
  const SampleCopy copy("telling-2003.mdb");
  const pid_t child = fork();
  if (child == 0) {
    m_workspace->BeginAction();
    const auto database = m_workspace->OpenDatabase(copy.Request());
    for (int id = 1600; id > 1000; --id) {
      Mark(*database, id);
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    for (;;) pause();
  }
  for (int tries = 0; tries < 500 && copy.Changed().empty(); ++tries) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  const auto database = m_workspace->OpenDatabase(copy.Request());
  const Strings marked = Marked(*database);
  ASSERT_FALSE(marked.empty());
  EXPECT_EQ(marked.back(), "1600");
  EXPECT_EQ(marked.front(), std::to_string(1601 - static_cast<int>(marked.size())));
  EXPECT_EQ(copy.Changed().size(), marked.size());
  Mark(*database, 1001);  // the dead program's lock file is no obstacle
}
#endif

}  // namespace
}  // namespace kxrestore::engine::testing
