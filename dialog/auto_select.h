// The auto-select tab: marks every file of the ticked types.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "dialog/form_context.h"
#include "dialog/listing.h"
#include "dialog/marking_walk.h"
#include "dialog/restore_list.h"
#include "dialog/set_tree.h"

namespace kxrestore::dialog {

class AutoSelectPanel {
 public:
  // Takes over the events of the tab's buttons.
  AutoSelectPanel(FormContext& context, SetTree& setTree, RestoreList& restoreList);

  // Fills the chooser on first use with the types of the catalog's live entries. Throws the engine's errors.
  // False when the user stopped it; the chooser is then empty and can be filled again.
  bool LoadTypes();

  void cmdAuto_Click(int index);

  // Counts for each type the files that its pattern would mark with the current choices: on the first visit
  // of the tab, and after a choice has changed. Runs in the background (FormContext::InBackground). A count
  // cut off by a command resumes when the form is idle; one that the user stopped, at the next visit of the
  // tab or change of a choice.
  void CountWhereDue();

  // Marks the files of the ticked types and refills the restore list. Reports its own errors; marks made
  // before an error stay. After a stop the list is not refilled.
  void ApplyAutoSelect();

 private:
  void MarkTypes(MarkingWalk& walk, std::string_view types);
  void MarkType(MarkingWalk& walk, const LookIn& lookIn, std::string_view pattern);

  // The choices that the counts in the list are for.
  struct Counted {
    LookIn lookIn;
    bool latest = false;
    bool operator==(const Counted&) const = default;
  };
  bool CountTypes(const Counted& what);
  void ForgetCounts();
  std::size_t FilesToMark() const;

  std::optional<Counted> m_counted, m_stopped;
  FormContext& m_context;
  SetTree& m_setTree;
  RestoreList& m_restoreList;
};

}  // namespace kxrestore::dialog
