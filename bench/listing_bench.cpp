// Listings, masks and file types against the database library itself, on runs of 100,000 and 1,000,000 files:
//   find in all sets    Find with *invoice*, every version     | the names compared, the hits read
//   find everything     Find with a mask that all names match  | the same
//   latest of all sets  the newest version of every name       | the best statement for that by hand
//   latest of a mask    the same where a mask restricts it     | the same
//   latest of one set   the newest versions in one set         | the same
//   fill the chooser    the types of all names are counted     | one plain grouped statement
//   auto-select         types of some 100,000 files are marked | the rows found, marked together and listed
// Also the bytes per hit.
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bench/counters.h"
#include "bench/loaded_dialog.h"
#include "catalog/restore_query.h"

namespace kxrestore::bench {
namespace {

constexpr double kMaxSearchRatio = 1.3;
constexpr double kMaxLatestRatio = 1.2;
constexpr double kMaxChooserRatio = 2;
constexpr double kMaxAutoSelectRatio = 3;
constexpr double kMaxBytesAnEntry = 300;
constexpr std::int64_t kAutoSelected = 100000;

constexpr char kListColumns[] =
    "OrigName, OrigSize, Extension, SetNameID, Name, DateStamp, Filename, File, Plugin";
constexpr int kListColumnCount = 9;

class Find : public Comparison {
 public:
  Find(std::int64_t rows, const std::string& mask)
      : m_rows(rows), m_path(BenchCatalog(rows)), m_dialog(m_path) {
    dialog::FormControls& ui = m_dialog.Ui();
    ui.tbsOptions.UserSelect(2);
    ui.chk1.SetValue(false);
    ui.cboMask.UserType(mask);
    for (const char c : mask) m_bareMask += c == '*' ? '%' : c;
  }

  void Prepare() override { m_dialog.Ui().asSearch.Clear(); }

  void Ours() override {
    const std::int64_t before = LiveBytes();
    m_dialog.Press(m_dialog.Ui().cmdSearch[2]);
    const std::size_t hits = m_dialog.Ui().asSearch.Count();
    Figure("memory of found entries: " + m_bareMask, m_rows,
           static_cast<double>(LiveBytes() - before) / static_cast<double>(hits), "bytes an entry",
           kMaxBytesAnEntry);
    Agree(static_cast<std::int64_t>(hits));
  }

  void Bare() override {
    BareDatabase database(m_path);
    BareStatement rows(database.Get(), (std::string("SELECT ") + kListColumns +
                                        " FROM Catalog LEFT JOIN SetNames ON SetNames.ID = SetNameID WHERE "
                                        "OrigName LIKE '" +
                                        m_bareMask + "' AND Status = 2")
                                           .c_str());
    Agree(ReadAll(rows, kListColumnCount));
  }

 private:
  void Agree(std::int64_t hits) {
    Expect(hits > 100, "too few hits");
    Expect(m_hits == 0 || hits == m_hits, "the two searches differ");
    m_hits = hits;
  }

  std::int64_t m_rows;
  std::string m_path;
  std::string m_bareMask;
  Dialog m_dialog;
  std::int64_t m_hits = 0;
};

// The rows among which the newest versions are searched.
struct LatestTerms {
  std::int32_t setId = 0;  // 0: all
  std::string mask;        // a piece of the name
};

class Latest : public Comparison {
 public:
  Latest(std::int64_t rows, LatestTerms terms) : m_terms(std::move(terms)), m_path(BenchCatalog(rows)) {}

  void Ours() override {
    m_workspace->BeginAction();
    {
      const auto database = m_workspace->OpenDatabase({.name = m_path});
      const engine::ColumnNames read = {"OrigName",  "OrigSize", "Extension", "SetNameID", "SetName",
                                        "DateStamp", "Filename", "File",      "Plugin",    "ID"};
      const auto rows = catalog::BuildRestoreQuery(*database, m_terms.setId, true, m_terms.mask, "", read);
      std::vector<engine::Field> fields;
      for (const std::string_view name : read) fields.push_back(rows->Fields(name));
      Totals totals;
      for (; !rows->Eof(); rows->MoveNext(), ++totals.rows) {
        for (const engine::Field& field : fields) Use(field.IsNull());
        totals.ids = totals.ids * 31 + static_cast<std::uint64_t>(fields.back().Integer());
      }
      Agree(totals);
    }
    m_workspace->EndAction();
  }

  void Bare() override {
    BareDatabase database(m_path);
    std::string conditions = "Status = 2";
    if (m_terms.setId != 0) conditions += " AND SetNameID = " + std::to_string(m_terms.setId);
    if (!m_terms.mask.empty()) conditions += " AND OrigName LIKE '%" + m_terms.mask + "%'";
    const std::string sql =
        std::string("SELECT ") + kListColumns +
        ", Catalog.ID FROM (SELECT max(ID) AS Newest FROM Catalog WHERE " + conditions +
        " GROUP BY OrigName COLLATE NOCASE) JOIN Catalog ON Catalog.ID = Newest LEFT JOIN SetNames ON "
        "SetNames.ID = SetNameID ORDER BY DateStamp DESC, Catalog.ID DESC";
    BareStatement rows(database.Get(), sql.c_str());
    Totals totals;
    for (; rows.Step(); ++totals.rows) {
      for (int column = 0; column < kListColumnCount; ++column) Use(rows.Text(column).size());
      totals.ids = totals.ids * 31 + static_cast<std::uint64_t>(rows.Integer(kListColumnCount));
    }
    Agree(totals);
  }

