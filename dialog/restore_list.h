// The list of files selected to restore, the counts, and how the dialog ends: commit, cancel, close.
#pragma once

#include <functional>
#include <string>
#include <unordered_map>

#include "dialog/form_context.h"

namespace kxrestore::dialog {

class RestoreList {
 public:
  // Raised to the form's owner.
  struct Events {
    std::function<void()> CommenceRestore;
    std::function<void()> CancelRestore;
  };
  RestoreList(FormContext& context, Events events);

  // Refills the list from the catalog; reports its own errors. After an error or a stop the list contains the
  // rows read so far.
  void ListCurrentSelections() { List(); }
  // Updates the count labels and Restore Now from the lists.
  void UpdateCounts();

  // Shows in the empty list how many files are still marked from an earlier session.
  void TellEarlierMarks();
  // Unmarks the entries without a tick and refills the list, unless the user stops it. Entries that could not
  // be unmarked stay listed without a tick.
  void Update();

  void cmdRestore_Click(int index);
  void Form_Unload(bool& cancel);

 private:
  enum class Listing { kComplete, kFailed, kStopped };
  Listing List();
  Listing ListUnlistedMarks();
  bool ApplyListChanges();
  void KeepUnticked();
  void RestoreNow();
  void Cancel();
  void Clear();
  // Asks before cancelling if anything is selected, then clears the marks.
  enum class Clearing { kNothingSelected, kCleared, kRefused, kStopped };
  Clearing ClearAfterQuestion();
  bool HasSelections() const;
  bool ConfirmCancel();
  bool ConfirmLosingTicks();
  void UnloadByCommand();

  FormContext& m_context;
  Events m_events;
  bool m_closingByCommand = false;
  bool m_incomplete = false;     // the last fill failed or was stopped
  bool m_hadSelections = false;  // as last listed to the end
  // Entries that the last Update failed to unmark: the number of each identity (IdentityOf).
  std::unordered_map<std::string, std::size_t> m_keptUnticked;
};

}  // namespace kxrestore::dialog
