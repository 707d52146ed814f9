// What the control models cost, without a front end:
//   FillTree      a tree of files in folders of 1,000, each file with an 80-byte tag that ends with its text
//   TickRoot      the check of the root passed down to every node, as a click on it does
//   ClickFile     the same for one file among 1,000 siblings, up to the root
//   FindKey       looking folders up by key
//   ClearTree     giving the tree back
//   FillDeep      chains of 1,000 folders, each with one file
//   FillList      a list of files with a path, a name that ends it, a set, a run and a date
//   TickList      one tick for all entries
// The counter "bytes" is what a node or entry takes, its texts included.
#include <benchmark/benchmark.h>

#include <array>
#include <charconv>
#include <memory>
#include <string>

#include "controls/auto_select.h"
#include "controls/check_propagation.h"
#include "controls/form.h"
#include "controls/tree_view.h"
#include "platform/regional.h"

namespace kxrestore::controls {
namespace {

constexpr std::size_t kTagLength = 80;

// The tag of the file of that number; its last 16 bytes are the file's name.
class Tags {
 public:
  std::string_view Tag(int number) {
    char* const digits = m_tag.data() + kTagLength - 12;
    std::to_chars(digits, digits + 8, 10000000 + number);
    return {m_tag.data(), kTagLength};
  }
  static std::string_view Name(std::string_view tag) { return tag.substr(kTagLength - 16); }

 private:
  std::array<char, kTagLength> m_tag = [] {
    std::array<char, kTagLength> tag;
    tag.fill('d');
    const std::string_view ending = "file00000000.doc";
    ending.copy(tag.data() + kTagLength - ending.size(), ending.size());
    return tag;
  }();
};

std::string FolderKey(int folder) {
  return "C:\\Data\\Folder " + std::to_string(folder) + "\\";
}

struct Tree {
  explicit Tree(int files) {
    const Node root = view.Add({}, "C:\\", "C:\\", 4);
    const Node data = view.FindOrAddFolder(root, "Data", 1);
    Node folder;
    Tags tags;
    for (int file = 0; file < files; ++file) {
      if (file % 1000 == 0) folder = view.FindOrAddFolder(data, "Folder " + std::to_string(file / 1000), 1);
      const std::string_view tag = tags.Tag(file);
      view.Add(folder, {}, Tags::Name(tag), 2, tag);
    }
  }

