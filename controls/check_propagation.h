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

}  // namespace kxrestore::controls
