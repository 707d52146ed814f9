// Generates the rows of a sample catalog: that of a backup client after a few weeks, from ten rows to
// millions. The same options give the same rows everywhere.
#pragma once

#include <cstdint>

#include "host/catalog_maker/model.h"

namespace kxrestore::sample {

struct SampleOptions {
  std::uint64_t rows = 20000;  // of the table Catalog, all runs together; at least 1
  std::uint64_t seed = 1;
  bool flat = false;    // the plain files of a run all in one folder
  bool oneRun = false;  // nothing but `rows` live plain files in run "001" of set 1
};

void Generate(const SampleOptions& options, CatalogSink& sink);

}  // namespace kxrestore::sample
