// A form's controls and what its panels share, without the form: for tests of single panels.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "dialog/form_context.h"
#include "platform/headless/headless_platform.h"
#include "tests/catalog/catalog_file.h"

namespace kxrestore::dialog {

class PanelTest : public testing::Test {
 protected:
  // Names the catalog that the panels open from now on.
  void UseCatalog(const std::string& path) {
    context.connection.dbType = catalog::kFileCatalog;
    context.connection.dbName = path;
  }

  platform::HeadlessPlatform machine;
  platform::Platform platform = machine.Get();
  std::unique_ptr<engine::Workspace> workspace = engine::MakeDefaultWorkspace();
  Parameters parameters;
  FormControls ui;
  FormContext context{parameters, ui, platform, *workspace};
};

}  // namespace kxrestore::dialog
