// Two processes use one catalog at the same time, each with its own dialog. Both search for the latest
// versions, which rewrites the same saved queries, and both mark files, some of them the same.
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <map>

#include "tests/catalog/server_catalog.h"
#include "tests/dialog/dialog_fixture.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::dialog_test {
namespace {

using catalog_test::ServerCatalog;

constexpr int kRounds = 24;
const char* const kMasks[] = {"C:", "7", "doc", "report 1", "xls"};

std::string KeyOf(int set, std::string_view extension, std::string_view name) {
  return std::to_string(set).append(extension).append(name);
}

class TwoDialogs : public DialogTest {
 protected:
  TwoDialogs() {
    for (int set = 1; set <= 3; ++set) {
      for (const char* run : {"1", "2", "3"}) {
        m_runs.push_back({set, std::string("2026-0") + run + "-0" + std::to_string(set) + " 08:00:00",
                          std::string("00") + run, false, 6});
      }
    }
    // Every name occurs in every set and run. The row numbers are shuffled.
    constexpr int kNames = 60, kRows = kNames * 9;
    for (int step = 0; step < kRows; ++step) {
      const int name = step % kNames;
      auto row = Row(1 + step * 71 % kRows, 1 + step / kNames % 3, m_runs[step / kNames / 3].extension,
                     "C:\\report " + std::to_string(name) + (name % 2 == 0 ? ".doc" : ".xls"));
      m_ids[KeyOf(row.setId, row.extension, row.filename)] = row.id;
      m_rows.push_back(step % 7 == 3 ? Dead(row) : row);
    }
  }

  // Searches a set, a set's runs up to one, or all sets.
  Strings Search(int which, int round) {
    const int kind = (round + which) % 3, set = 1 + (round / 3 + which) % 3, run = 1 + round % 3;
    if (kind == 1) {
      ChooseRun(std::to_string(set) + " 00" + std::to_string(run));
    } else {
      ChooseNode("Set " + std::to_string(set));
    }
    ShowTab(2);
    ui().optLookIn[kind == 2 ? 1 : 0].UserClick();
    ui().chk1.SetValue(1);
    Find(kMasks[(round + 2 * which) % 5]);
    Strings found;
    for (std::size_t number = 1; number <= ui().asSearch.Count(); ++number) {
      const auto entry = ui().asSearch.At(number);
      found.push_back(KeyOf(entry.setId, entry.extension, entry.storedName));
    }
    std::sort(found.begin(), found.end());
    return found;
  }

  // The work of one process. Writes a file with lines "mark KEY", "report TEXT" and "wrong TEXT".
  void Work(int which, const Strings* expected) {
    std::ofstream told(m_folder.File(std::to_string(which)));
    for (int round = 0; round < kRounds; ++round) {
      const Strings found = Search(which, round);
      if (!desktop.messages.empty()) {
        told << "report " << desktop.messages[0].text << '\n';
        desktop.messages.clear();
        continue;
      }
      if (found != expected[round]) told << "wrong listing in round " << round << '\n';
      // The two dialogs visit the same rows in different orders.
      for (std::size_t number = 1; number <= ui().asSearch.Count(); ++number) {
        if (round % 2 != 0 && number % 3 != 0) continue;
        ui().asSearch.UserTick(number, true);
        const auto entry = ui().asSearch.At(number);
        told << "mark " << KeyOf(entry.setId, entry.extension, entry.storedName) << '\n';
      }
      ui().cmdSearch[kApplyFound].UserClick();
      for (const auto& message : desktop.messages) told << "wrong " << message.text << '\n';
      desktop.messages.clear();
    }
  }

  // Runs both processes and expects each to find what it finds alone. Returns the rows that they marked.
  Ids Both() {
    Strings alone[2][kRounds];
    pid_t processes[2];
    for (int call = 0; call < 2 * kRounds; ++call) alone[call % 2][call / 2] = Search(call % 2, call / 2);
    for (int which = 0; which < 2; ++which) {
      processes[which] = fork();
      if (processes[which] == 0) {
        Work(which, alone[which]);
        _exit(0);
      }
    }
    Ids marked;
    int reports = 0;
    for (int which = 0; which < 2; ++which) {
      int status = -1;
      waitpid(processes[which], &status, 0);
      EXPECT_EQ(status, 0);
      std::ifstream told(m_folder.File(std::to_string(which)));
      for (std::string line; std::getline(told, line);) {
        if (line.starts_with("mark ")) marked.insert(m_ids.at(line.substr(5)));
        if (line.starts_with("report ")) ++reports;
        EXPECT_FALSE(line.starts_with("wrong ")) << "dialog " << which << ": " << line;
      }
    }
    EXPECT_LE(reports, kRounds / 4) << "of " << 2 * kRounds << " searches";
    EXPECT_GT(marked.size(), 100u);
    return marked;
  }

  std::vector<sample::FileRow> m_rows;
  std::vector<sample::RunRow> m_runs;
  std::map<std::string, std::int64_t> m_ids;
  engine::testing::TemporaryFolder m_folder;
};

TEST_F(TwoDialogs, OnOneFile) {
  MakeCatalog(m_rows, m_runs);
  const Ids marked = Both();
  EXPECT_EQ(catalog->Marked(), marked);
}

TEST_F(TwoDialogs, OnOneServer) {
  if (!ServerCatalog::HasServer()) GTEST_SKIP() << "no server";
  ServerCatalog server([&](sample::CatalogSink& sink) { catalog_test::AddRows(sink, m_rows, m_runs); });
  form.parameters.DBType = 1;
  form.parameters.DBDatabase = server.Database();
  form.parameters.DBServer = ServerCatalog::Server();
  form.parameters.DBUser = ServerCatalog::User();
  form.parameters.DBPass = ServerCatalog::Password();
  const Ids marked = Both();
  EXPECT_EQ(server.Marked(), marked);
}

}  // namespace
}  // namespace kxrestore::dialog_test
