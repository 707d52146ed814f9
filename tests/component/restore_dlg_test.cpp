// The dialog as a C++ host drives it.
#include "component/restore_dlg.h"

#include "tests/dialog/dialog_fixture.h"

namespace kxrestore::component_test {
namespace {

using component::RestoreDlg;
using dialog_test::DialogTest;
using dialog_test::Ids;
using dialog_test::Row;
using dialog_test::Strings;

class RestoreDlgTest : public DialogTest, public component::FormProvider {
 protected:
  RestoreDlgTest() {
    MakeCatalog({Row(1, 1, "003", "C:\\a.doc"), Row(2, 1, "003", "C:\\b.doc")});
    form.DBName("");
    for (RestoreDlg* dialog : {&first, &second}) {
      dialog->CommenceRestore = [this, dialog] { events.push_back(dialog == &first ? "first" : "second"); };
    }
    first.DB(catalog->Path());
  }
  dialog::frmRestore& Form() override { return form; }

  // What the user does while a dialog is shown.
  void User(std::function<void()> actions) {
    desktop.user = [actions = std::move(actions)](controls::Form&) { actions(); };
  }
  void Commit() {
    ChooseRun();
    TickAll();
    Apply();
    Click(dialog_test::kRestoreNow);
  }

  RestoreDlg first{*this}, second{*this};
  Strings events;
};

TEST_F(RestoreDlgTest, ResultTellsACommitFromACancel) {
  form.StopRequested = true;  // left over from an earlier dialog
  User([this] { Commit(); });
  EXPECT_EQ(second.DefineRestoreSet(), 1) << "the catalog was named to the first";
  EXPECT_EQ(events, Strings{"second"});
  EXPECT_EQ(catalog->Marked(), (Ids{1, 2}));

  User([this] {
    Click(dialog_test::kRefresh);
    Click(dialog_test::kCancel);
  });
  desktop.answers = {platform::kAnswerYes};
  EXPECT_EQ(second.DefineRestoreSet(), 0);
  ExpectReports({"Clear Selection?: "});
  EXPECT_EQ(catalog->Marked(), Ids{});
  User([] {});  // closed at once
  EXPECT_EQ(second.DefineRestoreSet(), 0);
  EXPECT_EQ(events.size(), 1u);
  EXPECT_EQ(desktop.showCount, 3u);
}

TEST_F(RestoreDlgTest, CaptionsAreAppliedWhenGivenAndOnlyToTheNextDialog) {
  Strings seen;
  User([&] {
    seen = {ui().form.Caption(), ui().cmdRestore[0].Caption(), ui().lblList.Caption(),
            ui().lblRestorePath.Visible() ? "shown" : "hidden"};
  });
  first.DefineRestoreSet();
  const Strings designed = seen;
  first.frmCaption("Pick");
  first.btnCaption("&Go");
  first.lblCaption("Chosen");
  first.lblInVisible(true);
  first.DefineRestoreSet();
  EXPECT_EQ(seen, (Strings{"Pick", "&Go", "Chosen", "hidden"}));
  first.frmCaption("");
  first.btnCaption("");
  first.DefineRestoreSet();
  EXPECT_EQ(seen, (Strings{designed[0], designed[1], "Chosen", "hidden"}));
  second.DefineRestoreSet();
  EXPECT_EQ(seen, designed);
}

TEST_F(RestoreDlgTest, NoDialogStartsInAnEventAndTheHostsTroubleIsItsOwn) {
  std::vector<int> inner;
  first.CommenceRestore = [&] {
    inner.push_back(first.DefineRestoreSet());
    inner.push_back(second.DefineRestoreSet());
    throw std::runtime_error("the host's own trouble");
  };
  User([this] { Commit(); });
  EXPECT_EQ(first.DefineRestoreSet(), 1);
  EXPECT_EQ(inner, (std::vector<int>{0, 0}));
  EXPECT_EQ(desktop.showCount, 1u);
}

TEST_F(RestoreDlgTest, FailingStepsAreSkipped) {
  User([] { throw std::runtime_error("the desktop went away"); });
  EXPECT_EQ(first.DefineRestoreSet(), 0);
  User([this] { Commit(); });
  EXPECT_EQ(first.DefineRestoreSet(), 1) << "the next dialog is a new one";

  struct NoForm : component::FormProvider {
    dialog::frmRestore& Form() override { throw std::bad_alloc(); }
  } none;
  RestoreDlg lost(none);
  lost.DB("x");
  EXPECT_EQ(lost.DefineRestoreSet(), 0);
}

}  // namespace
}  // namespace kxrestore::component_test
