// The list of files selected to restore, the counts, and how the dialog ends: commit, cancel, close.
#pragma once

#include <functional>

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

  // Refills the list from the catalog; reports its own errors.
  void ListCurrentSelections();
  // Brings the captions of the counts, and Restore Now, in line with the lists.
  void UpdateCounts();
  // Writes entries without a tick back as not to be restored. Whether the user let it run to its end.
  bool ApplyListChanges();

  void cmdRestore_Click(int index);
  void Form_Unload(bool& cancel);

 private:
  void RestoreNow();
  void Cancel();
  void Clear();
  bool ConfirmCancel();
  void CancelSelections();
  void UnloadByCommand();

  FormContext& m_context;
  Events m_events;
  bool m_closingByCommand = false;
};

}  // namespace kxrestore::dialog
