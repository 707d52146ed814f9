// A catalog on a server over ODBC against the same statements through the server's own client library, on one
// run. Both sides read a listing through a cursor. Bare sends the whole statement, ours leaves out the
// columns that the dialog does not read; one comparison without a limit has both read the same columns:
//   server: scan          the detail tree's statement, the texts of every row read
//   server: latest        the newest versions in one set; bare: their saved query is read, which ours makes
//   server: mark by name  10,000 files found by name and marked, committed at least every 100 ms; a statement
//   that
//                         fails takes nothing else back, so both sides use savepoints (see the line without
//                         them)
//   server: mark by id    the same rows marked by their number
//   server: apply         10,000 files are ticked, Apply is pressed; bare: marked by name, then listed
// Also the round trips per applied file, counted by a relay between the driver and the server.
#include <chrono>
#include <string>
#include <vector>

#include "bench/bare_postgres.h"
#include "bench/bare_sqlite.h"
#include "bench/harness.h"
#include "bench/loaded_dialog.h"
#include "bench/marker.h"
#include "bench/relay.h"
#include "bench/statements.h"
#include "catalog/connection.h"
#include "catalog/restore_query.h"

namespace kxrestore::bench {
namespace {

constexpr double kMaxRatio = 1.5;
// Two, and in all some hundred for connecting, the list and a commit every 100 ms.
constexpr double kMaxRoundTrips = 2.02;
constexpr std::int64_t kMarkedFiles = 10000;

std::string ServerWithPort(int port) {
  return TestServer().host + ";PORT=" + std::to_string(port);
}

catalog::ConnectionSettings Settings(const std::string& database) {
  const ServerAddress& server = TestServer();
  return {.DBType = catalog::kServerCatalog,
          .DBName = {},
          .connect = catalog::BuildConnectString(database, ServerWithPort(server.port), server.user,
                                                 server.password)};
}

struct Totals {
  std::int64_t rows = 0;
  std::uint64_t bytes = 0;
  bool operator==(const Totals&) const = default;
};

// Reads all texts of some columns, ours with their types and bare as the server sends them.
class Listing : public Comparison {
 public:
  Listing(std::int64_t rows, engine::ColumnNames texts)
      : m_database(ServerCatalog(rows)), m_rows(rows), m_texts(std::move(texts)) {}

 protected:
  void ReadOurs(engine::Recordset& rows) {
    std::vector<engine::Field> fields;
    for (const std::string_view name : m_texts) fields.push_back(rows.Fields(name));
    Totals totals;
    for (; !rows.Eof(); rows.MoveNext(), ++totals.rows) {
      for (const engine::Field& field : fields) totals.bytes += field.TextView().size();
    }
    Agree(totals);
  }

  void ReadBare(const std::string& sql, int firstColumn) {
    Totals totals;
    BarePostgres(m_database).Walk(sql, [&](const BareRows& rows) {
      totals.rows += rows.Count();
      for (std::int64_t row = 0; row < rows.Count(); ++row) {
        for (std::size_t i = 0; i < m_texts.size(); ++i) {
          totals.bytes += rows.Text(row, firstColumn + static_cast<int>(i)).size();
        }
      }
    });
    Agree(totals);
  }

  std::string m_database;
  std::int64_t m_rows;
  engine::ColumnNames m_texts;
  catalog::ConnectionSettings m_settings = Settings(m_database);
  std::unique_ptr<engine::Workspace> m_workspace = engine::MakeDefaultWorkspace();

 private:
  void Agree(const Totals& totals) {
    Expect(totals.rows > 100, "too few rows");
    Expect(m_totals.rows == 0 || totals == m_totals, "the two sides read different rows");
    m_totals = totals;
  }

  Totals m_totals;
};

class Scan : public Listing {
 public:
  // `onlyRead`: bare selects the columns that are read, and not all that the statement names.
  Scan(std::int64_t rows, bool onlyRead)
      : Listing(rows, {"Filename", "File", "Plugin", "RestoreFile"}), m_onlyRead(onlyRead) {}

  void Ours() override {
    m_workspace->BeginAction();
    {
      const auto database = catalog::OpenCatalog(*m_workspace, m_settings);
      ReadOurs(*database->OpenRecordset(kDetailStatement, engine::RecordsetType::kSnapshot, m_texts));
    }
    m_workspace->EndAction();
  }

