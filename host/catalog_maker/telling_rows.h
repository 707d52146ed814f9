// The rows that are there to tell right from wrong: every kind of entry and every odd value that a catalog
// may hold, each in the run where it belongs.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/catalog_maker/model.h"
#include "host/catalog_maker/sample_runs.h"

namespace kxrestore::sample {

struct TellingRow {
  Run run;
  FileRow row;                          // without the identifiers, which the generator gives
  std::optional<LongPathRow> longPath;  // what its LongPathID leads to, when it leads anywhere
};

// In order of importance: a catalog too small for all of them takes the first ones.
std::vector<TellingRow> TellingRows();

// A row of a plain file with everything that follows from its path.
FileRow PlainFile(std::string path);

}  // namespace kxrestore::sample
