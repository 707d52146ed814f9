// What the form does and in which order: one journal for a load, for each way of choosing files and for each
// way of leaving.
#include <fstream>
#include <iterator>
#include <sstream>

#include "engine/sqlite/sqlite_backend.h"
#include "tests/dialog/dialog_fixture.h"
#include "tests/dialog/journal.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::dialog_test {
namespace {

// Constructed before the form that writes into it.
struct JournalHolder {
  Journal journal;
  EngineHooks hooks = journal.Hooks();
};

// How the statements begin, and what they are called here.
constexpr std::pair<std::string_view, std::string_view> kStatements[] = {
    {"SELECT SetNames.Name, BackupAudit.DateStamp, BackupAudit.SetNameID, BackupAudit.Extension, "
     "BackupAudit.Permanent, BackupAudit.Status FROM SetNames INNER JOIN BackupAudit ON SetNames.ID = "
     "BackupAudit.SetNameID Where (((BackupAudit.Status) = 6)) ORDER BY SetNames.Name, BackupAudit.DateStamp "
     "DESC; ",
     "of the sets"},
    {"SELECT Catalog.ID, Catalog.DateStamp, Catalog.SetNameID, Catalog.Extension, Catalog.Filename, "
     "Catalog.File, Catalog.LongPathID, LongPaths.LongPath, Catalog.StoreName, Catalog.StoreMethod, "
     "Catalog.Plugin, IIf(IsNull([LongPath]),[filename],[longpath]) AS RestoreFile FROM LongPaths RIGHT JOIN "
     "[Catalog] ON LongPaths.PathID = Catalog.LongPathID WHERE (((Catalog.SetNameID)=",
     "of files where "},
    {"SELECT Catalog.SetNameID, Catalog.Extension, Catalog.Filename, Catalog.Restore, LongPaths.LongPath "
     "FROM "
     "LongPaths RIGHT JOIN [Catalog] ON LongPaths.PathID = Catalog.LongPathID WHERE (((Catalog.SetNameID)=",
     "of a name where "},
    {"SELECT Catalog.SetNameID, Catalog.OrigSize, Catalog.DateStamp, Catalog.Extension, Catalog.Filename, "
     "Catalog.File, Catalog.Restore, Catalog.StoreMethod, Catalog.Plugin, Catalog.StoreName, "
     "IIf(IsNull([LongPath]),[filename],[longpath]) AS RestoreFile, SetNames.Name FROM SetNames RIGHT JOIN "
     "(LongPaths RIGHT JOIN [Catalog] ON LongPaths.PathID = Catalog.LongPathID) ON SetNames.ID = "
     "Catalog.SetNameID WHERE (((Catalog.Restore)=True));",
     "of the marked"},
    {"UPDATE [Catalog] SET [Catalog].Restore = False WHERE (((Catalog.Restore)=True));", "clear all"},
    // Steps that belong together wherever they are taken.
    {"open catalog\nsnapshot of the marked\nasRestoreList frozen\nasRestoreList cleared\n", "LIST\n"},
    {"close rows\nclose catalog\nasRestoreList thawed\n", "LISTED\n"},
    {"tbsOptions value\ntbsOptions frozen\npicTabs frozen\n", "TAB\n"},
    {"picTabs thawed\ntbsOptions thawed\ncommit\n", ""},
    {"lblMask to front\ncboMask to front\nchk(1) to front\n", "SEARCH to front\n"},
    {"lblRestorePath to front\npicCounts to front\n", "LOWER to front\n"},
    {"flush\nbox question \"Clear Selection?\" \"You have selected files to restore, Cancel will clear your "
     "selections, "
     "Cancel?\"\n",
     "QUESTION\n"},
};

class OrderTest : public JournalHolder, public DialogTest {
 protected:
  OrderTest() : DialogTest(MakeHookedWorkspace(hooks, engine::sqlite::MakeSqliteBackend())) {
    MakeCatalog(
        {Row(1, 1, "003", "C:\\d\\a.doc"), Row(2, 1, "003", "C:\\d\\b.docx"), Row(3, 2, "001", "C:\\c.txt")});
    desktop.onMessage = [this](const auto& box) {
      std::string text = box.text;
      if (const auto path = text.find(catalog->Path()); path != std::string::npos) {
        text.replace(path, catalog->Path().size(), "the catalog");
      }
      constexpr const char* kStyles[] = {"plain", "warning", "question"};
      journal.Note("box " + std::string(kStyles[static_cast<int>(box.style)]) + " \"" + box.title + "\" \"" +
                   text + "\"");
    };
    form.CommenceRestore = [this] { journal.Note("CommenceRestore"); };
    form.CancelRestore = [this] { journal.Note("CancelRestore"); };
  }
  void TearDown() override {}

