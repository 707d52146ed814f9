// The command line: selections that the dialog does not have, output and exit codes.
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/command_line/command_line_fixture.h"

namespace kxrestore::command_line_test {
namespace {

using catalog_test::CatalogFile;
using catalog_test::Live;
using Ids = std::set<std::int64_t>;

class CommandLineTest : public testing::Test {
 protected:
  Outcome Run(Words words) {
    words.push_back("--catalog");
    words.push_back(m_catalog.Path());
    return m_commandLine.Run(words);
  }
  void ExpectMarks(const Ids& marked, const Words& words, int code = ExitCode::kDone) {
    m_catalog.Execute("UPDATE Catalog SET Restore = 0");
    const Outcome outcome = Run(words);
    EXPECT_EQ(outcome.code, code) << testing::PrintToString(words) << outcome.err;
    EXPECT_EQ(m_catalog.Marked(), marked) << testing::PrintToString(words);
  }

  CatalogFile m_catalog{Files(), kRuns};
  CommandLine m_commandLine;
};

TEST_F(CommandLineTest, FoldersListsAndDatesChooseRows) {
  ExpectMarks({1, 2, 3, 5, 7}, {"mark", "--under", "c:\\data\\"});
  ExpectMarks({1, 2, 3}, {"mark", "--under=C:\\Data\\a.txt"});
  ExpectMarks({3, 5}, {"mark", "--under=C:\\Data", "--set=Set 1", "--run=003"});

  // The dates of the runs decide. A version without a run in BackupAudit has its own date.
  ExpectMarks({1, 4, 7}, {"mark", "--as-of=2026-01-10"});
  ExpectMarks({7}, {"mark", "--as-of", "2026-01-10 07:59:59"});
  ExpectMarks({2}, {"mark", "a.txt", "--as-of=2026-03-10T07:00"});
  ExpectMarks({3}, {"mark", "--type=txt", "--under=C:\\Data\\A.TXT", "--as-of=2027-01-01"});

  m_commandLine.input = "c:\\data\\A.TXT\r\n\nD:\\\xC3\xA4\xC3\x96.txt\n";
  ExpectMarks({1, 2, 3, 6}, {"mark", "--names", "-"});
  ExpectMarks({3}, {"mark", "--names=-", "--newest", "--under=C:", "--set=1", "--run=003"},
              ExitCode::kNotFound);
  m_commandLine.input += "C:\\Data\n";
  ExpectMarks({1, 2, 3, 6}, {"mark", "--names=-"}, ExitCode::kNotFound);
  EXPECT_EQ(Run({"find", "--names=-"}).err, "kxrestore: not found: C:\\Data\n");
  ExpectMarks({}, {"mark", "nothing"}, ExitCode::kNotFound);
}

TEST_F(CommandLineTest, VersionsOfOneFileAreSortedNewestFirst) {
  const auto ids = [this](const Words& words) {
    std::istringstream lines(Run(words).out);
    std::string found;
    for (std::string line; std::getline(lines, line);) found += line.substr(6, line.find(',') - 6) + ' ';
    return found;
  };
  EXPECT_EQ(ids({"versions", "c:\\data\\A.txt", "--json"}), "3 2 1 ");
  EXPECT_EQ(ids({"versions", "a.TXT", "--json", "--set=1", "--up-to=002"}), "2 1 ");
  EXPECT_EQ(ids({"versions", "b [1].txt", "--json"}), "5 ");
  EXPECT_EQ(Run({"versions", "txt"}).code, ExitCode::kNotFound);
}

TEST_F(CommandLineTest, RowsAreTablesOrJson) {
  EXPECT_EQ(Run({"sets"}).out,
            "   ID   RUNS  NEWEST RUN           NAME\n    1      3  2026-03-10 08:00:00  Set 1\n");
  EXPECT_EQ(Run({"runs", "1", "--json"}).out,
            "{\"setId\":1,\"run\":\"003\",\"permanent\":false,\"date\":\"2026-03-10 08:00:00\"}\n"
            "{\"setId\":1,\"run\":\"002\",\"permanent\":true,\"date\":\"2026-02-10 08:00:00\"}\n"
            "{\"setId\":1,\"run\":\"001\",\"permanent\":false,\"date\":\"2026-01-10 08:00:00\"}\n");
  EXPECT_EQ(Run({"types", "--json"}).out,
            "{\"type\":\"txt\",\"files\":7,\"kind\":\"Documents\",\"description\":\"Plain text\"}\n");

  // A quote, a line end, an invalid byte and half a surrogate pair.
  m_catalog.Execute(
      "UPDATE Catalog SET OrigName = CAST(X'225C0AFFEDA081' AS TEXT), OrigSize = NULL, Restore = 1 WHERE ID "
      "= 6");
  EXPECT_EQ(Run({"find", "\"", "--json"}).out,
            "{\"id\":6,\"size\":null,\"date\":\"2026-01-01 00:00:00\",\"setId\":1,\"set\":\"Set "
            "1\",\"run\":\"003\","
            "\"marked\":true,\"name\":\"\\\"\\\\\\u000a\xEF\xBF\xBD\\ud801\"}\n");
  const std::string table = Run({"find", "\""}).out;
  EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), 2) << table;

