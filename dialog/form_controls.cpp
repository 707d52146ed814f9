#include "dialog/form_controls.h"

#include "base/phrases.h"

namespace kxrestore::dialog {

namespace {

constexpr int kDesignedWidth = 11880;
constexpr int kDesignedHeight = 9000;
constexpr auto kButtonFace = static_cast<std::int32_t>(0x8000000F);  // a colour of the system
constexpr auto kSizeWE = static_cast<std::int32_t>(controls::MousePointer::kSizeWE);

void Size(controls::Control& control, int width, int height) {
  control.Move(control.Left(), control.Top(), width, height);
}

template <class Buttons>
void SizeButtons(Buttons& buttons) {
  for (auto& button : buttons) Size(button, kButtonWidth, kButtonHeight);
}

}  // namespace

FormControls::FormControls() {
  form.SetCaption("Select Files to Restore");
  tvwDetails.SetImages(&imlRestore);

  // Positions follow from the sizes when the form is laid out.
  SizeButtons(cmdAction);
  SizeButtons(cmdSearch);
  SizeButtons(cmdAuto);
  SizeButtons(btnSelect);
  SizeButtons(cmdRestore);
  Size(cmdCD, kButtonWidth, kButtonHeight);
  Size(lblTreeCount, kButtonWidth, 3 * kLineHeight);
  Size(lblSearchCount, kButtonWidth, kLineHeight);
  Size(lblMask, 1200, kLineHeight);
  Size(cboMask, 2300, kFieldHeight);
  Size(lblList, 2400, 240);
  Size(lblRestorePath, 4000, 215);
  Size(lblCurrSet, kButtonWidth, kLineHeight);
  Size(lblSetName, kButtonWidth, 3 * kLineHeight);
  Size(picCounts, kButtonWidth, 4 * kLineHeight);
  Size(picTopButtons, 2830, 1400);
  Size(chkShowZero, 1900, kBoxHeight);
  for (auto& frame : frLookin) Size(frame, 2325, 525);
  splitH.ReadProperties({{"BackColor", kButtonFace}});
  SplitV.ReadProperties({{"BackColor", kButtonFace}, {"MousePointer", kSizeWE}});

  lblSetName.SetFontName("Arial");
  lblCurrSet.SetFontName("Arial");
  lblRestorePath.SetRightAligned(true);
  for (auto* const label : {&lblSetName, &lblRestorePath}) label->SetUseMnemonic(false);
  txtVL.SetLocked(true);

  // Names for screen readers of controls without a caption.
  tvwSets.SetAccessibleName(Say(Phrase::kNameSets));
  tvwDetails.SetAccessibleName(Say(Phrase::kNameDetails));
  asFiles.SetAccessibleName(Say(Phrase::kNameTypes));
  asSearch.SetAccessibleName(Say(Phrase::kNameFound));
  asRestoreList.SetAccessibleName(Say(Phrase::kNameSelected));
  cboMask.SetAccessibleName(Say(Phrase::kNameMask));
  DriveCD.SetAccessibleName(Say(Phrase::kNameDrive));
  txtVL.SetAccessibleName(Say(Phrase::kNameVolume));
  ProgressBar1.SetAccessibleName(Say(Phrase::kNameProgress));
  barProgress.SetAccessibleName(Say(Phrase::kNameProgress));
  tbsOptions.SetAccessibleName(Say(Phrase::kNameTabs));
  SplitV.SetAccessibleName(Say(Phrase::kNameSetsWidth));
  splitH.SetAccessibleName(Say(Phrase::kNameUpperHeight));

  // Unused controls stay hidden.
  chkShowZero.SetVisible(false);
  frLookin[0].SetVisible(false);
  for (auto& button : btnSelect) button.SetVisible(false);

  panel[1].SetVisible(false);
  panel[2].SetVisible(false);
  frLoadCD.SetVisible(false);
  picProgress.SetVisible(false);
  for (int index : {1, 3, 5}) optLookIn[index].SetValue(true);
  optLookIn[0].SetEnabled(false);
  optLookIn[2].SetEnabled(false);
  cmdCD.SetEnabled(false);
  cmdRestore[0].SetEnabled(false);

  form.Move(0, 0, kDesignedWidth, kDesignedHeight);
}

}  // namespace kxrestore::dialog
