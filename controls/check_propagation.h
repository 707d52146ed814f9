// Brings the checks above and below a node into line with it. Both work through the node's own operations
// only.
#pragma once

#include "controls/tree_view.h"

namespace kxrestore::controls {

// Every ancestor becomes checked when at least one of its children is, and clear when none is. Nodes are told
// apart from the root by text, so a node that has the root's text ends the climb. Error 6 when a node has
// more than 32,767 checked siblings.
void CheckParents(Node node);

// Every node below gets the node's own check.
void CheckChildren(Node node);

// Calls `expand(folder)`, which returns whether to go on, for a node and every one below it that has children
// and is not expanded, parents first.
template <class Expand>
void ExpandBelow(const Node top, Expand&& expand) {
  Node node = top;
  while (node) {
    if (node.HasChildren() && !node.Expanded() && !expand(node)) return;
    if (const Node child = node.Child()) {
      node = child;
      continue;
    }
    while (node && !(node == top) && !node.Next()) node = node.Parent();
    if (!node || node == top) return;
    node = node.Next();
  }
}

// Makes the nodes above one show whether what is below them is checked in part.
void ShowMixed(Node node);

}  // namespace kxrestore::controls
