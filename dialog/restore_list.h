// The list of files selected to restore, the counts, and how the dialog ends: commit, cancel, close.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "dialog/form_context.h"

namespace kxrestore::dialog {

// Name shown for a row of an aggregated mail-server item: `file` for a plug-in that is exactly "Exchange
// Server", the plug-in's own text for a longer one that begins so, each with ".kxexag" behind it. Nothing for
// any other plug-in.
inline constexpr std::string_view kAggregateExtension = "kxexag";
std::optional<std::string> AggregateName(std::string_view plugin, std::string_view file);
// Whether a shown name is one of those.
bool IsAggregateName(std::string_view name);

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
  // Writes entries without a tick back as not to be restored; reports its own errors.
  void ApplyListChanges();

  void cmdRestore_Click(int index);
  void Form_Unload(bool& cancel);

 private:
  bool AskToCancel();
  void Cancel();
  void Close();

  FormContext& m_context;
  Events m_events;
  bool m_closingByCommand = false;
  bool m_cancelled = false;
  bool m_hasSelections = false;
};

}  // namespace kxrestore::dialog
