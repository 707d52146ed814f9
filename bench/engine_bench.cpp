// The database interface against the database library itself, on one run of 100,000 and of 1,000,000 files:
//   scan          the detail tree's statement, the texts of every row read
//   mark by name  100,000 or 1,000,000 files found by name and marked, in the order of the tree
//   mark by id    the same rows marked by their number
//   durability    what it costs the library itself to keep the marks of the last 100 ms through a power
//   failure
// Both sides of the marking comparisons keep that promise; its price is the line "durability".
#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "base/error.h"
#include "bench/bare_sqlite.h"
#include "bench/harness.h"
#include "bench/marker.h"
#include "bench/statements.h"
#include "engine/database.h"

namespace kxrestore::bench {
namespace {

constexpr double kMaxByNameRatio = 1.4, kMaxByIdRatio = 1.3;

class Scan : public Comparison {
 public:
  explicit Scan(std::int64_t rows) : m_path(BenchCatalog(rows)), m_rows(rows) {}

  void Ours() override {
    std::uint64_t bytes = 0;
    std::int64_t count = 0;
    m_workspace->BeginAction();
    {
      const auto database = m_workspace->OpenDatabase({.name = m_path, .connect = {}});
      const auto rows = database->OpenRecordset(kDetailStatement, engine::RecordsetType::kSnapshot,
                                                {"RestoreFile", "Filename", "File", "Plugin"});
      const engine::Field path = rows->Fields("RestoreFile");
      const engine::Field name = rows->Fields("Filename");
      const engine::Field file = rows->Fields("File");
      const engine::Field plugin = rows->Fields("Plugin");
      for (; !rows->Eof(); rows->MoveNext(), ++count) {
        bytes += path.TextView().size() + name.TextView().size() + file.TextView().size() +
                 plugin.TextView().size();
      }
    }
    m_workspace->EndAction();
    Finish(count, bytes);
  }

  void Bare() override {
    BareDatabase database(m_path);
    BareStatement rows(
        database.Get(),
        "SELECT ifnull(LongPath, Filename), Filename, File, Plugin FROM Catalog LEFT JOIN LongPaths ON "
        "PathID = LongPathID WHERE SetNameID = 1 AND Extension = '001' AND Status = 2");
    std::uint64_t bytes = 0;
    std::int64_t count = 0;
    for (; rows.Step(); ++count) {
      for (int column = 0; column < 4; ++column) bytes += rows.Text(column).size();
    }
    Finish(count, bytes);
  }

 private:
  void Finish(std::int64_t count, std::uint64_t bytes) {
    if (count != m_rows) throw Error(1, "a scan saw " + std::to_string(count) + " rows");
    if (m_bytes != 0 && bytes != m_bytes) throw Error(1, "the two scans read different texts");
    m_bytes = bytes;
    Use(bytes);
  }

  std::string m_path;
  std::int64_t m_rows;
  std::uint64_t m_bytes = 0;
  std::unique_ptr<engine::Workspace> m_workspace = engine::MakeDefaultWorkspace();
};

// What marking comparisons share: the rows to mark in the order of the tree, and a catalog without marks
// before each.
class Marking : public Comparison {
 public:
  explicit Marking(std::int64_t rows)
      : m_path(BenchCatalog(rows)), m_marker({.DBName = m_path, .connect = {}}) {
    BareDatabase database(m_path);
    BareStatement all(database.Get(), "SELECT ID, Filename FROM Catalog ORDER BY ID");
    while (all.Step()) {
      m_ids.push_back(static_cast<std::int32_t>(all.Integer(0)));
      m_names.emplace_back(all.Text(1));
    }
  }
  ~Marking() override { ClearMarks(m_path); }

  void Prepare() override { ClearMarks(m_path); }

 protected:
  std::string m_path;
  std::vector<std::int32_t> m_ids;
  std::vector<std::string> m_names;
  Marker m_marker;
};

enum class Durability { kGroups, kOneTransaction };

// The library's own marks: committed every 100 ms so that they survive a power failure, as the engine commits
// them, or once at the end with the library's default setting.
class BareMarks {
 public:
  BareMarks(const std::string& path, Durability durability) : m_database(path), m_durability(durability) {
    if (durability == Durability::kGroups) m_database.Execute("PRAGMA synchronous = EXTRA");
    m_database.Execute("BEGIN");
    m_mark.emplace(m_database.Get(), "UPDATE Catalog SET Restore = 1 WHERE ID = ?");
  }

  sqlite3* Get() const { return m_database.Get(); }

  void Mark(std::int64_t id) {
    m_mark->Bind(1, id);
    m_mark->Step();
    m_mark->Reset();
    if (m_durability == Durability::kOneTransaction || Clock::now() < m_due) return;
    m_database.Execute("COMMIT");
    m_database.Execute("BEGIN");
    m_due = Clock::now() + kGroupTime;
  }

  void Commit() { m_database.Execute("COMMIT"); }

 private:
  using Clock = std::chrono::steady_clock;
  static constexpr auto kGroupTime = std::chrono::milliseconds(100);

  BareDatabase m_database;
  std::optional<BareStatement> m_mark;
  Durability m_durability;
  Clock::time_point m_due = Clock::now() + kGroupTime;
};

class MarkByName : public Marking {
 public:
  using Marking::Marking;

  void Ours() override { m_marker.ByName(m_names); }
  void Bare() override { MarkBare(Durability::kGroups); }

 protected:
  void MarkBare(Durability durability) {
    BareMarks marks(m_path, durability);
    BareStatement find(marks.Get(),
                       "SELECT ID FROM Catalog WHERE SetNameID = ? AND Extension = ? AND Filename = ?");
    find.Bind(1, kBenchSet);
    find.Bind(2, kBenchExtension);
    for (const std::string& name : m_names) {
      find.Bind(3, name);
      if (!find.Step()) throw Error(1, "no row for " + name);
      const std::int64_t id = find.Integer(0);
      find.Reset();
      marks.Mark(id);
    }
    marks.Commit();
  }
};

class PriceOfDurability : public MarkByName {
 public:
  using MarkByName::MarkByName;

  void Ours() override { MarkBare(Durability::kGroups); }
  void Bare() override { MarkBare(Durability::kOneTransaction); }
};

class MarkById : public Marking {
 public:
  using Marking::Marking;

  void Ours() override { m_marker.ById(m_ids); }

  void Bare() override {
    BareMarks marks(m_path, Durability::kGroups);
    for (const std::int32_t id : m_ids) marks.Mark(id);
    marks.Commit();
  }
};

}  // namespace
}  // namespace kxrestore::bench

int main(int count, char** words) {
  using namespace kxrestore::bench;
  for (const std::int64_t rows : {100000, 1000000}) {
    const int repetitions = rows > 100000 ? 3 : 7;
    Compare({.name = "scan of one run", .rows = rows, .limit = {}}, Make<Scan>());
    Compare({.name = "mark by file name", .rows = rows, .limit = kMaxByNameRatio, .repetitions = repetitions},
            Make<MarkByName>());
    Compare({.name = "mark by id", .rows = rows, .limit = kMaxByIdRatio, .repetitions = repetitions},
            Make<MarkById>());
    Compare({.name = "durability", .rows = rows, .limit = {}, .repetitions = repetitions},
            Make<PriceOfDurability>());
  }
  return RunBenchmarks(count, words);
}