  Form form{"form"};
  TreeView view{"tree", &form, true};
};

void ReportBytes(benchmark::State& state, std::size_t bytes) {
  state.counters["bytes"] = static_cast<double>(bytes) / static_cast<double>(state.range(0));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void FillTree(benchmark::State& state) {
  std::size_t bytes = 0;
  for (auto _ : state) {
    auto tree = std::make_unique<Tree>(static_cast<int>(state.range(0)));
    state.PauseTiming();
    bytes = tree->view.MemoryUsed();
    tree.reset();
    state.ResumeTiming();
  }
  ReportBytes(state, bytes);
}

void FillDeep(benchmark::State& state) {
  std::size_t bytes = 0;
  for (auto _ : state) {
    Form form("form");
    TreeView view("tree", &form, true);
    Node folder = view.Add({}, "C:\\", "C:\\", 4);
    const Node drive = folder;
    for (int number = 0; number < state.range(0); ++number) {
      if (number % 1000 == 0) folder = drive;
      folder = view.FindOrAddFolder(folder, "folder " + std::to_string(number / 1000), 1);
    }
    bytes = view.MemoryUsed();
  }
  ReportBytes(state, bytes);
}

void TickRoot(benchmark::State& state) {
  Tree tree(static_cast<int>(state.range(0)));
  Node root = tree.view.FirstRoot();
  tree.view.NodeCheck = [](Node node) {
    CheckParents(node);
    CheckChildren(node);
  };
  for (auto _ : state) tree.view.UserCheck(root, !root.Checked());
  ReportBytes(state, tree.view.MemoryUsed());
}

void ClickFile(benchmark::State& state) {
  Tree tree(static_cast<int>(state.range(0)));
  Node file = tree.view.FirstRoot().Child().Child();
  for (auto _ : state) {
    file.SetChecked(!file.Checked());
    CheckParents(file);
    CheckChildren(file);
  }
}

void FindKey(benchmark::State& state) {
  Tree tree(static_cast<int>(state.range(0)));
  const int folders = static_cast<int>(state.range(0)) / 1000;
  int folder = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(tree.view.Find(FolderKey(folder)).Index());
    folder = (folder + 7) % folders;
  }
}

void ClearTree(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    auto tree = std::make_unique<Tree>(static_cast<int>(state.range(0)));
    state.ResumeTiming();
    tree->view.Clear();
    state.PauseTiming();
    tree.reset();
    state.ResumeTiming();
  }
}

void Fill(AutoSelect& list, int entries) {
  Tags tags;
  AutoSelect::Entry entry;
  entry.extension = "F01";
  entry.setName = "Daily backup";
  entry.time = platform::TimeNumber({2024, 1, 2, 15, 4, 5});
  for (int number = 0; number < entries; ++number) {
    entry.name = tags.Tag(number);
    entry.storedName = Tags::Name(entry.name);
    entry.size = number;
    list.Add(entry, true);
  }
}

void FillList(benchmark::State& state) {
  Form form("form");
  AutoSelect list("list", &form, AutoSelect::Style::kFiles);
  std::size_t bytes = 0;
  for (auto _ : state) {
    list.Clear();
    Fill(list, static_cast<int>(state.range(0)));
    bytes = list.MemoryUsed();
  }
  ReportBytes(state, bytes);
}

void TickList(benchmark::State& state) {
  Form form("form");
  AutoSelect list("list", &form, AutoSelect::Style::kFiles);
  Fill(list, static_cast<int>(state.range(0)));
  bool ticked = false;
  for (auto _ : state) list.TickAll(ticked = !ticked);
}

// Sets a filter that few entries pass.
void FilterList(benchmark::State& state) {
  Form form("form");
  AutoSelect list("list", &form, AutoSelect::Style::kFiles);
  Fill(list, static_cast<int>(state.range(0)));
  ListFilter filter;
  filter.words = "9999";
  for (auto _ : state) {
    list.SetFilter(filter);
    benchmark::DoNotOptimize(list.Shown().entries);
    state.PauseTiming();
    list.SetFilter({});
    state.ResumeTiming();
  }
  ReportBytes(state, list.MemoryUsed());
}

void SortList(benchmark::State& state) {
  Form form("form");
  AutoSelect list("list", &form, AutoSelect::Style::kFiles);
  Fill(list, static_cast<int>(state.range(0)));
  bool descending = false;
  for (auto _ : state) list.SortBy(ListColumn::kName, descending = !descending);
}

void FindVersions(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    Form form("form");
    auto list = std::make_unique<AutoSelect>("list", &form, AutoSelect::Style::kFiles);
    Fill(*list, static_cast<int>(state.range(0)));
    state.ResumeTiming();
    list->FindVersions();
    state.PauseTiming();
    list.reset();
    state.ResumeTiming();
  }
}

// The sums that a footer shows; their time must not depend on the number of entries.
void Sums(benchmark::State& state) {
  Form form("form");
  AutoSelect list("list", &form, AutoSelect::Style::kFiles);
  Fill(list, static_cast<int>(state.range(0)));
  for (auto _ : state) {
    benchmark::DoNotOptimize(list.All().size + list.Shown().size + list.Selected().size);
    benchmark::DoNotOptimize(list.PendingCount());
  }
}

void SelectAll(benchmark::State& state) {
  Form form("form");
  AutoSelect list("list", &form, AutoSelect::Style::kFiles);
  Fill(list, static_cast<int>(state.range(0)));
  bool selected = false;
  for (auto _ : state) list.UserSelect(0, list.Count() - 1, selected = !selected);
}

BENCHMARK(FillTree)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(FillDeep)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(TickRoot)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(ClickFile)->Arg(1'000'000);
BENCHMARK(FindKey)->Arg(1'000'000);
BENCHMARK(ClearTree)->Arg(1'000'000)->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(FillList)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(TickList)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(FilterList)->Arg(1'000'000)->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(SortList)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(FindVersions)->Arg(1'000'000)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(Sums)->Arg(1'000)->Arg(1'000'000);
BENCHMARK(SelectAll)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kxrestore::controls