  // Starts to write down what the shown form does.
  void Watch() {
    journal.Watch(ui());
    desktop.onDoEvents = [this] {
      if (!desktop.engineWorks) journal.Note("events");
    };
    journal.Take();
  }
  std::string WrittenDown() {
    std::string text = Text(journal.Take());
    std::erase(text, '\r');
    // A blank at the end of a line shows as " $".
    for (auto place = text.find(" \n"); place != std::string::npos; place = text.find(" \n")) {
      text.insert(place + 1, 1, '$');
    }
    for (const auto& [statement, name] : kStatements) {
      for (auto place = text.find(statement); place != std::string::npos; place = text.find(statement)) {
        text.replace(place, statement.size(), name);
      }
    }
    std::istringstream happened(text);
    Strings steps;
    for (std::string step; std::getline(happened, step);) steps.push_back(step);
    return "\n" + Filled(steps);
  }
};

TEST_F(OrderTest, Load) {
  const engine::testing::TemporaryFolder folder;
  form.parameters.LogFilename = folder.File("log");
  form.parameters.RestorePath = "D:\\Back";
  PutSetting(platform::kHkeyLocalMachine, "ClientDB", "C:\\Client\\");
  platform.drives.files = {"C:\\Client\\kxicon.ico"};
  platform.drives.drives = {{"E:\\", 5, "DISC"}};
  platform.registry.fault = [&](std::string_view operation) {
    if (operation == "OpenKey" && journal.Empty()) {
      std::ifstream log(folder.File("log"));
      journal.Note("log " + std::string(std::istreambuf_iterator<char>(log), {}));
      journal.Watch(form.Controls());
    }
    journal.Note(std::string(operation));
    return 0;
  };
  EXPECT_EQ(ui().form.IconPath(), "C:\\Client\\kxicon.ico");
  EXPECT_EQ(WrittenDown(), R"--(
log 11/16/2026 2:25:30 AM R 10.1.6 Loading restore Dialog ... $ | OpenKey
picTopButtons at 0 450 2830 1400 | picTop at 0 0 8810 3396 | tvwSets at 0 470 1300 2926
SplitV at 1300 470 60 2926 | picTabs at 1360 360 7360 2976 | SEARCH to front | frLookin(1) to front
picTopButtons at 8840 110 2830 1455 | picTopButtons to front | splitH at 0 3396 8810 60
picBottom at 0 3576 11640 4914 | LOWER to front | picBottom at 0 3456 11640 5034 | LOWER to front
picBottom refreshed | tvwSets at 60 360 3200 2926 | tvwSets refreshed | picTabs at 60 360 7360 2976
SplitV at 3260 470 60 2976 | picTop at 0 0 8610 3396 | tvwSets at 60 470 3200 2926
SplitV at 3260 470 60 2926 | picTabs at 3320 360 5200 2976 | SEARCH to front | frLookin(1) to front
picTopButtons at 8640 110 2830 1455 | picTopButtons to front | picTopButtons to front
picBottom at 0 3512 11640 4944 | LOWER to front | splitH at 0 3396 8610 60 | picBottom refreshed
picTop refreshed | picTopButtons to front | OpenKey | OpenKey | OpenKey | OpenKey | OpenKey
OpenKey | QueryValue | ReadValue | frmRestore arrow or icon | open catalog | snapshot of the sets$
tvwSets + Online Backups | tvwSets + Set 1 | tvwSets + 3/1/2026 8:00:00 AM (P)
tvwSets + 2/1/2026 2:25:30 PM | tvwSets + 1/1/2026 | tvwSets + Set 2
tvwSets + 2/15/2026 10:30:00 AM | tvwSets Online Backups expanded | tvwSets Online Backups selected
close rows | close catalog | tvwSets + Archive Sets | tvwSets + Append new Archive CD ...
DriveCD items | lblRestorePath "Restore To: D:\Back" | lblRestorePath tip "Restore To: D:\Back"
commit
)--");
}

TEST_F(OrderTest, SwitchingTabsAndMinimizing) {
  Watch();
  for (const int tab : {2, 3, 2, 3, 1}) ShowTab(tab);
  ui().form.UserResize(160, 30, controls::WindowState::kMinimized);
  EXPECT_EQ(WrittenDown(), R"--(
TAB | panel(0) hidden | panel(1) shown | panel(1) to front | SEARCH to front | cboMask focused | TAB
panel(1) hidden | panel(2) shown | panel(2) to front | asFiles cleared | open catalog
snapshot SELECT Mid([OrigName],InStrRev([OrigName],".")) AS FileType, Count(*) AS Files FROM [Catalog] WHERE (((Catalog.Status)=2) AND ((Catalog.OrigName) Like "*.*")) GROUP BY Mid([OrigName],InStrRev([OrigName],"."));
events | events | events | close rows | close catalog | asFiles + Documents | asFiles + .doc
asFiles + .docx | asFiles + .txt | asFiles ticks | asFiles ticks | asFiles ticks | asFiles ticks
open catalog
snapshot SELECT * from FullCatalog WHERE ((FullCatalog.OrigName Like "*.*") AND (FullCatalog.Status = 2) );
events | events | events | close rows | close catalog | asFiles ticks | asFiles ticks
asFiles ticks | asFiles ticks | commit | TAB | panel(1) shown | panel(1) to front | SEARCH to front
panel(2) hidden | cboMask focused | TAB | panel(1) hidden | panel(2) shown | panel(2) to front | TAB
panel(0) shown | panel(0) to front | tvwDetails refreshed | panel(2) hidden | picBottom refreshed
picTop refreshed
)--");
  controls::Control* const shown[] = {&ui().lblMask, &ui().cboMask, &ui().chk1, &ui().tvwDetails};
  for (controls::Control* const control : shown) control->SetVisible(false);
  for (const int tab : {2, 1}) ShowTab(tab);
  for (const controls::Control* const control : shown) EXPECT_TRUE(control->Visible()) << control->Name();
}

TEST_F(OrderTest, ChoosingARunAndApplying) {
  Watch();
  ChooseRun();
  EXPECT_EQ(WrittenDown(), R"--(
tvwSets 3/1/2026 8:00:00 AM (P) bold | lblCurrSet "Current Set: " | lblSetName "Set 1 |  up to $
3/1/2026 8:00:00 AM (P)" | optLookIn(0) enabled | optLookIn(2) enabled
lblTreeCount "Loading Please Wait ..." | tvwDetails frozen | tvwDetails cleared | open catalog
snapshot of files where 1) AND ((Catalog.Extension)='003') AND ((Catalog.Status)=2)); | events
tvwDetails + C:\ | tvwDetails + d | tvwDetails + a.doc | lblTreeCount "Loading Please Wait ... (1)"
events | tvwDetails + b.docx | lblTreeCount "Loading Please Wait ... (2)" | close rows
close catalog | tvwDetails thawed | lblTreeCount "2 file(s)." | commit
)--");
  Tick("d");
  EXPECT_EQ(WrittenDown(), R"--(
tvwDetails d checked | tvwDetails C:\ checked | tvwDetails a.doc checked | tvwDetails b.docx checked
commit
)--");
  Apply();
  EXPECT_EQ(WrittenDown(), R"--(
events | events | events | lblTreeCount "Scanning 1" | open catalog
dynaset of a name where 1) AND ((Catalog.Extension)='003') AND ((Catalog.Filename)='C:\d\a.doc')); $
row written | events | lblTreeCount "Scanning 2" | open catalog
dynaset of a name where 1) AND ((Catalog.Extension)='003') AND ((Catalog.Filename)='C:\d\b.docx')); $
row written | flush | tvwDetails a.doc checked | tvwDetails b.docx checked | flush | LIST | events
asRestoreList + C:\d\a.doc | events | asRestoreList + C:\d\b.docx
lblCounts(0) "2 file(s) selected" | cmdRestore(0) enabled | lblCounts(1) "Bytes: 203" | LISTED
lblTreeCount hidden | commit
)--");
  ChooseRun();
  EXPECT_TRUE(ui().lblTreeCount.Visible());
  EXPECT_EQ(WrittenDown().find("bold"), std::string::npos) << "chosen again it stays as it is";
  ChooseNode("Set 2");
  ui().optLookIn[2].SetValue(true);
  ChooseNode("Online Backups");  // leaves the other panel's choice alone, as a set does
  EXPECT_EQ(WrittenDown(), R"--(
tvwSets 3/1/2026 8:00:00 AM (P) bold | tvwSets Set 2 bold | optLookIn(1) not chosen
optLookIn(0) chosen | lblSetName "Set 2" | commit | optLookIn(3) not chosen | optLookIn(2) chosen
commit | tvwSets Set 2 bold | tvwSets Online Backups bold | lblSetName "(All)"
optLookIn(0) not chosen | optLookIn(1) chosen | optLookIn(0) disabled | commit
)--");
}

