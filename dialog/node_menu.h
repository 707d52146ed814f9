// The menus of the two trees.
#pragma once

#include <functional>

#include "dialog/form_context.h"
#include "dialog/node_info.h"

namespace kxrestore::dialog {

class NodeMenu {
 public:
  // Handles the menus of both trees. To add items, replace FillMenu by a function that first calls the
  // previous one.
  NodeMenu(FormContext& context, NodeInfo& info);

  // "Choose the state of a day" was chosen on a set or on one of its runs.
  std::function<void(controls::Node)> ChooseDay;

 private:
  void FillDetails(controls::Menu& menu);
  void FillSets(controls::Menu& menu);
  void Expand(controls::Node branch, bool expanded);

  FormContext& m_context;
  NodeInfo& m_info;
};

}  // namespace kxrestore::dialog
