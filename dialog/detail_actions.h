// The buttons beside the detail tree: turning ticks into restore marks, clearing ticks, expanding and
// collapsing.
#pragma once

#include <functional>

#include "dialog/form_context.h"
#include "dialog/marking_walk.h"

namespace kxrestore::dialog {

class DetailActions {
 public:
  explicit DetailActions(FormContext& context);

  std::function<void()> ListCurrentSelections;  // after Apply

  void cmdAction_Click(int index);

  // Marks the file of every ticked node; marks of unticked nodes stay. Reports its own errors.
  void AddToSetSelections();
  void ExpandAllDetails(bool expand);

 private:
  void MarkTicked(MarkingWalk& walk);
  void ClearAll();

  FormContext& m_context;
  std::size_t m_reached = 0;  // nodes that the last walk is done with
};

}  // namespace kxrestore::dialog
