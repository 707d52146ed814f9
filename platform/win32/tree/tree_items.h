// Creates and removes the items of the native control for the nodes of a tree.
//
// Items exist for visible nodes: the top nodes and the children of expanded nodes. When many nodes are
// expanded at once, items are created ahead in slices up to kMaxAhead, and the rest when the user scrolls
// near them (`Painted`). A very long folder shows its first piece at first, and the next when the end comes
// into view. Removing many items is slow on some systems, so it is done in slices, too.
//
// Changes are recorded and `Work` processes them. Nodes are identified by their index; 0 is the parent of the
// top nodes.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "controls/tree_view.h"
#include "platform/win32/tree/native_tree.h"

namespace kxrestore::win32 {

class TreeItems {
 public:
  using Clock = std::chrono::steady_clock;

  static constexpr std::size_t kMaxAhead = 120'000;
  static constexpr std::uint32_t kFirstPiece = 10'000;  // children shown when a folder is opened
  static constexpr std::uint32_t kNextPiece = 2'000;    // and when its end comes into view

  // `state` is the state image that every item gets.
  TreeItems(controls::TreeView& tree, NativeTree& native, UINT state);

  // Notifications of the model, which take a few nanoseconds for a node without an item. NodeRemoved and
  // Cleared must be called before any other member.
  void NodeAdded(std::uint32_t node);
  void NodeRemoved(std::uint32_t node);
  void NodeChanged(std::uint32_t node, controls::NodeProperty property);  // text, bold or expansion
  void Cleared();

  // Processes changes until the time is over; a piece once started is finished. `mayMake` is false while the
  // control is frozen: then items are removed, but none created.
  void Work(Clock::time_point until, bool mayMake);
  bool HasWork(bool mayMake) const;
  // No item is removed while the control handles a mouse message: it keeps references to items.
  void Hold(bool held) { m_held += held ? 1 : -1; }

  // Whether the remaining items belong to a cleared tree and wait for removal.
  bool Emptying() const { return m_removing && !m_rebuild && !m_rebuilding; }

  // Whether this class is changing the control.
  bool Quiet() const { return m_quiet > 0; }
  // Whether all items were recreated since the last call; if so, the node that was at the top of the window,
  // 0 without one.
  std::optional<std::uint32_t> TakeRebuilt() { return std::exchange(m_rebuilt, std::nullopt); }

  HTREEITEM ItemOf(std::uint32_t node) const { return node < m_items.size() ? m_items[node] : nullptr; }
  std::uint32_t NodeOf(HTREEITEM item) const;
  std::size_t Count() const { return m_count; }

  // The control is about to show the children of a node.
  void Open(std::uint32_t node);
  // An item came into view.
  void Painted(std::uint32_t node);
  // Creates the items of a node and its ancestors; nullptr when that would take too many.
  HTREEITEM Reach(std::uint32_t node);
  // The item of the node or of its nearest ancestor that no collapsed node hides.
  HTREEITEM NearestShown(std::uint32_t node) const;

  void ItemDeleted(std::uint32_t node, HTREEITEM item);

 private:
  enum Flag : std::uint8_t {
    kOpened = 1,        // has items for children, or would have
    kFilesMissing = 2,  // of its first piece only the folders have items
    kInQueue = 4,       // in m_near
    kHoldsOpened = 8,   // a child of it is opened
  };
  // Where the children of an opened node that have no items yet begin.
  struct Rest {
    std::uint32_t next;
    std::uint32_t last;  // the child before it
  };
  struct Change {
    std::uint32_t node;
    controls::NodeProperty property;
  };

  controls::Node At(std::uint32_t node) const { return {&m_tree, node}; }
  controls::Node FirstChild(std::uint32_t node) const {
    return node == 0 ? m_tree.FirstRoot() : m_tree.InOrder(At(node));
  }
  HTREEITEM ParentItem(std::uint32_t node) const { return node == 0 ? TVI_ROOT : m_items[node]; }
  bool Has(std::uint32_t node, Flag flag) const {
    return node < m_flags.size() && (m_flags[node] & flag) != 0;
  }
  void Mark(std::uint32_t node, unsigned flags);
  void MarkOpened(std::uint32_t node);
  void Unmark(std::uint32_t node, unsigned flags) {
    m_flags[node] = static_cast<std::uint8_t>(m_flags[node] & ~flags);
  }

  void MakeItem(std::uint32_t node, HTREEITEM parent, HTREEITEM after);
  bool WantsOpening(std::uint32_t node) const;
  void OpenFolders(std::uint32_t node);
  void MakeFiles(std::uint32_t node);
  void MakeRest(std::uint32_t node, std::uint32_t most, Clock::time_point until);
  void OpenPiece(std::uint32_t node, Clock::time_point until);

  void Forget(std::uint32_t anchor);
  bool Remove(Clock::time_point until);
  void Apply(const Change& change);
  void Make(Clock::time_point until);
  void MakeGrown(Clock::time_point until);
  void MakeNear(Clock::time_point until);
  void MakeAhead(Clock::time_point until);
  void QueueNear(std::uint32_t node);

  controls::TreeView& m_tree;
  NativeTree& m_native;
  UINT m_state;

  std::vector<HTREEITEM> m_items;       // by node
  std::vector<std::uint8_t> m_flags;    // by node
  std::vector<std::uint32_t> m_opened;  // in the order of opening, so after their parents
  std::unordered_map<std::uint32_t, Rest> m_rests;
  std::size_t m_count = 0;

  std::vector<Change> m_changes;
  std::vector<std::uint32_t> m_grown;  // opened nodes that got children
  std::vector<std::uint32_t> m_near;   // nodes that need items near what is in view
  // Nodes to open ahead, parents first: their folders, then, from the start again, their files.
  std::vector<std::uint32_t> m_ahead;
  std::size_t m_aheadFolders = 0, m_aheadFiles = 0;

  std::vector<HTREEITEM> m_doomed;  // items to remove with their descendants, from the back
  std::optional<NativeTree::Pause> m_removing;
  bool m_rebuild = false;
  std::uint32_t m_anchor = 0;
  std::optional<std::uint32_t> m_rebuilt;
  std::vector<std::uint32_t> m_run;

  bool m_stirred = false;  // many nodes are being expanded or collapsed
  bool m_rebuilding = false;

  int m_quiet = 0;
  int m_held = 0;
  bool m_working = false;
};

}  // namespace kxrestore::win32
