#include "dialog/context_help.h"

#include "platform/headless/recording_peer.h"
#include "tests/dialog/panel_fixture.h"

namespace kxrestore::dialog {
namespace {

class ContextHelpTest : public PanelTest {
 protected:
  std::string Over(controls::Control& control) {
    control.MouseMove();
    return ui.lblHelp.Caption();
  }
  ContextHelp help{context};
};

TEST_F(ContextHelpTest, EverySourceShowsItsOwnText) {
  EXPECT_EQ(Over(ui.form),
            "INSTRUCTIONS: As you move your mouse over various lists and buttons, notice hints and "
            "explanations in th "
            "is area. ");
  EXPECT_EQ(
      Over(ui.asRestoreList),
      "FILES SELECTED TO RESTORE: The list below shows your current selection of files to restore. You may "
      "uncheck files that you wish to NOT restore, then press the update button to revise your selection. "
      "The "
      "count to the right is the actual number of catalog entries marked to restore.");
  const std::vector<std::pair<controls::Control*, std::string>> starts = {
      {&ui.tvwDetails, "BACKUP SET DETAILS: "},
      {&ui.tvwSets, "BACKUP SETS: "},
      {&ui.asFiles, "AUTO-SELECT: "},
      {&ui.asSearch, "ADVANCED SEARCH: "},
      {&ui.frLoadCD, "LOAD CD Archive - "},
      {&ui.cmdAction[0], "APPLY SELECTION - "},
      {&ui.cmdAction[1], "CLEAR ALL - "},
      {&ui.cmdAction[2], "EXPAND ALL - "},
      {&ui.cmdAction[3], "COLLAPSE ALL - "},
      {&ui.cmdSearch[0], "ADVANCED SEARCH - APPLY: "},
      {&ui.cmdSearch[1], "ADVANCED SEARCH - CLEAR: "},
      {&ui.cmdSearch[2], "ADVANCED SEARCH - FIND: "},
      {&ui.cmdRestore[0], "RESTORE NOW - "},
      {&ui.cmdRestore[1], "CANCEL RESTORE - "},
      {&ui.cmdRestore[2], "REFRESH LIST - "},
      {&ui.cmdRestore[3], "UPDATE LIST - "},
      {&ui.cmdRestore[4], "CLEAR LIST - "}};
  for (const auto& [control, start] : starts) EXPECT_EQ(Over(*control).substr(0, start.size()), start);
}

TEST_F(ContextHelpTest, TheLabelIsWrittenOnlyWhenTheKeyChanges) {
  platform::PeerLog log;
  ui.lblHelp.AttachPeer(std::make_unique<platform::RecordingPeer>(log));
  Over(ui.cmdSearch[0]);
  Over(ui.cmdSearch[0]);
  Over(ui.cmdSearch[3]);  // shares the text of Apply
  EXPECT_EQ(log.Count(controls::Property::kCaption), 1u);
  const std::string shown = ui.lblHelp.Caption();
  ui.lblHelp.SetTag("STD");  // keys are exact
  help.ShowContextHelp();
  EXPECT_EQ(ui.lblHelp.Caption(), shown);
}

}  // namespace
}  // namespace kxrestore::dialog
