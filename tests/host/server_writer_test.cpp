// A server catalog is filled with the very rows of a catalog file, all of them or none.
#include "host/catalog_maker/server_writer.h"

#include "base/error.h"
#include "host/catalog_maker/sample_catalog.h"
#include "tests/catalog/server_catalog.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::sample {
namespace {

TEST(ServerWriter, WritesTheRowsOfACatalogFile) {
  if (!catalog_test::ServerCatalog::HasServer()) GTEST_SKIP() << "no server";
  const SampleOptions options{.rows = 800};
  const engine::testing::TemporaryFolder folder;
  MakeCatalog(folder.File("catalog.db"), options);
  const auto fill = [&](CatalogSink& sink) { Generate(options, sink); };
  const catalog_test::ServerCatalog server(fill);
  EXPECT_THROW(FillServerCatalog(server.Connect(), fill), Error) << "it is filled already";

  const auto workspace = engine::MakeDefaultWorkspace();
  const auto file = workspace->OpenDatabase({.name = folder.File("catalog.db")});
  const auto catalog = workspace->OpenDatabase({.connect = server.Connect()});
  engine::testing::ExpectSameCatalog(*catalog, *file);
}

}  // namespace
}  // namespace kxrestore::sample
