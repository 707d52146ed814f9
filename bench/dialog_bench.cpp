// The dialog without windows against the database library itself, on runs of 100,000 and 1,000,000 files:
//   fill the detail tree: a run is chosen; bare: its rows are read
//   tick everything: the top node of the full tree is ticked
//   apply: everything is ticked, Apply is pressed; bare: the files are found and marked in one transaction
//   list marked files: Refresh is pressed, all are marked; bare: the marked rows are read
//   filter a list, all versions of a file (from the menu), tip of a file: seconds
// Also the bytes per node and the disk syncs per file.
#include <memory>
#include <string>
#include <vector>

#include "bench/bare_sqlite.h"
#include "bench/counters.h"
#include "bench/harness.h"
#include "bench/loaded_dialog.h"
#include "platform/headless/headless_menu.h"

namespace kxrestore::bench {
namespace {

constexpr double kMaxFillRatio = 1.5;
constexpr double kMaxBytesANode = 100;
constexpr double kMaxTickSeconds = 0.1;
constexpr double kMaxApplyRatio = 1.8;
constexpr double kMaxSyncsAFile = 0.01;
constexpr double kMaxFilterSeconds = 0.2;
constexpr double kMaxVersionsSeconds = 0.5;
constexpr double kMaxTipSeconds = 0.05;

class Fill : public Comparison {
 public:
  explicit Fill(std::int64_t rows) : m_rows(rows), m_path(BenchCatalog(rows)) {}

  void Prepare() override {
    m_dialog.reset();
    m_dialog = std::make_unique<Dialog>(m_path);
  }

  void Ours() override {
    const std::int64_t before = LiveBytes();
    m_dialog->ChooseRun();
    controls::TreeView& tree = m_dialog->Ui().tvwDetails;
    const auto nodes = static_cast<double>(tree.Count());
    Figure("memory of the detail tree", m_rows, static_cast<double>(LiveBytes() - before) / nodes,
           "bytes a node", kMaxBytesANode);
    Expect(m_dialog->Ui().lblTreeCount.Caption() == std::to_string(m_rows) + " file(s).",
           "the tree is not full");
  }

  void Bare() override {
    BareDatabase database(m_path);
    BareStatement rows(
        database.Get(),
        "SELECT ifnull(LongPath, Filename), Plugin, File, Filename FROM Catalog LEFT JOIN LongPaths ON "
        "PathID = LongPathID WHERE SetNameID = 1 AND Extension = '001' AND Status = 2");
    Expect(ReadAll(rows, 4) == m_rows, "the scan is not whole");
  }

 private:
  std::int64_t m_rows;
  std::string m_path;
  std::unique_ptr<Dialog> m_dialog;
};

class Tick : public Timed {
 public:
  explicit Tick(std::int64_t rows) : m_dialog(BenchCatalog(rows)) { m_dialog.ChooseRun(); }

  void Prepare() override {
    controls::TreeView& tree = m_dialog.Ui().tvwDetails;
    for (controls::Node root = tree.FirstRoot(); root; root = root.Next()) tree.UserCheck(root, false);
    Expect(!tree.Item(static_cast<std::uint32_t>(tree.Count())).Checked(), "a tick was left");
  }

  void Ours() override {
    m_dialog.TickEverything();
    controls::TreeView& tree = m_dialog.Ui().tvwDetails;
    Expect(tree.Item(static_cast<std::uint32_t>(tree.Count())).Checked(), "the last file is not ticked");
  }

 private:
  Dialog m_dialog;
};

class Apply : public Comparison {
 public:
  explicit Apply(std::int64_t rows) : m_rows(rows), m_path(BenchCatalog(rows)), m_dialog(m_path) {
    m_dialog.ChooseRun();
    m_dialog.TickEverything();
    BareDatabase database(m_path);
    BareStatement all(database.Get(), "SELECT Filename FROM Catalog ORDER BY ID");
    while (all.Step()) m_names.emplace_back(all.Text(0));
  }
  ~Apply() override { ClearMarks(m_path); }

  void Prepare() override { ClearMarks(m_path); }

  void Ours() override {
    const std::int64_t before = Syncs();
    m_dialog.Press(m_dialog.Ui().cmdAction[0]);
    Figure("disk syncs of apply", m_rows, static_cast<double>(Syncs() - before) / static_cast<double>(m_rows),
           "syncs a file", kMaxSyncsAFile);
    Expect(m_dialog.Ui().asRestoreList.Count() == static_cast<std::size_t>(m_rows),
           "not all files were marked");
  }

  void Bare() override {
    BareDatabase database(m_path);
    database.Execute("BEGIN");
    BareStatement find(database.Get(),
                       "SELECT ID FROM Catalog WHERE SetNameID = 1 AND Extension = '001' AND Filename = ?");
    BareStatement mark(database.Get(), "UPDATE Catalog SET Restore = 1 WHERE ID = ?");
    for (const std::string& name : m_names) {
      find.Bind(1, name);
      Expect(find.Step(), "no row for " + name);
      mark.Bind(1, find.Integer(0));
      find.Reset();
      mark.Step();
      mark.Reset();
    }
    database.Execute("COMMIT");
  }

