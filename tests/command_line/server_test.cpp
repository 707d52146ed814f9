// The command line on a catalog that a database server keeps: it prints and marks what it does on a file with
// the same rows.
#include <algorithm>

#include "tests/catalog/catalog_file.h"
#include "tests/catalog/server_catalog.h"
#include "tests/command_line/command_line_fixture.h"

namespace kxrestore::command_line_test {
namespace {

using catalog_test::CatalogFile;
using catalog_test::Live;
using catalog_test::ServerCatalog;

sample::FileRow Version(std::int64_t id, const char* run, const char* path, const char* date) {
  sample::FileRow row = Live(id, path);
  row.extension = run;
  row.dateStamp = date;
  if (id == 4) row.longPathId = 1;
  return row;
}

const std::vector<sample::FileRow>& Files() {
  static const std::vector<sample::FileRow> files = {
      Version(1, "001", "C:\\Data\\a.txt", "2026-01-10 08:00:00"),
      Version(2, "002", "C:\\DATA\\A.txt", "2026-02-10 08:00:00"),
      Version(3, "002", "C:\\Data\\it's [1].doc", "2026-02-10 08:00:00"),
      Version(4, "002", "C:\\Data\\LONGNA~1.TXT", "2026-02-10 08:00:00"),
      Version(5, "002", "D:\\Ärger\\100%_漢.txt", "2026-02-10 08:00:00")};
  return files;
}
const std::vector<sample::RunRow> kRuns = {{1, "2026-01-10 08:00:00", "001", false, 6},
                                           {1, "2026-02-10 08:00:00", "002", true, 6},
                                           {2, "2026-03-10 08:00:00", "003", false, 3}};
const std::vector<sample::LongPathRow> kLongPaths = {{1, "C:\\Data\\long name of a text.txt"}};

TEST(CommandLineOnAServer, PrintsAndMarksAsOnAFile) {
  if (!ServerCatalog::HasServer()) GTEST_SKIP() << "no server";
  CatalogFile file(Files(), kRuns, kLongPaths);
  ServerCatalog server(
      [](sample::CatalogSink& sink) { catalog_test::AddRows(sink, Files(), kRuns, kLongPaths); });
  CommandLine commandLine;
  commandLine.environment["KXRESTORE_PASSWORD"] = ServerCatalog::Password();
  commandLine.input = "c:\\data\\A.TXT\nD:\\ärger\\100%_漢.TXT\n";
  const auto run = [&](Words words, const Words& place) {
    words.insert(words.end(), place.begin(), place.end());
    Outcome outcome = commandLine.Run(words);
    // Rows of one time come in no particular order.
    std::istringstream lines(outcome.out);
    Words sorted;
    for (std::string line; std::getline(lines, line);) sorted.push_back(line);
    std::sort(sorted.begin(), sorted.end());
    return std::pair(outcome, sorted);
  };
  const Words onFile = {"--catalog", file.Path()};
  const Words onServer = {"--server", ServerCatalog::Server(), "--database", server.Database(),
                          "--user",   ServerCatalog::User()};
  for (const Words& words : {Words{"sets"},
                             {"runs", "Set 1", "--json"},
                             {"types"},
                             {"find", "*.txt", "--json"},
                             {"find", "100%_?.txt", "--newest"},
                             {"versions", "a.txt"},
                             {"count", "ärger"},
                             {"mark", "[[]1]", "--dry-run"},
                             {"mark", "[[]1]"},
                             {"mark", "--names=-"},
                             {"mark", "--type=txt", "--set=1", "--run=002", "--newest"},
                             {"list", "--json"},
                             {"unmark", "--under=d:\\ÄRGER"},
                             {"unmark", "--as-of=2026-01-31"},
                             {"count"},
                             {"find", "nothing"},
                             {"clear"}}) {
    const auto [wanted, wantedLines] = run(words, onFile);
    const auto [found, lines] = run(words, onServer);
    SCOPED_TRACE(testing::PrintToString(words));
    EXPECT_EQ(found.code, wanted.code);
    EXPECT_EQ(lines, wantedLines);
    EXPECT_EQ(found.err, wanted.err);
    EXPECT_EQ(server.Marked(), file.Marked());
    if (words[0] == "list") {
      EXPECT_FALSE(server.Marked().empty());
    }
  }
  commandLine.environment["KXRESTORE_PASSWORD"] = "wrong secret";
  const Outcome refused = run({"sets"}, onServer).first;
  EXPECT_EQ(refused.code, ExitCode::kFailed);
  EXPECT_TRUE(refused.err.starts_with("kxrestore: ")) << refused.err;
  EXPECT_EQ(refused.err.find("secret"), std::string::npos) << refused.err;
}

}  // namespace
}  // namespace kxrestore::command_line_test
