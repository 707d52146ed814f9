// The layout of the form: initial positions, the rules for resizing, and switching tabs.
//
// The window is at least 7000 by 6100 twips; both splitters keep the panels large enough for their controls.
#pragma once

#include <functional>

#include "dialog/form_context.h"

namespace kxrestore::dialog {

class Layout {
 public:
  explicit Layout(FormContext& context);

  // Called when the auto-select panel is first shown. Returns whether the chooser is filled.
  std::function<bool()> InitializeFileTypes;

  // Places the areas and connects the splitters, after the form has its size.
  void PlaceInitially();

  // The bar positions that the user chose. A window that is too small places them elsewhere.
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
