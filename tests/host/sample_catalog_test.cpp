// The sample catalog as a file, and the archive beside it. Its rows are the generator's.
#include "host/catalog_maker/sample_catalog.h"

#include <fstream>

#include "host/catalog_maker/sample_archive.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::sample {
namespace {

using engine::testing::MakeSqliteFile;

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

TEST_F(SampleCatalog, SchemaIsThatOfACatalog) {
  Make({.rows = 500});
  EXPECT_EQ(Ask("PRAGMA integrity_check"), "ok");
  EXPECT_EQ(Ask("SELECT group_concat(name) FROM pragma_table_info('Catalog')"),
            "ID,DateStamp,SetNameID,Extension,Filename,File,LongPathID,StoreName,StoreMethod,Plugin,Restore,"
            "OrigSize,Status,Attributes,SubFolder,EncryptMethod,OrigName");
  EXPECT_EQ(Ask("SELECT group_concat(name) FROM pragma_index_info('CatalogByRun')"),
            "SetNameID,Extension,Filename");
  EXPECT_EQ(Ask("SELECT count(*) || ' ' || count(SetName) FROM FullCatalog"), "500 499")
      << "one row a version, whether its set is known or not";
  // The saved query goes on with a clause about its table, as the listing of one set needs it.
  const std::string query = Ask("SELECT sql FROM sqlite_master WHERE name = 'FullCatalog'");
  const std::string body = query.substr(query.find(" AS SELECT ") + 4);
  EXPECT_EQ(Ask("SELECT count(*) FROM (" + body + " WHERE Catalog.SetNameID = 7)"),
            Ask("SELECT count(*) FROM Catalog WHERE SetNameID = 7"));
}

TEST_F(SampleCatalog, ReplacesWhatWasThereOrNamesTheFile) {
  Make({.rows = 300});
  m_database.reset();
  std::ofstream(Path("catalog.db-journal")) << "left behind";
  Make({.rows = 20, .oneRun = true});
  EXPECT_EQ(Ask("SELECT count(*) FROM Catalog"), "20");
  try {
    MakeCatalog(Path("missing/catalog.db"), {.rows = 10});
    ADD_FAILURE() << "no error";
  } catch (const Error& error) {
    EXPECT_NE(error.Description().find("catalog.db"), std::string::npos) << error.Description();
  }
}

TEST_F(SampleCatalog, TheDiscHoldsWhatTheArchiveLacks) {
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

}  // namespace
}  // namespace kxrestore::sample
