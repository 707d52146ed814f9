// The translator alone: statements and views for each database, and refused statements.
#include <functional>
#include <map>

#include "engine/jet_sql/meaning/read_columns.h"
#include "engine/jet_sql/printing/printer.h"
#include "engine/jet_sql/printing/server_dialects.h"
#include "engine/jet_sql/reading/parser.h"
#include "engine/jet_sql/reading/view_text.h"
#include "engine/sql.h"
#include "tests/engine/cases.h"
#include "tests/engine/server_statements.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::engine::jet_sql {
namespace {

using testing::ExpectError;
using testing::ForServer;
using testing::ForSqlServer;
using Translation = std::function<std::string(const std::string&)>;

constexpr LikeSigns kSqlServer = {.hasLists = true}, kPostgres = {.escape = '\\'};

std::string ForSqlite(const std::string& source) {
  return Print(Parse(source), SqliteDialect(false));
}

std::string SavedForSqlite(const std::string& source) {
  return Print(Parse(source), SqliteDialect(true));
}

// The columns that remain in the nested statement.
std::string NestedColumns(const std::string& source) {
  Statement statement = Parse(source);
  LeaveOutUnreadNestedColumns(std::get<SelectStatement>(statement));
  const std::string text = Print(statement, SqliteDialect(false));
  const std::size_t start = text.find("(SELECT ") + 8;
  return text.substr(start, text.find(" FROM u") - start);
}

// Translates the part of a statement after `head`, whose own translation is `printedHead`.
Translation Part(const std::string& head, const std::string& printedHead, const Translation& translate) {
  return [=](const std::string& part) {
    const std::string text = translate(head + part);
    EXPECT_TRUE(text.starts_with(printedHead)) << text;
    return text.substr(printedHead.size());
  };
}

Translation OfViews(const LikeSigns& signs) {
  return [=](const std::string& view) { return QueryTextOfView(view, signs); };
}

TEST(JetSql, Translations) {
  const std::string restricted = "SELECT ID FROM Catalog WHERE ";
  const Translation sqlServer = [](const std::string& source) { return ForSqlServer(source); };
  const Translation postgres = [](const std::string& source) {
    return ForServer(PostgresDialect(PostgresDialect::Order::kOwn, false), source);
  };
  std::map<std::string, Translation> translations = {
      {"SQLite: conditions", Part("SELECT a FROM t WHERE ", "SELECT a AS a FROM t WHERE ", ForSqlite)},
      {"SQLite: joins", Part("SELECT * FROM ", "SELECT * FROM ", ForSqlite)},
      {"SQLite", ForSqlite},
      {"SQLite: saved queries", SavedForSqlite},
      {"SQLite: nested columns", NestedColumns},
      {"SQL Server: conditions",
       Part(restricted, "SELECT [Catalog].[ID] AS [ID] FROM [Catalog] WHERE ", sqlServer)},
      {"SQL Server", sqlServer},
      {"SQL Server that minds case",
       [](const std::string& source) { return ForSqlServer(source, false, true); }},
      {"SQL Server: saved queries", [](const std::string& source) { return ForSqlServer(source, true); }},
      {"PostgreSQL: conditions",
       Part(restricted, "SELECT \"Catalog\".\"ID\" AS \"ID\" FROM \"Catalog\" WHERE ", postgres)},
      {"PostgreSQL", postgres},
      {"views of SQLite", OfViews({})},
      {"views of PostgreSQL", OfViews(kPostgres)},
      {"views of SQL Server", OfViews(kSqlServer)},
      {"refused", ForSqlite}};
  constexpr std::string_view kRefused = "refused: ", kEndsWith = "...";
  for (const auto& [heading, cases] : testing::ReadCases("statements.txt")) {
    const Translation translate = translations.at(heading);
    for (const auto& [text, expected] : cases) {
      SCOPED_TRACE(heading + ": " + text);
      ASSERT_EQ(expected.size(), 1u);
      std::string wanted = expected.front();
      if (wanted.starts_with(kRefused)) {
        wanted.erase(0, kRefused.size());
        const std::size_t blank = wanted.find(' ');
        ExpectError(std::stoi(wanted), wanted.substr(blank + 1), [&, source = text] { translate(source); });
      } else if (wanted.starts_with(kEndsWith)) {
        wanted.erase(0, kEndsWith.size());
        const std::string found = translate(text);
        EXPECT_EQ(found.substr(found.size() - std::min(found.size(), wanted.size())), wanted);
      } else {
        EXPECT_EQ(translate(text), wanted);
      }
    }
    translations.erase(heading);
  }
  EXPECT_TRUE(translations.empty()) << "no cases for " << translations.begin()->first;
}

// The reader understands the translations again.
TEST(JetSql, RoundTrips) {
  for (const auto& [text, expected] : testing::ReadCases("statements.txt", "SQLite: saved queries")) {
    const auto again = [](const std::string& body) {
      return SavedForSqlite(QueryTextOfView("CREATE VIEW V AS " + body));
    };
    const std::string body = again(SavedForSqlite(text));
    EXPECT_EQ(again(body), body);
  }
  for (const auto& [text, expected] : testing::ReadCases("statements.txt", "SQL Server: conditions")) {
    if (!text.starts_with("File Like")) continue;
    const std::string body = ForSqlServer("SELECT ID FROM Catalog WHERE Not " + text, true);
    EXPECT_EQ(ForSqlServer(QueryTextOfView("CREATE VIEW V AS " + body, kSqlServer), true), body);
  }
  EXPECT_EQ(QueryTextOfView("\r\nCREATE VIEW V AS\r\nSELECT n -- name\r\nFROM t;\r\n"),
            "SELECT n  \nFROM t;");
}

// Deep nesting must not overflow the stack of the parser, the printer or a destructor.
TEST(JetSql, DepthIsBounded) {
  const auto repeat = [](std::string_view piece, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += piece;
    return text;
  };
  const std::string start = "SELECT a FROM t WHERE ";
  for (const auto& [head, piece] : {std::pair(start, "("),
                                    {start, "NOT "},
                                    {start, "-"},
                                    {start + "1", " = 1"},
                                    {start + "1", " Is Null"},
                                    {start, "f("},
                                    {start, "CASE "},
                                    {start, "(SELECT "},
                                    {start + "x", " COLLATE y"},
                                    {"SELECT * FROM ", "("},
                                    {"SELECT a FROM t", " RIGHT JOIN t ON 1"},
                                    {"SELECT a FROM t", ", t"},
                                    {"SELECT a FROM t", " UNION SELECT a FROM t"},
                                    {"", ""},
                                    {start, "\x02"}}) {
    SCOPED_TRACE(head + piece);
    ExpectError(error_number::kSyntax, "", [&, text = head + repeat(piece, 100000) + "1"] { Parse(text); });
  }
  EXPECT_GT(ForSqlite(start + "x = 1" + repeat(" OR x = 1", 20000)).size(), 100000u);
  const std::string nested = start + repeat("(1 + ", 100) + "1" + repeat(")", 100);
  EXPECT_EQ(ForSqlite(ForSqlite(nested)), ForSqlite(nested));
  // A dialect that repeats an operand doubles the text with every level.
  ExpectError(error_number::kSyntax, "too complex", [&] {
    ForSqlServer("SELECT ID FROM Catalog WHERE " + repeat("((", 20) + "Restore" +
                 repeat(" = True) = Restore)", 20));
  });
}

TEST(Sql, PrintsWithItsValues) {
  Sql sql("a = ");
  sql.AddNumber(-5).Add(" AND b=").AddText("it's \"so\"").Add(" AND c=").AddRawText("001");
  EXPECT_EQ(sql.Printed(), "a = -5 AND b='it''s \"so\"' AND c='001'");
  EXPECT_EQ(sql.Values(), (std::vector<Value>{std::int64_t{-5}, "it's \"so\"", "001"}));
  EXPECT_EQ(sql.Text(), "a = \x01 AND b=\x01 AND c=\x01");
  sql.Clear();
  sql.Add("SELECT a FROM t WHERE x=").AddRawText("a'\x01b").Add(" AND y=").AddNumber(1);
  EXPECT_EQ(sql.Values().size(), 1u) << "a text with an apostrophe is not a value";
  ExpectError(error_number::kSyntax, "", [&] { Parse(sql.Text(), sql.Values().size()); });
  for (const char* text : {"SELECT a FROM t WHERE x = \x01", "SELECT a FROM t WHERE x = '\x01'"})
    ExpectError(error_number::kSyntax, "", [&] { Parse(text); });
  ExpectError(error_number::kSyntax, "", [] { Parse("SELECT a FROM t WHERE x = \x01 AND y = \x01", 1); });
}

}  // namespace
}  // namespace kxrestore::engine::jet_sql
