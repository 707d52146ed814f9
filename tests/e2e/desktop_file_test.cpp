// The registered component on files of the desktop engine, where that engine is not installed: the sample
// host prints the same rows as for the catalog with the same content, and the file holds their marks.
#include <algorithm>
#include <fstream>

#include "component/com/wide_text.h"
#include "tests/e2e/dialog_fixture.h"
#include "tests/e2e/program.h"
#include "tests/e2e/registry_keys.h"
#include "tests/engine/desktop_samples.h"

namespace kxrestore::e2e {
namespace {

using component::com::ToWide;
using engine::testing::Rows;
using engine::testing::SampleCopy;

constexpr char kSteps[] =
    "wait-form\n"
    "select-run 1\n"
    "tick C:\\Data\n"
    "click cmdAction(0)\n"
    "expect-enabled cmdRestore(0) YES\n"
    "click cmdRestore(0)\n"
    "wait-closed\n";

class DesktopFileTest : public testing::TestWithParam<const char*> {};

TEST_P(DesktopFileTest, IsMarkedInTheDialogAndRestored) {
  const Registered registered;
  const SampleCopy copy(GetParam()), twin("telling.db");
  const std::string script = copy.Beside("steps.txt");
  std::ofstream(ToWide(script).c_str()) << kSteps;
  const auto restore = [&](const SampleCopy& catalog) {
    Program host(L'"' + HostFolder() + L"restore_host.exe\" --catalog \"" + ToWide(catalog.Path()) +
                 L"\" --script \"" + ToWide(script) + L'"');
    EXPECT_EQ(0, host.Wait());
    return host.Output();
  };
  const std::string restored = restore(copy);
  EXPECT_EQ(restored, restore(twin));
  EXPECT_TRUE(restored.starts_with("CommenceRestore\nrestore: ")) << restored;
  EXPECT_TRUE(restored.ends_with("\nDefineRestoreSet = 1\n")) << restored;

  const auto workspace = engine::testing::MakeReaderWorkspace();
  const auto marked = [&](const SampleCopy& catalog) {
    return Rows(*workspace->OpenDatabase(catalog.Request()),
                "SELECT ID FROM Catalog WHERE Restore = True ORDER BY ID");
  };
  EXPECT_EQ(marked(copy), marked(twin));
  const auto lines = static_cast<std::size_t>(std::count(restored.begin(), restored.end(), '\n'));
  EXPECT_EQ(copy.Changed().size(), lines - 2) << "a byte a mark, and no other";
}

INSTANTIATE_TEST_SUITE_P(Formats, DesktopFileTest, testing::Values("telling-2003.mdb", "telling-2019.accdb"),
                         [](const auto& name) { return std::string(name.param).substr(8, 4); });

}  // namespace
}  // namespace kxrestore::e2e
