// Views of other programs, and those made here for SQL Server, read back as saved queries.
#include "engine/jet_sql/reading/view_text.h"

#include <gtest/gtest.h>

#include "engine/error_numbers.h"
#include "tests/engine/server_statements.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::engine {
namespace {

using jet_sql::LikeSigns;
using jet_sql::QueryTextOfView;
using testing::ExpectError;
using testing::ForSqlServer;

constexpr LikeSigns kSqlServer = {.hasLists = true}, kPostgres = {.escape = '\\'};

std::string MaskOf(const std::string& mask, const LikeSigns& signs = {}) {
  const std::string text = QueryTextOfView("CREATE VIEW V AS SELECT n FROM t WHERE n LIKE " + mask, signs);
  return text.substr(text.find("LIKE") + 5);
}

TEST(ViewText, MasksMeanWhatTheyMeant) {
  EXPECT_EQ(MaskOf("'50\\%!%_*' ESCAPE '!' AND m = 1"), "'50\\*%?[*]' AND m = 1;");
  EXPECT_EQ(MaskOf("'[%!!''' ESCAPE ''''"), "'[[]*!!''';");
  EXPECT_EQ(MaskOf("'a\\_[b]'", kPostgres), "'a_[[]b]';");
  EXPECT_EQ(MaskOf("'[!^]%'", kSqlServer), "'[^!]*';");
  for (const char* mask : {"b", "'a%' ESCAPE", "'a%' ESCAPE b", "'a%' ESCAPE 'bc'"}) {
    ExpectError(error_number::kSyntax, "", [&] { MaskOf(mask); });
  }
}

TEST(ViewText, SqlServersViewsComeBack) {
  for (const char* mask :
       {"*.do?", "50%_", "C:\\#[*]", "[a-c]x[!c-a]", "[^a][!-]", "a[[]b", "it''s", "Ä[ö-ü]"}) {
    const std::string body =
        ForSqlServer("SELECT ID FROM Catalog WHERE Not File Like '" + std::string(mask) + "'", true);
    const std::string text = QueryTextOfView("CREATE VIEW V AS " + body, kSqlServer);
    EXPECT_EQ(ForSqlServer(text, true), body) << text;
  }
  EXPECT_EQ(
      ForSqlServer(QueryTextOfView("\r\nCREATE VIEW [dbo].[V] (A, [B c]) AS\r\nSELECT ID, left(Filename, 2) "
                                   "FROM Catalog WHERE Plugin = N'Ä' AND File LIKE N'[^a]%N''';\r\n",
                                   kSqlServer)),
      "SELECT [Catalog].[ID] AS [A], left([Catalog].[Filename], 2) AS [B c] FROM [Catalog] WHERE "
      "[Catalog].[Plugin] = N'Ä' AND [Catalog].[File] LIKE '[^a]%N''' ESCAPE '\\'");
}

TEST(ViewText, PostgresWritesInAndKeywordsItsOwnWay) {
  EXPECT_EQ(QueryTextOfView("CREATE VIEW V AS SELECT \"right\"(\"a b\", 2) FROM t WHERE n = ANY "
                            "(ARRAY['x'::text, '[]'::text]) AND m <> ALL (ARRAY[1, 2]::int[]);"),
            "SELECT right([a b], 2) FROM t WHERE n In ('x' , '[]' ) AND m Not In (1, 2 );");
  ExpectError(error_number::kSyntax, "list", [] { MaskOf("'a' AND n > ANY (ARRAY[1])"); });
}

}  // namespace
}  // namespace kxrestore::engine
