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

  // First use of the chooser: lists the types that the catalog's live entries have. Errors are the caller's.
  // False when the user stopped it; the chooser is then empty and may be filled another time.
  bool LoadTypes();

  void cmdAuto_Click(int index);

  // Counts for each type the files that its pattern would mark in what is looked in, where that is not known:
  // on the first visit of the tab, and again when one of the choices has changed. The user is not kept
  // waiting for it, see FormContext::InBackground; a count that was cut off is taken up when the form is idle
  // again, one that the user stopped when the tab is next visited or a choice changes.
  void CountWhereDue();

  // Marks what the ticked types stand for and lists what is marked now. Reports its own errors; marks made
  // before one stay. A stopped one lists nothing.
  void ApplyAutoSelect();

 private:
  void MarkTypes(MarkingWalk& walk, std::string_view types);
  void MarkType(MarkingWalk& walk, const LookIn& lookIn, std::string_view pattern);

  // What the counts in the list are of.
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
