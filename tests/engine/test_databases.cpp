#include "tests/engine/test_databases.h"

#include <sqlite3.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <thread>
#include <utility>

#include "bench/desktop_file.h"
#include "engine/sqlite/sqlite_backend.h"
#ifdef _WIN32
#include "tests/engine/dao_test_database.h"
#endif
#include "tests/engine/desktop_samples.h"

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
    if (Execute(sql).first != SQLITE_OK) throw std::runtime_error(sqlite3_errmsg(m_connection));
  }
  std::string Ask(std::string_view sql) override {
    const auto [code, answer] = Execute(sql);
    return code == SQLITE_OK ? answer : sqlite3_errmsg(m_connection);
  }

 private:
  // The result code and the first value of the first row.
  std::pair<int, std::string> Execute(std::string_view sql) {
    std::string answer = kNoRow;
    const auto keepFirst = [](void* kept, int, char** values, char**) {
      if (auto* const first = static_cast<std::string*>(kept); *first == kNoRow) {
        *first = values[0] == nullptr ? "NULL" : values[0];
      }
      return 0;
    };
    const int code = sqlite3_exec(m_connection, std::string(sql).c_str(), keepFirst, &answer, nullptr);
    return {code, answer};
  }

  TemporaryFolder m_folder;
  std::string m_path;
  sqlite3* m_connection = nullptr;
};

// Files of the desktop engine, opened without that engine. The test's rows are in a SQLite file, the twin.
// Run changes the twin and then writes its rows into a copy of a sample file. Before the twin is used, it
// gets the marks that the engine has set in the copy.
class JetTestDatabase final : public TestDatabase {
 public:
  JetTestDatabase(std::string sample, const bench::DesktopFile::Style& style)
      : m_sample(std::move(sample)), m_style(style) {}

  OpenRequest Request() const override { return {.name = m_path}; }
  void Run(std::string_view sql) override {
    TakeMarks();
    m_twin->Run(sql);
    // Yes/no columns of such a file hold no other values and no NULL.
    m_twin->Run(
        "UPDATE Catalog SET Restore = coalesce(Restore, 0) <> 0; "
        "UPDATE BackupAudit SET Permanent = coalesce(Permanent, 0) <> 0");
    Write();
  }
  std::string Ask(std::string_view sql) override {
    TakeMarks();
    return m_twin->Ask(sql);
  }

 private:
  void TakeMarks() {
    if (ReadBytes(m_path).empty()) return;
    const auto database = MakeReaderWorkspace()->OpenDatabase({.name = m_path, .readOnly = true});
    std::string marked;
    for (const std::string& id : Rows(*database, "SELECT ID FROM Catalog WHERE Restore = True")) {
      marked += (marked.empty() ? "" : ", ") + id;
    }
    m_twin->Run("UPDATE Catalog SET Restore = ID IN (" + marked + ")");
  }

  void Write() {
    const std::string made = m_folder.File("made");
    std::filesystem::remove(made);
    bench::DesktopFile file(DesktopSample(m_sample), made);
    file.SetStyle(m_style);
    const auto workspace = MakeReaderWorkspace();
    const auto twin = workspace->OpenDatabase(m_twin->Request());
    for (const char* table : {"SetNames", "LongPaths", "BackupAudit", "Catalog"}) {
      file.Empty(table);
      const auto rows = twin->OpenRecordset(table, RecordsetType::kSnapshot);
      const bool numbered = std::string_view(table) == "BackupAudit";  // in such files its rows have an ID
      for (std::int64_t number = 1; !rows->Eof(); rows->MoveNext(), ++number) {
        std::vector<Value> row;
        if (numbered) row.emplace_back(number);
        for (std::size_t i = 0; i < rows->FieldCount(); ++i) row.push_back(OwnedOf(rows->FieldValue(i)));
        file.Add(table, row);
      }
    }
    file.Finish();
    // Readers notice a change by the file's time, whose resolution is some milliseconds.
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    WriteBytes(m_path, ReadBytes(made));
  }

  std::string m_sample;
  bench::DesktopFile::Style m_style;
  TemporaryFolder m_folder;
  std::string m_path = m_folder.File("catälog.mdb");
  std::unique_ptr<TestDatabase> m_twin = MakeSqliteFile();
};

}  // namespace

TemporaryFolder::TemporaryFolder(const std::u8string& name) {
  static std::atomic<int> count{0};
  const auto stamp = Clock::now().time_since_epoch().count();
  m_path = std::filesystem::temp_directory_path() / name;
  m_path += "-" + std::to_string(stamp) + "-" + std::to_string(++count);
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

std::filesystem::path PathOf(const std::string& name) {
  return std::u8string(name.begin(), name.end());
}

std::string ReadBytes(const std::string& name) {
  std::ifstream file(PathOf(name), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void WriteBytes(const std::string& name, std::string_view bytes) {
  std::ofstream(PathOf(name), std::ios::binary) << bytes;
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
  return ReadBytes(KX_TEST_DATA "/cases/catalog_schema.sql");
}

std::string CatalogRows() {
  return ReadBytes(KX_TEST_DATA "/cases/catalog_rows.sql");
}

std::string ManyRows(int first, int last) {
  return "WITH RECURSIVE n(i) AS (SELECT " + std::to_string(first) +
         " UNION ALL SELECT i + 1 FROM n WHERE i < " + std::to_string(last) +
         ") INSERT INTO Catalog (ID, Filename, SetNameID, Extension, Restore) SELECT i, "
         "'C:\\Data\\a folder\\file' || i, 1, '002', 0 FROM n;";
}

Strings Rows(Recordset& recordset) {
  Strings rows;
  for (; !recordset.Eof(); recordset.MoveNext()) {
    std::string row;
    for (std::size_t i = 0; i < recordset.FieldCount(); ++i) {
      const ValueView value = recordset.FieldValue(i);
      row += (i == 0 ? "" : "|") + (IsNull(value) ? "NULL" : ToText(value));
    }
    rows.push_back(std::move(row));
  }
  return rows;
}

Strings Rows(Database& database, std::string_view source, RecordsetType type) {
  return Rows(*database.OpenRecordset(source, type));
}

Strings Sorted(Strings rows) {
  std::ranges::sort(rows);
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
      "Plugin, IIf(Restore, 1, 0), OrigSize, Status, Attributes, SubFolder, EncryptMethod, ";
  const std::string runs = "SELECT SetNameID, DateStamp, Extension, IIf(Permanent, 1, 0), Status FROM ";
  for (const std::string& sql :
       {columns + "OrigName FROM [Catalog] ORDER BY ID", columns + "SetName FROM FullCatalog ORDER BY ID",
        std::string("SELECT ID, Name FROM SetNames ORDER BY ID"),
        std::string("SELECT PathID, LongPath FROM LongPaths ORDER BY PathID"),
        runs + "BackupAudit ORDER BY SetNameID, DateStamp"}) {
    const auto rows = Rows(catalog, sql);
    EXPECT_FALSE(rows.empty());
    EXPECT_EQ(rows, Rows(other, sql)) << sql;
  }
}

}  // namespace kxrestore::engine::testing