 private:
  struct Totals {
    std::int64_t rows = 0;
    std::uint64_t ids = 0;  // and their order, where the listing has one for rows of the same time
  };

  void Agree(const Totals& totals) {
    Expect(totals.rows > 100, "too few rows");
    Expect(m_totals.rows == 0 || totals.rows == m_totals.rows, "the two listings differ");
    Expect(m_totals.rows == 0 || m_terms.setId != 0 || totals.ids == m_totals.ids, "other rows are listed");
    m_totals = totals;
  }

  LatestTerms m_terms;
  std::string m_path;
  std::unique_ptr<engine::Workspace> m_workspace = engine::MakeDefaultWorkspace();
  Totals m_totals;
};

class Chooser : public Comparison {
 public:
  explicit Chooser(std::int64_t rows) : m_path(BenchCatalog(rows)) {}

  // The chooser is filled once a form, when its tab is first shown.
  void Prepare() override {
    m_dialog.reset();
    m_dialog = std::make_unique<Dialog>(m_path);
  }

  void Ours() override {
    m_dialog->ShowTypes();
    Expect(m_dialog->Ui().asFiles.Count() > 10, "too few types");
  }

  void Bare() override {
    BareDatabase database(m_path);
    BareStatement rows(database.Get(),
                       "SELECT replace(OrigName, rtrim(OrigName, replace(OrigName, '.', '')), '') AS Type, "
                       "count(*) FROM Catalog WHERE Status = 2 AND OrigName LIKE '%.%' GROUP BY Type");
    Expect(ReadAll(rows, 2) > 10, "too few types");
  }

 private:
  std::string m_path;
  std::unique_ptr<Dialog> m_dialog;
};

class AutoSelecting : public Comparison {
 public:
  explicit AutoSelecting(std::int64_t rows) : m_path(BenchCatalog(rows)), m_dialog(m_path) {
    m_dialog.ShowTypes();
    m_dialog.Ui().chk2.SetValue(false);
    controls::AutoSelect& types = m_dialog.Ui().asFiles;
    std::int64_t files = 0;
    for (std::size_t number = 1; number <= types.Count() && files < kAutoSelected; ++number) {
      const controls::AutoSelect::Entry type = types.At(number);
      if (type.isGroup) continue;
      types.SetTicked(number, true);
      files += type.size;
      m_patterns.push_back("%" + std::string(type.storedName) + "%");
    }
  }
  ~AutoSelecting() override { ClearMarks(m_path); }

  void Prepare() override {
    ClearMarks(m_path);
    m_dialog.Ui().asRestoreList.Clear();
  }

  void Ours() override {
    m_dialog.Press(m_dialog.Ui().cmdAuto[0]);
    Agree(static_cast<std::int64_t>(m_dialog.Ui().asRestoreList.Count()));
  }

  void Bare() override {
    BareDatabase database(m_path);
    database.Execute("BEGIN");
    BareStatement find(database.Get(), "SELECT ID FROM Catalog WHERE OrigName LIKE ? AND Status = 2");
    BareStatement mark(database.Get(), "UPDATE Catalog SET Restore = 1 WHERE ID = ?");
    for (const std::string& pattern : m_patterns) {
      find.Bind(1, pattern);
      while (find.Step()) {
        mark.Bind(1, find.Integer(0));
        mark.Step();
        mark.Reset();
      }
      find.Reset();
    }
    database.Execute("COMMIT");
    BareStatement rows(database.Get(),
                       (std::string("SELECT ") + kListColumns +
                        ", LongPath FROM Catalog LEFT JOIN LongPaths ON PathID = LongPathID LEFT JOIN "
                        "SetNames ON SetNames.ID = SetNameID WHERE Restore <> 0")
                           .c_str());
    Agree(ReadAll(rows, kListColumnCount + 1));
  }

 private:
  void Agree(std::int64_t marked) {
    Expect(marked > 1000, "too few files were marked");
    Expect(m_marked == 0 || marked == m_marked, "other files were marked");
    m_marked = marked;
  }

  std::string m_path;
  Dialog m_dialog;
  std::vector<std::string> m_patterns;
  std::int64_t m_marked = 0;
};

}  // namespace
}  // namespace kxrestore::bench

int main(int count, char** words) {
  using namespace kxrestore::bench;
  for (const std::int64_t rows : {100000, 1000000}) {
    const int repetitions = rows > 100000 ? 3 : 7;
    const auto compare = [&](const char* name, std::optional<double> limit, MakeComparison make) {
      Compare({.name = name, .rows = rows, .limit = limit, .repetitions = repetitions}, std::move(make));
    };
    compare("find in all sets", kMaxSearchRatio, Make<Find>("*invoice*"));
    compare("find everything", {}, Make<Find>("*:*"));
    compare("latest of all sets", kMaxLatestRatio, Make<Latest>(LatestTerms{0, ":"}));
    compare("latest of a mask", kMaxLatestRatio, Make<Latest>(LatestTerms{0, "invoice"}));
    compare("latest of one set", kMaxLatestRatio, Make<Latest>(LatestTerms{kBenchSet, ""}));
    compare("fill the chooser", kMaxChooserRatio, Make<Chooser>());
    compare("auto-select", kMaxAutoSelectRatio, Make<AutoSelecting>());
  }
  return RunBenchmarks(count, words);
}