  void Bare() override {
    const std::string others =
        "Catalog.ID, DateStamp, SetNameID, Extension, LongPathID, LongPath, StoreName, StoreMethod, ";
    ReadBare("SELECT " + (m_onlyRead ? "" : others) +
                 "Filename, File, Plugin, coalesce(LongPath, Filename) FROM Catalog LEFT JOIN LongPaths ON "
                 "PathID = LongPathID WHERE SetNameID = 1 AND Extension = '001' AND Status = 2",
             m_onlyRead ? 0 : 8);
  }

 private:
  bool m_onlyRead;
};

class Latest : public Listing {
 public:
  explicit Latest(std::int64_t rows) : Listing(rows, {"OrigName", "Filename", "File", "Plugin", "SetName"}) {}

  void Ours() override {
    m_workspace->BeginAction();
    {
      const auto database = catalog::OpenCatalog(*m_workspace, m_settings);
      ReadOurs(*catalog::BuildRestoreQuery(*database, kBenchSet, true, "", "", m_texts));
    }
    m_workspace->EndAction();
    m_made = true;
  }

  void Bare() override {
    if (!m_made) Ours();
    ReadBare(
        "SELECT DateStamp, ID, SetNameID, Extension, OrigSize, Restore, Status, Attributes, StoreMethod, "
        "StoreName, LongPathID, SubFolder, EncryptMethod, OrigName, Filename, File, Plugin, SetName FROM "
        "FullCatalogLatestBySet WHERE SetNameID = 1 AND Status = 2",
        13);
  }

 private:
  bool m_made = false;
};

// Shared by marking comparisons: the rows to mark, and a catalog without marks before each.
class Marking : public Comparison {
 public:
  // `alone`: a bare statement that fails takes only itself back, as ours does.
  explicit Marking(std::int64_t rows, bool alone = true)
      : m_database(ServerCatalog(rows)), m_rows(rows), m_alone(alone), m_bare(m_database) {
    const BareRows all = m_bare.Execute("SELECT ID, Filename FROM Catalog ORDER BY ID");
    for (std::int64_t row = 0; row < all.Count(); ++row) {
      m_ids.push_back(static_cast<std::int32_t>(all.Integer(row, 0)));
      m_names.emplace_back(all.Text(row, 1));
    }
  }

  void Prepare() override {
    // A rewritten row leaves its old version behind, which both sides would have to skip.
    m_bare.Execute("UPDATE Catalog SET Restore = FALSE WHERE Restore");
    m_bare.Execute("VACUUM ANALYZE Catalog");
  }

 protected:
  template <typename Step>
  void BareInGroups(std::size_t steps, Step step) {
    using Clock = std::chrono::steady_clock;
    BarePostgres server(m_database);
    server.Prepare(
        "find",
        "SELECT SetNameID, Extension, Filename, Restore, LongPath, ID FROM Catalog LEFT JOIN "
        "LongPaths ON PathID = LongPathID WHERE SetNameID = $1 AND Extension = $2 AND Filename = $3");
    server.Prepare("mark", "UPDATE Catalog SET Restore = $1 WHERE ID = $2");
    Clock::time_point due;
    bool inGroup = false;
    for (std::size_t i = 0; i < steps; ++i) {
      if (!inGroup) {
        server.Execute("BEGIN;SAVEPOINT alone");
        due = Clock::now() + std::chrono::milliseconds(100);
        inGroup = true;
      }
      step(server, i);
      if (Clock::now() < due) continue;
      server.Execute("COMMIT");
      inGroup = false;
    }
    if (inGroup) server.Execute("COMMIT");
  }

  BareRows Run(BarePostgres& server, const char* name, const std::vector<const char*>& values) const {
    return m_alone ? server.RunAlone(name, values) : server.Run(name, values);
  }

  void MarkById(BarePostgres& server, const std::string& id) const {
    Expect(Run(server, "mark", {"1", id.c_str()}).Changed() == 1, "no row " + id);
  }

  void MarkByName(BarePostgres& server, const std::string& name) const {
    const BareRows found = Run(server, "find", {"1", kBenchExtension, name.c_str()});
    Expect(found.Count() == 1, "no row for " + name);
    MarkById(server, std::string(found.Text(0, 5)));
  }

