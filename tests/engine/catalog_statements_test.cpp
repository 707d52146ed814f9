// The dialog's statements, exactly as they are put together, over real tables.
#include "tests/engine/test_databases.h"

namespace kxrestore::engine {
namespace {

using testing::Rows;
using CatalogStatements = testing::ConformanceTest;
using Strings = std::vector<std::string>;

TEST_P(CatalogStatements, SetTree) {
  EXPECT_EQ(
      Rows(*m_database,
           "SELECT SetNames.Name, BackupAudit.DateStamp, BackupAudit.SetNameID, BackupAudit.Extension, "
           "BackupAudit.Permanent, BackupAudit.Status FROM SetNames INNER JOIN BackupAudit ON SetNames.ID = "
           "BackupAudit.SetNameID Where (((BackupAudit.Status) = 6)) ORDER BY SetNames.Name, "
           "BackupAudit.DateStamp DESC; "),
      (Strings{"Archive|2026-03-05 00:00:00|3|x01|False|6", "büro|2026-03-01 00:00:00|2|001|NULL|6",
               "Office|2026-02-01 08:00:00|1|002|False|6", "Office|2026-01-01 08:00:00|1|001|True|6"}));
}

TEST_P(CatalogStatements, SetDetail) {
  const std::string start =
      "SELECT Catalog.ID, Catalog.DateStamp, Catalog.SetNameID, Catalog.Extension, Catalog.Filename, "
      "Catalog.File, "
      "Catalog.LongPathID, LongPaths.LongPath, Catalog.StoreName, Catalog.StoreMethod, Catalog.Plugin, "
      "IIf(IsNull([LongPath]),[filename],[longpath]) AS RestoreFile "
      "FROM LongPaths RIGHT JOIN [Catalog] ON LongPaths.PathID = Catalog.LongPathID "
      "WHERE (((Catalog.SetNameID)=1) AND ((Catalog.Extension)='002";
  const auto rows = Rows(*m_database, start + "') AND ((Catalog.Status)=2));");
  ASSERT_EQ(rows.size(), 4u);
  EXPECT_EQ(rows[0], "2|2026-02-01 08:00:00|1|002|C:\\a.doc|a.doc|NULL|NULL|s2|1||C:\\a.doc");
  EXPECT_EQ(rows[1],
            "3|2026-02-01 08:00:00|1|002|C:\\DOCUME~1\\L.DOC|l.doc|7|C:\\Documents and Settings\\user\\long "
            "name.doc|s3|1||C:\\Documents and Settings\\user\\long name.doc");
  const auto drilled =
      Rows(*m_database, start + "') AND (Catalog.Filename Like 'c:\\*')) ORDER BY Catalog.Filename");
  ASSERT_EQ(drilled.size(), 3u);
  EXPECT_EQ(drilled[1].substr(0, 2), "3|") << "without regard to case a.doc, DOCUME~1, it's.txt";
}

TEST_P(CatalogStatements, MarkedRows) {
  EXPECT_EQ(
      Rows(*m_database,
           "SELECT Catalog.SetNameID, Catalog.OrigSize, Catalog.DateStamp, Catalog.Extension, "
           "Catalog.Filename, "
           "Catalog.File, Catalog.Restore, Catalog.StoreMethod, Catalog.Plugin, Catalog.StoreName, "
           "IIf(IsNull([LongPath]),[filename],[longpath]) AS RestoreFile, SetNames.Name "
           "FROM SetNames RIGHT JOIN (LongPaths RIGHT JOIN [Catalog] ON LongPaths.PathID = "
           "Catalog.LongPathID) ON "
           "SetNames.ID = Catalog.SetNameID WHERE (((Catalog.Restore)=True));"),
      (Strings{"1|13|2026-02-01 08:00:00|002|C:\\it's.txt|it's.txt|True|1|NULL|s4|C:\\it's.txt|Office",
               "2|NULL|2026-03-01 00:00:00|001|D:\\Ärger.txt|Ärger.txt|True|1||s5|D:\\Ärger.txt|büro"}));
}

TEST_P(CatalogStatements, MarkingByFileVisitsEveryRow) {
  const auto dynaset = m_database->OpenRecordset(
      "SELECT Catalog.SetNameID, Catalog.Extension, Catalog.Filename, Catalog.File, Catalog.Plugin, "
      "Catalog.Restore, "
      "IIf(IsNull([LongPath]),[Catalog.Filename],[LongPath]) AS RestoreFile, LongPaths.LongPath "
      "FROM LongPaths RIGHT JOIN [Catalog] ON LongPaths.PathID = Catalog.LongPathID "
      "WHERE (((Catalog.SetNameID)=1) AND ((Catalog.Extension)='002')); ",
      RecordsetType::kDynaset);
  int visited = 0;
  for (; !dynaset->Eof(); dynaset->MoveNext(), ++visited) {
    if (dynaset->Fields("File").Text() != "l.doc") continue;
    dynaset->Edit();
    dynaset->Fields("Restore").Set(true);
    dynaset->Update();
  }
  EXPECT_EQ(visited, 4);
  EXPECT_EQ(m_test->Ask(
                "SELECT group_concat(ID) FROM (SELECT ID FROM Catalog WHERE Restore <> 0 ORDER BY ID) AS m"),
            "3,4,5");
}

// The saved queries as they are built, one from another, and the listings over them.
TEST_P(CatalogStatements, LatestVersions) {
  const std::string full = m_database->QueryText("FullCatalog");
  ASSERT_EQ(full.back(), ';');
  m_database->CreateQueryDef("FullCatalogBySet",
                             full.substr(0, full.find(';')) + " WHERE Catalog.SetNameID = 1 ");
  m_database->CreateQueryDef(
      "qryGetLatestBySet",
      "SELECT FullCatalogBySet.OrigName AS OrigName, Max(FullCatalogBySet.DateStamp) AS DateStamp, "
      "Max(FullCatalogBySet.ID) AS ID From FullCatalogBySet where FullCatalogBySet.Status = 2 GROUP BY "
      "FullCatalogBySet.OrigName;");
  m_database->CreateQueryDef(
      "qryGetLatest",
      "SELECT FullCatalog.OrigName AS OrigName, Max(FullCatalog.DateStamp) AS DateStamp, "
      "Max(FullCatalog.ID) AS ID FROM FullCatalog where FullCatalog.Status = 2 GROUP BY "
      "FullCatalog.OrigName;");
  const auto latest = [](std::string text, const std::string& source, const std::string& helper) {
    for (const char* column :
         {"SetNameID", "Extension", "OrigSize", "File", "Restore", "Status", "Attributes", "Filename",
          "StoreMethod", "StoreName", "LongPathID", "SetName", "Plugin", "SubFolder"}) {
      text += "First(" + source + "." + column + ") AS " + column + ", ";
    }
    return text + "First(" + source + ".EncryptMethod) AS EncryptMethod From " + source + " INNER JOIN " +
           helper + " ON " + source + ".ID = " + helper + ".ID WHERE " + source + ".Status = 2 GROUP BY " +
           source + ".OrigName ORDER BY First(" + source + ".DateStamp) DESC";
  };
  m_database->CreateQueryDef(
      "FullCatalogLatestBySet",
      latest("SELECT FullCatalogBySet.OrigName AS OrigName, Max(FullCatalogBySet.DateStamp) AS DateStamp, "
             "First(FullCatalogBySet.ID) AS ID, ",
             "FullCatalogBySet", "qryGetLatestBySet") +
          ";");
  m_database->CreateQueryDef(
      "FullCatalogLatest",
      latest("SELECT FullCatalog.OrigName AS OrigName, Max(FullCatalog.DateStamp) AS DateStamp, "
             "First(FullCatalog.ID) AS ID, ",
             "FullCatalog", "qryGetLatest") +
          " , First(FullCatalog.ID) DESC;");
  const auto listing = [&](const std::string& sql) {
    Strings found;
    const auto recordset = m_database->OpenRecordset(sql, RecordsetType::kSnapshot);
    for (; !recordset->Eof(); recordset->MoveNext()) {
      found.push_back(recordset->Fields("ID").Text() + " " + recordset->Fields("OrigName").Text() + " " +
                      recordset->Fields("SetName").Text());
    }
    return found;
  };
  EXPECT_EQ(listing("SELECT * from FullCatalogLatest WHERE ((FullCatalogLatest.OrigName Like \"**\") AND "
                    "(FullCatalogLatest.Status = 2) );"),
            (Strings{"5 D:\\Ärger.txt büro", "7 mail Office", "4 C:\\it's.txt Office",
                     "3 C:\\long.doc Office", "2 C:\\a.doc Office"}));
  EXPECT_EQ(listing("SELECT * from FullCatalogLatest WHERE ((FullCatalogLatest.OrigName Like \"*ärg*\") AND "
                    "(FullCatalogLatest.Status = 2) );"),
            (Strings{"5 D:\\Ärger.txt büro"}));
  EXPECT_EQ(
      listing("SELECT FullCatalogLatestBySet.* from FullCatalogLatestBySet WHERE "
              "((FullCatalogLatestBySet.SetNameID = 1) AND (FullCatalogLatestBySet.Extension In (\"002\", "
              "\"001\")) AND (FullCatalogLatestBySet.OrigName Like \"*.doc*\") AND  "
              "(FullCatalogLatestBySet.Status = 2) ) ")
          .size(),
      2u);
}

KX_CONFORMANCE(CatalogStatements);

}  // namespace
}  // namespace kxrestore::engine
