// The sample catalog as a file: its schema, and that the rows which tests and demonstrations rely on are
// really in it.
#include "host/catalog_maker/sample_catalog.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "base/error.h"
#include "host/catalog_maker/sample_archive.h"

namespace kxrestore::sample {
namespace {

namespace fs = std::filesystem;

// A folder of this process for the time of a test.
class SampleCatalog : public testing::Test {
 protected:
  SampleCatalog() {
    m_folder = fs::temp_directory_path() /
               ("kx_sample_" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
    fs::remove_all(m_folder);
    fs::create_directories(m_folder);
  }
  ~SampleCatalog() override {
    m_database.reset();
    std::error_code ignored;
    fs::remove_all(m_folder, ignored);
  }

  std::string Path(const std::string& name = "catalog.db") const { return (m_folder / name).string(); }

  void Make(const SampleOptions& options) {
    MakeCatalog(Path(), options);
    sqlite3* raw = nullptr;
    ASSERT_EQ(sqlite3_open_v2(Path().c_str(), &raw, SQLITE_OPEN_READWRITE, nullptr), SQLITE_OK);
    m_database.reset(raw);
  }

  // The first value of the first row.
  std::string Ask(const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(m_database.get(), sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
      return sqlite3_errmsg(m_database.get());
    }
    std::string result = "(no row)";
    if (sqlite3_step(statement) == SQLITE_ROW) {
      const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
      result = text != nullptr ? text : "(null)";
    }
    sqlite3_finalize(statement);
    return result;
  }
  int Count(const std::string& condition) {
    return std::atoi(
        Ask("SELECT count(*) FROM Catalog LEFT JOIN LongPaths ON PathID = LongPathID WHERE " + condition)
            .c_str());
  }

  struct Close {
    void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
  };
  fs::path m_folder;
  std::unique_ptr<sqlite3, Close> m_database;
};

TEST_F(SampleCatalog, SchemaIsThatOfACatalog) {
  Make({.rows = 500});
  EXPECT_EQ(Ask("PRAGMA integrity_check"), "ok");
  EXPECT_EQ(Ask("SELECT group_concat(name) FROM pragma_table_info('Catalog')"),
            "ID,DateStamp,SetNameID,Extension,Filename,File,LongPathID,StoreName,StoreMethod,Plugin,Restore,"
            "OrigSize,"
            "Status,Attributes,SubFolder,EncryptMethod,OrigName");
  EXPECT_EQ(Ask("SELECT group_concat(name) FROM pragma_table_info('LongPaths')"), "PathID,LongPath");
  EXPECT_EQ(Ask("SELECT group_concat(name) FROM pragma_table_info('SetNames')"), "ID,Name");
  EXPECT_EQ(Ask("SELECT group_concat(name) FROM pragma_index_info('CatalogByRun')"),
            "SetNameID,Extension,Filename");
  // One row a version, whether its set is known or not.
  EXPECT_EQ(Ask("SELECT count(*) || ' ' || count(SetName) FROM FullCatalog"), "500 499");
  // The saved query goes on with a clause about its table, as the listing of one set needs it.
  const std::string query = Ask("SELECT sql FROM sqlite_master WHERE name = 'FullCatalog'");
  const std::string body = query.substr(query.find(" AS SELECT ") + 4);
  EXPECT_EQ(Ask("SELECT count(*) FROM (" + body + " WHERE Catalog.SetNameID = 7)"),
            Ask("SELECT count(*) FROM Catalog WHERE SetNameID = 7"));
}

TEST_F(SampleCatalog, SetsAndRunsOfEveryKind) {
  Make({.rows = 500});
  EXPECT_EQ(Ask("SELECT Name FROM SetNames WHERE instr(Name, '''') > 0"), "O'Brien's Laptop");
  EXPECT_NE(Ask("SELECT ID FROM SetNames WHERE instr(Name, 'ü') > 0"), "(no row)");
  EXPECT_NE(Ask("SELECT ID FROM SetNames WHERE unicode(Name) > 0x3000"), "(no row)");
  EXPECT_NE(Ask("SELECT ID FROM BackupAudit WHERE Status = 6 AND Extension = 'x01'"), "(no row)");
  EXPECT_NE(Ask("SELECT ID FROM BackupAudit WHERE Status <> 6"), "(no row)");
  EXPECT_NE(Ask("SELECT ID FROM BackupAudit WHERE Status IS NULL"), "(no row)");
  EXPECT_NE(Ask("SELECT ID FROM BackupAudit WHERE Permanent IS NULL AND DateStamp LIKE '%00:00:00'"),
            "(no row)");
  EXPECT_NE(Ask("SELECT ID FROM BackupAudit WHERE Permanent = 1 AND Status = 6"), "(no row)");
  EXPECT_EQ(Ask("SELECT count(*) - count(DISTINCT DateStamp) FROM BackupAudit"), "0");
  // A completed run with rows of which none is live, and a set of x01 alone.
  EXPECT_EQ(
      Ask("SELECT count(*) || ' ' || sum(c.Status = 2) FROM BackupAudit a JOIN Catalog c ON "
          "c.SetNameID = a.SetNameID AND c.Extension = a.Extension WHERE a.Status = 6 AND a.SetNameID = 2 "
          "AND a.Extension = '002'"),
      "2 0");
  EXPECT_EQ(Ask("SELECT group_concat(Extension) FROM BackupAudit WHERE SetNameID = 9"), "x01");
}

TEST_F(SampleCatalog, EntriesOfEveryPlugin) {
  Make({.rows = 500});
  for (const std::string plugin : {"System State", "Active Directory", "SQL Server"}) {
    EXPECT_GT(Count("Plugin = '" + plugin + "'"), 1) << plugin;
  }
  for (const std::string branch : {"MailBoxes", "Public Folders", "Address Lists"}) {
    EXPECT_GT(Count("Plugin = 'Exchange Server' AND instr(Filename, '\\" + branch + "\\') > 0"), 0) << branch;
    EXPECT_GT(Count("Plugin LIKE 'Exchange Server_%' OR instr(lower(Filename), lower('" + branch + "')) > 0"),
              0);
  }
  EXPECT_GT(Count("substr(Plugin, 1, 15) = 'Exchange Server' AND length(Plugin) > 15"), 1);
  EXPECT_GT(Count("Plugin = 'Exchange Server' AND Filename NOT LIKE '%MailBoxes%' AND Filename NOT LIKE "
                  "'%Public Folders%' AND Filename NOT LIKE '%Address Lists%'"),
            0);
  EXPECT_GT(Count("Plugin IS NULL"), 0);
  EXPECT_GT(Count("Plugin = ''"), 0);
  EXPECT_EQ(Ask("SELECT count(*) FROM Catalog WHERE Plugin = 'Exchange Server' AND File = 'Jane Doe' AND "
                "SetNameID = 7 AND Extension = '002'"),
            "3");
}

TEST_F(SampleCatalog, OddValues) {
  Make({.rows = 500});
  for (const std::string column : {"OrigSize", "File", "LongPathID", "DateStamp", "Status"}) {
    EXPECT_GT(Count(column + " IS NULL"), 0) << column;
  }
  EXPECT_GT(Count("length(LongPath) > 260 AND length(Filename) < 60 AND OrigName = LongPath"), 3);
  EXPECT_GT(Count("LongPathID IS NOT NULL AND PathID IS NULL"), 0);
  EXPECT_GT(Count("PathID IS NOT NULL AND LongPath IS NULL"), 0);
  EXPECT_GT(Count("OrigSize > 4294967296"), 0);
  EXPECT_GT(Count("OrigSize = 0"), 0);
  EXPECT_GT(Count("instr(Filename, '''') > 0"), 4);
  EXPECT_GT(Count("instr(Filename, '\xF0\x9F\x8E\x89') > 0"), 0);
  EXPECT_GT(Count("Filename LIKE '\\\\%'"), 1);
  EXPECT_GT(Count("Status = 2 AND SetNameID NOT IN (SELECT ID FROM SetNames)"), 0);
  EXPECT_EQ(Count("Restore <> 0 OR Restore IS NULL"), 0);
  // Several rows of one run under one name, and versions of one name that only their number tells apart.
  EXPECT_EQ(
      Ask("SELECT max(n) FROM (SELECT count(*) n FROM Catalog GROUP BY SetNameID, Extension, Filename)"),
      "3");
  EXPECT_GT(
      std::atoi(Ask("SELECT count(*) FROM (SELECT 1 FROM Catalog WHERE Status = 2 AND SetNameID = 1 GROUP BY "
                    "OrigName, DateStamp HAVING count(*) > 1 AND count(DISTINCT Extension) > 1)")
                    .c_str()),
      3);
}

TEST_F(SampleCatalog, ReplacesWhatWasThere) {
  Make({.rows = 300});
  m_database.reset();
  std::ofstream(Path() + "-journal") << "left behind";
  Make({.rows = 20, .oneRun = true});
  EXPECT_EQ(Ask("SELECT count(*) FROM Catalog"), "20");
  EXPECT_FALSE(fs::exists(Path() + "-journal"));
}

TEST_F(SampleCatalog, TheDiscHoldsWhatTheArchiveLacks) {
  MakeArchive(Path("new/folder/archive.mdb"));
  MakeDisc(Path("disc"));
  Make({.rows = 1});
  Ask("ATTACH '" + Path("new/folder/archive.mdb") + "' AS a");
  Ask("ATTACH '" + Path("disc/backup!mdb") + "' AS d");
  const std::string columns = "SELECT Volume, YYYY, MM, SetName, DateStamp, Files, Bytes FROM ";
  const auto count = [&](const std::string& rows) {
    return std::atoi(Ask("SELECT count(*) FROM " + rows).c_str());
  };
  EXPECT_EQ(count("a.ArchiveHeader"), kArchivedHeaders);
  EXPECT_EQ(count("d.ArchiveHeader"), kDiscHeaders);
  EXPECT_EQ(count("(" + columns + "a.ArchiveHeader UNION " + columns + "d.ArchiveHeader)"),
            kArchivedHeaders + kNewHeaders);
  EXPECT_EQ(Ask("SELECT max(Volume) FROM d.ArchiveHeader"), kDiscVolume);
}

TEST_F(SampleCatalog, FailsWithTheNameOfTheFile) {
  try {
    MakeCatalog(Path("missing/catalog.db"), {.rows = 10});
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_NE(error.Number(), 0);
    EXPECT_NE(error.Description().find("catalog.db"), std::string::npos) << error.Description();
  }
}

}  // namespace
}  // namespace kxrestore::sample
