#include "host/catalog_maker/sample_archive.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "host/catalog_maker/sample_runs.h"
#include "host/catalog_maker/sqlite_file.h"

namespace kxrestore::sample {

namespace {

constexpr char kTable[] =
    "CREATE TABLE ArchiveHeader (ID INTEGER PRIMARY KEY, Volume TEXT, YYYY TEXT, MM TEXT, SetName TEXT, "
    "DateStamp TEXT, Files INTEGER, Bytes INTEGER)";

constexpr std::array kMonths = {3, 6, 9, 12};
constexpr std::array kSets = {0, 1, 2};  // of the sample sets
constexpr int kHeadersOfMonth = static_cast<int>(kSets.size());
constexpr int kHeadersOfYear = kHeadersOfMonth * static_cast<int>(kMonths.size());
constexpr int kFirstYear = 2024;

static_assert(kArchivedHeaders == 2 * kHeadersOfYear && kNewHeaders <= kHeadersOfYear);

std::string Numbered(const char* format, int number) {
  char text[16];
  std::snprintf(text, sizeof text, format, number);
  return text;
}

// Writes headers `first` to `last` - 1 of the whole sequence, one disc a year.
void WriteHeaders(const std::filesystem::path& path, int first, int last) {
  const std::u8string characters = path.u8string();
  const std::string name(characters.begin(), characters.end());
  std::error_code problem;
  if (path.has_parent_path()) std::filesystem::create_directories(path.parent_path(), problem);
  if (problem) throw Error(problem.value(), name + ": " + problem.message(), "make_catalog");
  const Database database = MakeFile(name, kTable);
  Statement add(database.get(),
                "INSERT INTO ArchiveHeader (Volume, YYYY, MM, SetName, DateStamp, Files, Bytes) "
                "VALUES (?,?,?,?,?,?,?)");
  for (int header = first; header < last; ++header) {
    const int yearIndex = header / kHeadersOfYear;
    const std::string volume = Numbered("VOL%03d", yearIndex + 1);
    const std::string year = std::to_string(kFirstYear + yearIndex);
    const std::string month = Numbered("%02d", kMonths[header % kHeadersOfYear / kHeadersOfMonth]);
    const std::string set(kSampleSets[kSets[header % kHeadersOfMonth]].name);
    const std::string date = year + "-" + month + "-28 22:00:00";
    const std::int64_t files = 900 + 37 * header;
    add.Run({volume, year, month, set, DateText{date}, files, files * 51'200});
  }
  Execute(database.get(), "COMMIT");
}

std::filesystem::path PathOf(const std::string& text) {
  return std::u8string(text.begin(), text.end());
}

}  // namespace

void MakeArchive(const std::string& path) {
  WriteHeaders(PathOf(path), 0, kArchivedHeaders);
}

// The disc also lists the last headers of earlier discs.
void MakeDisc(const std::string& folder) {
  const int first = kArchivedHeaders - (kDiscHeaders - kNewHeaders);
  WriteHeaders(PathOf(folder) / "backup!mdb", first, first + kDiscHeaders);
}

}  // namespace kxrestore::sample