TEST_F(OrderTest, AutoSelect) {
  ShowTab(3);
  Tick(ui().asFiles, ".doc");
  Watch();
  ui().cmdAuto[kApplyTypes].UserClick();
  EXPECT_EQ(WrittenDown(), R"--(
open catalog | frmRestore hourglass
snapshot SELECT * from FullCatalog WHERE ((FullCatalog.OrigName Like "**.doc*") AND (FullCatalog.Status = 2) );
frmRestore arrow or icon | open catalog
execute UPDATE [Catalog] SET [Catalog].Restore = True WHERE (((Catalog.ID)=1)); | events
open catalog | execute UPDATE [Catalog] SET [Catalog].Restore = True WHERE (((Catalog.ID)=2));
events | close rows | close catalog | flush | asFiles ticks | flush | LIST | events
asRestoreList + C:\d\a.doc | events | asRestoreList + C:\d\b.docx
lblCounts(0) "2 file(s) selected" | cmdRestore(0) enabled | lblCounts(1) "Bytes: 203" | LISTED
commit
)--");
}

TEST_F(OrderTest, Search) {
  ShowTab(2);
  Watch();
  Find("doc");
  EXPECT_EQ(WrittenDown(), R"--(
cboMask items | open catalog | frmRestore hourglass
snapshot SELECT * from FullCatalog WHERE ((FullCatalog.OrigName Like "*doc*") AND (FullCatalog.Status = 2) );
frmRestore arrow or icon | asSearch cleared | events | asSearch + C:\d\a.doc | events
asSearch + C:\d\b.docx | close rows | close catalog | lblCounts(0) "0 file(s) selected"
lblCounts(1) "Bytes: 0" | lblSearchCount "2 File(s)" | commit
)--");
  Find("");
  EXPECT_EQ(WrittenDown(), R"--(
flush | box plain "" "No Search String Defined." | cboMask focused | commit
)--");
  ui().asSearch.UserTick(2, true);
  journal.Take();
  ui().cmdSearch[kApplyFound].UserClick();
  EXPECT_EQ(WrittenDown(), R"--(
events | lblSearchCount "Scanning 1" | events | lblSearchCount "Scanning 2" | open catalog
dynaset of a name where 1) AND ((Catalog.Extension)='003') AND ((Catalog.Filename)='C:\d\b.docx')); $
row written | lblSearchCount "2 File(s)" | flush | asSearch ticks | flush | LIST | events
asRestoreList + C:\d\b.docx | lblCounts(0) "1 file(s) selected" | cmdRestore(0) enabled
lblCounts(1) "Bytes: 102" | LISTED | commit
)--");
}

