// A copy of a desktop catalog has the rows of the sample's twin, in a file and on a server. A copy that fails
// leaves no file.
#include "host/catalog_copier/catalog_copy.h"

#include <filesystem>

#include "tests/catalog/server_catalog.h"
#include "tests/engine/desktop_samples.h"

namespace kxrestore::host {
namespace {

using engine::testing::DesktopSample;
using engine::testing::ExpectError;
using engine::testing::ExpectSameCatalog;

class CatalogCopy : public ::testing::Test {
 protected:
  std::vector<CopiedTable> Copy(const std::string& source, const std::string& target) {
    return CopyCatalog(*m_workspace, source, target,
                       [this](const char*, const std::string&, std::int64_t rows, std::int64_t of) {
                         EXPECT_LE(rows, of);
                         ++m_steps;
                       });
  }

  engine::testing::TemporaryFolder m_folder;
  std::unique_ptr<engine::Workspace> m_workspace = engine::MakeDefaultWorkspace();
  int m_steps = 0;
};

TEST_F(CatalogCopy, IntoAFile) {
  for (const auto& [name, twin] : engine::testing::kSoundSamples) {
    const std::string target = m_folder.File(std::string(name) + ".db");
    const auto copied = Copy(DesktopSample(name), target);
    ASSERT_EQ(copied.size(), 4u);
    EXPECT_EQ(copied[3].name, "Catalog");
    EXPECT_GT(copied[3].rows, 0);
    ExpectSameCatalog(*m_workspace->OpenDatabase({.name = target}),
                      *m_workspace->OpenDatabase({.name = DesktopSample(twin), .readOnly = true}));
  }
  EXPECT_GT(m_steps, 0);
}

TEST_F(CatalogCopy, OntoAServer) {
  if (!catalog_test::ServerCatalog::HasServer()) GTEST_SKIP() << "no server";
  const catalog_test::ServerCatalog server([](sample::CatalogSink&) {});
  Copy(DesktopSample("marked-2003.mdb"), server.Connect());
  ExpectSameCatalog(*m_workspace->OpenDatabase({.connect = server.Connect()}),
                    *m_workspace->OpenDatabase({.name = DesktopSample("marked.db"), .readOnly = true}));
}

TEST_F(CatalogCopy, LeavesNoFileWhenItFails) {
  const std::string target = m_folder.File("copy.db");
  ExpectError(engine::error_number::kDamaged, "page 91",
              [&] { Copy(DesktopSample("zeroed-page-2003.mdb"), target); });
  EXPECT_FALSE(std::filesystem::exists(target));
  ExpectError(engine::error_number::kTableNotFound, "",
              [&] { Copy(DesktopSample("sample-1997.mdb"), target); });
  EXPECT_FALSE(std::filesystem::exists(target));
  engine::testing::WriteBytes(target, "x");
  ExpectError(engine::error_number::kObjectExists, "already exists",
              [&] { Copy(DesktopSample("telling-2003.mdb"), target); });
  EXPECT_EQ(engine::testing::ReadBytes(target).size(), 1u);
}

}  // namespace
}  // namespace kxrestore::host
