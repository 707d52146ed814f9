// What statements become for SQL Server, which no test here can run.
#include <gtest/gtest.h>

#include "engine/jet_sql/printing/tsql_dialect.h"
#include "tests/engine/server_statements.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::engine {
namespace {

using testing::ForSqlServer;

TEST(TsqlDialect, Expressions) {
  const struct {
    const char* source;
    const char* expected;
  } cases[] = {
      {"OrigSize = True", "[Catalog].[OrigSize] <> 0"},
      {"Restore", "[Catalog].[Restore] = 1"},
      {"Not Restore And (OrigSize Or True)",
       "NOT [Catalog].[Restore] = 1 AND ([Catalog].[OrigSize] <> 0 OR 1 = 1)"},
      {"Restore = IsNull(Plugin)",
       "[Catalog].[Restore] = CAST(CASE WHEN ([Catalog].[Plugin] IS NULL) THEN 1 ELSE 0 END AS bit)"},
      {"IIf(Restore, 1, 2) = Len(File)",
       "CASE WHEN [Catalog].[Restore] = 1 THEN 1 ELSE 2 END = (len([Catalog].[File] + 'x') - 1)"},
      {"Restore <> True", "[Catalog].[Restore] = 0"},
      {"DateStamp >= #3/1/2026#", "[Catalog].[DateStamp] >= '2026-03-01T00:00:00'"},
      {"File & 'x' & Plugin = ''",
       "(coalesce(CAST([Catalog].[File] AS nvarchar(max)), '') + 'x' + coalesce(CAST([Catalog].[Plugin] AS "
       "nvarchar(max)), '')) = ''"},
      {"Nz(Plugin) = IIf(Status > 1, 'a', 'b')",
       "coalesce([Catalog].[Plugin], '') = CASE WHEN [Catalog].[Status] > 1 THEN 'a' ELSE 'b' END"},
      {"Status / 2 = 5 \\ 2",
       "(CAST([Catalog].[Status] AS float) / 2) = (CAST(5 AS bigint) / CAST(2 AS bigint))"},
  };
  for (const auto& [source, expected] : cases) {
    EXPECT_EQ(ForSqlServer(std::string("SELECT ID FROM Catalog WHERE ") + source),
              std::string("SELECT [Catalog].[ID] AS [ID] FROM [Catalog] WHERE ") + expected);
  }
  std::string nested = "Restore";
  for (int level = 0; level < 60; ++level) nested = "((" + nested + " = True) = Restore)";
  testing::ExpectError(error_number::kSyntax, "too complex",
                       [&] { ForSqlServer("SELECT ID FROM Catalog WHERE " + nested); });
}

TEST(TsqlDialect, Statements) {
  EXPECT_EQ(ForSqlServer("UPDATE [Catalog] SET [Catalog].Restore = False WHERE (((Catalog.Restore)=True));"),
            "UPDATE [Catalog] SET [Restore] = 0 WHERE [Catalog].[Restore] = 1");
  EXPECT_EQ(ForSqlServer("INSERT INTO SetNames (ID, Name) VALUES (-9, 'Büro ]')"),
            "INSERT INTO [SetNames] ([ID], [Name]) VALUES (-9, N'Büro ]')");
  EXPECT_EQ(ForSqlServer("SELECT TOP 5 Name FROM SetNames ORDER BY Name DESC"),
            "SELECT TOP 5 [SetNames].[Name] AS [Name] FROM [SetNames] ORDER BY [SetNames].[Name] DESC");
  EXPECT_EQ(
      ForSqlServer("SELECT Status = 2 AS Live FROM Catalog ORDER BY ID < 5"),
      "SELECT CAST(CASE WHEN [Catalog].[Status] = 2 THEN 1 WHEN NOT ([Catalog].[Status] = 2) THEN 0 END "
      "AS bit) AS [Live] FROM [Catalog] ORDER BY CAST(CASE WHEN [Catalog].[ID] < 5 THEN 1 WHEN NOT "
      "([Catalog].[ID] < 5) THEN 0 END AS bit)");
  EXPECT_EQ(jet_sql::TsqlDialect(false).Identifier("a]b"), "[a]]b]");
}

TEST(TsqlDialect, Masks) {
  const struct {
    const char* mask;
    const char* expected;
  } cases[] = {{"*.do?", "'%.do_'"},   {"50%_", "'50\\%\\_'"}, {"C:\\#", "'C:\\\\[0-9]'"},
               {"[a-c]x", "'[a-c]x'"}, {"[!c-a]", "'[^a-c]'"}, {"[^a]", "'[\\^a]'"},
               {"a[]b", "'ab'"},       {"a[b", "'a\\[b'"},     {"[-a-]", "'[\\-a\\-]'"},
               {"[!]", "'!'"},         {"it''s", "'it''s'"},   {"Ä[ö-ü]", "N'Ä[ö-ü]'"}};
  for (const auto& [mask, expected] : cases) {
    for (const bool negated : {false, true}) {
      const std::string text = ForSqlServer("SELECT ID FROM Catalog WHERE File " +
                                            std::string(negated ? "Not " : "") + "Like '" + mask + "'");
      EXPECT_EQ(
          text.substr(text.find("WHERE") + 6),
          std::string("[Catalog].[File] ") + (negated ? "NOT " : "") + "LIKE " + expected + " ESCAPE '\\'");
    }
  }
  EXPECT_EQ(ForSqlServer("SELECT ID FROM SetNames WHERE Name Like 'a*' ORDER BY Name", false, true),
            "SELECT [SetNames].[ID] AS [ID] FROM [SetNames] WHERE CAST([SetNames].[Name] AS nvarchar(max)) "
            "COLLATE Latin1_General_CI_AS LIKE 'a%' ESCAPE '\\' ORDER BY CAST([SetNames].[Name] AS "
            "nvarchar(max)) COLLATE Latin1_General_CI_AS");
}

// A view may not be ordered, unless it asks for so many rows.
TEST(TsqlDialect, SavedQueries) {
  EXPECT_EQ(
      ForSqlServer("SELECT OrigName, Max(DateStamp) AS DateStamp, First(Restore) AS Restore, Max(Restore) AS "
                   "M, First(File) AS File FROM FullCatalog GROUP BY OrigName ORDER BY First(DateStamp) DESC",
                   true),
      "SELECT TOP 2147483647 [FullCatalog].[OrigName] AS [OrigName], Max([FullCatalog].[DateStamp]) AS "
      "[DateStamp], CAST(max(CAST([FullCatalog].[Restore] AS tinyint)) AS bit) AS [Restore], "
      "CAST(max(CAST([FullCatalog].[Restore] AS tinyint)) AS bit) AS [M], min([FullCatalog].[File]) AS "
      "[File] FROM [FullCatalog] GROUP BY [FullCatalog].[OrigName] ORDER BY min([FullCatalog].[DateStamp]) "
      "DESC");
  EXPECT_EQ(
      ForSqlServer("SELECT ID FROM SetNames UNION SELECT ID FROM Catalog ORDER BY ID", true),
      "SELECT [SetNames].[ID] AS [ID] FROM [SetNames] UNION SELECT [Catalog].[ID] AS [ID] FROM [Catalog]");
  EXPECT_EQ(
      ForSqlServer("SELECT ID FROM SetNames WHERE ID In (SELECT ID FROM Catalog ORDER BY ID) ORDER BY ID"),
      "SELECT [SetNames].[ID] AS [ID] FROM [SetNames] WHERE [SetNames].[ID] IN (SELECT TOP 2147483647 "
      "[Catalog].[ID] AS [ID] FROM [Catalog] ORDER BY [Catalog].[ID]) ORDER BY [SetNames].[ID]");
}

// Of two groupings the outer one goes.
TEST(TsqlDialect, ListingOfTheLatestVersions) {
  const std::string text = ForSqlServer(
      "SELECT * from FullCatalogLatest WHERE ((FullCatalogLatest.OrigName Like \"*x*\") AND "
      "(FullCatalogLatest.Status = 2) );");
  EXPECT_TRUE(text.starts_with("SELECT * FROM (SELECT [FullCatalog].[OrigName] AS [OrigName], ")) << text;
  EXPECT_EQ(text.substr(text.find(" FROM [")),
            " FROM [FullCatalog] INNER JOIN (SELECT [FullCatalog].[OrigName] AS [OrigName], "
            "Max([FullCatalog].[DateStamp]) AS [DateStamp], Max([FullCatalog].[ID]) AS [ID] FROM "
            "[FullCatalog] WHERE [FullCatalog].[Status] = 2 GROUP BY [FullCatalog].[OrigName]) AS "
            "[qryGetLatest] ON [qryGetLatest].[ID] = [FullCatalog].[ID] WHERE [FullCatalog].[Status] = 2) AS "
            "[FullCatalogLatest] WHERE [FullCatalogLatest].[OrigName] LIKE '%x%' ESCAPE '\\' AND "
            "[FullCatalogLatest].[Status] = 2 ORDER BY 2 DESC, 3 DESC");
}

}  // namespace
}  // namespace kxrestore::engine