  void ExpectAllMarked() {
    const BareRows marked = m_bare.Execute("SELECT count(*) FROM Catalog WHERE Restore");
    Expect(marked.Integer(0, 0) == m_rows, "not all files are marked");
  }

  std::string m_database;
  std::int64_t m_rows;
  bool m_alone;
  BarePostgres m_bare;
  std::vector<std::int32_t> m_ids;
  std::vector<std::string> m_names;
  Marker m_marker{Settings(m_database)};
};

class MarkingByName : public Marking {
 public:
  using Marking::Marking;

  void Ours() override {
    m_marker.ByName(m_names);
    ExpectAllMarked();
  }

  void Bare() override {
    BareInGroups(m_names.size(),
                 [this](BarePostgres& server, std::size_t i) { MarkByName(server, m_names[i]); });
    ExpectAllMarked();
  }
};

class MarkingById : public Marking {
 public:
  using Marking::Marking;

  void Ours() override {
    m_marker.ById(m_ids);
    ExpectAllMarked();
  }

  void Bare() override {
    BareInGroups(m_ids.size(),
                 [this](BarePostgres& server, std::size_t i) { MarkById(server, std::to_string(m_ids[i])); });
    ExpectAllMarked();
  }
};

class Apply : public Marking {
 public:
  explicit Apply(std::int64_t rows) : Marking(rows) {
    Relay relay(TestServer().host, TestServer().port);
    const auto dialog = Ticked(relay.Port());
    const std::int64_t before = relay.RoundTrips();
    PressApply(*dialog);
    Figure("server: round trips of apply", rows,
           static_cast<double>(relay.RoundTrips() - before) / static_cast<double>(rows), "round trips a file",
           kMaxRoundTrips);
  }

  void Ours() override { PressApply(*m_dialog); }

  void Bare() override {
    BareInGroups(m_names.size(),
                 [this](BarePostgres& server, std::size_t i) { MarkByName(server, m_names[i]); });
    BarePostgres server(m_database);
    const BareRows marked = server.Execute(
        "SELECT coalesce(LongPath, Filename), OrigSize, Extension, SetNameID, Name, DateStamp, Filename, "
        "Plugin, File FROM Catalog LEFT JOIN LongPaths ON PathID = LongPathID LEFT JOIN SetNames ON "
        "SetNames.ID = SetNameID WHERE Restore");
    Expect(marked.Count() == m_rows, "not all files are marked");
  }

 private:
  std::unique_ptr<Dialog> Ticked(int port) const {
    const ServerAddress& server = TestServer();
    auto dialog = std::make_unique<Dialog>(ServerWithPort(port), m_database, server.user, server.password);
    dialog->ChooseRun();
    dialog->TickEverything();
    return dialog;
  }

  void PressApply(Dialog& dialog) {
    dialog.Press(dialog.Ui().cmdAction[0]);
    Expect(dialog.Ui().asRestoreList.Count() == static_cast<std::size_t>(m_rows), "not all files are listed");
  }

  std::unique_ptr<Dialog> m_dialog = Ticked(TestServer().port);
};

}  // namespace
}  // namespace kxrestore::bench

int main(int count, char** words) {
  using namespace kxrestore::bench;
  const auto compare = [](const char* name, std::int64_t rows, int repetitions, MakeComparison make) {
    Compare({.name = name, .rows = rows, .limit = kMaxRatio, .repetitions = repetitions}, std::move(make));
  };
  compare("server: scan", 100000, 15, Make<Scan>(false));
  compare("server: scan", 1000000, 9, Make<Scan>(false));
  Compare({.name = "server: scan, read columns only", .rows = 1000000, .limit = {}}, Make<Scan>(true));
  compare("server: latest of one set", 100000, 5, Make<Latest>());
  compare("server: mark by file name", kMarkedFiles, 5, Make<MarkingByName>());
  compare("server: mark by id", kMarkedFiles, 5, Make<MarkingById>());
  Compare({.name = "server: mark by file name, no savepoints",
           .rows = kMarkedFiles,
           .limit = {},
           .repetitions = 5},
          Make<MarkingByName>(false));
  compare("server: apply", kMarkedFiles, 5, Make<Apply>());
  return RunBenchmarks(count, words);
}
