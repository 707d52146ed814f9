#include "host/catalog_maker/sample_catalog.h"

#include "host/catalog_maker/sqlite_writer.h"

namespace kxrestore::sample {

void MakeCatalog(const std::string& path, const SampleOptions& options) {
  WriteCatalogFile(path, [&](CatalogSink& sink) { Generate(options, sink); });
}

}  // namespace kxrestore::sample
