// The tree of backup sets and their completed runs, and what choosing one of its nodes does.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "dialog/form_context.h"

namespace kxrestore::dialog {

// Fields of a run's tag: set identifier, one blank, the run's extension.
std::string_view TagSetID(std::string_view tag);
std::string_view TagExtension(std::string_view tag);

class SetTree {
 public:
  using NodeHandler = std::function<void(controls::Node)>;
  explicit SetTree(FormContext& context);

  NodeHandler LoadBackupSetDetail;  // fills the detail tree from a run
  NodeHandler ArchiveNode;          // the node "Archive Sets" was opened or chosen

  // Fills the tree, which must be empty.
  void LoadBackupSetTree();

  // The runs that a chosen run covers, itself and the older ones, each in double quotes, separated by ", ".
  // Counts them in m_intRunCount; error 6 beyond 32,767.
  std::string ListRunExtensions(controls::Node node);

  void tvwSets_NodeClick(controls::Node node);

 private:
  void ChooseRun(controls::Node node);
  void ChooseOther(controls::Node node);
  controls::Node SetNode(const std::string& name);
  void HideArchiveFrame();
  void EnableActions(bool enabled);

  FormContext& m_context;
};

}  // namespace kxrestore::dialog