  EXPECT_EQ(Run({"count", "--json"}).out, "{\"files\":1,\"bytes\":0}\n");
  EXPECT_EQ(Run({"count", "a.txt"}).out, "3 file(s), 306 bytes\n");
  m_catalog.Execute("UPDATE Catalog SET OrigSize = 1234567 WHERE ID = 3");
  EXPECT_EQ(Run({"mark", "--run=003", "--set=1", "--under=C:\\Data\\a.txt"}).out,
            "1 file(s) marked, 1,234,567 bytes\n");
}

TEST_F(CommandLineTest, ADryRunWritesNothing) {
  m_catalog.Execute("UPDATE Catalog SET Restore = 1 WHERE ID < 3");
  for (const Words& words : {Words{"mark", "*"}, Words{"unmark", "*"}, Words{"clear"}}) {
    Words dry = words;
    dry.push_back("--dry-run");
    const std::string rows = Run(dry).out;
    EXPECT_EQ(std::count(rows.begin(), rows.end(), '\n'), words[0] == "mark" ? 8 : 3) << rows;
    EXPECT_EQ(m_catalog.Marked(), (Ids{1, 2}));
  }
  EXPECT_EQ(Run({"unmark", "--set=1", "--run=001"}).code, ExitCode::kDone);
  EXPECT_EQ(m_catalog.Marked(), Ids{2});
  EXPECT_EQ(Run({"clear", "--json"}).out, "{\"unmarked\":1,\"bytes\":102,\"failed\":0}\n");
  EXPECT_EQ(m_catalog.Marked(), Ids{});
}

TEST_F(CommandLineTest, ACopyIsTheSameCatalog) {
  Run({"mark", "--under=D:"});
  const std::string target = m_catalog.Path() + ".copy";
  const Outcome outcome = Run({"copy", target, "--json"});
  EXPECT_EQ(outcome.code, ExitCode::kDone) << outcome.err;
  EXPECT_NE(outcome.out.find("{\"rows\":7,\"table\":\"Catalog\"}"), std::string::npos) << outcome.out;
  EXPECT_EQ(m_commandLine.Run({"list", "--json", "--catalog", target}).out, Run({"list", "--json"}).out);
  EXPECT_EQ(Run({"copy", target}).code, ExitCode::kFailed) << "the target exists";
  std::filesystem::remove(target);
}

TEST_F(CommandLineTest, AFailedMarkIsReportedOnceAndTheOthersStay) {
  m_catalog.Execute(
      "CREATE TRIGGER Refuse BEFORE UPDATE ON Catalog WHEN OLD.ID IN (2, 4) BEGIN SELECT RAISE(ABORT, "
      "'kept'); END");
  const Outcome outcome = Run({"mark", "*"});
  EXPECT_EQ(outcome.code, ExitCode::kFailed);
  EXPECT_EQ(m_catalog.Marked(), (Ids{1, 3, 5, 6, 7}));
  EXPECT_EQ(outcome.out, "5 file(s) marked, 522 bytes\n");
  EXPECT_TRUE(outcome.err.starts_with("kxrestore: UpdateSelection: (")) << outcome.err;
  EXPECT_TRUE(outcome.err.ends_with("kxrestore: 2 file(s) could not be marked.\n")) << outcome.err;
  EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 2) << outcome.err;
}

