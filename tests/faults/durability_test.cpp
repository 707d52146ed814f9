// Power fails at any change of the disk while marks are committed in groups, or the process is killed.
// Afterwards the file is intact, it has every mark whose commit has returned, and it has no other marks than
// those that were set.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <thread>

#include "tests/engine/hooked_files.h"
#include "tests/engine/test_databases.h"
#include "tests/faults/told.h"

namespace kxrestore::faults {
namespace {

using engine::testing::FileCall;
using engine::testing::MakeSqliteFile;
using engine::testing::TestDatabase;

// Simulates power failures. During its lifetime an object records all changes that SQLite makes to the files
// of one folder, and can create a folder with the files as a power failure would leave them: any of the
// unsynced changes may have reached the disk. A sync of the folder makes new and deleted names permanent.
class PowerLossDisk {
 public:
  // How many of the unsynced changes have reached the disk.
  enum class Reached { kNone, kSome, kAll };

  // Existing files count as synced. `step` is called before each change of a file or of the folder.
  PowerLossDisk(std::string folder, std::function<void()> step)
      : m_folder(std::move(folder) + "/"), m_step(std::move(step)) {
    for (const auto& entry : std::filesystem::directory_iterator(m_folder)) {
      m_names[entry.path().filename().string()] =
          std::make_shared<File>(File{engine::testing::ReadBytes(entry.path().string()), {}});
    }
    m_safeNames = m_names;
  }

  // Creates the folder `target` with the files after a power failure at this moment. With kSome, `seed`
  // selects the changes that have reached the disk.
  void Fail(const std::string& target, Reached reached, unsigned seed) const {
    std::mt19937 random(seed);
    const auto hasReached = [&] {
      return reached == Reached::kAll || (reached == Reached::kSome && random() % 2 == 0);
    };
    std::filesystem::remove_all(target);
    std::filesystem::create_directory(target);
    Names found = m_safeNames;
    for (const auto& [name, file] : m_names) {
      if (!found.contains(name) && hasReached()) found[name] = file;
    }
    for (const auto& [name, file] : m_safeNames) {
      if (!m_names.contains(name) && hasReached()) found.erase(name);
    }
    for (const auto& [name, file] : found) {
      std::string content = file->safe;
      for (const Change& change : file->unsynced) {
        if (hasReached()) Apply(content, change);
      }
      engine::testing::WriteBytes(target + "/" + name, content);
    }
  }

  std::size_t Syncs() const { return m_syncs; }

 private:
  // A write to a file or, without bytes, a truncation.
  struct Change {
    std::size_t at;
    std::string bytes;
  };
  struct File {
    std::string safe;
    std::vector<Change> unsynced;
  };
  using Names = std::map<std::string, std::shared_ptr<File>>;

  static void Apply(std::string& content, const Change& change) {
    if (change.bytes.empty()) return content.resize(change.at);
    content.resize(std::max(content.size(), change.at + change.bytes.size()));
    content.replace(change.at, change.bytes.size(), change.bytes);
  }

  // SQLite may use the same object for another file.
  void Opened(const FileCall& call, const std::string& name) {
    m_open.erase(call.file);
    if (name.empty() || (!m_names.contains(name) && (call.flags & SQLITE_OPEN_CREATE) == 0)) return;
    std::shared_ptr<File>& found = m_names[name];
    if (!found) found = std::make_shared<File>();
    m_open[call.file] = found;
  }

  // A sector is written as a whole or not at all.
  static void Write(File& file, std::string_view bytes, std::size_t at) {
    constexpr std::size_t kSector = 512;
    while (!bytes.empty()) {
      const std::string_view piece = bytes.substr(0, kSector - at % kSector);
      file.unsynced.push_back({at, std::string(piece)});
      bytes.remove_prefix(piece.size());
      at += piece.size();
    }
  }

  void SyncFolder() {
    m_step();
    ++m_syncs;
    m_safeNames = m_names;
  }

