// The command line as a separate process with its output discarded, on one run of 1,000,000 files. The bare
// side includes a start of the process as well, with --version.
//   print found files   a mask that some 100,000 match    | the same rows read
//   count found files   the same mask                     | one statement that counts them
//   print the types                                       | one plain grouped statement
//   mark found files    the same mask                     | the dialog: found, ticked, applied
#include <cstdlib>
#include <memory>
#include <string>

#include "bench/bare_sqlite.h"
#include "bench/harness.h"
#include "bench/loaded_dialog.h"

namespace kxrestore::bench {
namespace {

constexpr double kMaxRatio = 1.3;
constexpr double kMaxMarkRatio = 1.1;
constexpr std::int64_t kMin = 80'000, kMax = 120'000;  // files that the mask finds
constexpr const char* kMask = "*.pdf";
#define KX_BENCH_FOUND "Status = 2 AND OrigName LIKE '%.pdf'"

void RunCommandLine(const std::string& arguments) {
  Expect(std::system(("'" KX_COMMAND_LINE "' " + arguments + " >/dev/null").c_str()) == 0,
         "kxrestore " + arguments + " has failed");
}

class Printed : public Comparison {
 public:
  Printed(std::int64_t rows, std::string words, std::string sql, int columns)
      : m_path(BenchCatalog(rows)), m_words(std::move(words)), m_sql(std::move(sql)), m_columns(columns) {}

  void Ours() override { RunCommandLine(m_words + " --catalog '" + m_path + "'"); }

  void Bare() override {
    RunCommandLine("--version");
    BareDatabase database(m_path);
    BareStatement rows(database.Get(), m_sql.c_str());
    Expect(ReadAll(rows, m_columns) > 0, "nothing was found");
  }

 private:
  std::string m_path, m_words, m_sql;
  int m_columns;
};

class Marked : public Comparison {
 public:
  explicit Marked(std::int64_t rows) : m_path(BenchCatalog(rows)) {}
  ~Marked() override { ClearMarks(m_path); }

  void Prepare() override { ClearMarks(m_path); }

  void Ours() override {
    RunCommandLine(std::string("mark '") + kMask + "' --catalog '" + m_path + "'");
    Agree();
  }

  void Bare() override {
    RunCommandLine("--version");
    Dialog dialog(m_path);
    dialog::FormControls& ui = dialog.Ui();
    ui.tbsOptions.UserSelect(2);
    ui.chk1.SetValue(false);
    ui.cboMask.UserType(kMask);
    dialog.Press(ui.cmdSearch[2]);
    for (std::size_t number = 1; number <= ui.asSearch.Count(); ++number) {
      ui.asSearch.SetTicked(number, true);
    }
    dialog.Press(ui.cmdSearch[0]);
    Agree();
  }

 private:
  void Agree() {
    const std::int64_t marked = CountMarks(m_path);
    Expect(marked > kMin && marked < kMax, std::to_string(marked) + " files were marked");
    Expect(m_marked == 0 || marked == m_marked, "other files were marked");
    m_marked = marked;
  }

  std::string m_path;
  std::int64_t m_marked = 0;
};

}  // namespace
}  // namespace kxrestore::bench

int main(int count, char** words) {
  using namespace kxrestore::bench;
  const auto compare = [](const char* name, double limit, MakeComparison make) {
    Compare({.name = name, .rows = 1'000'000, .limit = limit, .repetitions = 5}, std::move(make));
  };
  const std::string mask = std::string(" '") + kMask + "'";
  compare("print found files", kMaxRatio,
          Make<Printed>("find" + mask,
                        "SELECT Catalog.ID, OrigSize, DateStamp, SetNameID, Name, Extension, Restore, "
                        "OrigName, Filename, File, Plugin FROM Catalog LEFT JOIN SetNames ON SetNames.ID = "
                        "SetNameID WHERE " KX_BENCH_FOUND,
                        11));
  compare(
      "count found files", kMaxRatio,
      Make<Printed>("count" + mask, "SELECT count(*), sum(OrigSize) FROM Catalog WHERE " KX_BENCH_FOUND, 2));
  compare("print the types", kMaxRatio,
          Make<Printed>("types",
                        "SELECT replace(OrigName, rtrim(OrigName, replace(OrigName, '.', '')), '') AS Type, "
                        "count(*) FROM Catalog WHERE Status = 2 AND OrigName LIKE '%.%' GROUP BY Type",
                        2));
  compare("mark found files", kMaxMarkRatio, Make<Marked>());
  return RunBenchmarks(count, words);
}