TEST_F(CommandLineTest, MarksSetBeforeAStopStay) {
  std::vector<sample::FileRow> rows;
  for (int id = 1; id <= 500; ++id) rows.push_back(Live(id, "C:\\" + std::to_string(id)));
  CatalogFile many(rows);
  m_commandLine.stopAfter = 5;
  const Outcome outcome = m_commandLine.Run({"mark", "*", "--catalog", many.Path()});
  EXPECT_EQ(outcome.code, ExitCode::kStopped);
  EXPECT_EQ(outcome.err, "kxrestore: stopped\n");
  const std::size_t marked = many.Marked().size();
  EXPECT_GT(marked, 0u);
  EXPECT_LT(marked, 500u);
  EXPECT_TRUE(outcome.out.starts_with(std::to_string(marked) + " file(s) marked")) << outcome.out;
}

TEST_F(CommandLineTest, InvalidWordsDoNothing) {
  for (const char* line : {"",
                           "nonsense",
                           "mark",
                           "unmark",
                           "mark a b",
                           "find --colour",
                           "find --set",
                           "find --set=Nothing",
                           "find --run=001",
                           "find --set=1 --run=004",
                           "find --set=1 --run=x01",
                           "find --set=1 --run=001 --up-to=002",
                           "find a --type=txt",
                           "find --as-of=yesterday",
                           "find --dry-run",
                           "find --names=/nowhere/at",
                           "runs",
                           "sets 1",
                           "list --newest",
                           "versions a --newest",
                           "sets --server=s"}) {
    std::istringstream split(line);
    const Words words{std::istream_iterator<std::string>(split), {}};
    const Outcome outcome = Run(words);
    EXPECT_EQ(outcome.code, ExitCode::kUsage) << line;
    EXPECT_TRUE(outcome.err.starts_with("kxrestore: ")) << line;
    EXPECT_EQ(outcome.out, "");
  }
  EXPECT_EQ(m_commandLine.Run({"sets"}).code, ExitCode::kUsage);
  EXPECT_EQ(m_commandLine.Run({"sets", "--catalog=" + m_catalog.Path() + ".not"}).code, ExitCode::kFailed);
  m_commandLine.environment["KXRESTORE_CATALOG"] = m_catalog.Path();
  EXPECT_EQ(m_commandLine.Run({"sets"}).code, ExitCode::kDone);
  EXPECT_NE(m_commandLine.Run({"--help"}).out.find("versions NAME"), std::string::npos);
}

#ifdef KX_PACKAGING
std::string Contents(const std::string& name) {
  std::ifstream file(std::string(KX_PACKAGING "/") + name);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST_F(CommandLineTest, HelpManualAndCompletionNameTheSameOptions) {
  std::string manual = Contents("kxrestore.1");
  for (auto at = manual.find("\\-"); at != std::string::npos; at = manual.find("\\-")) manual.erase(at, 1);
  const std::string completion = Contents("kxrestore.bash");
  const std::string help = m_commandLine.Run({"--help"}).out;
  std::istringstream lines(help);
  int named = 0;
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with("  ") || line[2] == ' ') continue;
    const std::string word = line.substr(2, line.find_first_of(" ,", 2) - 2);
    if (word == "MASK") continue;
    ++named;
    EXPECT_NE(manual.find(word), std::string::npos) << word;
    EXPECT_NE(completion.find(word), std::string::npos) << word;
  }
  EXPECT_GT(named, 20);
}
#endif

TEST_F(CommandLineTest, APasswordComesFromAFileOrTheEnvironment) {
  const Words server{"sets", "--server=127.0.0.1;PORT=1", "--database=none", "--user=me"};
  const Outcome none = m_commandLine.Run(server);
  EXPECT_EQ(none.code, ExitCode::kUsage);
  EXPECT_NE(none.err.find("no password"), std::string::npos);
  m_commandLine.environment["KXRESTORE_PASSWORD"] = "secret";
  const Outcome refused = m_commandLine.Run(server);
  EXPECT_EQ(refused.code, ExitCode::kFailed);
  EXPECT_EQ(refused.err.find("secret"), std::string::npos) << refused.err;

  const auto file = std::filesystem::temp_directory_path() / "kxrestore_password_test";
  std::ofstream(file) << "other\r\nnot this";
  Words fromFile = server;
  fromFile.push_back("--password-file=" + file.string());
  EXPECT_EQ(m_commandLine.Run(fromFile).code, ExitCode::kFailed);
  std::filesystem::remove(file);
  EXPECT_EQ(m_commandLine.Run(fromFile).code, ExitCode::kUsage);
}

}  // namespace
}  // namespace kxrestore::command_line_test