TEST_F(OrderTest, TheRestoreList) {
  Watch();
  catalog->Execute("UPDATE Catalog SET Restore = 1, Status = 3 WHERE ID < 3");
  Click(kRefresh);
  EXPECT_EQ(WrittenDown(), R"--(
flush | LIST | events | asRestoreList + C:\d\a.doc | events | asRestoreList + C:\d\b.docx
lblCounts(0) "2 file(s) selected" | cmdRestore(0) enabled | lblCounts(1) "Bytes: 203" | LISTED
commit
)--");
  ui().asRestoreList.UserTick(1, false);
  journal.Take();
  Click(kUpdate);
  EXPECT_EQ(WrittenDown(), R"--(
events | open catalog
dynaset of a name where 1) AND ((Catalog.Extension)='003') AND ((Catalog.Filename)='C:\d\a.doc')); $
row written | events | flush | LIST | events | asRestoreList + C:\d\b.docx
lblCounts(0) "1 file(s) selected" | lblCounts(1) "Bytes: 102" | LISTED | commit
)--");
  catalog->Execute("UPDATE Catalog SET Restore = 1");  // of every set, and two that are not listed
  desktop.answers = {platform::Answer::kNo, platform::Answer::kYes, platform::Answer::kNo};
  Click(kClearList);
  EXPECT_EQ(catalog->Marked().size(), 3u);
  EXPECT_EQ(WrittenDown(), R"--(
flush | box question "Clear Selection? " "Clear All Selected Files? " | commit
)--");
  Click(kClearList);
  EXPECT_EQ(WrittenDown(), R"--(
flush | box question "Clear Selection? " "Clear All Selected Files? " | asRestoreList cleared
open catalog | execute clear all | flush | lblCounts(0) "0 file(s) selected"
cmdRestore(0) disabled | lblCounts(1) "Bytes: 0" | commit
)--");
  EXPECT_EQ(catalog->Marked(), Ids{});
  Click(kClearList);
  EXPECT_EQ(WrittenDown(), R"--(
flush | box question "Clear Selection? " "Clear All Selected Files? " | commit
)--") << "asked with an empty list, too";
}

