// Power fails at every change of the disk while marks are made in groups: what a commit has returned for is
// there when the machine is back, nothing is there that nobody marked, and the file is whole.
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "tests/engine/test_databases.h"
#include "tests/faults/power_loss_disk.h"
#include "tests/faults/told.h"

namespace kxrestore::faults {
namespace {

using engine::testing::MakeSqliteFile;
using engine::testing::TemporaryFolder;

constexpr int kGroups = 6, kGroupSize = 40;

class PowerLoss : public ::testing::TestWithParam<const char*> {
 protected:
  std::string Folder(const char* name) {
    std::filesystem::create_directory(m_folder.File(name));
    return m_folder.File(name);
  }

  // Looks at the folder as power would have left it, and tells what does not hold.
  void Judge(const PowerLossDisk& disk, PowerLossDisk::Reached reached, unsigned seed) {
    const std::string after = m_folder.File("after");
    disk.Fail(after, reached, seed);
    m_judging = true;
    {
      const auto found = MakeSqliteFile(after + "/c.db");
      const std::string check = found->Ask("PRAGMA integrity_check");
      const int marked = std::stoi(found->Ask("SELECT count(*) FROM Catalog WHERE Restore = 1"));
      const int last = std::stoi(found->Ask("SELECT ifnull(max(ID), 0) FROM Catalog WHERE Restore = 1"));
      const bool held = check == "ok" && marked >= m_safe && last <= m_tried && marked == last;
      EXPECT_TRUE(held) << check << ": " << m_safe << " marks were safe, " << m_tried << " tried, " << marked
                        << " are there up to " << last << " (seed " << seed << ")";
      Tell(std::string("power fails, ") + GetParam(), held);
    }
    m_judging = false;
  }

  TemporaryFolder m_folder;
  bool m_judging = false;
  int m_safe = 0, m_tried = 0;
};

TEST_P(PowerLoss, KeepsWhatWasCommitted) {
  const std::string folder = Folder("before");
  {
    const auto make = MakeSqliteFile(folder + "/c.db");
    make->Run(
        engine::testing::CatalogSchema() + "PRAGMA journal_mode = " + GetParam() +
        "; WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 600) INSERT INTO "
        "Catalog (ID, Filename, SetNameID, Restore) SELECT i, 'C:\\Data\\a folder\\file' || i, 1, 0 FROM n; "
        "CREATE INDEX ByRestore ON Catalog (Restore)");
  }
  unsigned moment = 0;
  const PowerLossDisk* watched = nullptr;
  PowerLossDisk disk(folder, [&] {
    if (m_judging || watched == nullptr) return;
    ++moment;
    if (moment % Sparsely(4) != 0) return;
    Judge(*watched, PowerLossDisk::Reached::kNone, moment);
    Judge(*watched, PowerLossDisk::Reached::kSome, moment + Seed());
    Judge(*watched, PowerLossDisk::Reached::kAll, moment);
  });
  watched = &disk;
  const auto workspace = engine::MakeDefaultWorkspace();
  for (int action = 0; action < 2; ++action) {
    workspace->BeginAction();
    for (int group = 0; group < kGroups / 2; ++group) {
      for (int i = 0; i < kGroupSize; ++i) {
        workspace->OpenDatabase({.name = folder + "/c.db"})
            ->Execute("UPDATE Catalog SET Restore = True WHERE ID = " + std::to_string(++m_tried),
                      engine::kFailOnError);
      }
      workspace->Flush();
      m_safe = m_tried;
      // Right after a commit is the moment that counts.
      Judge(disk, PowerLossDisk::Reached::kNone, 0);
      for (unsigned seed = 1; seed <= 4; ++seed) Judge(disk, PowerLossDisk::Reached::kSome, seed + Seed());
    }
    workspace->EndAction();
  }
  EXPECT_EQ(m_safe, kGroups * kGroupSize);
  EXPECT_GT(moment, 50u) << "nothing was watched";
  std::printf("%s: %zu syncs for %d commits\n", GetParam(), disk.Syncs(), kGroups);
}

INSTANTIATE_TEST_SUITE_P(Journals, PowerLoss, ::testing::Values("DELETE", "WAL"),
                         [](const auto& mode) { return std::string(mode.param); });

}  // namespace
}  // namespace kxrestore::faults
