#include "controls/check_propagation.h"

#include <cstdint>
#include <limits>

#include "controls/errors.h"

namespace kxrestore::controls {

namespace {

std::int16_t CheckedSiblings(Node node) {
  std::int16_t count = 0;
  for (Node sibling = node.FirstSibling(); sibling; sibling = sibling.Next()) {
    if (!sibling.Checked()) continue;
    if (count == std::numeric_limits<std::int16_t>::max()) ThrowOverflow();
    ++count;
  }
  return count;
}

}  // namespace

void CheckParents(Node node) {
  const std::string_view rootText = node.Root().Text();
  while (node.Text() != rootText) {
    Node parent = node.Parent();
    if (!parent) return;
    parent.SetChecked(CheckedSiblings(node) > 0);
    node = parent;
  }
}

// Depth first, parents before children. Climbs back through the parents instead of recursing, so depth is not
// limited.
void CheckChildren(Node node) {
  const bool checked = node.Checked();
  Node current = node.Child();
  while (current) {
    current.SetChecked(checked);
    if (const Node child = current.Child()) {
      current = child;
      continue;
    }
    for (;;) {
      if (const Node next = current.Next()) {
        current = next;
        break;
      }
      current = current.Parent();
      if (current == node) return;
    }
  }
}

void ShowMixed(Node node) {
  for (Node above = node.Parent(); above; above = above.Parent()) {
    bool mixed = false;
    for (Node child = above.Child(); child && !mixed; child = child.Next()) {
      mixed = child.Mixed() || child.Checked() != above.Checked();
    }
    above.SetMixed(mixed);
  }
}

}  // namespace kxrestore::controls