 private:
  std::int64_t m_rows;
  std::string m_path;
  Dialog m_dialog;
  std::vector<std::string> m_names;
};

class ListMarked : public Comparison {
 public:
  explicit ListMarked(std::int64_t rows) : m_rows(rows), m_path(BenchCatalog(rows)), m_dialog(m_path) {
    BareDatabase(m_path).Execute("UPDATE Catalog SET Restore = 1");
  }
  ~ListMarked() override { ClearMarks(m_path); }

  void Ours() override {
    m_dialog.Press(m_dialog.Ui().cmdRestore[2]);
    Expect(m_dialog.Ui().asRestoreList.Count() == static_cast<std::size_t>(m_rows), "the list is not whole");
  }

  void Bare() override {
    BareDatabase database(m_path);
    BareStatement rows(
        database.Get(),
        "SELECT ifnull(LongPath, Filename), OrigSize, Extension, SetNameID, Name, DateStamp, Filename, "
        "Plugin, File FROM Catalog LEFT JOIN LongPaths ON PathID = LongPathID LEFT JOIN SetNames ON "
        "SetNames.ID = SetNameID WHERE Restore <> 0");
    Expect(ReadAll(rows, 9) == m_rows, "the scan is not whole");
  }

 private:
  std::int64_t m_rows;
  std::string m_path;
  Dialog m_dialog;
};

// With all files in the list.
class Listed : public Timed {
 public:
  explicit Listed(std::int64_t rows) : m_path(BenchCatalog(rows)), m_dialog(m_path) {
    BareDatabase(m_path).Execute("UPDATE Catalog SET Restore = 1");
    m_dialog.Press(m_dialog.Ui().cmdRestore[2]);
    Expect(List().Count() == static_cast<std::size_t>(rows), "the list is not whole");
  }
  ~Listed() override { ClearMarks(m_path); }

 protected:
  dialog::FormControls& Ui() { return m_dialog.Ui(); }
  controls::AutoSelect& List() { return Ui().asRestoreList; }

 private:
  std::string m_path;
  Dialog m_dialog;
};

class Filter : public Listed {
 public:
  using Listed::Listed;
  void Prepare() override { List().UserFilter({}); }
  void Ours() override {
    controls::ListFilter filter;
    filter.words = "report 99";
    List().UserFilter(filter);
    const std::size_t shown = List().Shown().entries;
    Expect(shown > 0 && shown < List().Count() / 2, "the filter does not filter");
  }
};

class AllVersions : public Listed {
 public:
  using Listed::Listed;
  void Ours() override {
    platform::HeadlessMenu menu(List(), List().Count() / 2);
    Expect(menu.Choose("All versions of this file"), "the menu lacks the item");
    Expect(Ui().asSearch.Count() != 0, "there are no versions");
  }
};

// Shows the tip of a different file each time.
class Tip : public Timed {
 public:
  explicit Tip(std::int64_t rows) : m_dialog(BenchCatalog(rows)) { m_dialog.ChooseRun(); }
  void Ours() override {
    controls::TreeView& tree = m_dialog.Ui().tvwDetails;
    const std::string tip = tree.UserTip(tree.Item(static_cast<std::uint32_t>(tree.Count() - m_next++)));
    Expect(tip.find('\n') != std::string::npos, "the tip lacks the size");
  }

 private:
  Dialog m_dialog;
  std::size_t m_next = 0;
};

}  // namespace
}  // namespace kxrestore::bench

int main(int count, char** words) {
  using namespace kxrestore::bench;
  const auto make = []<typename T>(std::type_identity<T>) {
    return [](std::int64_t rows) { return std::make_unique<T>(rows); };
  };
  for (const std::int64_t rows : {100000, 1000000}) {
    Compare({.name = "fill the detail tree", .rows = rows, .limit = kMaxFillRatio},
            make(std::type_identity<Fill>{}));
    Time({.name = "tick everything", .rows = rows, .limit = kMaxTickSeconds},
         make(std::type_identity<Tick>{}));
    Compare({.name = "list marked files", .rows = rows, .limit = {}}, make(std::type_identity<ListMarked>{}));
  }
  Time({.name = "filter a list", .rows = 1000000, .limit = kMaxFilterSeconds},
       make(std::type_identity<Filter>{}));
  Time({.name = "all versions of a file", .rows = 1000000, .limit = kMaxVersionsSeconds},
       make(std::type_identity<AllVersions>{}));
  Time({.name = "tip of a file", .rows = 1000000, .limit = kMaxTipSeconds}, make(std::type_identity<Tip>{}));
  Compare({.name = "apply", .rows = 100000, .limit = kMaxApplyRatio}, make(std::type_identity<Apply>{}));
  return RunBenchmarks(count, words);
}
