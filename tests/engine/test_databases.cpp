#include "tests/engine/test_databases.h"

#include <sqlite3.h>

#include <atomic>
#include <chrono>
#include <stdexcept>

#include "engine/sqlite/sqlite_backend.h"
#ifdef _WIN32
#include "tests/engine/dao_test_database.h"
#endif
#include "tests/engine/desktop_samples.h"
#include "tests/engine/jet_test_database.h"
#include "tests/engine/odbc_test_database.h"

namespace kxrestore::engine::testing {
namespace {

constexpr const char* kNoRow = "no row";

class SqliteTestDatabase final : public TestDatabase {
 public:
  explicit SqliteTestDatabase(const std::string& path)
      : m_path(path.empty() ? m_folder.File("catälog.db") : path) {
    const int code =
        sqlite3_open_v2(m_path.c_str(), &m_connection, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    if (code != SQLITE_OK) throw std::runtime_error("cannot make " + m_path);
    sqlite3_busy_timeout(m_connection, 300);
  }
  ~SqliteTestDatabase() override { sqlite3_close_v2(m_connection); }

  OpenRequest Request() const override { return {.name = m_path}; }

  void Run(std::string_view sql) override {
    if (const std::string message = Carry(sql, nullptr); !message.empty()) throw std::runtime_error(message);
  }

  std::string Ask(std::string_view sql) override {
    std::string answer = kNoRow;
    const std::string message = Carry(sql, &answer);
    return message.empty() ? answer : message;
  }

 private:
  // What is wrong, if anything.
  std::string Carry(std::string_view sql, std::string* answer) {
    const auto keep = [](void* kept, int, char** values, char**) {
      auto* first = static_cast<std::string*>(kept);
      if (first != nullptr && *first == kNoRow) *first = values[0] == nullptr ? "NULL" : values[0];
      return 0;
    };
    const int code = sqlite3_exec(m_connection, std::string(sql).c_str(), keep, answer, nullptr);
    return code == SQLITE_OK ? std::string() : sqlite3_errmsg(m_connection);
  }

  TemporaryFolder m_folder;
  std::string m_path;
  sqlite3* m_connection = nullptr;
};

}  // namespace

TemporaryFolder::TemporaryFolder() {
  static std::atomic<int> count{0};
  const auto stamp = std::chrono::steady_clock::now().time_since_epoch().count();
  m_path = std::filesystem::temp_directory_path() /
           ("kxrestore-test-" + std::to_string(stamp) + "-" + std::to_string(++count));
  std::filesystem::create_directories(m_path);
  std::filesystem::permissions(m_path,
                               std::filesystem::perms::others_read | std::filesystem::perms::others_exec,
                               std::filesystem::perm_options::add);
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(m_path, ignored);
}

std::string TemporaryFolder::File(std::string_view name) const {
  const std::u8string path = (m_path / std::u8string(name.begin(), name.end())).u8string();
  return {path.begin(), path.end()};
}

std::unique_ptr<TestDatabase> MakeSqliteFile(const std::string& path) {
  return std::make_unique<SqliteTestDatabase>(path);
}

std::unique_ptr<Workspace> MakeImpatientWorkspace() {
  Workspace::Backends backends;
  backends.sqlite = sqlite::MakeSqliteBackend(std::chrono::milliseconds(300));
  return std::make_unique<Workspace>(std::move(backends));
}

const std::vector<TestDatabaseKind>& TestDatabaseKinds() {
  static const std::vector<TestDatabaseKind> kinds = [] {
    std::vector<TestDatabaseKind> found = {{"Sqlite", [] { return MakeSqliteFile(); }}};
    using Style = bench::DesktopFile::Style;
    const auto add = [&](const char* name, const char* sample, const Style& style) {
      found.push_back({name, [=] { return std::make_unique<JetTestDatabase>(sample, style); }, true});
    };
    add("File2003", "telling-2003.mdb", {});
    add("File2019", "telling-2019.accdb",
        {bench::DesktopFile::Texts::kMixed, bench::DesktopFile::Memos::kChain, 2});
#ifdef _WIN32
    if (!DaoTestDatabase::RealOneIsInstalled()) {
      found.push_back({"Dao", [] { return std::make_unique<DaoTestDatabase>(); }});
    }
#endif
    if (HasTestServer()) {
      found.push_back({"Postgres", [] { return MakePostgres(Spelling::kFolded); }});
      found.push_back({"PostgresQuoted", [] { return MakePostgres(Spelling::kQuoted); }});
    }
    return found;
  }();
  return kinds;
}

std::vector<TestDatabaseKind> WritableDatabaseKinds() {
  auto kinds = TestDatabaseKinds();
  std::erase_if(kinds, [](const TestDatabaseKind& kind) { return kind.onlyMarks; });
  return kinds;
}

std::unique_ptr<Workspace> MakeWorkspace(const TestDatabaseKind& kind) {
  return kind.onlyMarks ? MakeReaderWorkspace() : MakeDefaultWorkspace();
}

std::string CatalogSchema() {
  return R"(
CREATE TABLE Catalog (ID INTEGER PRIMARY KEY, DateStamp VARCHAR(30), SetNameID INTEGER, Extension VARCHAR(20),
  Filename VARCHAR(255), File VARCHAR(255), LongPathID INTEGER, StoreName VARCHAR(80), StoreMethod INTEGER,
  Plugin VARCHAR(80), Restore BOOLEAN, OrigSize INTEGER, Status INTEGER, Attributes INTEGER,
  SubFolder VARCHAR(80), EncryptMethod INTEGER, OrigName VARCHAR(255));
CREATE TABLE LongPaths (PathID INTEGER PRIMARY KEY, LongPath VARCHAR(400));
CREATE TABLE SetNames (ID INTEGER PRIMARY KEY, Name VARCHAR(80));
CREATE TABLE BackupAudit (SetNameID INTEGER, DateStamp VARCHAR(30), Extension VARCHAR(20), Permanent BOOLEAN,
  Status INTEGER);
CREATE VIEW FullCatalog AS SELECT Catalog.OrigName AS OrigName, Catalog.DateStamp AS DateStamp, Catalog.ID AS ID,
  Catalog.SetNameID AS SetNameID, Catalog.Extension AS Extension, Catalog.File AS File, Catalog.Restore AS Restore,
  Catalog.OrigSize AS OrigSize, Catalog.Status AS Status, Catalog.Attributes AS Attributes,
  Catalog.Filename AS Filename, Catalog.StoreMethod AS StoreMethod, Catalog.StoreName AS StoreName,
  Catalog.LongPathID AS LongPathID, SetNames.Name AS SetName, Catalog.SubFolder AS SubFolder,
  Catalog.Plugin AS Plugin, Catalog.EncryptMethod AS EncryptMethod
  FROM Catalog LEFT JOIN SetNames ON Catalog.SetNameID = SetNames.ID;
)";
}

std::string CatalogRows() {
  return R"(
INSERT INTO SetNames VALUES (1, 'Office'), (2, 'büro'), (3, 'Archive');
INSERT INTO LongPaths VALUES (7, 'C:\Documents and Settings\user\long name.doc'), (8, 'unused');
INSERT INTO BackupAudit VALUES (1, '2026-01-01 08:00:00', '001', 1, 6), (1, '2026-02-01 08:00:00', '002', 0, 6),
  (2, '2026-03-01 00:00:00', '001', NULL, 6), (2, '2026-03-02 00:00:00', '002', 0, 3),
  (3, '2026-03-05 00:00:00', 'x01', 0, 6);
INSERT INTO Catalog (ID, DateStamp, SetNameID, Extension, Filename, File, LongPathID, StoreName, StoreMethod, Plugin,
  Restore, OrigSize, Status, OrigName) VALUES
  (1, '2026-01-01 08:00:00', 1, '001', 'C:\a.doc', 'a.doc', NULL, 's1', 1, '', 0, 10, 2, 'C:\a.doc'),
  (2, '2026-02-01 08:00:00', 1, '002', 'C:\a.doc', 'a.doc', NULL, 's2', 1, '', 0, 11, 2, 'C:\a.doc'),
  (3, '2026-02-01 08:00:00', 1, '002', 'C:\DOCUME~1\L.DOC', 'l.doc', 7, 's3', 1, '', 0, 12, 2, 'C:\long.doc'),
  (4, '2026-02-01 08:00:00', 1, '002', 'C:\it''s.txt', 'it''s.txt', NULL, 's4', 1, NULL, 1, 13, 2, 'C:\it''s.txt'),
  (5, '2026-03-01 00:00:00', 2, '001', 'D:\Ärger.txt', 'Ärger.txt', 99, 's5', 1, '', 7, NULL, 2, 'D:\Ärger.txt'),
  (6, '2026-03-01 00:00:00', 2, '001', 'D:\gone.txt', 'gone.txt', NULL, 's6', 1, '', 0, 15, 1, 'D:\gone.txt'),
  (7, '2026-02-01 08:00:00', 1, '002', 'mail', 'mail', NULL, 's7', 1, 'Exchange Server', NULL, 16, 2, 'mail');
)";
}

