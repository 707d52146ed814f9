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

  // Refills the list from the catalog; reports its own errors. A fill that fails or is stopped leaves the
  // list as far as it came.
  void ListCurrentSelections() { List(); }
  // Brings the captions of the counts, and Restore Now, in line with the lists.
  void UpdateCounts();

  // Says in the empty list how many files an earlier time has left marked.
  void TellEarlierMarks();
  // Writes entries without a tick back as not to be restored, and refills the list, unless the user stops it.
  // What could not be written back is listed without a tick still.
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
  // Asks whether to cancel where anything is selected, and clears the marks then.
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
  // Entries that the last Update left marked against the user's wish, by what marking knows them by; how many
  // of each.
  std::unordered_map<std::string, std::size_t> m_keptUnticked;
};

}  // namespace kxrestore::dialog
