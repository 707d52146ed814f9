// Where the form's controls stand: the initial layout, the rules run at every resize, and switching tabs.
//
// The window may be any size from 7000 by 6100 twips up; both splitters keep the panels large enough for what
// stands on them.
#pragma once

#include <functional>

#include "dialog/form_context.h"

namespace kxrestore::dialog {

class Layout {
 public:
  explicit Layout(FormContext& context);

  // The auto-select panel is shown for the first time. Whether the chooser is filled now.
  std::function<bool()> InitializeFileTypes;

  // Places the areas and wires the splitters. The form has its size by now.
  void PlaceInitially();

  // Where the user wants the bars, which is not where they are in a window too small for that.
  struct Splitters {
    int top = 0;   // of splitH
    int left = 0;  // of SplitV
  };
  Splitters WishedSplitters() const;
  void WishSplitters(const Splitters& wished);

  void Form_Resize();
  void picTop_Resize();
  void picTabs_Resize();
  void picBottom_Resize();
  void panel_Resize(int index);
  void tbsOptions_Click();

 private:
  void PlaceSetsPanel();
  void PlaceArchiveFrame();
  void PlaceSearchPanel();
  void PlaceAutoPanel();
  void PlaceRightColumn();
  void PlaceHelp();
  int PlaceOptions(int panel, int left, int top, int width);
  int PlaceChoicesInRow(int panel, controls::CheckBox& box, int top);
  int PlaceChoicesInColumn(int panel, controls::CheckBox& box, int top, int width);
  void KeepSplitters();
  void ShowPanel(int index);
  void FillChooser();
  void Place(controls::Control& control, int left, int top, int width, int height);

  FormContext& m_context;
  FormControls& m_ui;
  int m_wishedTop = 0, m_placedTop = 0;
  int m_wishedLeft = 0, m_placedLeft = 0;
};

}  // namespace kxrestore::dialog
