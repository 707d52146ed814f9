// Parses every statement for SQL Server with an independent T-SQL grammar, because no such server can run
// here. scripts/setup.sh installs the grammar.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "engine/jet_sql/printing/server_dialects.h"
#include "engine/jet_sql/reading/view_text.h"
#include "tests/engine/server_statements.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::engine {
namespace {

using Strings = std::vector<std::string>;

class TsqlParser : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!std::filesystem::exists(KX_TSQL_MODULES)) {
      GTEST_SKIP() << KX_TSQL_MODULES << " is missing: run scripts/setup.sh server";
    }
  }

  // "ok" or the problem, for each statement.
  Strings Check(const Strings& statements) const {
    const testing::TemporaryFolder folder;
    const std::string input = folder.File("statements"), output = folder.File("answers");
    std::ofstream file(input);
    for (const std::string& statement : statements) file << statement << '\n';
    file.close();
    const std::string command = std::string("NODE_PATH='") + KX_TSQL_MODULES + "' node '" + KX_TSQL_CHECK +
                                "' <'" + input + "' >'" + output + "'";
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
    Strings answers;
    std::ifstream read(output);
    for (std::string line; std::getline(read, line);) answers.push_back(line);
    EXPECT_EQ(answers.size(), statements.size());
    answers.resize(statements.size());
    return answers;
  }
};

TEST_F(TsqlParser, ReadsWhatServersGet) {
  Strings statements;
  for (const bool mindsCase : {false, true}) {
    for (const auto& [name, text] : testing::ServerStatements()) {
      const std::string printed = testing::ForSqlServer(text, !name.empty(), mindsCase);
      const std::string view = jet_sql::TsqlDialect(false).Identifier(name);
      statements.push_back(name.empty() ? printed : "CREATE VIEW " + view + " AS " + printed);
      if (name.empty()) {
        statements.push_back(testing::ForSqlServer(text, false, mindsCase, {"ID", "File", "Restore"}));
      }
    }
  }
  ASSERT_GT(statements.size(), 50u);
  statements.push_back("SELECT ID FROM Catalog LIMIT 5");
  const Strings answers = Check(statements);
  EXPECT_NE(answers.back(), "ok") << "another dialect passes";
  statements.pop_back();
  for (std::size_t i = 0; i < statements.size(); ++i) EXPECT_EQ(answers[i], "ok") << statements[i];
}

// The script that sets a catalog up; batches end with GO on a line of its own.
TEST_F(TsqlParser, ReadsTheCatalogsScript) {
  std::ifstream script(KX_TSQL_CATALOG);
  Strings batches(1);
  std::string view;
  for (std::string line; std::getline(script, line);) {
    if (line == "GO") {
      if (batches.back().starts_with("CREATE VIEW [FullCatalog]")) view = batches.back();
      batches.emplace_back();
    } else if (!line.starts_with("--")) {
      batches.back() += (batches.back().empty() ? "" : " ") + line;
    }
  }
  EXPECT_EQ(batches.back(), "");
  batches.pop_back();
  ASSERT_EQ(batches.size(), 2u);
  EXPECT_EQ(Check(batches), (Strings{"ok", "ok"}));
  // The view can be read back and restricted, as the listing of a set does.
  const std::string text = jet_sql::QueryTextOfView(view);
  const std::string restricted =
      testing::ForSqlServer(text.substr(0, text.find(';')) + " WHERE Catalog.SetNameID = 3 ", true);
  EXPECT_TRUE(
      restricted.ends_with(" FROM [Catalog] LEFT JOIN [SetNames] ON [SetNames].[ID] = [Catalog].[SetNameID] "
                           "WHERE [Catalog].[SetNameID] = 3"))
      << restricted;
}

}  // namespace
}  // namespace kxrestore::engine
