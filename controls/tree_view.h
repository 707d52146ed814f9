// A tree of nodes with text, key, tag, image, check and expansion, made for a million nodes: a node takes
// some 35 bytes plus its texts, a text that its tag ends with takes nothing, and finding a key is one hash
// lookup. Nothing recurses, so depth is not limited.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "base/sorting.h"
#include "controls/control.h"
#include "controls/footer.h"
#include "controls/widgets.h"

namespace kxrestore::controls {

class TreeView;

// A handle to a node. An empty handle raises error 91 when used. A handle is valid until the tree is cleared
// or the node removed; after that it raises error 35601. Returned texts are valid as long, even if the node
// gets another text: replaced texts are freed only with the tree.
class Node {
 public:
  Node() = default;
  Node(TreeView* tree, std::uint32_t index) : m_tree(tree), m_index(index) {}

  explicit operator bool() const { return m_index != 0; }
  // Two handles to the same node.
  friend bool operator==(const Node& left, const Node& right) { return left.m_index == right.m_index; }

  std::uint32_t Index() const { return m_index; }  // from 1, in the order of adding
  std::string_view Text() const;
  std::string Key() const;
  std::string_view Tag() const;
  int Image() const;
  bool Checked() const;
  // Whether some nodes below are checked and some are not: drawn as a third state, independent of Checked.
  bool Mixed() const;
  bool Expanded() const;
  bool Bold() const;

  void SetText(std::string_view text);
  void SetTag(std::string_view tag);
  void SetImage(int image);
  void SetChecked(bool checked);  // raises nothing; the node is not mixed then
  void SetMixed(bool mixed);
  void SetExpanded(bool expanded);  // raises Expand or Collapse when it changes on a node with children
  void SetBold(bool bold);
  // Sets whether the file of the node is marked in the catalog.
  void Settle(bool settled);

  Node Parent() const;
  Node Child() const;         // the first
  Node Next() const;          // next sibling
  Node FirstSibling() const;  // itself included
  Node Root() const;          // the top node above it, itself when it is one
  bool HasChildren() const { return static_cast<bool>(Child()); }

 private:
  friend class TreeView;
  auto& Nodes() const;
  bool Has(std::uint16_t flag) const;
  bool Put(std::uint16_t flag, bool set, NodeProperty property);
  void Changed(NodeProperty property) const;

  TreeView* m_tree = nullptr;
  std::uint32_t m_index = 0;
};

class TreeView : public Control {
 public:
  TreeView(std::string name, Container* container, bool checkBoxes);
  ~TreeView() override;

  bool CheckBoxes() const { return m_checkBoxes; }
  const ImageList* Images() const { return m_images; }
  void SetImages(const ImageList* images) { m_images = images; }  // must outlive the tree

  // Adds a node as the last child of `parent`, or as the last top node without one. An empty key means none.
  // Error 35602 when another node has the key. Passing the tag here takes less memory than setting it later.
  Node Add(Node parent, std::string_view key, std::string_view text, int image = 0,
           std::string_view tag = {});
  // Finds the folder with this text below `parent` or adds it. The key of a folder is its parent's key, its
  // text and a backslash. It is built on demand: stored keys would take memory quadratic in the depth.
  Node FindOrAddFolder(Node parent, std::string_view text, int image);
  // Removes a node and its descendants. Other indexes stay the same, and indexes are not reused before the
  // tree is cleared. Looking up a removed one is error 35601.
  void Remove(Node node);
  void Clear();

  // Sorts the children of a node, folders first, when it is first expanded or InOrder asks for them. Top
  // nodes, nodes added later and very large folders stay in the order of adding, as do all nodes without a
  // sort key. Indexes never change.
  void SetSortKey(SortKey sortKey) { m_sortKey = std::move(sortKey); }
  // Sorts the children of a node and returns the first.
  Node InOrder(Node node);

  std::size_t Count() const;
  Node Find(std::string_view key) const;  // nothing when there is none
  Node Item(std::string_view key) const;  // error 35601 when there is none
  Node Item(std::uint32_t index) const;   // error 35600 outside 1..highest index given
  Node FirstRoot() const;
  Node SelectedItem() const { return m_selected; }
  void SetSelectedItem(Node node);  // raises nothing

  // Counts of nodes with a tag, which stand for files: all, the checked ones, and the checked ones not yet
  // marked in the catalog. Maintained with every change.
  struct FileCounts {
    std::size_t all = 0, checked = 0, pending = 0;
  };
  FileCounts Files() const;
  // Bytes held for the nodes and their texts.
  std::size_t MemoryUsed() const;

  // The text of a node's tool tip, empty for none. May take some milliseconds.
  std::function<std::string(Node)> Tip;
  std::string UserTip(Node node);
  // Whether a node has the badge of marked files. Called whenever the node is painted.
  std::function<bool(Node)> Badge;
  void BadgesChanged();
  // Describes the line below the tree; without it there is none.
  std::function<FooterText()> DescribeFooter;

  std::function<void(Node)> NodeClick;  // the user chose it, by pointer or key
  std::function<void(Node)> NodeCheck;  // the user changed its check
  std::function<void(Node)> Expand;
  std::function<void(Node)> Collapse;

  void UserClickNode(Node node);
  void UserCheck(Node node, bool checked);
  void UserExpand(Node node, bool expanded);

 private:
  friend class Node;
  struct Store;
  TreePeer* Tree() const { return static_cast<TreePeer*>(GetPeer()); }
  Node Handle(std::uint32_t node) const;
  bool AcceptsUserOn(Node node) const;
  static void AddedBelowTicked(Node parent);

  bool m_checkBoxes;
  SortKey m_sortKey;
  const ImageList* m_images = nullptr;
  Node m_selected;
  std::unique_ptr<Store> m_store;
};

}  // namespace kxrestore::controls
