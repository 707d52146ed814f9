// The dialog as a C++ host drives it.
#include "component/restore_dlg.h"

#include <fstream>

#include "tests/catalog/recording_database.h"
#include "tests/dialog/dialog_fixture.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::component_test {
namespace {

using component::RestoreDlg;
using dialog::Parameters;
using dialog_test::DialogTest;
using dialog_test::Ids;
using dialog_test::Row;
using dialog_test::Strings;

class RestoreDlgTest : public DialogTest, public component::FormProvider {
 protected:
  RestoreDlgTest() {
    MakeCatalog({Row(1, 1, "003", "C:\\a.doc"), Row(2, 1, "003", "C:\\b.doc")});
    form.parameters.DBName = "";
    for (RestoreDlg* dialog : {&first, &second}) {
      dialog->CommenceRestore = [this, dialog] { events.push_back(dialog == &first ? "first" : "second"); };
    }
    first.Set(&Parameters::DBName, catalog->Path());
  }
  dialog::frmRestore& Form() override {
    if (provided == nullptr) throw std::bad_alloc();
    return *provided;
  }

  // Sets what the user does while a dialog is shown.
  void User(std::function<void()> actions) {
    desktop.user = [actions = std::move(actions)](controls::Form&) { actions(); };
  }
  void Commit() {
    ChooseRun();
    TickAll();
    Apply();
    Click(dialog_test::kRestoreNow);
  }

  dialog::frmRestore* provided = &form;
  RestoreDlg first{*this}, second{*this};
  Strings events;
};

TEST_F(RestoreDlgTest, TheResultIsOneAfterACommit) {
  // An earlier dialog has left this state in the form.
  form.setLabelInVisible(true);
  form.parameters.StopRequested = true;
  User([this] {
    EXPECT_TRUE(ui().lblRestorePath.Visible());
    Commit();
  });
  EXPECT_EQ(second.DefineRestoreSet(), 1) << "the first object has set the catalog";
  EXPECT_EQ(events, Strings{"second"});
  EXPECT_EQ(catalog->Marked(), (Ids{1, 2}));

  User([this] {
    Click(dialog_test::kRefresh);
    Click(dialog_test::kCancel);
  });
  desktop.answers = {platform::Answer::kYes};
  EXPECT_EQ(second.DefineRestoreSet(), 0);
  ExpectReports({"Clear Selection?: "});
  EXPECT_EQ(catalog->Marked(), Ids{});
  EXPECT_EQ(events.size(), 1u);

  // The last event decides the result. Earlier dialogs have no influence.
  const auto raised = [&](std::function<void()> actions) {
    User(std::move(actions));
    return second.DefineRestoreSet();
  };
  EXPECT_EQ(raised([this] { form.CommenceRestore(), form.CancelRestore(); }), 0);
  EXPECT_EQ(raised([this] { form.CancelRestore(), form.CommenceRestore(); }), 1);
  EXPECT_EQ(raised([] {}), 0) << "closed at once";
  EXPECT_EQ(desktop.showCount, 5u);
}

TEST_F(RestoreDlgTest, EverySettingReachesTheForm) {
  const auto script = std::make_shared<catalog_test::Script>();
  script->failures = {{"connect", 3151}};
  engine::Workspace server({.odbc = std::make_unique<catalog_test::RecordingBackend>(script)});
  dialog::frmRestore shared(platform.Get(), server);
  provided = &shared;
  const engine::testing::TemporaryFolder folder;
  RestoreDlg dialog(*this);
  dialog.Set(&Parameters::DBType, 1);
  dialog.Set(&Parameters::DBName, "not used");
  dialog.Set(&Parameters::DBDatabase, "Cat");
  dialog.Set(&Parameters::DBServer, "SRV");
  dialog.Set(&Parameters::DBUser, "sa");
  dialog.Set(&Parameters::DBPass, "pw");
  dialog.Set(&Parameters::RestorePath, "D:\\Back");
  dialog.Set(&Parameters::LogFilename, folder.File("log"));
  dialog.Set(&Parameters::curAction, "verify");
  dialog.Set(&Parameters::DebugFlag, true);
  std::string path;
  User([&] { path = shared.Controls().lblRestorePath.Caption(); });
  EXPECT_EQ(dialog.DefineRestoreSet(), 0);
  EXPECT_EQ(script->calls,
            Strings{"connect |ODBC;DRIVER={sql server};DATABASE=Cat;SERVER=SRV;UID=sa;PWD=pw"});
  EXPECT_EQ(path, "Restore To: D:\\Back");
  std::string line;
  std::getline(std::ifstream(folder.File("log"), std::ios::binary), line);
  EXPECT_EQ(line, "11/16/2026 2:25:30 AM R 10.1.6 Loading verify Dialog ... \r");
  ExpectReports({"LoadBackupSetTree: (3151) "});
}

TEST_F(RestoreDlgTest, CaptionsApplyToTheNextDialogOnly) {
  Strings seen;
  User([&] {
    seen = {ui().form.Caption(), ui().cmdRestore[0].Caption(), ui().lblList.Caption(),
            ui().lblRestorePath.Visible() ? "shown" : "hidden"};
    EXPECT_EQ(ui().lblRestorePath.Caption(), "Restore To: D:\\Back") << "the path applies to every dialog";
  });
  first.Set(&Parameters::RestorePath, "D:\\Back");
  first.DefineRestoreSet();
  const Strings designed{"Select Files to Restore", "Restore &Now", "Files Selected to Restore: ", "shown"};
  EXPECT_EQ(seen, designed);
  first.frmCaption = "Pick";
  first.btnCaption = "&Go";
  first.lblCaption = "Chosen";
  first.lblInVisible = true;
  first.DefineRestoreSet();
  EXPECT_EQ(seen, (Strings{"Pick", "&Go", "Chosen", "hidden"}));
  first.frmCaption = "";
  first.btnCaption = "";
  first.DefineRestoreSet();
  EXPECT_EQ(seen, (Strings{designed[0], designed[1], "Chosen", "hidden"}));
  second.DefineRestoreSet();
  EXPECT_EQ(seen, designed);
}

TEST_F(RestoreDlgTest, AnEventHandlerCanNeitherStartADialogNorFailIt) {
  std::vector<int> inner;
  first.CommenceRestore = [&] {
    inner.push_back(first.DefineRestoreSet());
    inner.push_back(second.DefineRestoreSet());
    throw std::runtime_error("an error of the host");
  };
  User([this] { Commit(); });
  EXPECT_EQ(first.DefineRestoreSet(), 1);
  EXPECT_EQ(inner, (std::vector<int>{0, 0}));
  EXPECT_EQ(desktop.showCount, 1u);
}

TEST_F(RestoreDlgTest, FailingStepsAreSkipped) {
  User([] { throw std::runtime_error("the desktop is gone"); });
  EXPECT_EQ(first.DefineRestoreSet(), 0);
  User([this] { Commit(); });
  EXPECT_EQ(first.DefineRestoreSet(), 1) << "the next dialog is a new one";

  provided = nullptr;
  second.Set(&Parameters::DBName, "x");
  EXPECT_EQ(second.DefineRestoreSet(), 0);
}

}  // namespace
}  // namespace kxrestore::component_test
