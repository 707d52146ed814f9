// Every control of the restore form, as designed: names, containers, captions, sizes in twips, and what is
// enabled, visible and chosen before anything has happened. No behaviour; the panels give the controls that.
//
// The order of the members is the tab order.
#pragma once

#include <array>

#include "controls/auto_select.h"
#include "controls/form.h"
#include "controls/splitters.h"
#include "controls/tree_view.h"
#include "controls/widgets.h"

namespace kxrestore::dialog {

// Designed lengths that the panels share, in twips.
inline constexpr int kButtonWidth = 1335;
inline constexpr int kButtonHeight = 375;
inline constexpr int kButtonPitch = 435;  // from the top of one button in a column to the next
inline constexpr int kLineHeight = 225;   // of a label
inline constexpr int kBoxHeight = 225;    // of a check box or option button
inline constexpr int kFieldHeight = 315;  // of a text or combo box

struct FormControls {
  FormControls();
  FormControls(const FormControls&) = delete;
  FormControls& operator=(const FormControls&) = delete;

  using CommandButton = controls::CommandButton;
  using Frame = controls::Frame;
  using Label = controls::Label;
  using OptionButton = controls::OptionButton;
  using PictureBox = controls::PictureBox;

  controls::ImageList imlFiles{
      {"cfolder", "file", "ofolder", "drive", "boxCheck", "box", "boxX", "check", "uncheck"}};
  // Images of the detail tree. The mail server's are fixed by number, 7 to 12; 2 is any file.
  controls::ImageList imlRestore{{"cfolder", "file", "ofolder", "drive", "systemstate", "activedirectory",
                                  "exchange", "publicfolders", "publicfolder", "addresslists", "mailboxes",
                                  "mailbox", "sqlserver"}};

  controls::Form form{"frmRestore"};

  // Upper area.
  PictureBox picTop{"picTop", &form};
  controls::TabStrip tbsOptions{
      "tbsOptions",
      &picTop,
      {{"&Backup Sets", "BackupSets"}, {"Advanced &Search", "Search"}, {"&Auto-Select", ""}}};
  controls::TreeView tvwSets{"tvwSets", &picTop, false};
  controls::SplitVertical SplitV{"SplitV", &picTop};
  PictureBox picTabs{"picTabs", &picTop};
  std::array<PictureBox, 3> panel{{{"panel(0)", &picTabs}, {"panel(1)", &picTabs}, {"panel(2)", &picTabs}}};

  // Backup Sets, panel(0). frLoadCD covers the detail tree while a CD archive is being added.
  controls::TreeView tvwDetails{"tvwDetails", &panel[0], true};
  Frame frLoadCD{"frLoadCD", &panel[0], "Append new Archive CD to Catalog"};
  std::array<Label, 3> lblCD{{{"lblCD(0)", &frLoadCD, "Select CD-ROM"},
                              {"lblCD(1)", &frLoadCD, "Progress"},
                              {"lblCD(2)", &frLoadCD, "Messages"}}};
  controls::DriveListBox DriveCD{"DriveCD", &frLoadCD};
  Label lblVL{"lblVL", &frLoadCD, "Volume"};
  controls::TextBox txtVL{"txtVL", &frLoadCD};
  controls::ProgressBar ProgressBar1{"ProgressBar1", &frLoadCD};
  CommandButton cmdCD{"cmdCD", &frLoadCD, "&Start"};
  std::array<CommandButton, 4> cmdAction{{{"cmdAction(0)", &panel[0], "Appl&y"},
                                          {"cmdAction(1)", &panel[0], "&Clear All"},
                                          {"cmdAction(2)", &panel[0], "E&xpand All"},
                                          {"cmdAction(3)", &panel[0], "C&ollapse All"}}};
  controls::CheckBox chkShowZero{"chkShowZero", &panel[0], "Show Empty Backups"};
  Label lblTreeCount{"lblTreeCount", &panel[0], ""};

