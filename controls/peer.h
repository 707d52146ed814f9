// What a front end attaches to each control: the peer shows the control's state and reports what the user
// does.
//
// Contract for whoever writes a set of peers:
//  - The control is the truth. A peer keeps nothing that it could not rebuild from its control; it may be
//  attached and
//    detached at any time, and a control works without one.
//  - A peer is told of every change after it was made, by the calls below, and then reads the control. It
//  never calls
//    a control's setters, only its User... members, which change the state as the user wished and raise the
//    events. It is told of those changes too, except of typed text, a selected node and a new window size,
//    which show already.
//  - Calls come often (a caption once a row of a million): a peer that has nothing visible to do returns at
//  once, and
//    one that has may show it later, but not later than the next time pending messages run.
//  - FreezeRedraw nests. While frozen nothing is painted; on the last release the peer shows the state as it
//  is.
//  - Positions and sizes are twips (1/1440 inch), relative to the container's client area.
//  - Nothing may be thrown out of a peer into a control.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kxrestore::controls {

enum class Property {
  kGeometry,
  kVisible,
  kEnabled,
  kCaption,  // also the text of text and combo boxes
  kToolTipText,
  kValue,       // check and option boxes, progress bar, selected tab, chosen drive, a list's filter line
  kItems,       // entries of combo boxes, tabs
  kAppearance,  // colours, border, mouse pointer, font, icon, a list's columns
  kWindowState,
  kTaskProgress,  // of the form
  kEmptyText,     // of lists and trees
};

class Peer {
 public:
  virtual ~Peer() = default;
  virtual void Changed(Property property) = 0;
  virtual void BringToFront() {}
  virtual void SetFocus() {}
  virtual void Refresh() {}
  virtual void FreezeRedraw(bool /*frozen*/) {}
};

enum class NodeProperty { kText, kImage, kChecked, kExpanded, kBold, kSelected, kMixed };

// Nodes are named by their index in the tree, from 1.
class TreePeer : public Peer {
 public:
  virtual void NodeAdded(std::uint32_t node) = 0;
  virtual void NodeRemoved(std::uint32_t node) = 0;  // told for the top of a removed branch, before it goes
  virtual void NodeChanged(std::uint32_t node, NodeProperty property) = 0;
  virtual void Cleared() = 0;
  // What TreeView::Badge says may have changed, of any node.
  virtual void BadgesChanged() {}
};

// Entries are named by their number in the list, from 1.
class ListPeer : public Peer {
 public:
  virtual void EntriesAdded(std::size_t newCount) = 0;
  virtual void TicksChanged(std::size_t first, std::size_t last) = 0;  // or whether they are pending
  virtual void RowsChanged() {}       // other entries are seen, or in another order
  virtual void SelectionChanged() {}  // by the user; the window shows it already
  virtual void Cleared() = 0;
};

}  // namespace kxrestore::controls
