// Where everything stands: the first layout when the form loads, the placement on every resize, and the tabs.
// All lengths are twips.
#pragma once

#include <functional>

#include "dialog/form_context.h"

namespace kxrestore::dialog {

inline constexpr int kMinimumWidth = 7000;
inline constexpr int kMinimumHeight = 6100;

class Layout {
 public:
  // Listens to the resizing of the form and its areas and to the tab strip.
  explicit Layout(FormContext& context);

  std::function<void()> InitializeFileTypes;  // the Auto-Select tab is shown for the first time

  // Places the areas of a form that has just been made, and ties the splitters to them.
  void PlaceInitially();
  void tbsOptions_Click();

 private:
  void Form_Resize();
  void picTop_Resize();
  void picTabs_Resize();
  void picBottom_Resize();
  void picTopButtons_Resize();
  void panel_Resize(int index);
  void PlaceBackupSets(int width, int height);
  void PlaceLoadCD(int width, int height);
  void PlaceSearch(int width, int height);
  void PlaceAutoSelect(int width, int height);
  void PlaceLookIn(int frame);
  void ShowPanel(int index);

  FormContext& m_context;
  FormControls& m_ui;
};

}  // namespace kxrestore::dialog
