#include "platform/win32/tree/tree_items.h"

#include <algorithm>

namespace kxrestore::win32 {

using controls::Node;
using controls::NodeProperty;

namespace {

constexpr std::size_t kMaxChanges = 16;  // with more, recreating all items is faster
constexpr std::size_t kRemovedAtOnce = 10'000;

class Counted {
 public:
  explicit Counted(int& count) : m_count(++count) {}
  ~Counted() { --m_count; }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;

 private:
  int& m_count;
};

}  // namespace

TreeItems::TreeItems(controls::TreeView& tree, NativeTree& native, UINT state)
    : m_tree(tree), m_native(native), m_state(state) {
  Forget(0);
}

void TreeItems::Mark(std::uint32_t node, unsigned flags) {
  if (node >= m_flags.size()) m_flags.resize(node + std::size_t{1});
  m_flags[node] = static_cast<std::uint8_t>(m_flags[node] | flags);
}

void TreeItems::MarkOpened(std::uint32_t node) {
  Mark(node, kOpened);
  Mark(At(node).Parent().Index(), kHoldsOpened);
  m_opened.push_back(node);
}

std::uint32_t TreeItems::NodeOf(HTREEITEM item) const {
  const std::uint32_t node = m_native.Parameter(item);
  return node != 0 && ItemOf(node) == item ? node : 0;
}

// --- notifications of the model

void TreeItems::NodeAdded(std::uint32_t node) {
  const auto parent = At(node).Parent().Index();
  if (!Has(parent, kOpened)) return;
  if (m_rests.try_emplace(parent, Rest{node, 0}).second) m_grown.push_back(parent);
}

void TreeItems::NodeRemoved(std::uint32_t node) {
  m_anchor = 0;
  const auto parent = At(node).Parent().Index();
  if (const auto rest = m_rests.find(parent); rest != m_rests.end()) {
    if (rest->second.last == node) m_grown.push_back(parent);
    if (rest->second.next == node) {
      rest->second.next = At(node).Next().Index();
      if (rest->second.next == 0) m_rests.erase(rest);
    }
  }
  const HTREEITEM item = ItemOf(node);
  if (item == nullptr) return;
  if (m_held > 0) {
    m_rebuild = true;
    return;
  }
  const Counted quiet(m_quiet);
  m_native.Delete(item);
}

void TreeItems::NodeChanged(std::uint32_t node, NodeProperty property) {
  if (ItemOf(node) == nullptr) return;
  m_stirred = true;
  if (m_rebuild) return;
  if (m_changes.size() < kMaxChanges) {
    m_changes.push_back({node, property});
  } else {
    m_rebuild = true;
    m_changes.clear();
  }
}

void TreeItems::Cleared() {
  m_rebuild = m_rebuilding = false;
  m_rebuilt.reset();
  Forget(0);
}

// Detaches all items from their nodes; the items wait for removal.
void TreeItems::Forget(std::uint32_t anchor) {
  if (m_count > 0) m_removing.emplace(m_native);
  if (m_count > kRemovedAtOnce) {
    // Removing is fastest from the oldest item on. An item is removed with its descendants, so folders that
    // contain opened ones come last, the innermost first.
    for (const std::uint32_t node : m_opened) {
      if (Has(node, kHoldsOpened) && ItemOf(node) != nullptr) m_doomed.push_back(m_items[node]);
    }
    for (auto node = m_opened.rbegin(); node != m_opened.rend(); ++node) {
      if (!Has(*node, kHoldsOpened) && ItemOf(*node) != nullptr) m_doomed.push_back(m_items[*node]);
    }
  }
  m_count = 0;
  m_items = {};
  m_flags = {};
  m_opened = {};
  m_rests = {};
  m_changes.clear();
  m_grown.clear();
  m_near.clear();
  m_ahead = {};
  m_aheadFolders = m_aheadFiles = 0;
  m_anchor = anchor;

  Mark(0, kOpened);
  if (const Node root = m_tree.FirstRoot()) {
    m_rests[0] = {root.Index(), 0};
    m_grown.push_back(0);
  }
}

void TreeItems::ItemDeleted(std::uint32_t node, HTREEITEM item) {
  if (ItemOf(node) != item) return;
  m_items[node] = nullptr;
  --m_count;
  if (node < m_flags.size()) m_flags[node] = 0;
  m_rests.erase(node);
}

// --- notifications of the window

void TreeItems::QueueNear(std::uint32_t node) {
  if (Has(node, kInQueue)) return;
  Mark(node, kInQueue);
  m_near.push_back(node);
}

void TreeItems::Painted(std::uint32_t node) {
  if (ItemOf(node) == nullptr) return;
  if (WantsOpening(node)) QueueNear(node);
  // Missing children of any ancestor may belong next to this item.
  for (;;) {
    if (Has(node, kFilesMissing)) QueueNear(node);
    if (node == 0) return;
    const auto parent = At(node).Parent().Index();
    if (!m_rests.empty()) {
      const auto rest = m_rests.find(parent);
      if (rest != m_rests.end() && rest->second.last == node) QueueNear(parent);
    }
    node = parent;
  }
}

HTREEITEM TreeItems::Reach(std::uint32_t node) {
  if (const HTREEITEM item = ItemOf(node)) return item;
  std::vector<std::uint32_t> path;
  for (Node step = At(node); step; step = step.Parent()) path.push_back(step.Index());
  const NativeTree::Pause pause(m_native);
  std::uint32_t parent = 0;
  for (; !path.empty(); path.pop_back()) {
    while (ItemOf(path.back()) == nullptr) {
      if (m_count > kMaxAhead) return nullptr;
      if (!Has(parent, kOpened)) {
        OpenPiece(parent, Clock::time_point::max());
      } else if (Has(parent, kFilesMissing)) {
        MakeFiles(parent);
      } else if (m_rests.contains(parent)) {
        MakeRest(parent, kFirstPiece, Clock::time_point::max());
      } else {
        return nullptr;
      }
    }
    parent = path.back();
  }
  return ItemOf(node);
}

HTREEITEM TreeItems::NearestShown(std::uint32_t node) const {
  for (Node above = At(node).Parent(); above; above = above.Parent()) {
    if (!above.Expanded()) node = above.Index();
  }
  return ItemOf(node);
}

// --- work

bool TreeItems::HasWork(bool mayMake) const {
  if (m_removing) return true;
  return mayMake && (m_rebuild || m_rebuilding || !m_changes.empty() || !m_grown.empty() || !m_near.empty() ||
                     !m_ahead.empty());
}

void TreeItems::Work(Clock::time_point until, bool mayMake) {
  if (m_working || m_held > 0 || !HasWork(mayMake)) return;
  const Counted quiet(m_quiet);
  struct Working {
    bool& flag;
    ~Working() { flag = false; }
  } const working{m_working = true};

  if (m_rebuild && mayMake) {
    // Wasted while nodes are still being expanded or collapsed one after the other.
    if (std::exchange(m_stirred, false) && until != Clock::time_point::max()) return;
    m_rebuild = false;
    m_rebuilding = true;
    Forget(NodeOf(m_native.Next(TVGN_FIRSTVISIBLE)));
  }
  if (!Remove(until)) return;
  if (mayMake) Make(until);
  m_removing.reset();
  if (m_rebuilding && mayMake && m_grown.empty() && m_near.empty() && m_ahead.empty()) {
    m_rebuilding = false;
    m_rebuilt = m_anchor;
  }
}

bool TreeItems::Remove(Clock::time_point until) {
  if (!m_removing) return true;
  if (m_native.Selected() != nullptr) m_native.Select(nullptr);
  if (const HTREEITEM top = m_native.Next(TVGN_ROOT)) m_native.ScrollTo(top);
  while (!m_doomed.empty()) {
    m_native.Delete(m_doomed.back());
    m_doomed.pop_back();
    if (Clock::now() >= until) return false;
  }
  m_doomed = {};
  m_native.Delete(TVI_ROOT);
  return true;
}

void TreeItems::Make(Clock::time_point until) {
  const bool expands = std::any_of(m_changes.begin(), m_changes.end(), [](const Change& change) {
    return change.property == NodeProperty::kExpanded;
  });
  std::optional<NativeTree::Pause> pause;
  if (expands || !m_grown.empty() || !m_near.empty() || !m_ahead.empty()) pause.emplace(m_native);
  for (const Change& change : std::exchange(m_changes, {})) Apply(change);
  MakeGrown(until);
  MakeNear(until);
  MakeAhead(until);
}

void TreeItems::Apply(const Change& change) {
  const HTREEITEM item = ItemOf(change.node);
  if (item == nullptr) return;
  const Node node = At(change.node);
  switch (change.property) {
    case NodeProperty::kText:
      m_native.SetText(item, node.Text());
      break;
    case NodeProperty::kBold:
      m_native.SetState(item, node.Bold() ? TVIS_BOLD : 0, TVIS_BOLD);
      break;
    case NodeProperty::kExpanded: {
      const bool expanded = m_native.State(item, TVIS_EXPANDED) != 0;
      if (expanded == node.Expanded() || !node.HasChildren()) break;
      if (!expanded) Open(change.node);
      m_native.Expand(item, !expanded);
      break;
    }
    case NodeProperty::kImage:
    case NodeProperty::kChecked:
    case NodeProperty::kMixed:
    case NodeProperty::kSelected:
      break;
  }
}

}  // namespace kxrestore::win32
