// Test rows: every kind of entry and every odd value that a catalog may hold, each in the run where it
// belongs.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/catalog_maker/model.h"
#include "host/catalog_maker/sample_runs.h"

namespace kxrestore::sample {

struct SpecialRow {
  Run run;
  FileRow row;                          // without identifiers; the generator assigns them
  std::optional<LongPathRow> longPath;  // the row that its LongPathID refers to, if any
};

// By importance: a catalog too small for all of them gets the first ones.
std::vector<SpecialRow> SpecialRows();

// The row of a plain file, with every column that follows from its path.
FileRow PlainFile(std::string path);

}  // namespace kxrestore::sample
