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
  void PlaceOptions(int panel);
  void KeepSplitters();
  void ShowPanel(int index);
  void Place(controls::Control& control, int left, int top, int width, int height);

  FormContext& m_context;
  FormControls& m_ui;
  // Where the user wants the splitters; a window too small for that may move them.
  int m_wishedTop = 0, m_placedTop = 0;
  int m_wishedTree = 0, m_placedTree = 0;
};

}  // namespace kxrestore::dialog
