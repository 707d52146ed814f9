// Propagates the check of a node to its ancestors and descendants, through the public operations of nodes.
#pragma once

#include "controls/tree_view.h"

namespace kxrestore::controls {

// An ancestor becomes checked when at least one of its children is, and unchecked when none is. The root is
// recognised by its text, so any node with that text ends the climb. Error 6 when a node has more than 32,767
// checked siblings.
void CheckParents(Node node);

// Sets every descendant to the node's check.
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

// Updates the third state of a node's ancestors.
void ShowMixed(Node node);

}  // namespace kxrestore::controls