std::vector<std::string> Rows(Database& database, std::string_view source, RecordsetType type) {
  std::vector<std::string> rows;
  const auto recordset = database.OpenRecordset(source, type);
  for (; !recordset->Eof(); recordset->MoveNext()) {
    std::string row;
    for (std::size_t i = 0; i < recordset->FieldCount(); ++i) {
      const ValueView value = recordset->FieldValue(i);
      row += (i == 0 ? "" : "|") + (IsNull(value) ? "NULL" : ToText(value));
    }
    rows.push_back(std::move(row));
  }
  return rows;
}

void Change(Recordset& rows, std::string_view field, Value value) {
  rows.Edit();
  rows.Fields(field).Set(std::move(value));
  rows.Update();
}

void Mark(Database& database, int id) {
  EXPECT_EQ(database.Execute("UPDATE [Catalog] SET [Catalog].Restore = True WHERE (((Catalog.ID)=" +
                                 std::to_string(id) + "));",
                             kFailOnError),
            1);
}

void ExpectSameCatalog(Database& catalog, Database& other) {
  const std::string columns =
      "SELECT ID, DateStamp, SetNameID, Extension, Filename, File, LongPathID, StoreName, StoreMethod, "
      "Plugin, "
      "IIf(Restore, 1, 0), OrigSize, Status, Attributes, SubFolder, EncryptMethod, ";
  for (const std::string& sql :
       {columns + "OrigName FROM [Catalog] ORDER BY ID", columns + "SetName FROM FullCatalog ORDER BY ID",
        std::string("SELECT ID, Name FROM SetNames ORDER BY ID"),
        std::string("SELECT PathID, LongPath FROM LongPaths ORDER BY PathID"),
        std::string("SELECT SetNameID, DateStamp, Extension, IIf(Permanent, 1, 0), Status FROM BackupAudit "
                    "ORDER BY SetNameID, DateStamp")}) {
    const auto rows = Rows(catalog, sql);
    EXPECT_FALSE(rows.empty());
    EXPECT_EQ(rows, Rows(other, sql)) << sql;
  }
}

}  // namespace kxrestore::engine::testing
