#include "host/catalog_maker/generator.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "host/catalog_maker/dates.h"
#include "host/catalog_maker/folder_walk.h"
#include "host/catalog_maker/random.h"
#include "host/catalog_maker/sample_runs.h"
#include "host/catalog_maker/special_rows.h"

namespace kxrestore::sample {

namespace {

constexpr std::uint32_t kOneInLongPath = 400;
constexpr std::uint32_t kOneInNotLive = 500;
constexpr std::uint32_t kOneInChanged = 6;  // of the files from one run to the next
constexpr std::uint32_t kOneInNumberGap = 700;

constexpr std::string_view kLongFolder =
    "Supplementary documents handed in after the closing date of the hearing";

std::string Hexadecimal(std::uint64_t value) {
  std::string text;
  do {
    text.insert(text.begin(), "0123456789ABCDEF"[value % 16]);
    value /= 16;
  } while (value != 0);
  return text;
}

class Generator {
 public:
  Generator(const SampleOptions& options, CatalogSink& sink) : m_options(options), m_sink(sink) {}

  void OneRun() {
    m_sink.AddSet({1, std::string(kSampleSets[0].name)});
    const SampleRun& run = RunOf(Run::kDailyFirst);
    AddRun(run);
    PlainRows(run, m_options.rows, m_options.rows, true);
  }

  void WholeCatalog() {
    for (const SampleSet& set : kSampleSets) m_sink.AddSet({set.id, std::string(set.name)});

    std::vector<SpecialRow> special = SpecialRows();
    // A quarter of the smallest catalogs is reserved for plain rows.
    const std::uint64_t room = std::max<std::uint64_t>(1, m_options.rows - m_options.rows / 4);
    if (special.size() > room) special.resize(room);
    const std::uint64_t plain = m_options.rows - special.size();
    std::uint64_t newest = plain;
    for (const SampleRun& run : kSampleRuns) newest -= plain * run.perMille / 1000;

    // Identifiers grow with time, as those of a real catalog do.
    std::vector<const SampleRun*> runs;
    for (const SampleRun& run : kSampleRuns) runs.push_back(&run);
    std::sort(runs.begin(), runs.end(),
              [](const SampleRun* a, const SampleRun* b) { return a->dateStamp < b->dateStamp; });
    m_nextId = 1001;
    for (const SampleRun* run : runs) {
      AddRun(*run);
      for (SpecialRow& row : special) {
        if (row.run == run->run) AddSpecial(row);
      }
      const bool isNewest = run->run == Run::kDailyNewest;
      PlainRows(*run, isNewest ? newest : plain * run->perMille / 1000, newest, false);
    }
  }

 private:
  void AddRun(const SampleRun& run) {
    m_sink.AddRun(
        {run.setId, std::string(run.dateStamp), std::string(run.extension), run.permanent, run.status});
  }

  void AddSpecial(SpecialRow& special) {
    if (special.longPath) {
      special.longPath->id = m_nextLongPathId++;
      m_sink.AddLongPath(*special.longPath);
      special.row.longPathId = special.longPath->id;
    }
    AddFile(special.row);
  }

  void AddFile(FileRow& row) {
    row.id = m_nextId++;
    const std::string number = Hexadecimal(static_cast<std::uint64_t>(row.id));
    row.storeName.assign(number.size() < 8 ? 8 - number.size() : 0, '0');
    row.storeName += number;
    row.storeName += ".kxs";
    m_sink.AddFile(row);
  }

  // The first `count` files of the run's walk. `walkLength` is the same for every run over the same files.
  void PlainRows(const SampleRun& run, std::uint64_t count, std::uint64_t walkLength, bool exact) {
    if (count == 0) return;
    const std::uint64_t walkSeed = m_options.seed * 1000003 + run.walk;
    FolderWalk walk(walkSeed, {walkLength - walkLength * 3 / 10, m_options.flat});
    Random random(walkSeed * 31 + static_cast<std::uint64_t>(run.run));
    const std::int64_t runTime = Seconds(std::stoi(std::string(run.dateStamp.substr(0, 4))),
                                         std::stoi(std::string(run.dateStamp.substr(5, 2))),
                                         std::stoi(std::string(run.dateStamp.substr(8, 2))));
    FileRow& row = m_plainRow;
    row.setId = run.setId;
    row.extension = run.extension;
    for (std::uint64_t i = 0; i < count; ++i, walk.Next()) {
      if (!exact && random.OneIn(kOneInNumberGap)) m_nextId += 1 + random.Below(9);
      FillPlain(walk, random, runTime, exact, row);
      AddFile(row);
    }
  }

  void FillPlain(const FolderWalk& walk, Random& random, std::int64_t runTime, bool exact, FileRow& row) {
    const std::string& folder = walk.Folder();
    row.file = walk.Name();
    row.filename = folder;
    row.filename += walk.Name();
    row.origName = row.filename;
    row.subFolder.assign(folder, 3, std::string::npos);
    row.origSize = walk.Size();
    std::int64_t modified = walk.Modified();
    if (random.OneIn(kOneInChanged)) {
      modified = runTime - 1 - random.Below(kDay * 20);
      row.origSize = walk.Size() + random.Below(4096);
    }
    row.dateStamp = DateText(modified);
    row.attributes = walk.Attributes();
    row.storeMethod = walk.Size() > 65536 ? 1 : 0;
    row.encryptMethod = 0;
    row.status = !exact && random.OneIn(kOneInNotLive) ? 3 : 2;
    row.plugin.reset();
    if (random.OneIn(8)) row.plugin.emplace();
    row.longPathId.reset();
    if (random.OneIn(kOneInLongPath)) LengthenPath(folder, walk.Name(), row);
  }

  // The path is too long for the file name column, which then holds a short form of it.
  void LengthenPath(const std::string& folder, const std::string& name, FileRow& row) {
    LongPathRow longPath;
    longPath.id = m_nextLongPathId++;
    longPath.path = folder;
    for (int i = 0; i < 4; ++i) {
      *longPath.path += kLongFolder;
      *longPath.path += '\\';
    }
    *longPath.path += name;
    row.origName = *longPath.path;
    row.filename.assign(folder, 0, 3);
    row.filename += "SUPPLE~1\\";
    row.filename += Hexadecimal(static_cast<std::uint64_t>(longPath.id));
    row.filename += "~1.DAT";
    row.longPathId = longPath.id;
    m_sink.AddLongPath(longPath);
  }

  const SampleOptions& m_options;
  CatalogSink& m_sink;
  FileRow m_plainRow;  // reused, to keep the capacity of its texts
  std::int64_t m_nextId = 1;
  std::int64_t m_nextLongPathId = 1;
};

}  // namespace

void Generate(const SampleOptions& options, CatalogSink& sink) {
  Generator generator(options, sink);
  if (options.oneRun) {
    generator.OneRun();
  } else {
    generator.WholeCatalog();
  }
}

}  // namespace kxrestore::sample
