// The generator without a database: the rows that it passes to a sink.
#include "host/catalog_maker/generator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace kxrestore::sample {
namespace {

struct Collected : CatalogSink {
  void AddSet(const SetRow& row) override { sets.push_back(row); }
  void AddRun(const RunRow& row) override { runs.push_back(row); }
  void AddLongPath(const LongPathRow& row) override { longPaths.push_back(row); }
  void AddFile(const FileRow& row) override { files.push_back(row); }

  std::vector<SetRow> sets;
  std::vector<RunRow> runs;
  std::vector<LongPathRow> longPaths;
  std::vector<FileRow> files;
};

Collected Collect(const SampleOptions& options) {
  Collected rows;
  Generate(options, rows);
  return rows;
}

// FNV-1a over everything that a row holds.
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
  // Known from another machine and compiler: screenshots and measurements of different machines can be
  // compared.
  EXPECT_EQ(Fingerprint(Collect({.rows = 3000, .seed = 7})), 13876963731586908730ULL);
  EXPECT_NE(Fingerprint(Collect({.rows = 3000, .seed = 8})), 13876963731586908730ULL);
}

TEST(Generator, HandsOutAsManyRowsAsAskedFor) {
  for (const std::uint64_t rows : {1, 10, 37, 100, 150, 5000}) {
    EXPECT_EQ(Collect({.rows = rows}).files.size(), rows);
    EXPECT_EQ(Collect({.rows = rows, .oneRun = true}).files.size(), rows);
    EXPECT_EQ(Collect({.rows = rows, .flat = true}).files.size(), rows);
  }
}

TEST(Generator, OneRunHoldsOnlyLivePlainFilesOfDifferentNames) {
  const Collected rows = Collect({.rows = 30000, .oneRun = true});
  ASSERT_EQ(rows.runs.size(), 1u);
  std::set<std::string> names, originals;
  std::map<std::string, int> folders;
  for (const FileRow& row : rows.files) {
    EXPECT_EQ(row.setId, 1);
    EXPECT_EQ(row.extension, rows.runs[0].extension);
    EXPECT_EQ(row.status, 2);
    EXPECT_TRUE(row.plugin.value_or("").empty());
    names.insert(row.filename);
    originals.insert(row.origName);
    EXPECT_LE(++folders[row.origName.substr(0, row.origName.rfind('\\'))], 100);
  }
  EXPECT_EQ(names.size(), 30000u);
  EXPECT_EQ(originals.size(), 30000u);
  EXPECT_GT(rows.longPaths.size(), 30u);
}

TEST(Generator, IdentifiersAreUniqueAndVersionsOfAFileGrowInTime) {
  const Collected rows = Collect({.rows = 20000});
  std::map<std::string, std::string> runTime;  // of set 1
  for (const RunRow& run : rows.runs) {
    if (run.setId == 1) runTime[run.extension] = run.dateStamp;
  }
  std::int64_t lastId = 0;
  std::map<std::string, std::string> lastRun;  // of a file
  std::size_t versions = 0, newest = 0;
  for (const FileRow& row : rows.files) {
    EXPECT_GT(row.id, lastId);
    lastId = row.id;
    if (row.setId != 1) continue;
    const std::string& run = runTime.at(row.extension);
    std::string& last = lastRun[row.origName];
    versions += !last.empty();
    newest += row.extension == "005";
    EXPECT_LE(last, run) << row.origName;
    last = run;
    EXPECT_LT(row.dateStamp.value_or(""), run) << row.origName;
  }
  EXPECT_GT(versions, 300u);
  EXPECT_GT(newest, 19000u) << "the newest run holds most rows";
  EXPECT_LT(newest, 20000u);
}

}  // namespace
}  // namespace kxrestore::sample
