// The tree of backup sets and their completed runs, and what choosing one of its nodes does.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "dialog/form_context.h"

namespace kxrestore::dialog {

// Fields of a run's tag: set identifier, one blank, the run's extension.
std::string_view TagSetID(std::string_view tag);
std::string_view TagExtension(std::string_view tag);

// The set identifier of a run's tag as a number. Error 6 beyond 32 bits, 13 when it is not a number.
std::int32_t TagSetNumber(std::string_view tag);

class SetTree {
 public:
  using NodeHandler = std::function<void(controls::Node)>;
  explicit SetTree(FormContext& context);

  NodeHandler LoadBackupSetDetail;  // fills the detail tree from a run
  NodeHandler ArchiveNode;          // the node "Archive Sets" was opened or chosen

  // Fills the tree, which must be empty. Returns whether the catalog could be read.
  bool LoadBackupSetTree();

  // Asks for a day and chooses the latest run of a set up to the end of that day. `node`: the set or one of
  // its runs.
  void ChooseDay(controls::Node node);

  // The runs that a chosen run covers, itself and the older ones, each in double quotes, separated by ", ".
  // Counts them in m_intRunCount; error 6 beyond 32,767.
  std::string ListRunExtensions(controls::Node node);

  // The set of a node: of a run, or of a set's newest run; 0 for any other node. Errors of TagSetNumber.
  static std::int32_t SetOf(controls::Node node);

  void tvwSets_NodeClick(controls::Node node);

 private:
  void ChooseRun(controls::Node node);
  void ChooseOther(controls::Node node);
  void LoadDetail(controls::Node run);
  void WhenFree(const char* routine, const std::function<void()>& step);
  controls::Node SetNode(const std::string& name);
  void HideArchiveFrame();
  void EnableActions(bool enabled);

  // Of the run whose node has this tag: platform::TimeNumber, AutoSelect::kNoTime when it is unknown.
  std::int64_t RunTime(const std::string& tag) const;

  FormContext& m_context;
};

}  // namespace kxrestore::dialog
