// The command line prints and marks the same on a server catalog as on a file with the same rows.
#include "tests/catalog/server_catalog.h"
#include "tests/command_line/command_line_fixture.h"

namespace kxrestore::command_line_test {
namespace {

using catalog_test::ServerCatalog;

TEST(CommandLineOnAServer, PrintsAndMarksAsOnAFile) {
  if (!ServerCatalog::HasServer()) GTEST_SKIP() << "no server";
  std::vector<sample::FileRow> files = Files();
  files.push_back(Version(8, "002", "C:\\Data\\it's [1].doc"));
  files.push_back(Version(9, "002", "D:\\\u00C4rger\\100%_\u6F22.txt"));
  files.push_back(Version(10, "002", "C:\\Data\\LONGNA~1.TXT"));
  files.back().longPathId = 1;
  const std::vector<sample::LongPathRow> longPaths = {{1, "C:\\Data\\long name of a text.txt"}};
  std::vector<sample::RunRow> runs = kRuns;
  runs.push_back({2, "2026-03-10 08:00:00", "003", false, 3});
  catalog_test::CatalogFile file(files, runs, longPaths);
  ServerCatalog server(
      [&](sample::CatalogSink& sink) { catalog_test::AddRows(sink, files, runs, longPaths); });
  CommandLine commandLine;
  commandLine.environment["KXRESTORE_PASSWORD"] = ServerCatalog::Password();
  commandLine.input = "c:\\data\\A.TXT\nD:\\ärger\\100%_漢.TXT\n";
  const auto run = [&](Words words, const Words& place) {
    words.insert(words.end(), place.begin(), place.end());
    Outcome outcome = commandLine.Run(words);
    // The order of rows with equal dates is undefined.
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
