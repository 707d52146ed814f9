// The sample catalog: the rows of its generator, in a file and on a server, and the sample archive.
#include "host/catalog_maker/sample_catalog.h"

#include <gtest/gtest.h>

#include <fstream>

#include "base/error.h"
#include "host/catalog_maker/generator.h"
#include "host/catalog_maker/sample_archive.h"
#include "host/catalog_maker/server_writer.h"
#include "tests/catalog/server_catalog.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::sample {
namespace {

using engine::testing::MakeSqliteFile;

// The rows that the generator passes to a sink.
struct Collected : CatalogSink {
  explicit Collected(const SampleOptions& options) { Generate(options, *this); }
  void AddSet(const SetRow&) override {}
  void AddRun(const RunRow&) override {}
  void AddLongPath(const LongPathRow& row) override { longPaths.push_back(row); }
  void AddFile(const FileRow& row) override { files.push_back(row); }

  std::vector<LongPathRow> longPaths;
  std::vector<FileRow> files;
};

// FNV-1a over all values of all rows.
std::uint64_t Fingerprint(const Collected& rows) {
  std::uint64_t hash = 0xCBF29CE484222325ULL;
  const auto add = [&hash](const std::string& text) {
    for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3ULL;
    hash = (hash ^ 0xFF) * 0x100000001B3ULL;
  };
  for (const LongPathRow& row : rows.longPaths) add(std::to_string(row.id) + row.path.value_or("?"));
  for (const FileRow& row : rows.files) {
    for (const std::string& text :
         {std::to_string(row.id) + ' ' + std::to_string(row.setId) + ' ' + row.extension,
          row.dateStamp.value_or("?"), row.filename, row.file.value_or("?"), row.storeName,
          row.plugin.value_or("?"), row.origName,
          std::to_string(row.origSize.value_or(-1)) + ' ' + std::to_string(row.status.value_or(-1)) + ' ' +
              std::to_string(row.longPathId.value_or(-1)) + ' ' + std::to_string(row.attributes)}) {
      add(text);
    }
  }
  return hash;
}

TEST(Generator, SameSeedSameRowsOnEveryMachine) {
  // The values are from another machine and compiler. Screenshots and measurements of different machines can
  // be compared only if the rows are the same.
  const std::pair<SampleOptions, std::uint64_t> cases[] = {
      {{.rows = 3000, .seed = 7}, 13876963731586908730ULL},
      {{.rows = 3000, .seed = 8}, 8283861806182041946ULL},
      {{.rows = 3000, .oneRun = true}, 2292255957687433431ULL},
      {{.rows = 3000, .flat = true}, 7057175108156740759ULL},
      {{.rows = 37}, 9858820230663208031ULL}};
  for (const auto& [options, fingerprint] : cases) EXPECT_EQ(Fingerprint(Collected(options)), fingerprint);
}

class SampleCatalog : public testing::Test {
 protected:
  void Make(const SampleOptions& options) {
    MakeCatalog(Path(), options);
    m_database = MakeSqliteFile(Path());
  }
  std::string Path(const std::string& name = "catalog.db") const { return m_folder.File(name); }
  std::string Ask(const std::string& sql) { return m_database->Ask(sql); }

  engine::testing::TemporaryFolder m_folder;
  std::unique_ptr<engine::testing::TestDatabase> m_database;
};

TEST_F(SampleCatalog, FullCatalogListsEveryVersionOnce) {
  Make({.rows = 500});
  EXPECT_EQ(Ask("PRAGMA integrity_check"), "ok");
  EXPECT_EQ(Ask("SELECT count(*) || ' ' || count(SetName) FROM FullCatalog"), "500 499")
      << "also versions of unknown sets";
  // The listing of one set appends a clause to the text of the saved query.
  const std::string query = Ask("SELECT sql FROM sqlite_master WHERE name = 'FullCatalog'");
  const std::string body = query.substr(query.find(" AS SELECT ") + 4);
  EXPECT_EQ(Ask("SELECT count(*) FROM (" + body + " WHERE Catalog.SetNameID = 7)"),
            Ask("SELECT count(*) FROM Catalog WHERE SetNameID = 7"));
}

TEST_F(SampleCatalog, ReplacesTheFileOrNamesItInTheError) {
  Make({.rows = 300});
  m_database.reset();
  std::ofstream(Path("catalog.db-journal")) << "left behind";
  Make({.rows = 30000, .oneRun = true});
  EXPECT_EQ(Ask("SELECT count(*) || ' ' || count(DISTINCT Filename) FROM Catalog"), "30000 30000");
  try {
    MakeCatalog(Path("missing/catalog.db"), {.rows = 10});
    ADD_FAILURE() << "no error";
  } catch (const Error& error) {
    EXPECT_NE(error.Description().find("catalog.db"), std::string::npos) << error.Description();
  }
}

TEST_F(SampleCatalog, TheDiscHasHeadersThatTheArchiveLacks) {
  MakeArchive(Path("new/folder/archive.mdb"));
  MakeDisc(Path("disc"));
  m_database = MakeSqliteFile(Path("new/folder/archive.mdb"));
  m_database->Run("ATTACH '" + Path("disc/backup!mdb") + "' AS d");
  const std::string columns = "SELECT Volume, YYYY, MM, SetName, DateStamp, Files, Bytes FROM ";
  const auto count = [&](const std::string& rows) { return std::stoi(Ask("SELECT count(*) FROM " + rows)); };
  EXPECT_EQ(count("main.ArchiveHeader"), kArchivedHeaders);
  EXPECT_EQ(count("d.ArchiveHeader"), kDiscHeaders);
  EXPECT_EQ(count("(" + columns + "main.ArchiveHeader UNION " + columns + "d.ArchiveHeader)"),
            kArchivedHeaders + kNewHeaders);
  EXPECT_EQ(Ask("SELECT max(Volume) FROM d.ArchiveHeader"), kDiscVolume);
}

TEST_F(SampleCatalog, AServerGetsTheRowsOfTheFile) {
  if (!catalog_test::ServerCatalog::HasServer()) GTEST_SKIP() << "no server";
  const SampleOptions options{.rows = 800};
  Make(options);
  const auto fill = [&](CatalogSink& sink) { Generate(options, sink); };
  const catalog_test::ServerCatalog server(fill);
  EXPECT_THROW(FillServerCatalog(server.Connect(), fill), Error) << "the server already has rows";

  const auto workspace = engine::MakeDefaultWorkspace();
  const auto file = workspace->OpenDatabase({.name = Path()});
  const auto catalog = workspace->OpenDatabase({.connect = server.Connect()});
  engine::testing::ExpectSameCatalog(*catalog, *file);
}

}  // namespace
}  // namespace kxrestore::sample