  // Advanced Search, panel(1), and Auto-Select, panel(2). frLookin(i) is on panel(i) and holds the
  // options 0 and 1 on the search panel, 2 and 3 on the auto-select panel, 4 and 5 on the backup sets panel.
  Label lblMask{"lblMask", &panel[1], " Find By Mask"};
  controls::ComboBox cboMask{"cboMask", &panel[1]};
  controls::CheckBox chk1{"chk(1)", &panel[1], "Only Most Recent Version"};
  controls::AutoSelect asFiles{"asFiles", &panel[2], controls::AutoSelect::Style::kTypes};
  std::array<Frame, 3> frLookin{{{"frLookin(0)", &panel[0], "Look in"},
                                 {"frLookin(1)", &panel[1], "Look in"},
                                 {"frLookin(2)", &panel[2], "Look in"}}};
  std::array<OptionButton, 6> optLookIn{{{"optLookIn(0)", &frLookin[1], "&This Set"},
                                         {"optLookIn(1)", &frLookin[1], "A&ll Sets"},
                                         {"optLookIn(2)", &frLookin[2], "&This Set"},
                                         {"optLookIn(3)", &frLookin[2], "A&ll Sets"},
                                         {"optLookIn(4)", &frLookin[0], "&This Set"},
                                         {"optLookIn(5)", &frLookin[0], "A&ll Sets"}}};
  std::array<CommandButton, 4> cmdSearch{{{"cmdSearch(0)", &panel[1], "Appl&y"},
                                          {"cmdSearch(1)", &panel[1], "Clea&r"},
                                          {"cmdSearch(2)", &panel[1], "&Find"},
                                          {"cmdSearch(3)", &panel[1], "Select &All"}}};
  Label lblSearchCount{"lblSearchCount", &panel[1], "0 File(s)"};
  controls::AutoSelect asSearch{"asSearch", &panel[1], controls::AutoSelect::Style::kFiles};
  controls::CheckBox chk2{"chk(2)", &panel[2], "&Only Most Recent Version"};
  std::array<CommandButton, 3> cmdAuto{{{"cmdAuto(0)", &panel[2], "&Apply"},
                                        {"cmdAuto(1)", &panel[2], "Select &All"},
                                        {"cmdAuto(2)", &panel[2], "&Unselect All"}}};
  std::array<CommandButton, 3> btnSelect{{{"btnSelect(0)", &panel[2], "Include Selectio in Restore"},
                                          {"btnSelect(1)", &panel[2], "Exclude Selection from Restore "},
                                          {"btnSelect(2)", &panel[2], "Clear Selection"}}};

  // Right of the upper area: the closing buttons and the current choice. The splitter below both, and the
  // lower area.
  PictureBox picTopButtons{"picTopButtons", &form};
  controls::splitbar splitH{"splitH", &form};
  PictureBox picBottom{"picBottom", &form};
  Label lblList{"lblList", &picBottom, "Files Selected to Restore: "};
  Label lblRestorePath{"lblRestorePath", &picBottom, "Restore To:"};
  controls::AutoSelect asRestoreList{"asRestoreList", &picBottom, controls::AutoSelect::Style::kFiles};
  std::array<CommandButton, 5> cmdRestore{{{"cmdRestore(0)", &picTopButtons, "Restore &Now"},
                                           {"cmdRestore(1)", &picTopButtons, "Canc&el"},
                                           {"cmdRestore(2)", &picBottom, "&Refresh"},
                                           {"cmdRestore(3)", &picBottom, "&Update"},
                                           {"cmdRestore(4)", &picBottom, "C&lear "}}};
  PictureBox picCounts{"picCounts", &picBottom};
  std::array<Label, 2> lblCounts{
      {{"lblCounts(0)", &picCounts, "Files: 0 "}, {"lblCounts(1)", &picCounts, "Bytes: 0 "}}};
  Label lblCurrSet{"lblCurrSet", &picTopButtons, "Current Set:"};
  Label lblSetName{"lblSetName", &picTopButtons, "(none)"};
  Label lblHelp{"lblHelp", &form, ""};

  // Progress, in the place of the help.
  PictureBox picProgress{"picProgress", &form};
  Label lblProgress{"lblProgress", &picProgress, ""};
  controls::ProgressBar barProgress{"barProgress", &picProgress};
};

}  // namespace kxrestore::dialog
