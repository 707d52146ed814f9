// The whole dialog on files of the desktop engine, without that engine: the same trees, lists and marks as on
// the SQLite catalogs with the same rows.
#include "tests/dialog/dialog_fixture.h"
#include "tests/engine/desktop_samples.h"

namespace kxrestore::dialog_test {
namespace {

using engine::testing::SampleCopy;

// One user at one dialog; what he sees is written down.
class Desk : public DialogTest {
 public:
  explicit Desk(const std::string& path) : m_path(path) {
    form.parameters.DBName = path;
    form.Load();
  }
  void TestBody() override {}

  Strings Work() {
    Note("sets", Outline(ui().tvwSets.FirstRoot()));
    ChooseRun("1 002");
    Note("files", Paths(ui().tvwDetails));
    TickAll();
    Apply();
    NoteMarks("apply");
    ShowTab(2);
    for (const bool latest : {false, true}) {
      if (latest) ui().chk1.UserClick();
      for (const char* mask : {"*.doc", "re", "[a-f]*.x??"}) {
        Find(mask);
        Note(std::string("found by ") + mask, Names(ui().asSearch));
      }
    }
    ui().cmdSearch[kSelectFound].UserClick();
    ui().cmdSearch[kApplyFound].UserClick();
    NoteMarks("search");
    ShowTab(3);
    Note("types", Names(ui().asFiles));
    Tick(ui().asFiles, ".txt");
    ui().cmdAuto[kApplyTypes].UserClick();
    NoteMarks("types");
    Click(kRefresh);
    Note("selected", {Selected()});
    desktop.answers = {platform::Answer::kYes};
    Click(kCancel);
    NoteMarked("cancel");
    return std::move(m_seen);
  }

  // The nodes with all that is above them, sorted: the rows of a run come in no order of their own.
  static Strings Paths(const controls::TreeView& tree) {
    Strings paths;
    for (std::uint32_t index = 1; index <= tree.Count(); ++index) {
      std::string& path = paths.emplace_back();
      for (controls::Node node = tree.Item(index); node; node = node.Parent()) {
        path.insert(0, std::string(node.Text()) + "/");
      }
      path.append(tree.Item(index).Tag());
    }
    std::sort(paths.begin(), paths.end());
    return paths;
  }
  void NoteMarks(const std::string& after) {
    Note("listed after " + after, Listed());
    NoteMarked(after);
  }
  void NoteMarked(const std::string& after) {
    Note("marked after " + after,
         engine::testing::Rows(*workspace->OpenDatabase({.name = m_path}),
                               "SELECT ID FROM Catalog WHERE Restore = True ORDER BY ID"));
  }
  void Note(const std::string& what, const Strings& lines) {
    m_seen.push_back(what + ": " + std::to_string(lines.size()));
    m_seen.insert(m_seen.end(), lines.begin(), lines.end());
    for (const auto& message : desktop.messages) m_seen.push_back(message.title + ": " + message.text);
    desktop.messages.clear();
  }

  std::string m_path;
  Strings m_seen;
};

class DesktopDialog : public testing::TestWithParam<const char*> {};

TEST_P(DesktopDialog, ShowsAndMarksWhatItsTwinDoes) {
  const SampleCopy copy(GetParam()), twin("telling.db");
  Strings seen[2];
  for (const bool onTwin : {false, true}) {
    Desk desk(onTwin ? twin.Path() : copy.Path());
    seen[onTwin ? 1 : 0] = desk.Work();
  }
  EXPECT_GT(seen[0].size(), 300u);
  EXPECT_EQ(seen[0], seen[1]);
  EXPECT_TRUE(copy.Changed().empty()) << "Cancel takes every mark back";
}

INSTANTIATE_TEST_SUITE_P(Formats, DesktopDialog, testing::Values("telling-2003.mdb", "telling-2019.accdb"));

}  // namespace
}  // namespace kxrestore::dialog_test
