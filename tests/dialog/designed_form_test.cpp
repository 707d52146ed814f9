// The form as it is designed, control by control, and every text of its help.
#include "tests/dialog/dialog_fixture.h"

namespace kxrestore::dialog_test {
namespace {

using controls::Kind;

// "name "caption"" and what is not as usual.
std::string Look(const controls::Control& control) {
  std::string look = control.Name();
  const auto quote = [&](const std::string& text) { look.append(" \"").append(text).append("\""); };
  if (const auto* form = dynamic_cast<const controls::Form*>(&control)) quote(form->Caption());
  if (const auto* frame = dynamic_cast<const controls::Frame*>(&control)) quote(frame->Caption());
  if (const auto* captioned = dynamic_cast<const controls::Captioned*>(&control)) quote(captioned->Caption());
  if (const auto* tabs = dynamic_cast<const controls::TabStrip*>(&control)) {
    for (const auto& tab : tabs->Tabs()) quote(tab.caption + "=" + tab.key);
  }
  if (!control.AccessibleName().empty()) look += " (" + control.AccessibleName() + ")";
  if (!control.Visible()) look += " hidden";
  if (!control.Enabled()) look += " disabled";
  if (const auto* option = dynamic_cast<const controls::OptionButton*>(&control)) {
    if (option->Value()) look += " chosen";
  }
  if (const auto* label = dynamic_cast<const controls::Label*>(&control)) {
    if (!label->FontName().empty()) look += " in " + label->FontName();
  }
  return look;
}

// Each container with what stands on it, in paragraphs.
std::string List(const controls::Container& container) {
  Strings pieces{Look(container) + ":"};
  std::string inner;
  for (const controls::Control* const child : container.Children()) {
    pieces.push_back(Look(*child));
    const auto* const below = dynamic_cast<const controls::Container*>(child);
    if (below != nullptr && !below->Children().empty()) inner += List(*below);
  }
  return Filled(pieces) + inner;
}

TEST(DesignedForm, ControlsInTheirContainersAsTheUserMeetsThem) {
  const FormControls ui;
  EXPECT_EQ("\n" + List(ui.form), R"--(
frmRestore "Select Files to Restore": | picTop | picTopButtons | splitH (Height of the upper area)
picBottom | lblHelp "" | picProgress hidden
picTop:
tbsOptions "&Backup Sets=BackupSets" "Advanced &Search=Search" "&Auto-Select=" (Ways to choose files)
tvwSets (Backup sets) | SplitV (Width of the backup sets) | picTabs
picTabs: | panel(0) | panel(1) hidden | panel(2) hidden
panel(0): | tvwDetails (Files of the backup set)
frLoadCD "Append new Archive CD to Catalog" hidden | cmdAction(0) "Appl&y"
cmdAction(1) "&Clear All" | cmdAction(2) "E&xpand All" | cmdAction(3) "C&ollapse All"
chkShowZero "Show Empty Backups" hidden | lblTreeCount "" | frLookin(0) "Look in" hidden
frLoadCD "Append new Archive CD to Catalog" hidden: | lblCD(0) "Select CD-ROM" | lblCD(1) "Progress"
lblCD(2) "Messages" | DriveCD (CD-ROM drive) | lblVL "Volume" | txtVL (Volume)
ProgressBar1 (Progress) | cmdCD "&Start" disabled
frLookin(0) "Look in" hidden: | optLookIn(4) "&This Set" | optLookIn(5) "A&ll Sets" chosen
panel(1) hidden: | lblMask " Find By Mask" | cboMask (Find by mask)
chk(1) "Only Most Recent Version" | frLookin(1) "Look in" | cmdSearch(0) "Appl&y"
cmdSearch(1) "Clea&r" | cmdSearch(2) "&Find" | cmdSearch(3) "Select &All"
lblSearchCount "0 File(s)" | asSearch (Files found)
frLookin(1) "Look in": | optLookIn(0) "&This Set" disabled | optLookIn(1) "A&ll Sets" chosen
panel(2) hidden: | asFiles (File types) | frLookin(2) "Look in" | chk(2) "&Only Most Recent Version"
cmdAuto(0) "&Apply" | cmdAuto(1) "Select &All" | cmdAuto(2) "&Unselect All"
btnSelect(0) "Include Selectio in Restore" hidden
btnSelect(1) "Exclude Selection from Restore " hidden | btnSelect(2) "Clear Selection" hidden
frLookin(2) "Look in": | optLookIn(2) "&This Set" disabled | optLookIn(3) "A&ll Sets" chosen
picTopButtons: | cmdRestore(0) "Restore &Now" disabled | cmdRestore(1) "Canc&el"
lblCurrSet "Current Set:" in Arial | lblSetName "(none)" in Arial
picBottom: | lblList "Files Selected to Restore: " | lblRestorePath "Restore To:"
asRestoreList (Files selected to restore) | cmdRestore(2) "&Refresh" | cmdRestore(3) "&Update"
cmdRestore(4) "C&lear " | picCounts
picCounts: | lblCounts(0) "Files: 0 " | lblCounts(1) "Bytes: 0 "
picProgress hidden: | lblProgress "" | barProgress (Progress)
)--");
  EXPECT_EQ(ui.imlFiles.Keys(),
            (Strings{"cfolder", "file", "ofolder", "drive", "boxCheck", "box", "boxX", "check", "uncheck"}));
  EXPECT_TRUE(ui.tvwDetails.CheckBoxes());
  EXPECT_FALSE(ui.tvwSets.CheckBoxes());
}

TEST_F(DialogTest, TheHelpSpeaksOfWhatIsUnderThePointer) {
  MakeCatalog({});
  const std::string searchApply =
      "ADVANCED SEARCH - APPLY: This button will apply the Search Selections, adding the to the Files "
      "Selected to Restore below ";
  const std::string instructions =
      "INSTRUCTIONS: As you move your mouse over various lists and buttons, notice hints and explanations in "
      "th is area. ";
  const struct {
    controls::Control& source;
    std::string key, text;
  } cases[] = {
      {ui().form, "std", instructions},
      {ui().tvwDetails, "tvwDetails",
       "BACKUP SET DETAILS: Use this 'tree' to select files from their original location"},
      {ui().tvwSets, "tvwSets",
       "BACKUP SETS: Select the set you wish to restore from through from the Set Tree, then choose files "
       "with other tabs and lists"},
      {ui().asRestoreList, "asRestoreList",
       "FILES SELECTED TO RESTORE: The list below shows your current selection of files to restore. You may "
       "uncheck files that you wish to NOT restore, then press the update button to revise your selection. "
       "The count to the right is the actual number of catalog entries marked to restore."},
      {ui().asFiles, "asFiles",
       "AUTO-SELECT: Select file types that you wish to include, you may also gather from all sets, a single "
       "set or create a set of just the most recent files available. "},
      {ui().asSearch, "asSearch",
       "ADVANCED SEARCH: Enter a file mask to identify files to restore. Optionally choose one set or all "
       "sets, or specify just the Lastest version of each file. "},
      {ui().cmdSearch[3], "SearchApply", searchApply},
      {ui().cmdSearch[1], "SearchClear",
       "ADVANCED SEARCH - CLEAR: Clear the results of the Advanced Search List"},
      {ui().cmdSearch[2], "SearchFind",
       "ADVANCED SEARCH - FIND: Perform the Advanced Search based on the File Mask selection"},
      {ui().cmdSearch[0], "SearchApply", searchApply},
      {ui().cmdRestore[0], "RestoreNow",
       "RESTORE NOW - Press this button when you have made all selections and applied to commence the "
       "Restore Operation"},
      {ui().cmdRestore[1], "Cancel",
       "CANCEL RESTORE - Exit the restore screen, clearing all restore selections."},
      {ui().cmdRestore[2], "Refresh",
       "REFRESH LIST - Refresh all entries selected for the Files Selected to Restore Listing."},
      {ui().cmdRestore[3], "Update",
       "UPDATE LIST - Modify the restore selection, clearing unmarked files from the Files Selected to "
       "Restore."},
      {ui().cmdRestore[4], "Clear",
       "CLEAR LIST - Clear all selections from the Files Selected to Restore listing, to start over. "},
      {ui().frLoadCD, "frLoadCD",
       "LOAD CD Archive - This panel is used to select the CD Rom drive for access to CD Archives. "},
      {ui().cmdAction[0], "SetApply",
       "APPLY SELECTION - Press this button to Apply your selection from the Set Details to the List Files "
       "to Restore below"},
      {ui().cmdAction[1], "SetClearAll",
       "CLEAR ALL - Clear all current selections from the Set Detail list."},
      {ui().cmdAction[2], "SetExpand", "EXPAND ALL - Expand all branches of this Backup Set"},
      {ui().cmdAction[3], "SetCollapse", "COLLAPSE ALL - Collapse (close) all branches of this Backup Set."}};
  EXPECT_EQ(ui().lblHelp.Caption(), instructions);
  EXPECT_EQ(ui().lblHelp.Tag(), "");
  for (const auto& [source, key, text] : cases) {
    source.MouseMove();
    EXPECT_EQ(ui().lblHelp.Tag(), key);
    EXPECT_EQ(ui().lblHelp.Caption(), text);
    // Inside one control the label is not written anew, nor where two share a text.
    ui().lblHelp.SetCaption("as it was");
    source.MouseMove();
    if (key == "SearchApply") ui().cmdSearch[0].MouseMove();
    EXPECT_EQ(ui().lblHelp.Caption(), "as it was");
  }
  for (controls::Control* const silent :
       {static_cast<controls::Control*>(&ui().picTop), static_cast<controls::Control*>(&ui().picBottom),
        static_cast<controls::Control*>(&ui().panel[0])}) {
    EXPECT_FALSE(silent->MouseMove) << silent->Name();
  }
}

}  // namespace
}  // namespace kxrestore::dialog_test
