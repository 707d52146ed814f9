#include "controls/tree_view.h"

#include "controls/errors.h"
#include "controls/tree_store.h"

namespace kxrestore::controls {

auto& Node::Nodes() const {
  if (m_tree == nullptr) ThrowObjectVariableNotSet();
  return *m_tree->m_store;
}

std::string_view Node::Text() const {
  return TreeView::Store::TextsOf(Nodes().At(m_index)).text;
}
std::string Node::Key() const {
  Nodes().At(m_index);
  return Nodes().Key(m_index);
}
std::string_view Node::Tag() const {
  return TreeView::Store::TextsOf(Nodes().At(m_index)).tag;
}
int Node::Image() const {
  return Nodes().At(m_index).image;
}
bool Node::Has(std::uint16_t flag) const {
  return (Nodes().At(m_index).flags & flag) != 0;
}
bool Node::Checked() const {
  return Has(TreeView::Store::kChecked);
}
bool Node::Mixed() const {
  return Has(TreeView::Store::kMixed);
}
bool Node::Expanded() const {
  return Has(TreeView::Store::kExpanded);
}
bool Node::Bold() const {
  return Has(TreeView::Store::kBold);
}

void Node::Changed(NodeProperty property) const {
  if (TreePeer* const peer = m_tree->Tree()) peer->NodeChanged(m_index, property);
}

bool Node::Put(std::uint16_t flag, bool set, NodeProperty property) {
  auto& nodes = Nodes();
  auto& record = nodes.At(m_index);
  if (((record.flags & flag) != 0) == set) return false;
  nodes.CountOut(record);
  record.flags ^= flag;
  nodes.CountIn(record);
  Changed(property);
  return true;
}

void Node::SetText(std::string_view text) {
  if (Text() == text) return;
  Nodes().SetText(m_index, text);
  Changed(NodeProperty::kText);
}

void Node::SetTag(std::string_view tag) {
  if (Tag() != tag) Nodes().SetTag(m_index, tag);
}

void Node::SetImage(int image) {
  auto& record = Nodes().At(m_index);
  if (record.image == image) return;
  record.image = TreeView::Store::CheckedImage(image);
  Changed(NodeProperty::kImage);
}

void Node::SetMixed(bool mixed) {
  Put(TreeView::Store::kMixed, mixed, NodeProperty::kMixed);
}
void Node::SetChecked(bool checked) {
  SetMixed(false);
  Put(TreeView::Store::kChecked, checked, NodeProperty::kChecked);
}
void Node::Settle(bool settled) {
  Put(TreeView::Store::kSettled, settled, NodeProperty::kChecked);
}
void Node::SetBold(bool bold) {
  Put(TreeView::Store::kBold, bold, NodeProperty::kBold);
}

void Node::SetExpanded(bool expanded) {
  if (!Put(TreeView::Store::kExpanded, expanded, NodeProperty::kExpanded) || !HasChildren()) return;
  if (expanded) m_tree->InOrder(*this);
  const auto& event = expanded ? m_tree->Expand : m_tree->Collapse;
  if (event) event(*this);
}

Node Node::Parent() const {
  return {m_tree, Nodes().At(m_index).parent};
}
Node Node::Child() const {
  return {m_tree, Nodes().At(m_index).firstChild};
}
Node Node::Next() const {
  return {m_tree, Nodes().At(m_index).next};
}

Node Node::FirstSibling() const {
  auto& nodes = Nodes();
  return {m_tree, nodes.FirstChildOf(nodes.At(m_index).parent)};
}

Node Node::Root() const {
  auto& nodes = Nodes();
  std::uint32_t node = m_index;
  while (const std::uint32_t parent = nodes.At(node).parent) node = parent;
  return {m_tree, node};
}

TreeView::TreeView(std::string name, Container* container, bool checkBoxes)
    : Control(Kind::kTreeView, std::move(name), container),
      m_checkBoxes(checkBoxes),
      m_store(std::make_unique<Store>()) {}

TreeView::~TreeView() {
  AttachPeer(nullptr);
}  // destroys the peer before the nodes that it reads

Node TreeView::Add(Node parent, std::string_view key, std::string_view text, int image,
                   std::string_view tag) {
  if (parent && parent.m_tree != this) ThrowElementNotFound();
  const std::uint32_t node = m_store->Add(parent.m_index, key, text, image, tag);
  if (parent && parent.Checked()) AddedBelowTicked(parent);
  if (Tree() != nullptr) Tree()->NodeAdded(node);
  return {this, node};
}

Node TreeView::FindOrAddFolder(Node parent, std::string_view text, int image) {
  if (parent && parent.m_tree != this) ThrowElementNotFound();
  const std::uint32_t highest = m_store->Highest();
  const std::uint32_t node = m_store->FindOrAddFolder(parent.m_index, text, image);
  if (node > highest && parent && parent.Checked()) AddedBelowTicked(parent);
  if (node > highest && Tree() != nullptr) Tree()->NodeAdded(node);
  return {this, node};
}

// A new node is not ticked, so its ancestors are no longer ticked as a whole.
void TreeView::AddedBelowTicked(Node parent) {
  for (; parent && !parent.Mixed(); parent = parent.Parent()) parent.SetMixed(true);
}

void TreeView::Remove(Node node) {
  if (node && node.m_tree != this) ThrowElementNotFound();
  m_store->At(node.m_index);
  if (Tree() != nullptr) Tree()->NodeRemoved(node.m_index);
  m_store->Remove(node.m_index);
  if (m_selected && !m_store->Lives(m_selected.m_index)) m_selected = {};
}

void TreeView::Clear() {
  m_selected = {};
  m_store = std::make_unique<Store>();
  if (Tree() != nullptr) Tree()->Cleared();
}

std::size_t TreeView::Count() const {
  return m_store->Count();
}

Node TreeView::Handle(std::uint32_t node) const {
  return node == 0 ? Node() : Node(const_cast<TreeView*>(this), node);
}

Node TreeView::Find(std::string_view key) const {
  return key.empty() ? Node() : Handle(m_store->Find(key));
}

Node TreeView::Item(std::string_view key) const {
  const Node node = Find(key);
  if (!node) ThrowElementNotFound();
  return node;
}

Node TreeView::Item(std::uint32_t index) const {
  if (index < 1 || index > m_store->Highest()) ThrowIndexOutOfBounds();
  m_store->At(index);
  return Handle(index);
}

Node TreeView::FirstRoot() const {
  return Handle(m_store->FirstChildOf(0));
}

void TreeView::SetSelectedItem(Node node) {
  if (node) m_store->At(node.m_index);
  if (node == m_selected) return;
  const Node told = node ? node : m_selected;
  m_selected = node;
  told.Changed(NodeProperty::kSelected);
}

TreeView::FileCounts TreeView::Files() const {
  return m_store->files;
}

std::size_t TreeView::MemoryUsed() const {
  return m_store->MemoryUsed();
}

Node TreeView::InOrder(Node node) {
  auto& flags = m_store->At(node.m_index).flags;
  if (m_sortKey && (flags & Store::kOrdered) == 0) {
    flags |= Store::kOrdered;
    m_store->OrderChildren(node.m_index, m_sortKey);
  }
  return node.Child();
}

std::string TreeView::UserTip(Node node) {
  return Tip && AcceptsUserOn(node) ? Tip(node) : std::string();
}

void TreeView::BadgesChanged() {
  if (Tree() != nullptr) Tree()->BadgesChanged();
}

// A front end may report input on a node that was removed meanwhile.
bool TreeView::AcceptsUserOn(Node node) const {
  return AcceptsUser() && m_store->Lives(node.m_index);
}

void TreeView::UserClickNode(Node node) {
  if (!AcceptsUserOn(node)) return;
  m_selected = node;
  if (NodeClick) NodeClick(node);
}

void TreeView::UserCheck(Node node, bool checked) {
  if (!m_checkBoxes || !AcceptsUserOn(node)) return;
  node.SetChecked(checked);
  if (NodeCheck) NodeCheck(node);
}

void TreeView::UserExpand(Node node, bool expanded) {
  if (AcceptsUserOn(node)) node.SetExpanded(expanded);
}

}  // namespace kxrestore::controls
