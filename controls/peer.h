// What a front end attaches to each control: the peer displays the control and reports the user's input.
//
// Contract for implementers:
//  - The control holds all state. A peer stores nothing that it could not rebuild from its control, and it
//    may be attached and detached at any time.
//  - A peer is notified after each change and then reads the control. It calls no setters, only the User...
//    members, which change the state for the user and raise the events. These changes are notified as well,
//    except typed text, a selected node and a new window size.
//  - Notifications may come once for each of a million rows. A peer without visible work returns at once. It
//    may defer its work until pending messages are next processed.
//  - FreezeRedraw nests. Nothing is painted while frozen; the last release displays the current state.
//  - Positions and sizes are twips (1/1440 inch), relative to the container's client area.
//  - A peer must not throw into a control.
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
  virtual void NodeRemoved(std::uint32_t node) = 0;  // before it is removed; of a branch only its top
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