TEST_F(OrderTest, Leaving) {
  const struct {
    const char* name;
    bool marked;
    platform::Answer answer;
    std::function<void()> leave;
  } cases[] = {
      {"Restore Now", true, platform::Answer::kOk, [&] { Click(kRestoreNow); }},
      {"Cancel, no", true, platform::Answer::kNo, [&] { Click(kCancel); }},
      {"Cancel, yes", true, platform::Answer::kYes, [&] { Click(kCancel); }},
      {"Esc, yes", true, platform::Answer::kYes, [&] { Escape(); }},
      {"Cancel without a selection", false, platform::Answer::kOk, [&] { Click(kCancel); }},
      {"close box, no", true, platform::Answer::kNo, [&] { ui().form.UserClose(); }},
      {"close box, yes", true, platform::Answer::kYes, [&] { ui().form.UserClose(); }},
      {"close box without a selection", false, platform::Answer::kOk, [&] { ui().form.UserClose(); }},
      {"Cancel, yes, and the marks cannot be cleared", true, platform::Answer::kYes, [&] {
         catalog->Execute(
             "CREATE TRIGGER Refuse BEFORE UPDATE ON Catalog BEGIN SELECT raise(ABORT, 'no'); END");
         Click(kCancel);
         catalog->Execute("DROP TRIGGER Refuse; UPDATE Catalog SET Restore = 0");
       }}};
  std::string all;
  for (const auto& [name, marked, answer, leave] : cases) {
    Watch();
    catalog->Execute(marked ? "UPDATE Catalog SET Restore = 1 WHERE ID = 1"
                            : "UPDATE Catalog SET Restore = 0");
    Click(kRefresh);
    journal.Take();
    desktop.answers = {answer};
    leave();
    all.append("\n").append(name).append(":").append(WrittenDown());
    EXPECT_EQ(catalog->Marked().size(), marked && answer != platform::Answer::kYes ? 1u : 0u) << name;
  }
  EXPECT_EQ(all, R"--(
Restore Now:
commit | CommenceRestore | frmRestore closed | commit

Cancel, no:
QUESTION | commit

Cancel, yes:
QUESTION | open catalog | execute clear all | flush | commit | CancelRestore | frmRestore closed
commit

Esc, yes:
QUESTION | open catalog | execute clear all | flush | commit | CancelRestore | frmRestore closed
commit

Cancel without a selection:
commit | CancelRestore | frmRestore closed | commit

close box, no:
QUESTION | frmRestore closed | commit

close box, yes:
QUESTION | open catalog | execute clear all | flush | commit | CancelRestore | frmRestore closed
commit

close box without a selection:
frmRestore closed | commit

Cancel, yes, and the marks cannot be cleared:
QUESTION | open catalog | execute clear all | flush
box warning "CancelAll" "(3317) A rule of the table refuses the value (no) in 'the catalog'.
Try again. If it stays, tell whoever looks after your backups this number and text." | commit
CancelRestore | frmRestore closed | commit
)--");
}

TEST_F(OrderTest, AStepOfTheLoadThatFailsLeavesOutTheLaterOnesWithoutAWord) {
  form.parameters.RestorePath = "D:\\Back";
  platform.drives.drives = {{"E:\\", 5, "DISC"}};
  PutSetting(platform::kHkeyLocalMachine, "ClientDB", "C:\\Client");
  platform.registry.fault = [](std::string_view operation) -> long {
    return operation == "ReadValue" ? throw std::runtime_error("no registry") : 0;
  };
  desktop.user = [&](controls::Form&) {
    EXPECT_EQ(ui().splitH.Top(), 3396) << "what came before it stands";
    EXPECT_EQ(ui().tvwSets.Count(), 0u);
    EXPECT_EQ(ui().lblRestorePath.Caption(), "Restore To:");
  };
  form.ShowModal();
  EXPECT_EQ(desktop.showCount, 1u);
  EXPECT_TRUE(desktop.messages.empty());
}

}  // namespace
}  // namespace kxrestore::dialog_test
