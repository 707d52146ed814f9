// Power fails at every change of the disk while marks are made in groups, or the process is killed: what a
// commit has returned for is there afterwards, nothing is there that nobody marked, and the file is whole.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <random>
#include <string>
#include <thread>

#include "tests/engine/test_databases.h"
#include "tests/faults/power_loss_disk.h"
#include "tests/faults/told.h"

namespace kxrestore::faults {
namespace {

using engine::testing::MakeSqliteFile;
using engine::testing::TestDatabase;

// By the journal's mode.
class Durability : public ::testing::TestWithParam<const char*> {
 protected:
  // Makes a catalog without marks, whose rows are marked in the order of their numbers.
  static void Fill(TestDatabase& catalog, int rows) {
    catalog.Run(
        engine::testing::CatalogSchema() + "PRAGMA journal_mode = " + GetParam() +
        "; WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " + std::to_string(rows) +
        ") INSERT INTO Catalog (ID, Filename, SetNameID, Restore) SELECT i, 'C:\\Data\\a folder\\file' || "
        "i, 1, 0 FROM n; CREATE INDEX ByRestore ON Catalog (Restore)");
  }
  static void Mark(engine::Workspace& workspace, const std::string& file, int id) {
    workspace.OpenDatabase({.name = file})
        ->Execute("UPDATE Catalog SET Restore = True WHERE ID = " + std::to_string(id), engine::kFailOnError);
  }
  // Tells whether a catalog holds the marks that were safe, those that were tried at most, and is whole.
  static void Judge(const std::string& what, TestDatabase& found, int safe, int tried) {
    const std::string check = found.Ask("PRAGMA integrity_check");
    const int marked = std::stoi(found.Ask("SELECT count(*) FROM Catalog WHERE Restore = 1"));
    const int last = std::stoi(found.Ask("SELECT coalesce(max(ID), 0) FROM Catalog WHERE Restore = 1"));
    const bool held = check == "ok" && marked >= safe && last <= tried && marked == last;
    EXPECT_TRUE(held) << check << ": " << safe << " marks were safe, " << tried << " tried, " << marked
                      << " are there up to " << last;
    Tell(what + ", " + GetParam(), held);
  }
};

TEST_P(Durability, PowerFails) {
  constexpr int kGroups = 6, kGroupSize = 40;
  const engine::testing::TemporaryFolder folder;
  const std::string before = folder.File("before"), after = folder.File("after"), file = before + "/c.db";
  std::filesystem::create_directory(before);
  Fill(*MakeSqliteFile(file), 600);
  using Reached = PowerLossDisk::Reached;
  unsigned moment = 0;
  int safe = 0, tried = 0;
  const PowerLossDisk* watched = nullptr;
  const auto judge = [&](Reached reached, unsigned seed) {
    const PowerLossDisk* const disk = std::exchange(watched, nullptr);
    disk->Fail(after, reached, seed);
    SCOPED_TRACE("seed " + std::to_string(seed));
    Judge("power fails", *MakeSqliteFile(after + "/c.db"), safe, tried);
    watched = disk;
  };
  PowerLossDisk disk(before, [&] {
    if (watched == nullptr || ++moment % Sparsely(4) != 0) return;
    judge(Reached::kNone, moment);
    judge(Reached::kSome, moment + Seed());
    judge(Reached::kAll, moment);
  });
  watched = &disk;
  const auto workspace = engine::MakeDefaultWorkspace();
  for (int group = 0; group < kGroups; ++group) {
    if (group % 3 == 0) workspace->BeginAction();
    for (int i = 0; i < kGroupSize; ++i) Mark(*workspace, file, ++tried);
    workspace->Flush();
    safe = tried;
    // Right after a commit is the moment that counts.
    judge(Reached::kNone, 0);
    for (unsigned seed = 1; seed <= 4; ++seed) judge(Reached::kSome, seed + Seed());
    if (group % 3 == 2) workspace->EndAction();
  }
  EXPECT_GT(moment, 50u) << "nothing was watched";
  std::printf("%s: %zu syncs for %d commits\n", GetParam(), disk.Syncs(), kGroups);
}

TEST_P(Durability, TheProcessIsKilled) {
  constexpr int kRows = 4000;
  std::mt19937 random(Seed());
  for (unsigned i = 0; i < 10 * Times(); ++i) {
    const auto catalog = MakeSqliteFile();
    Fill(*catalog, kRows);
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const pid_t process = fork();
    ASSERT_GE(process, 0);
    if (process == 0) {  // tells how many marks are committed
      const auto workspace = engine::MakeDefaultWorkspace();
      for (int id = 1; id <= kRows; ++id) {
        if (id % 100 == 1) workspace->BeginAction();
        Mark(*workspace, catalog->Request().name, id);
        if (id % 20 == 0) {
          workspace->Flush();
          if (write(ends[1], &id, sizeof id) != sizeof id) _exit(1);
        }
        if (id % 100 == 0) workspace->EndAction();
      }
      _exit(0);
    }
    close(ends[1]);
    int safe = 0;
    ASSERT_EQ(read(ends[0], &safe, sizeof safe), static_cast<ssize_t>(sizeof safe));
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 60'000));
    kill(process, SIGKILL);
    while (read(ends[0], &safe, sizeof safe) == static_cast<ssize_t>(sizeof safe)) continue;
    close(ends[0]);
    waitpid(process, nullptr, 0);
    engine::MakeDefaultWorkspace()->OpenDatabase(
        catalog->Request());  // the next dialog, and then another program
    Judge("the process is killed", *catalog, safe, kRows);
  }
}

INSTANTIATE_TEST_SUITE_P(Journals, Durability, ::testing::Values("DELETE", "WAL"),
                         [](const auto& mode) { return std::string(mode.param); });

}  // namespace
}  // namespace kxrestore::faults
