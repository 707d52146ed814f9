// The search tab: finds catalog entries by a mask on their original name, lists them, and marks the ticked
// ones.
#pragma once

#include <string>

#include "dialog/form_context.h"
#include "dialog/marking_walk.h"
#include "dialog/restore_list.h"
#include "dialog/set_tree.h"

namespace kxrestore::dialog {

class Search {
 public:
  // Takes over the events of the tab's buttons.
  Search(FormContext& context, SetTree& setTree, RestoreList& restoreList);

  void cmdSearch_Click(int index);

  // Fills the list of hits. Both report their own errors; hits and marks made before an error stay.
  void AdvancedSearch();
  // Marks the ticked hits and refills the restore list, except after a stop.
  void AddToSearchSelections();

 private:
  void RememberMask(const std::string& mask);
  void List(const std::string& mask);
  void MarkTicked(MarkingWalk& walk, const RunOfEntries& run);
  catalog::MarkResult MarkCurrent(const RunOfEntries& run);

  FormContext& m_context;
  SetTree& m_setTree;
  RestoreList& m_restoreList;
  std::size_t m_reached = 0;  // entries that the last walk is done with
};

}  // namespace kxrestore::dialog
