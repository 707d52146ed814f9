// The translator alone: what statements become for SQLite, and what it refuses.

#include "engine/jet_sql/meaning/read_columns.h"
#include "engine/jet_sql/printing/printer.h"
#include "engine/jet_sql/reading/parser.h"
#include "engine/sql.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::engine::jet_sql {
namespace {

using testing::ExpectError;

std::string Direct(std::string_view source) {
  return Print(Parse(source), SqliteDialect(false));
}
std::string Saved(std::string_view source) {
  return Print(Parse(source), SqliteDialect(true));
}

std::string Condition(std::string_view condition) {
  const std::string text = Direct("SELECT a FROM t WHERE " + std::string(condition));
  return text.substr(std::string_view("SELECT a AS a FROM t WHERE ").size());
}

TEST(JetSql, Conditions) {
  EXPECT_EQ(Condition("(((x)=1) AND ((y)='b') OR NOT z)"), "x = 1 AND y = 'b' OR NOT z");
  EXPECT_EQ(Condition("(x=1 or y=2) and z=3"), "(x = 1 OR y = 2) AND z = 3");
  EXPECT_EQ(Condition("x = True"), "x <> 0");
  EXPECT_EQ(Condition("x <> True"), "x = 0");
  EXPECT_EQ(Condition("False = x"), "x = 0");
  EXPECT_EQ(Condition("x = \"it's \"\"so\"\"\""), "x = 'it''s \"so\"'");
  EXPECT_EQ(Condition("x Not In (\"a\", 'b')"), "x NOT IN ('a', 'b')");
  EXPECT_EQ(Condition("x Between 1 And 2 And y Is Not Null"), "x BETWEEN 1 AND 2 AND y IS NOT NULL");
  EXPECT_EQ(Condition("d > #11/16/2026#"), "d > '2026-11-16 00:00:00'");
  EXPECT_EQ(Condition("a - (b - c) = -d"), "(a - (b - c)) = (-d)");
  EXPECT_EQ(Condition("a & 'x' & b = c"), "(coalesce(a, '') || 'x' || coalesce(b, '')) = c");
  EXPECT_EQ(Condition("[Catalog.Filename] = [a b].[Order]"), "Catalog.Filename = [a b].[Order]");
  EXPECT_EQ(Condition("x In (SELECT y FROM u)"), "x IN (SELECT y AS y FROM u)");
  EXPECT_EQ(Condition("NOT (x = 1 AND y = 2)"), "NOT (x = 1 AND y = 2)");
  EXPECT_EQ(Condition("Left(x, 3) = UCase(y)"), "substr(x, 1, 3) = upper(y)");
  EXPECT_EQ(Condition("x Like 'a*'"), "kx_like(x, 'a*')");
  EXPECT_EQ(Condition("IIf(x > 1, 'a', 'b') = y"), "CASE WHEN x > 1 THEN 'a' ELSE 'b' END = y");
}

TEST(JetSql, JoinsAreMirrored) {
  const auto from = [](std::string_view source) {
    const std::string text = Direct("SELECT * FROM " + std::string(source));
    return text.substr(std::string_view("SELECT * FROM ").size());
  };
  EXPECT_EQ(from("A RIGHT JOIN B ON A.x = B.y"), "B LEFT JOIN A ON A.x = B.y");
  EXPECT_EQ(from("S RIGHT JOIN (L RIGHT JOIN [C] ON L.p = C.l) ON S.i = C.s"),
            "C LEFT JOIN L ON L.p = C.l LEFT JOIN S ON S.i = C.s");
  EXPECT_EQ(from("A INNER JOIN B ON A.x = B.x RIGHT OUTER JOIN C ON B.y = C.y"),
            "C LEFT JOIN (A INNER JOIN B ON A.x = B.x) ON B.y = C.y");
  EXPECT_EQ(from("(A LEFT JOIN B ON A.x = B.x) INNER JOIN C AS D ON D.y = A.y"),
            "A LEFT JOIN B ON A.x = B.x INNER JOIN C AS D ON D.y = A.y");
  EXPECT_EQ(from("A, (SELECT 1 AS n) AS B"), "A, (SELECT 1 AS n) AS B");
}

TEST(JetSql, NestedColumnsThatNobodyReadGo) {
  const auto nested = [](const std::string& items, const std::string& inner, const std::string& rest) {
    Statement statement = Parse("SELECT " + items + " FROM T, (SELECT " + inner + ") AS Q " + rest);
    LeaveOutUnreadNestedColumns(std::get<SelectStatement>(statement));
    const std::string text = Print(statement, SqliteDialect(false));
    const std::size_t start = text.find("(SELECT ") + 8;
    return text.substr(start, text.find(" FROM u") - start);
  };
  const std::string grouped = "a, Max(b) AS m, First(c) AS f FROM u GROUP BY a";
  EXPECT_EQ(nested("T.x", grouped, "WHERE Q.m = T.m"), "Max(b) AS m");
  EXPECT_EQ(nested("T.x, f", grouped, "ORDER BY Q.m"), "Max(b) AS m, c AS f");
  EXPECT_EQ(nested("T.x", grouped, "WHERE x In (SELECT y FROM v WHERE Q.a = v.a)"), "a AS a");
  EXPECT_EQ(nested("T.*", grouped, "WHERE Q.a = 1"), "a AS a");
  // All of them are read, or decide which rows there are.
  const std::string all = "a AS a, Max(b) AS m, c AS f";
  for (const char* items : {"*", "Q.*"}) EXPECT_EQ(nested(items, grouped, "WHERE Q.a = 1"), all);
  EXPECT_EQ(nested("T.x", "Max(a) AS m, Max(b) AS n FROM u", "WHERE Q.n = 1"), "Max(a) AS m, Max(b) AS n");
  EXPECT_EQ(nested("T.x", "DISTINCT a, b FROM u", "WHERE Q.a = 1"), "DISTINCT a AS a, b AS b");
  EXPECT_EQ(nested("T.x", "a, b FROM u ORDER BY 2", "WHERE Q.a = 1"), "a AS a, b AS b");
}

TEST(JetSql, Statements) {
  EXPECT_EQ(
      Direct("SELECT DISTINCT TOP 5 T.*, Count(*) FROM T GROUP BY a HAVING Max(b) > 1 ORDER BY a DESC, b;"),
      "SELECT DISTINCT T.*, Count(*) AS Expr1001 FROM T GROUP BY kx_fold(a) HAVING Max(b) > 1 ORDER BY a "
      "COLLATE kx_text_order DESC, b COLLATE kx_text_order LIMIT 5");
  for (const char* same : {"SELECT a AS a FROM t UNION ALL SELECT b AS b FROM u UNION SELECT c AS c FROM v",
                           "INSERT INTO t (a, b) VALUES (1, NULL)", "INSERT INTO t SELECT * FROM u"}) {
    EXPECT_EQ(Direct(same), same);
  }
  EXPECT_EQ(Direct("DELETE t.* FROM t WHERE x Is Null"), "DELETE FROM t WHERE x IS NULL");
  EXPECT_EQ(Direct("SELECT First(a) AS f FROM t"), "SELECT a AS f FROM t LIMIT 1");
}

TEST(JetSql, SavedQueriesUseWhatEveryProgramHas) {
  EXPECT_EQ(Saved("SELECT a FROM t WHERE n Like \"*10%_x\" ORDER BY First(b) DESC;"),
            "SELECT a AS a FROM t WHERE n LIKE '%10\\%\\_x' ESCAPE '\\' ORDER BY b DESC");
  EXPECT_EQ(Saved("SELECT IIf(IsNull([p]),[f],[P]) AS r FROM t"), "SELECT coalesce(P, f) AS r FROM t");
  // What is written for SQLite is read again.
  for (const char* text :
       {"SELECT CASE x WHEN 1 THEN 'a' ELSE 'b' END AS c FROM t",
        "SELECT CAST(x AS TEXT) AS c, coalesce(a, b) AS [Order] FROM t WHERE EXISTS (SELECT 1 AS n FROM u)",
        "SELECT (a || b) || c AS d FROM t ORDER BY a COLLATE NOCASE"}) {
    EXPECT_EQ(Saved(text), Saved(Saved(text)));
  }
}

TEST(JetSql, RefusesWithTheOffendingPiece) {
  const struct {
    const char* source;
    int number;
    const char* piece;
  } cases[] = {
      {"SELECT a FROM t WHERE x = 'a'b'", 3075, "''"},
      {"SELECT a FROM t WHERE x = 'O'Brien' AND y = 1", 3075, "AND y = 1"},
      {"SELECT a FROM t WHERE", 3075, "WHERE"},
      {"SELECT a FROM t WHERE (x = 1", 3075, "x = 1"},
      {"SELEKT a", 3075, "SELEKT a"},
      {"", 3075, ""},
      {"SELECT a FROM t WHERE x = #13/45/2026#", 3075, "#13/45/2026#"},
      {"SELECT [a FROM t", 3075, "[a FROM t"},
      {"SELECT a FROM t;;", 3142, ";"},
      {"SELECT a FROM t -- x", 3075, "-- x"},
      {"PRAGMA writable_schema = 1", 3075, "PRAGMA"},
      {"ATTACH 'x' AS y", 3075, "ATTACH"},
      {"UPDATE t SET", 3075, ""},
      {"DELETE WHERE x", 3075, "WHERE x"},
      {"SELECT a FROM t WHERE x = 12abc", 3075, "12abc"},
      {"SELECT a \x02 FROM t", 3075, ""},
  };
  for (const auto& [source, number, piece] : cases) {
    SCOPED_TRACE(source);
    ExpectError(number, piece, [text = source] { Parse(text); });
  }
}

// Texts that would drive a careless parser, printer or destructor through the stack.
TEST(JetSql, DepthIsBounded) {
  const auto repeat = [](std::string_view piece, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += piece;
    return text;
  };
  const std::string start = "SELECT a FROM t WHERE ";
  for (const std::string& text :
       {start + repeat("(", 100000) + "1", start + repeat("NOT ", 100000) + "1",
        start + repeat("-", 100000) + "1", start + "1" + repeat(" = 1", 100000),
        start + "1" + repeat(" Is Null", 100000), start + repeat("f(", 100000),
        start + repeat("CASE ", 100000), start + repeat("(SELECT ", 100000),
        "SELECT * FROM " + repeat("(", 100000), "SELECT a FROM t" + repeat(" RIGHT JOIN t ON 1", 100000),
        "SELECT a FROM t" + repeat(", t", 100000),
        "SELECT a FROM t" + repeat(" UNION SELECT a FROM t", 100000),
        start + "x" + repeat(" COLLATE y", 100000)}) {
    SCOPED_TRACE(text.substr(0, 60));
    ExpectError(error_number::kSyntax, "", [&] { Parse(text); });
  }
  const std::string longChain = start + "x = 1" + repeat(" OR x = 1", 20000);
  EXPECT_GT(Direct(longChain).size(), 100000u);
  const std::string nested = start + repeat("(1 + ", 100) + "1" + repeat(")", 100);
  EXPECT_EQ(Direct(Direct(nested)), Direct(nested));
}

TEST(Sql, PrintsWithItsValues) {
  Sql sql("a = ");
  sql.AddNumber(-5).Add(" AND b=").AddText("it's \"so\"").Add(" AND c=").AddRawText("001");
  EXPECT_EQ(sql.Printed(), "a = -5 AND b='it''s \"so\"' AND c='001'");
  EXPECT_EQ(sql.Values(), (std::vector<Value>{std::int64_t{-5}, "it's \"so\"", "001"}));
  EXPECT_EQ(sql.Text(), "a = \x01 AND b=\x01 AND c=\x01");
  sql.Clear();
  sql.Add("SELECT a FROM t WHERE x=").AddRawText("a'\x01b").Add(" AND y=").AddNumber(1);
  EXPECT_EQ(sql.Values().size(), 1u) << "a text that ends its apostrophes is no value";
  ExpectError(error_number::kSyntax, "", [&] { Parse(sql.Text(), sql.Values().size()); });
  ExpectError(error_number::kSyntax, "", [] { Parse("SELECT a FROM t WHERE x = \x01"); });
  ExpectError(error_number::kSyntax, "", [] { Parse("SELECT a FROM t WHERE x = \x01 AND y = \x01", 1); });
}

}  // namespace
}  // namespace kxrestore::engine::jet_sql
