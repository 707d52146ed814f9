// Parses every statement for SQL Server with an independent T-SQL grammar, because that server is not
// available for tests. scripts/setup.sh installs the grammar.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "engine/jet_sql/printing/server_dialects.h"
#include "engine/jet_sql/reading/view_text.h"
#include "tests/engine/server_statements.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::engine::testing {
namespace {

class TsqlParser : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!std::filesystem::exists(KX_TSQL_MODULES)) {
      GTEST_SKIP() << KX_TSQL_MODULES << " is missing: run scripts/setup.sh server";
    }
  }

  // Returns "ok" or the error for each statement.
  Strings Check(const Strings& statements) const {
    const TemporaryFolder folder;
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

TEST_F(TsqlParser, ReadsEveryStatement) {
  Strings statements;
  for (const bool mindsCase : {false, true}) {
    for (const auto& [name, text] : ServerStatements()) {
      const std::string printed = ForSqlServer(text, !name.empty(), mindsCase);
      const std::string view = jet_sql::TsqlDialect(false).Identifier(name);
      statements.push_back(name.empty() ? printed : "CREATE VIEW " + view + " AS " + printed);
      if (name.empty()) {
        statements.push_back(ForSqlServer(text, false, mindsCase, {"ID", "File", "Restore"}));
      }
    }
  }
  ASSERT_GT(statements.size(), 50u);
  statements.push_back("SELECT ID FROM Catalog LIMIT 5");
  const Strings answers = Check(statements);
  EXPECT_NE(answers.back(), "ok") << "the grammar accepts another dialect";
  statements.pop_back();
  for (std::size_t i = 0; i < statements.size(); ++i) EXPECT_EQ(answers[i], "ok") << statements[i];
}

// The script that creates a catalog. A line with GO ends a batch.
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
  // The view can be read back and restricted to a set, as a listing does.
  const std::string text = jet_sql::QueryTextOfView(view);
  const std::string restricted =
      ForSqlServer(text.substr(0, text.find(';')) + " WHERE Catalog.SetNameID = 3 ", true);
  EXPECT_TRUE(
      restricted.ends_with(" FROM [Catalog] LEFT JOIN [SetNames] ON [SetNames].[ID] = [Catalog].[SetNameID] "
                           "WHERE [Catalog].[SetNameID] = 3"))
      << restricted;
}

}  // namespace
}  // namespace kxrestore::engine::testing
