// The whole dialog on files of the desktop engine, read without that engine. Trees, lists and marks equal
// those of a SQLite catalog with the same rows.
#include "tests/dialog/script.h"
#include "tests/engine/desktop_samples.h"

namespace kxrestore::dialog_test {
namespace {

using engine::testing::SampleCopy;

class Desk : public ScriptTest {
 public:
  explicit Desk(const std::string& path) {
    form.parameters.DBName = path;
    looks["marked"] = [this, path](FormControls&) {
      std::string marked = "marked";
      for (const std::string& id :
           engine::testing::Rows(*workspace->OpenDatabase({.name = path}),
                                 "SELECT ID FROM Catalog WHERE Restore = True ORDER BY ID")) {
        marked += " " + id;
      }
      return marked;
    };
    // Sorted, because the rows of a run have no particular order.
    looks["paths"] = [](FormControls& shown) {
      Strings paths;
      for (std::uint32_t index = 1; index <= shown.tvwDetails.Count(); ++index) {
        std::string& steps = paths.emplace_back(shown.tvwDetails.Item(index).Tag());
        for (controls::Node node = shown.tvwDetails.Item(index); node; node = node.Parent()) {
          steps.insert(0, std::string(node.Text()) + "/");
        }
      }
      std::sort(paths.begin(), paths.end());
      return Text(paths);
    };
  }

  std::string Work() {
    return Played(R"(open; show sets
choose 1 002; show paths
tick all; press Apply
tab 2; find *.doc
find re
find [a-f]*.x??
press Only Most Recent Version; find *.doc
find [a-f]*.x??
find re; tick hit; press Apply
tab 3; tick type .txt; press Apply
press Refresh; show selected
answer yes
press Cancel
)");
  }
};

class DesktopDialog : public testing::TestWithParam<const char*> {};

TEST_P(DesktopDialog, ShowsAndMarksWhatItsTwinDoes) {
  const SampleCopy copy(GetParam()), twin("telling.db");
  const std::string played = Desk(copy.Path()).Work();
  EXPECT_GT(played.size(), 10'000u);
  EXPECT_EQ(played, Desk(twin.Path()).Work());
  EXPECT_TRUE(copy.Changed().empty()) << "Cancel removes every mark";
}

INSTANTIATE_TEST_SUITE_P(Formats, DesktopDialog, testing::Values("telling-2003.mdb", "telling-2019.accdb"));

}  // namespace
}  // namespace kxrestore::dialog_test