  // The first sync of a new file also syncs the folder.
  void Sync(File& file) {
    ++m_syncs;
    for (const Change& change : file.unsynced) Apply(file.safe, change);
    file.unsynced.clear();
    if (std::ranges::none_of(m_safeNames, [&](const auto& safe) { return safe.second.get() == &file; }))
      SyncFolder();
  }

  int OnCall(const FileCall& call) {
    const std::string name(call.name.starts_with(m_folder) ? call.name.substr(m_folder.size()) : "");
    if (call.kind == FileCall::kOpen) Opened(call, name);
    if (call.kind == FileCall::kDelete && m_names.contains(name)) {
      m_step();
      m_names.erase(name);
      if (call.flags != 0) SyncFolder();
    }
    const auto found = m_open.find(call.file);
    if (found == m_open.end()) return SQLITE_OK;
    const auto at = static_cast<std::size_t>(call.at);
    if (call.kind >= FileCall::kWrite && call.kind <= FileCall::kSync) m_step();
    if (call.kind == FileCall::kWrite) Write(*found->second, call.bytes, at);
    if (call.kind == FileCall::kTruncate) found->second->unsynced.push_back({at, {}});
    if (call.kind == FileCall::kSync) Sync(*found->second);
    return SQLITE_OK;
  }

  const std::string m_folder;
  const std::function<void()> m_step;
  Names m_names, m_safeNames;
  std::map<const sqlite3_file*, std::shared_ptr<File>> m_open;
  std::size_t m_syncs = 0;
  engine::testing::HookedFiles m_files{[this](const FileCall& call) { return OnCall(call); }};
};

// The parameter is the journal mode.
class Durability : public ::testing::TestWithParam<const char*> {
 protected:
  // Creates a catalog without marks. The tests mark its rows in the order of their IDs.
  static void Fill(TestDatabase& catalog, int rows) {
    catalog.Run(engine::testing::CatalogSchema() + "PRAGMA journal_mode = " + GetParam() + ";" +
                engine::testing::ManyRows(1, rows) + "CREATE INDEX ByRestore ON Catalog (Restore)");
  }
  static void Mark(engine::Workspace& workspace, const std::string& file, int id) {
    engine::testing::Mark(*workspace.OpenDatabase({.name = file}), id);
  }
  // Expects an intact catalog with at least the first `safe` marks and at most the first `tried`.
  static void Judge(const std::string& what, TestDatabase& found, int safe, int tried) {
    const std::string check = found.Ask("PRAGMA integrity_check");
    const int marked = std::stoi(found.Ask("SELECT count(*) FROM Catalog WHERE Restore = 1"));
    const int last = std::stoi(found.Ask("SELECT coalesce(max(ID), 0) FROM Catalog WHERE Restore = 1"));
    const bool held = check == "ok" && marked >= safe && last <= tried && marked == last;
    EXPECT_TRUE(held) << check << ": " << safe << " marks were committed, " << tried << " set, " << marked
                      << " found, the last one is " << last;
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
    if (watched == nullptr || ++moment % std::max(4 / Times(), 1u) != 0) return;
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
    // A failure right after a commit must not lose the commit.
    judge(Reached::kNone, 0);
    for (unsigned seed = 1; seed <= 4; ++seed) judge(Reached::kSome, seed + Seed());
    if (group % 3 == 2) workspace->EndAction();
  }
  EXPECT_GT(moment, 50u) << "too few power failures";
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
    if (process == 0) {  // this process reports the number of committed marks
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
    // The engine opens the catalog before another program does.
    engine::MakeDefaultWorkspace()->OpenDatabase(catalog->Request());
    Judge("the process is killed", *catalog, safe, kRows);
  }
}

INSTANTIATE_TEST_SUITE_P(Journals, Durability, ::testing::Values("DELETE", "WAL"),
                         [](const auto& mode) { return std::string(mode.param); });

}  // namespace
}  // namespace kxrestore::faults
