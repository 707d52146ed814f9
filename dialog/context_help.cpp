#include "dialog/context_help.h"

#include <string>

namespace kxrestore::dialog {

namespace {

struct HelpText {
  std::string_view key;
  std::string_view text;
};

constexpr HelpText kHelpTexts[] = {
    {"std",
     "INSTRUCTIONS: As you move your mouse over various lists and buttons, notice hints and explanations in "
     "th is "
     "area. "},
    {"tvwDetails", "BACKUP SET DETAILS: Use this 'tree' to select files from their original location"},
    {"tvwSets",
     "BACKUP SETS: Select the set you wish to restore from through from the Set Tree, then choose files with "
     "other "
     "tabs and lists"},
    {"asRestoreList",
     "FILES SELECTED TO RESTORE: The list below shows your current selection of files to restore. "
     "You may uncheck files that you wish to NOT restore, then press the update button to revise your "
     "selection. "
     "The count to the right is the actual number of catalog entries marked to restore."},
    {"asFiles",
     "AUTO-SELECT: Select file types that you wish to include, you may also gather from all sets, a single "
     "set or "
     "create a set of just the most recent files available. "},
    {"asSearch",
     "ADVANCED SEARCH: Enter a file mask to identify files to restore. Optionally choose one set or all "
     "sets, or "
     "specify just the Lastest version of each file. "},
    {"SearchApply",
     "ADVANCED SEARCH - APPLY: This button will apply the Search Selections, adding the to the Files "
     "Selected to "
     "Restore below "},
    {"SearchClear", "ADVANCED SEARCH - CLEAR: Clear the results of the Advanced Search List"},
    {"SearchFind", "ADVANCED SEARCH - FIND: Perform the Advanced Search based on the File Mask selection"},
    {"RestoreNow",
     "RESTORE NOW - Press this button when you have made all selections and applied to commence the Restore "
     "Operation"},
    {"Cancel", "CANCEL RESTORE - Exit the restore screen, clearing all restore selections."},
    {"Refresh", "REFRESH LIST - Refresh all entries selected for the Files Selected to Restore Listing."},
    {"Update",
     "UPDATE LIST - Modify the restore selection, clearing unmarked files from the Files Selected to "
     "Restore."},
    {"Clear",
     "CLEAR LIST - Clear all selections from the Files Selected to Restore listing, to start over. "},
    {"frLoadCD",
     "LOAD CD Archive - This panel is used to select the CD Rom drive for access to CD Archives. "},
    {"SetApply",
     "APPLY SELECTION - Press this button to Apply your selection from the Set Details to the List Files to "
     "Restore "
     "below"},
    {"SetClearAll", "CLEAR ALL - Clear all current selections from the Set Detail list."},
    {"SetExpand", "EXPAND ALL - Expand all branches of this Backup Set"},
    {"SetCollapse", "COLLAPSE ALL - Collapse (close) all branches of this Backup Set."},
};

constexpr std::string_view kActionKeys[] = {"SetApply", "SetClearAll", "SetExpand", "SetCollapse"};
// "Select All" shares the text of "Apply".
constexpr std::string_view kSearchKeys[] = {"SearchApply", "SearchClear", "SearchFind", "SearchApply"};
constexpr std::string_view kRestoreKeys[] = {"RestoreNow", "Cancel", "Refresh", "Update", "Clear"};

}  // namespace

ContextHelp::ContextHelp(FormContext& context) : m_context(context) {
  FormControls& ui = m_context.ui;
  Explain(ui.form, "std");
  Explain(ui.frLoadCD, "frLoadCD");
  for (controls::Control* list :
       {static_cast<controls::Control*>(&ui.asFiles), static_cast<controls::Control*>(&ui.asSearch),
        static_cast<controls::Control*>(&ui.asRestoreList), static_cast<controls::Control*>(&ui.tvwDetails),
        static_cast<controls::Control*>(&ui.tvwSets)}) {
    Explain(*list, list->Name());
  }
  ui.lblHelp.SetCaption(std::string(kHelpTexts[0].text));
  const auto explainAll = [this](auto& buttons, const auto& keys) {
    for (std::size_t i = 0; i < buttons.size(); ++i) Explain(buttons[i], keys[i]);
  };
  explainAll(ui.cmdAction, kActionKeys);
  explainAll(ui.cmdSearch, kSearchKeys);
  explainAll(ui.cmdRestore, kRestoreKeys);
}

// `key` must live as long as the form.
void ContextHelp::Explain(controls::Control& source, std::string_view key) {
  source.MouseMove = source.KeyboardEnter = [this, key] {
    controls::Label& help = m_context.ui.lblHelp;
    if (help.Tag() == key) return;
    m_context.Skipping([&] {
      help.SetTag(std::string(key));
      ShowContextHelp();
    });
  };
}

void ContextHelp::ShowContextHelp() {
  controls::Label& help = m_context.ui.lblHelp;
  for (const HelpText& entry : kHelpTexts) {
    if (entry.key == help.Tag()) {
      help.SetCaption(std::string(entry.text));
      return;
    }
  }
}

}  // namespace kxrestore::dialog
