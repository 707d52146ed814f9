// Recordsets and action statements on every kind of database: navigation, values, snapshots, dynasets and
// errors.
#include <functional>
#include <iterator>
#include <sstream>

#include "tests/engine/cases.h"
#include "tests/engine/server_statements.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::engine::testing {
namespace {

using RecordsetConformance = ConformanceTest;
class WritingConformance : public ConformanceTest {};

TEST_P(RecordsetConformance, WalksRowsAndFields) {
  const auto recordset = m_database->OpenRecordset("SELECT ID, Filename, OrigSize FROM Catalog ORDER BY ID",
                                                   RecordsetType::kSnapshot);
  EXPECT_EQ(recordset->FieldCount(), 3u);
  EXPECT_EQ(recordset->FieldName(1), "Filename");
  EXPECT_EQ(recordset->FieldValue(0), ValueView(std::int64_t{1}));
  Field file = recordset->Fields("FILENAME");
  std::string files;
  for (; !recordset->Eof(); recordset->MoveNext()) files += file.Text() + "|";
  EXPECT_EQ(files, "C:\\a.doc|C:\\a.doc|C:\\DOCUME~1\\L.DOC|C:\\it's.txt|D:\\Ärger.txt|D:\\gone.txt|mail|");
  ExpectError(error_number::kNoCurrentRecord, "", [&] { recordset->MoveNext(); });
  ExpectError(error_number::kNoCurrentRecord, "", [&] { file.Text(); });
  ExpectError(error_number::kItemNotFound, "Nothing", [&] { recordset->Fields("Nothing"); });
  recordset->Close();
  ExpectError(error_number::kObjectInvalid, "", [&] { recordset->Eof(); });
  ExpectError(error_number::kObjectInvalid, "", [&] { file.Value(); });
}

TEST_P(RecordsetConformance, Answers) {
  std::vector<PanelStatement> statements = PanelStatements();
  for (const auto& [text, rows] : ReadCases("queries.txt", "rows")) statements.push_back({text, rows});
  for (const auto& [text, rows] : statements) {
    Strings found = Rows(*m_database, text), wanted = rows;
    for (std::string& row : wanted) {
      const std::size_t flag = GetParam().onlyMarks ? row.find("|NULL|6") : std::string::npos;
      if (flag != std::string::npos) row.replace(flag, 7, "|False|6");
    }
    const bool ordered = text.find("ORDER BY") != std::string::npos;
    EXPECT_EQ(ordered ? found : Sorted(found), ordered ? wanted : Sorted(wanted)) << text;
  }
}

TEST_P(RecordsetConformance, Refuses) {
  const std::string marked = m_test->Ask("SELECT count(*) FROM Catalog WHERE Restore = 1");
  const std::pair<const char*, std::function<void(const std::string&)>> ways[] = {
      {"refused as a recordset",
       [&](const std::string& sql) { m_database->OpenRecordset(sql, RecordsetType::kDynaset); }},
      {"refused as an action", [&](const std::string& sql) { m_database->Execute(sql, kFailOnError); }}};
  for (const auto& [heading, way] : ways) {
    for (const auto& [sql, error] : ReadCases("queries.txt", heading)) {
      SCOPED_TRACE(sql);
      const std::size_t blank = error.at(0).find(' ');
      ExpectError(std::stoi(error[0]), error[0].substr(blank + 1), [&, text = sql] { way(text); });
    }
  }
  ExpectError(WritingError(error_number::kDuplicateKey), "", [&] {
    m_database->Execute("INSERT INTO SetNames (ID, Name) VALUES (1, 'again')", kFailOnError);
  });
  EXPECT_EQ(m_test->Ask("SELECT count(*) FROM Catalog WHERE Restore = 1"), marked);
}

// A caller that names the columns it reads gets the same rows with only these columns. The desktop engine
// receives the statement unchanged.
TEST_P(RecordsetConformance, ColumnsThatNobodyReads) {
  for (const auto& [sql, expected] : ReadCases("queries.txt", "read columns")) {
    std::istringstream words(expected.at(0));
    const Strings read{std::istream_iterator<std::string>(words), {}};
    const auto readAll = [&, text = sql, sent = expected.at(1)](const ColumnNames& asked) {
      const auto rows = m_database->OpenRecordset(text, RecordsetType::kSnapshot, asked);
      if (!asked.empty() && sent != "any" && GetParam().name != "Dao") {
        EXPECT_EQ(std::to_string(rows->FieldCount()), sent) << text;
      }
      Strings found;
      for (; !rows->Eof(); rows->MoveNext()) {
        std::string& row = found.emplace_back();
        for (const std::string& name : read) row += rows->Fields(name).Text() + "|";
      }
      return text.find("ORDER BY") == std::string::npos ? Sorted(found) : found;
    };
    const Strings all = readAll({});
    EXPECT_FALSE(all.empty()) << sql;
    EXPECT_EQ(readAll({read.begin(), read.end()}), all) << sql;
  }
  ExpectError(error_number::kParameterMissing, "Nothing", [&] {
    m_database->OpenRecordset("SELECT ID, Nothing FROM Catalog", RecordsetType::kSnapshot, {"ID"});
  });
  const auto dynaset = m_database->OpenRecordset("SELECT ID, Filename, Restore FROM Catalog WHERE ID = 4",
                                                 RecordsetType::kDynaset, {"Restore"});
  Change(*dynaset, "Restore", false);
  EXPECT_EQ(m_test->Ask("SELECT Restore FROM Catalog WHERE ID = 4"), "0");
}

TEST_P(RecordsetConformance, TextsSortAsPeopleExpect) {
  m_test->Run(
      "DELETE FROM BackupAudit; DELETE FROM SetNames; INSERT INTO SetNames VALUES (1, 'Zoo'), (2, 'Ärzte'), "
      "(3, 'ARZT'), (4, 'Arzt'), (5, 'bär'), (6, 'Baer'), (7, 'Bas'); INSERT INTO BackupAudit (SetNameID, "
      "DateStamp) VALUES (3, '2026-01-01 00:00:00'), (4, '2026-01-02 00:00:00'), (3, '2026-01-03 00:00:00')");
  EXPECT_EQ(Rows(*m_database, "SELECT Name FROM SetNames WHERE ID <> 3 ORDER BY Name"),
            (Strings{"Arzt", "Ärzte", "Baer", "bär", "Bas", "Zoo"}));
  EXPECT_EQ(Rows(*m_database,
                 "SELECT Name FROM SetNames INNER JOIN BackupAudit ON SetNames.ID = BackupAudit.SetNameID "
                 "ORDER BY SetNames.Name, BackupAudit.DateStamp DESC"),
            (Strings{"ARZT", "Arzt", "ARZT"}))
      << "names that differ only in case are equal, so the date decides";
}

TEST_P(RecordsetConformance, ExecuteCountsRows) {
  const std::string mark = "UPDATE [Catalog] SET [Catalog].Restore = True WHERE (((Catalog.ID)=";
  const std::string clear =
      "UPDATE [Catalog] SET [Catalog].Restore = False WHERE (((Catalog.Restore)=True));";
  // The rows with 1 and 7 count as marked, and the one that the first statement marks.
  for (const auto& [sql, count] :
       {std::pair(mark + "3));", 1), {mark + "-3));", 0}, {clear, 3}, {clear, 0}}) {
    EXPECT_EQ(m_database->Execute(sql), count) << sql;
  }
}

TEST_P(WritingConformance, InsertsAndDeletesRows) {
  for (const char* sql : {"INSERT INTO SetNames (ID, Name) VALUES (9, 'it''s \"new\"')",
                          "DELETE FROM SetNames WHERE Name = 'it''s \"new\"'"}) {
    EXPECT_EQ(m_database->Execute(sql), 1) << sql;
  }
  EXPECT_EQ(m_test->Ask("SELECT count(*) FROM SetNames"), "3");
}

// Statements that differ only in their values must not share their rows.
TEST_P(RecordsetConformance, StatementsKeepTheirValues) {
  const auto open = [&](std::string_view column, const Value& value, int setId) {
    Sql sql("SELECT ID FROM Catalog WHERE " + std::string(column) + " ");
    if (const auto* text = std::get_if<std::string>(&value)) {
      sql.AddText(*text);
    } else {
      sql.AddNumber(std::get<std::int64_t>(value));
    }
    sql.Add(" AND SetNameID = ").AddNumber(setId).Add(" ORDER BY ID");
    return m_database->OpenRecordset(sql, RecordsetType::kSnapshot);
  };
  const struct {
    const char* column;
    Value value;
    int setId;
    Strings ids;
  } cases[] = {{"Filename =", "C:\\a.doc", 1, {"1", "2"}},
               {"Filename =", "D:\\Ärger.txt", 2, {"5"}},
               {"Filename =", "D:\\Ärger.txt", 1, {}},
               {"Filename =", "C:\\it's.txt", 1, {"4"}},
               {"Extension =", std::int64_t{1}, 1, {}},  // "001" is no number
               {"Filename Like", "*ÄRGER*", 2, {"5"}},
               {"Filename Like", "[cd]:\\?.doc", 1, {"1", "2"}},
               {"DateStamp >=", "2026-02-01 08:00:00", 1, {"2", "3", "4", "7"}},
               {"Restore =", std::int64_t{1}, 1, {"4"}}};
  for (const auto& [column, value, setId, ids] : cases) {
    EXPECT_EQ(Rows(*open(column, value, setId)), ids) << column << ToText(ViewOf(value));
  }
  // Two recordsets of one statement are open at the same time.
  const auto first = open("Status =", std::int64_t{2}, 1), second = open("Status =", std::int64_t{2}, 2);
  EXPECT_EQ(first->Fields("ID").Integer(), 1);
  EXPECT_EQ(second->Fields("ID").Integer(), 5);
  first->MoveNext();
  EXPECT_EQ(first->Fields("ID").Integer(), 2);
}

TEST_P(RecordsetConformance, SnapshotDoesNotChange) {
  for (const bool inAction : {false, true}) {
    m_test->Run("UPDATE Catalog SET Restore = 0; DELETE FROM Catalog WHERE ID > 7");
    if (inAction) m_workspace->BeginAction();
    const auto database = m_workspace->OpenDatabase(m_test->Request());
    const auto snapshot = database->OpenRecordset(
        "SELECT ID, Restore, ID * 5000000000 AS Big FROM Catalog ORDER BY ID", RecordsetType::kSnapshot);
    std::string visited;
    for (; !snapshot->Eof() && visited.size() < 40; snapshot->MoveNext()) {
      const std::string id = snapshot->Fields("ID").Text();
      visited += id + (snapshot->Fields("Restore").Boolean() ? "! " : " ");
      database->Execute("UPDATE Catalog SET Restore = True WHERE ID >= " + id);
      EXPECT_EQ(snapshot->Fields("ID").Text(), id);
      EXPECT_EQ(snapshot->Fields("Big").Integer(), 5'000'000'000 * snapshot->Fields("ID").Integer());
      if (!GetParam().onlyMarks) {
        database->Execute("INSERT INTO Catalog (ID, Filename) VALUES (10" + id + ", 'n')");
      }
      m_workspace->Flush();
    }
    EXPECT_EQ(visited, "1 2 3 4 5 6 7 ");
    database->Close();
    if (inAction) m_workspace->EndAction();
    EXPECT_EQ(m_test->Ask("SELECT count(*) FROM Catalog WHERE Restore = 1 AND ID < 8"), "7");
  }
}

TEST_P(RecordsetConformance, DynasetWritesRows) {
  const auto dynaset = m_database->OpenRecordset(
      "SELECT Catalog.SetNameID, Catalog.Extension, Catalog.Filename, Catalog.Restore, LongPaths.LongPath "
      "FROM LongPaths RIGHT JOIN [Catalog] ON LongPaths.PathID = Catalog.LongPathID "
      "WHERE (((Catalog.SetNameID)=1) AND ((Catalog.Extension)='002') AND "
      "((Catalog.Filename)='C:\\it''s.txt')); ",
      RecordsetType::kDynaset);
  ASSERT_FALSE(dynaset->Eof());
  ExpectError(error_number::kUpdateWithoutEdit, "", [&] { dynaset->Update(); });
  ExpectError(error_number::kUpdateWithoutEdit, "", [&] { dynaset->Fields("Restore").Set(false); });
  dynaset->Edit();
  dynaset->Fields("Restore").Set(false);
  const std::string name = GetParam().onlyMarks ? "C:\\it's.txt" : "C:\\new's.txt";
  if (!GetParam().onlyMarks) dynaset->Fields("Filename").Set(name);
  dynaset->Update();
  EXPECT_FALSE(dynaset->Fields("Restore").Boolean()) << "the row shows the new value";
  EXPECT_EQ(m_test->Ask("SELECT Restore FROM Catalog WHERE ID = 4"), "0");
  EXPECT_EQ(m_test->Ask("SELECT Filename FROM Catalog WHERE ID = 4"), name);
  dynaset->Edit();
  ExpectError(error_number::kReadOnly, "", [&] {
    dynaset->Fields("LongPath").Set(std::string("x"));
    dynaset->Update();
  });
  dynaset->MoveNext();
  EXPECT_TRUE(dynaset->Eof());
  ExpectError(error_number::kNoCurrentRecord, "", [&] { dynaset->Edit(); });

  const auto all = m_database->OpenRecordset("SELECT Restore FROM Catalog", RecordsetType::kDynaset);
  all->Edit();
  all->Fields("Restore").Set(true);
  all->MoveNext();
  ExpectError(error_number::kUpdateWithoutEdit, "", [&] { all->Update(); });
}

// An update of the column by which the rows are searched must not move a row ahead of the dynaset.
TEST_P(WritingConformance, DynasetVisitsEachRowOnce) {
  m_test->Run("CREATE INDEX CatalogBySize ON Catalog (OrigSize)");
  int visits = 0;
  const auto dynaset = m_database->OpenRecordset("SELECT ID, OrigSize FROM Catalog WHERE OrigSize > 0",
                                                 RecordsetType::kDynaset);
  for (; !dynaset->Eof() && visits < 50; dynaset->MoveNext(), ++visits) {
    Change(*dynaset, "OrigSize", dynaset->Fields("OrigSize").Integer() + 100);
  }
  EXPECT_EQ(visits, 6);
  EXPECT_EQ(m_test->Ask("SELECT sum(OrigSize) FROM Catalog"), "677");
}

TEST_P(RecordsetConformance, RowsThatCannotBeChanged) {
  for (const auto& [source, ignored] : ReadCases("queries.txt", "read only")) {
    const auto dynaset = m_database->OpenRecordset(source, RecordsetType::kDynaset);
    ExpectError(error_number::kReadOnly, "", [&] {
      dynaset->Edit();
      dynaset->Fields("Restore").Set(true);
    });
  }
  const auto highest =
      m_database->OpenRecordset("SELECT Max(ID) AS Highest FROM Catalog", RecordsetType::kDynaset);
  ExpectError(error_number::kReadOnly, "", [&] { highest->Edit(); });
  const auto snapshot = m_database->OpenRecordset("SELECT Restore FROM Catalog", RecordsetType::kSnapshot);
  ExpectError(error_number::kReadOnly, "", [&] { snapshot->Edit(); });
  const auto mixed = m_database->OpenRecordset(
      "SELECT FullCatalog.Restore AS A, Catalog.Restore AS B FROM Catalog INNER JOIN FullCatalog ON "
      "FullCatalog.OrigName = Catalog.OrigName WHERE Catalog.ID = 1 AND FullCatalog.ID = 2",
      RecordsetType::kDynaset);
  Change(*mixed, "B", true);
  EXPECT_EQ(m_test->Ask("SELECT Restore FROM Catalog WHERE ID = 1"), "1");
  EXPECT_EQ(m_test->Ask("SELECT Restore FROM Catalog WHERE ID = 2"), "0");
}

TEST_P(RecordsetConformance, ClosingInAnyOrder) {
  auto recordset = m_database->OpenRecordset("SELECT ID FROM Catalog ORDER BY ID", RecordsetType::kDynaset);
  m_database->Close();
  ExpectError(error_number::kObjectInvalid, "", [&] { m_database->Execute("DELETE FROM Catalog"); });
  ExpectError(error_number::kObjectInvalid, "", [&] { m_database->QueryText("FullCatalog"); });
  m_database.reset();
  m_workspace.reset();
  EXPECT_EQ(recordset->Fields("ID").Integer(), 1);
  recordset->MoveNext();
  EXPECT_EQ(recordset->Fields("ID").Integer(), 2);
}

TEST_P(RecordsetConformance, ReadOnlyDatabase) {
  OpenRequest request = m_test->Request();
  request.readOnly = true;
  const auto database = m_workspace->OpenDatabase(request);
  EXPECT_EQ(Rows(*database, "SetNames").size(), 3u);
  ExpectError(error_number::kReadOnly, "", [&] { database->Execute("DELETE FROM SetNames"); });
  ExpectError(error_number::kReadOnly, "",
              [&] { database->CreateQueryDef("q", "SELECT ID FROM SetNames;"); });
  const auto dynaset = database->OpenRecordset("SetNames", RecordsetType::kDynaset);
  ExpectError(error_number::kReadOnly, "", [&] { dynaset->Edit(); });
}

// The desktop engine works on the calling thread and does not invoke the callback.
TEST_P(RecordsetConformance, GivesTurnsWhileAStatementWorksAndCanBeStopped) {
  if (GetParam().name == "Dao") return;
  const bool fewer = GetParam().onlyMarks;  // such files take several times longer
  const std::string all =
      std::string("SELECT Count(*) AS n FROM Catalog AS a, Catalog AS b, Catalog AS c, Catalog AS d, ") +
      "Catalog AS e, Catalog AS f, Catalog AS g" + (fewer ? "" : ", Catalog AS h") +
      " WHERE a.ID + b.ID + c.ID + d.ID + e.ID + f.ID + g.ID > 0";
  int turns = 0;
  m_workspace->SetWaiting([&] { return ++turns < 3; });
  ExpectError(error_number::kCanceled, "canceled", [&] { Rows(*m_database, all); });
  EXPECT_GE(turns, 3);
  turns = -1'000'000;
  // A new connection, because the engine abandons that of a server that is slow to stop.
  m_database = m_workspace->OpenDatabase(m_test->Request());
  EXPECT_EQ(Rows(*m_database, all), Strings{fewer ? "823543" : "5764801"});
  EXPECT_GT(turns, -1'000'000);
  // The rest of an open listing is read before a row is written.
  m_workspace->BeginAction();
  {
    const auto database = m_workspace->OpenDatabase(m_test->Request());
    const auto listing = database->OpenRecordset(
        std::string("SELECT a.ID, b.Filename FROM Catalog AS a, Catalog AS b, Catalog AS c, Catalog AS d, ") +
            "Catalog AS e, Catalog AS f" + (fewer ? "" : ", Catalog AS g"),
        RecordsetType::kSnapshot);
    turns = -1'000'000;
    database->Execute("UPDATE Catalog SET Restore = True WHERE ID = 1", kFailOnError);
    EXPECT_GT(turns, -1'000'000);
  }
  m_workspace->EndAction();
  m_workspace->SetWaiting([]() -> bool { throw std::runtime_error("a turn failed"); });
  EXPECT_THROW(Rows(*m_database, all), std::runtime_error);
  m_workspace->SetWaiting({});
  m_database = m_workspace->OpenDatabase(m_test->Request());
  EXPECT_EQ(Rows(*m_database, "SELECT ID FROM Catalog WHERE ID = 1"), Strings{"1"});
}

KX_CONFORMANCE(RecordsetConformance);
KX_CONFORMANCE_OF(WritingConformance, WritableDatabaseKinds());

}  // namespace
}  // namespace kxrestore::engine::testing
