// Two processes, each with its dialog, on one catalog at the same time: both search the latest versions,
// which makes the same saved queries with different texts, and mark what they find, the same rows among them.
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <sstream>

#include "tests/catalog/server_catalog.h"
#include "tests/dialog/dialog_fixture.h"

namespace kxrestore::dialog_test {
namespace {

using catalog_test::ServerCatalog;

constexpr int kRounds = 24;
constexpr int kNames = 60;
const char* const kMasks[] = {"C:", "7", "doc", "report 1", "xls"};

// Every name in every set and run, its numbers in no order.
std::vector<sample::FileRow> Versions() {
  std::vector<sample::FileRow> rows;
  constexpr int kRows = kNames * 9;
  for (int step = 0; step < kRows; ++step) {
    const int name = step % kNames;
    auto row = Row(1 + step * 71 % kRows, 1 + step / kNames % 3, "00" + std::to_string(1 + step / kNames / 3),
                   "C:\\report " + std::to_string(name) + (name % 2 == 0 ? ".doc" : ".xls"));
    if (step % 7 == 3) row.status = 5;
    rows.push_back(std::move(row));
  }
  return rows;
}

std::vector<sample::RunRow> AllRuns() {
  std::vector<sample::RunRow> runs;
  for (int set = 1; set <= 3; ++set) {
    for (int run = 1; run <= 3; ++run) {
      runs.push_back({set, "2026-0" + std::to_string(run) + "-0" + std::to_string(set) + " 08:00:00",
                      "00" + std::to_string(run), false, 6});
    }
  }
  return runs;
}

// What a search of the latest versions has to find: `set` 0 for all sets, `run` 0 for all its runs.
std::vector<const sample::FileRow*> Latest(const std::vector<sample::FileRow>& rows, int set, int run,
                                           const std::string& mask) {
  std::map<std::string, const sample::FileRow*> newest;
  for (const auto& row : rows) {
    const bool among = run != 0 ? row.extension <= "00" + std::to_string(run) : set == 0 || row.setId == set;
    if (!among || row.status != 2) continue;
    const sample::FileRow*& known = newest[row.origName];
    if (known == nullptr || known->id < row.id) known = &row;
  }
  std::vector<const sample::FileRow*> found;
  for (const auto& [name, row] : newest) {
    if ((set == 0 || row->setId == set) && name.find(mask) != std::string::npos) found.push_back(row);
  }
  return found;
}

class TwoDialogs : public DialogTest {
 protected:
  // Works one dialog; every line of the result is "mark ID", "report TEXT" or "wrong TEXT".
  std::string Work(int which) {
    std::ostringstream told;
    const auto report = [&](const char* kind) {
      const Strings messages = TakeMessages();
      for (const auto& message : messages) told << kind << ' ' << message << '\n';
      return !messages.empty();
    };
    for (int round = 0; round < kRounds; ++round) {
      const int kind = (round + which) % 3, set = 1 + (round / 3 + which) % 3, run = 1 + round % 3;
      const std::string mask = kMasks[(round + 2 * which) % 5];
      if (kind == 1) {
        ChooseRun(std::to_string(set) + " 00" + std::to_string(run));
      } else {
        ChooseSet("Set " + std::to_string(set));
      }
      ui().tbsOptions.UserSelect(2);
      ui().optLookIn[kind == 2 ? 1 : 0].UserClick();
      ui().chk1.SetValue(1);
      ui().cboMask.UserType(mask);
      report("wrong");
      ui().asSearch.Clear();
      ui().cmdSearch[2].UserClick();
      if (report("report")) continue;
      const auto latest = Latest(m_rows, kind == 2 ? 0 : set, kind == 1 ? run : 0, mask);
      std::map<std::string, const sample::FileRow*> expected;
      for (const auto* row : latest)
        expected[std::to_string(row->setId) + row->extension + row->filename] = row;
      std::size_t right = 0;
      for (std::size_t number = 1; number <= ui().asSearch.Count(); ++number) {
        const auto entry = ui().asSearch.At(number);
        const auto row = expected.find(std::to_string(entry.setId) + std::string(entry.extension) +
                                       std::string(entry.storedName));
        if (row == expected.end()) continue;
        ++right;
        // Each of the dialogs in its own order over the same rows.
        if (round % 2 == 0 || number % 3 == 0) {
          ui().asSearch.UserTick(number, true);
          told << "mark " << row->second->id << '\n';
        }
      }
      if (right != expected.size() || right != ui().asSearch.Count()) {
        told << "wrong listing in round " << round << ": " << right << " of " << expected.size() << ", "
             << ui().asSearch.Count() << " listed\n";
      }
      ui().cmdSearch[0].UserClick();
      report("wrong");
    }
    return told.str();
  }

  // Both at once; the rows that they have marked.
  Ids Both() {
    int ends[2][2];
    pid_t processes[2];
    for (int which = 0; which < 2; ++which) {
      if (pipe(ends[which]) != 0) throw std::runtime_error("no pipe");
      std::fflush(nullptr);
      processes[which] = fork();
      if (processes[which] == 0) {
        std::string told;
        try {
          told = Work(which);
        } catch (const std::exception& exception) {
          told = std::string("wrong ") + exception.what() + "\n";
        }
        told += "end\n";
        for (std::size_t sent = 0; sent < told.size();) {
          const ssize_t count = write(ends[which][1], told.data() + sent, told.size() - sent);
          if (count <= 0) break;
          sent += static_cast<std::size_t>(count);
        }
        _exit(0);
      }
      close(ends[which][1]);
    }
    Ids marked;
    int reports = 0;
    for (int which = 0; which < 2; ++which) {
      std::FILE* told = fdopen(ends[which][0], "r");
      char line[600];
      std::string last;
      while (std::fgets(line, sizeof line, told) != nullptr) {
        last = line;
        if (last.starts_with("mark ")) marked.insert(std::stoll(last.substr(5)));
        if (last.starts_with("wrong ")) ADD_FAILURE() << "dialog " << which << ": " << last;
        if (last.starts_with("report ")) {
          ++reports;
          std::printf("%s", line);
        }
      }
      EXPECT_EQ(last, "end\n") << "dialog " << which;
      std::fclose(told);
      waitpid(processes[which], nullptr, 0);
    }
    EXPECT_LE(reports, kRounds / 4) << "of " << 2 * kRounds << " searches";
    return marked;
  }

  std::vector<sample::FileRow> m_rows = Versions();
};

TEST_F(TwoDialogs, OnOneFile) {
  MakeCatalog(m_rows, AllRuns());
  const Ids marked = Both();
  EXPECT_GT(marked.size(), 100u);
  EXPECT_EQ(catalog->Marked(), marked);
}

TEST_F(TwoDialogs, OnOneServer) {
  if (!ServerCatalog::HasServer()) GTEST_SKIP() << "no server";
  ServerCatalog server([&](sample::CatalogSink& sink) { catalog_test::AddRows(sink, m_rows, AllRuns()); });
  UseServer(server.Database(), ServerCatalog::Server(), ServerCatalog::User(), ServerCatalog::Password());
  const Ids marked = Both();
  EXPECT_GT(marked.size(), 100u);
  EXPECT_EQ(server.Marked(), marked);
}

}  // namespace
}  // namespace kxrestore::dialog_test
