// A file of the desktop engine against an SQLite catalog with the same rows, the same dialog and the same
// marks on both, on one run of 100,000 and of 1,000,000 files; "bare" is the SQLite catalog here:
//   open a desktop run: a run is chosen
//   mark a desktop run by name, by id: 100,000 of its files, in the order of the tree
// The desktop file is a sample that is grown by writing pages with the rows of the SQLite catalog.
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "bench/bare_sqlite.h"
#include "bench/desktop_file.h"
#include "bench/harness.h"
#include "bench/loaded_dialog.h"
#include "bench/marker.h"
#include "host/catalog_maker/generator.h"

namespace kxrestore::bench {
namespace {

constexpr double kMaxOpenRatio = 2.5;
constexpr double kMaxMarkRatio = 3;
constexpr std::size_t kMarks = 100'000;
constexpr const char* kClear =
    "UPDATE [Catalog] SET [Catalog].Restore = False WHERE (((Catalog.Restore)=True));";

std::string BenchDesktopFile(std::int64_t rows) {
  const std::filesystem::path path =
      std::filesystem::path(BenchCatalog(rows)).parent_path() / ("one_run_" + std::to_string(rows) + ".mdb");
  if (!std::filesystem::exists(path)) {
    const std::string unfinished = path.string() + ".new";
    DesktopFile file(KX_TEST_DATA "/desktop/telling-2003.mdb", unfinished);
    sample::Generate({.rows = static_cast<std::uint64_t>(rows), .oneRun = true}, file);
    file.Finish();
    std::filesystem::rename(unfinished, path);
  }
  return path.string();
}

class OpenRun : public Comparison {
 public:
  explicit OpenRun(std::int64_t rows)
      : m_rows(rows), m_desktop(BenchDesktopFile(rows)), m_sqlite(BenchCatalog(rows)) {}

  void Ours() override { Open(m_desktop); }
  void Bare() override { Open(m_sqlite); }

 private:
  void Open(const std::string& path) const {
    Dialog dialog(path);
    dialog.ChooseRun();
    Expect(dialog.Ui().lblTreeCount.Caption() == std::to_string(m_rows) + " file(s).",
           "the tree is not full");
  }

  std::int64_t m_rows;
  std::string m_desktop, m_sqlite;
};

class MarkRun : public Comparison {
 public:
  MarkRun(std::int64_t rows, bool byName)
      : m_byName(byName), m_desktop(BenchDesktopFile(rows)), m_sqlite(BenchCatalog(rows)) {
    BareDatabase database(m_sqlite);
    BareStatement all(database.Get(), "SELECT ID, Filename FROM Catalog ORDER BY ID");
    while (all.Step() && m_ids.size() < kMarks) {
      m_ids.push_back(static_cast<std::int32_t>(all.Integer(0)));
      m_names.emplace_back(all.Text(1));
    }
  }
  ~MarkRun() override { Prepare(); }

  void Prepare() override {
    for (const std::string& path : {m_desktop, m_sqlite}) {
      m_workspace->OpenDatabase({.name = path, .connect = {}})->Execute(kClear, engine::kFailOnError);
    }
  }
  void Ours() override { Mark(m_desktop); }
  void Bare() override { Mark(m_sqlite); }

 private:
  void Mark(const std::string& path) {
    Marker marker({.DBName = path, .connect = {}});
    if (m_byName) {
      marker.ByName(m_names);
    } else {
      marker.ById(m_ids);
    }
    const auto rows = m_workspace->OpenDatabase({.name = path, .connect = {}})
                          ->OpenRecordset("SELECT Count(*) AS n FROM Catalog WHERE Restore = True",
                                          engine::RecordsetType::kSnapshot);
    Expect(rows->Fields("n").Integer() == static_cast<std::int64_t>(m_ids.size()),
           "not all files were marked");
  }

  bool m_byName;
  std::string m_desktop, m_sqlite;
  std::vector<std::int32_t> m_ids;
  std::vector<std::string> m_names;
  std::unique_ptr<engine::Workspace> m_workspace = engine::MakeDefaultWorkspace();
};

}  // namespace
}  // namespace kxrestore::bench

int main(int count, char** words) {
  using namespace kxrestore::bench;
  for (const std::int64_t rows : {100000, 1000000}) {
    const int repetitions = rows > 100000 ? 3 : 5;
    Compare({.name = "open a desktop run", .rows = rows, .limit = kMaxOpenRatio, .repetitions = repetitions},
            Make<OpenRun>());
    Compare({.name = "mark a desktop run by name",
             .rows = rows,
             .limit = kMaxMarkRatio,
             .repetitions = repetitions},
            Make<MarkRun>(true));
    Compare({.name = "mark a desktop run by id",
             .rows = rows,
             .limit = kMaxMarkRatio,
             .repetitions = repetitions},
            Make<MarkRun>(false));
  }
  return RunBenchmarks(count, words);
}
