// The tree model: its nodes, their texts and keys, its notifications, and the propagation of check marks.
#include "controls/tree_view.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "controls/check_propagation.h"
#include "controls/form.h"
#include "platform/headless/recording_peer.h"
#include "tests/raises.h"

namespace kxrestore::controls {
namespace {

class TreeViewTest : public ::testing::Test {
 protected:
  // The texts of the tree. The children of a node follow it in parentheses.
  static std::string Shape(Node first) {
    std::string shape;
    for (Node node = first; node; node = node.Next()) {
      if (!shape.empty()) shape += ' ';
      shape += node.Text();
      if (node.HasChildren()) shape.append(1, '(').append(Shape(node.Child())).append(1, ')');
    }
    return shape;
  }

  Form form{"form"};
  TreeView tree{"tree", &form, true};
};

TEST_F(TreeViewTest, KeepsOrderAndIndexesWhenBranchesAreRemoved) {
  const Node a = tree.Add({}, "", "a");
  const Node b = tree.Add({}, "", "b");
  const Node a1 = tree.Add(a, "", "a1");
  tree.Add(b, "", "b1");
  const Node a2 = tree.Add(a, "", "a2");
  const Node leaf = tree.Add(a2, "leaf", "leaf");
  const Node a3 = tree.Add(a, "", "a3");
  EXPECT_EQ("a(a1 a2(leaf) a3) b(b1)", Shape(tree.FirstRoot()));
  EXPECT_EQ(a1, a3.FirstSibling());
  EXPECT_EQ(a, b.FirstSibling());
  EXPECT_EQ(a, leaf.Root());
  EXPECT_EQ(a2, leaf.Parent());
  EXPECT_FALSE(b.Parent());
  EXPECT_RAISES(35600, tree.Item(0));
  EXPECT_RAISES(35600, tree.Item(8));

  tree.SetSelectedItem(leaf);
  tree.Remove(a2);
  EXPECT_EQ("a(a1 a3) b(b1)", Shape(tree.FirstRoot()));
  EXPECT_EQ(5u, tree.Count());
  EXPECT_EQ("a3", tree.Item(7).Text());
  EXPECT_RAISES(35601, tree.Item(6));
  EXPECT_RAISES(35601, a2.Text());
  EXPECT_RAISES(35601, tree.Add(a2, "", "lost"));
  EXPECT_FALSE(tree.Find("leaf"));
  EXPECT_FALSE(tree.SelectedItem());
  const Node a4 = tree.Add(a, "", "a4");
  EXPECT_EQ(8u, a4.Index());
  tree.Remove(a1);
  EXPECT_EQ(a3, a.Child());
  tree.Remove(a4);
  EXPECT_FALSE(a3.Next());
  tree.Remove(a3);
  EXPECT_FALSE(a.HasChildren());
  tree.Remove(a);
  EXPECT_EQ("b(b1)", Shape(tree.FirstRoot()));
}

TEST_F(TreeViewTest, KeepsKeysTextsAndTags) {
  const struct {
    std::string key, text, tag;
  } all[] = {{"", "", ""},
             {"k1", "", "tag"},
             {"", "report.doc", "C:\\Data\\report.doc"},
             {"C:\\Data\\", "Data", ""},
             {"c:\\data\\", "same", "same"},
             {"k3", "longer than its tag", "tag"},
             {std::string("nul\0key", 7), "nul", std::string("\0", 1)},
             {"long", std::string(100000, 'x'), std::string(70000, 'y')}};
  for (const auto& [key, text, tag] : all) tree.Add({}, key, text, 3, tag);
  int index = 0;
  for (const auto& [key, text, tag] : all) {
    const Node node = tree.Item(++index);
    EXPECT_EQ(text, node.Text());
    EXPECT_EQ(tag, node.Tag());
    EXPECT_EQ(key, node.Key());
    EXPECT_EQ(key.empty() ? Node() : node, tree.Find(key));
  }
  EXPECT_RAISES(35601, tree.Item("C:\\Data"));
}

TEST_F(TreeViewTest, ATextCanBeReplacedByAPartOfItself) {
  Node node = tree.Add({}, "key", "doc", 0, "C:\\a.doc");
  const std::string_view tag = node.Tag();
  node.SetTag(node.Tag().substr(3));
  EXPECT_EQ("a.doc", node.Tag());
  EXPECT_EQ("doc", node.Text());
  node.SetText(node.Tag());
  node.SetTag("");
  EXPECT_EQ("a.doc", node.Text());
  EXPECT_EQ("", node.Tag());
  EXPECT_EQ(node, tree.Find("key"));
  EXPECT_EQ("C:\\a.doc", tag) << "earlier views stay valid";
}

TEST_F(TreeViewTest, NullAndRemovedNodesRaiseErrors) {
  const Node node = tree.Add({}, "", "a");
  TreeView other("other", &form, true);
  EXPECT_RAISES(91, Node().Text());
  EXPECT_RAISES(91, node.Parent().Text());
  EXPECT_RAISES(91, node.Child().SetChecked(true));
  EXPECT_RAISES(91, tree.Remove({}));
  EXPECT_RAISES(35601, other.Add(node, "", "c"));
  EXPECT_RAISES(380, tree.Add({}, "", "d", 100000));
  EXPECT_EQ(1u, tree.Count());
  tree.Clear();
  EXPECT_RAISES(35601, node.Text());
  EXPECT_RAISES(35601, tree.SetSelectedItem(node));
}

TEST_F(TreeViewTest, ExpandAndCollapseAreRaisedOnNodesWithChildren) {
  Node folder = tree.Add({}, "", "folder");
  Node file = tree.Add(folder, "", "file");
  std::string events;
  tree.Expand = [&](Node node) { events.append(1, '+').append(node.Text()); };
  tree.Collapse = [&](Node node) { events.append(1, '-').append(node.Text()); };
  folder.SetExpanded(false);
  folder.SetExpanded(true);
  folder.SetExpanded(true);
  file.SetExpanded(true);
  tree.UserExpand(folder, false);
  EXPECT_EQ("+folder-folder", events);
  EXPECT_TRUE(file.Expanded());
}

TEST_F(TreeViewTest, TellsThePeerOfChangesAndTheFormOfTheUser) {
  platform::PeerLog log;
  platform::Record(tree, log);
  Node a = tree.Add({}, "", "a"), b = tree.Add({}, "", "b");
  std::string events;
  tree.NodeClick = [&](Node node) { events += "click " + std::string(node.Text()) + ";"; };
  tree.NodeCheck = [&](Node node) {
    events += (node.Checked() ? "check " : "clear ") + std::string(node.Text()) + ";";
  };

  for (int i = 0; i < 2; ++i) a.SetChecked(true);
  a.SetBold(true);
  a.SetImage(5);
  a.SetText("A");
  tree.SetSelectedItem(a);
  tree.SetSelectedItem({});
  using Change = std::pair<std::uint32_t, NodeProperty>;
  EXPECT_EQ(std::vector<Change>({{1, NodeProperty::kChecked},
                                 {1, NodeProperty::kBold},
                                 {1, NodeProperty::kImage},
                                 {1, NodeProperty::kText},
                                 {1, NodeProperty::kSelected},
                                 {1, NodeProperty::kSelected}}),
            log.nodesChanged);
  EXPECT_EQ("", events);

  log.nodesChanged.clear();
  tree.UserClickNode(b);
  EXPECT_EQ(b, tree.SelectedItem());
  EXPECT_TRUE(log.nodesChanged.empty());
  tree.UserCheck(b, true);
  tree.UserCheck(b, false);
  tree.Remove(b);
  tree.UserClickNode(b);
  tree.UserCheck(b, true);
  tree.SetEnabled(false);
  tree.UserClickNode(a);
  tree.UserCheck(a, false);
  EXPECT_EQ("click b;check b;clear b;", events);
  EXPECT_TRUE(a.Checked());
  EXPECT_EQ(std::vector<std::uint32_t>({1, 2}), log.nodesAdded);
  EXPECT_EQ(std::vector<std::uint32_t>({2}), log.nodesRemoved);
  tree.Clear();
  EXPECT_EQ(1, log.cleared);

  TreeView plain("plain", &form, false);
  const Node node = plain.Add({}, "", "no box");
  plain.UserCheck(node, true);
  EXPECT_FALSE(node.Checked());
}

TEST_F(TreeViewTest, FindsEveryKeyThroughRandomChanges) {
  std::mt19937 random(7);
  std::map<std::string, std::uint32_t> expected;
  for (int round = 0; round < 20000; ++round) {
    const std::string key = "key" + std::to_string(random() % 3000);
    const auto known = expected.find(key);
    if (known == expected.end()) {
      EXPECT_FALSE(tree.Find(key));
      expected[key] = tree.Add({}, key, key).Index();
    } else if (random() % 2 == 0) {
      tree.Remove(tree.Item(key));
      expected.erase(known);
    } else {
      EXPECT_RAISES(35602, tree.Add({}, key, key));
    }
  }
  EXPECT_EQ(expected.size(), tree.Count());
  std::set<std::uint32_t> living, linked;
  for (const auto& [key, index] : expected) {
    living.insert(index);
    EXPECT_EQ(index, tree.Find(key).Index());
  }
  for (Node node = tree.FirstRoot(); node; node = node.Next()) linked.insert(linked.end(), node.Index());
  EXPECT_EQ(living, linked);
}

TEST_F(TreeViewTest, FoldersHaveTheKeysOfTheirPaths) {
  platform::PeerLog log;
  platform::Record(tree, log);
  const Node drive = tree.Add({}, "C:\\", "C:\\");
  Node data = tree.FindOrAddFolder(drive, "Data", 1);
  Node reports = tree.FindOrAddFolder(data, "Reports", 1);
  const Node other = tree.FindOrAddFolder(drive, "Reports", 1);
  EXPECT_EQ(data, tree.FindOrAddFolder(drive, "Data", 1));
  EXPECT_EQ(reports, tree.FindOrAddFolder(data, "Reports", 1));
  EXPECT_EQ(4u, tree.Count());
  EXPECT_EQ(std::vector<std::uint32_t>({1, 2, 3, 4}), log.nodesAdded);
  EXPECT_EQ("C:\\Data\\Reports\\", reports.Key());
  EXPECT_EQ(reports, tree.Find("C:\\Data\\Reports\\"));
  EXPECT_EQ(other, tree.Find("C:\\Reports\\"));
  for (const char* key :
       {"C:\\Data\\Reports", "Data\\Reports\\", "C:\\Data\\Reports\\\\", "\\", "Reports\\"}) {
    EXPECT_FALSE(tree.Find(key)) << key;
  }

  // Explicit keys and path keys share one namespace.
  EXPECT_RAISES(35602, tree.Add({}, "C:\\Data\\", "again"));
  const Node own = tree.Add({}, "C:\\Own\\", "own");
  EXPECT_EQ(own, tree.FindOrAddFolder(drive, "Own", 1));
  const Node deep = tree.FindOrAddFolder(tree.Add({}, "red", "red"), "deep", 1);
  EXPECT_EQ(deep, tree.FindOrAddFolder(tree.Add({}, "re", "re"), "ddeep", 1));

  // A change of the text changes neither the key nor the keys below it.
  data.SetTag("tag");
  data.SetText("Renamed");
  EXPECT_EQ("C:\\Data\\", data.Key());
  EXPECT_EQ("tag", data.Tag());
  EXPECT_EQ(reports, tree.Find("C:\\Data\\Reports\\"));
  EXPECT_EQ(data, tree.FindOrAddFolder(drive, "Data", 1));

  tree.Remove(data);
  EXPECT_FALSE(tree.Find("C:\\Data\\Reports\\"));
  EXPECT_NE(data, tree.FindOrAddFolder(drive, "Data", 1));
  EXPECT_RAISES(35601, tree.FindOrAddFolder(reports, "lost", 1));
}

TEST_F(TreeViewTest, ManyNodesUseLittleMemoryBesideTheirTexts) {
  const Node root = tree.Add({}, "", "root");
  constexpr int kNodes = 100000;
  for (int i = 0; i < kNodes; ++i) {
    const std::string name = "file" + std::to_string(100000 + i) + ".doc";
    tree.Add(root, "", name, 2, "C:\\Data\\" + std::string(80 - 8 - name.size(), 'd') + name);
  }
  EXPECT_LT(tree.MemoryUsed(), kNodes * 120u);
  tree.Clear();
  EXPECT_LT(tree.MemoryUsed(), 100000u);
}

TEST_F(TreeViewTest, CheckMarksPropagateAtAnyDepth) {
  Node root = tree.Add({}, "", "root"), node = root;
  for (int depth = 0; depth < 100000; ++depth) node = tree.Add(node, "", std::to_string(depth));
  EXPECT_EQ(root, node.Root());
  node.SetChecked(true);
  CheckParents(node);
  EXPECT_TRUE(root.Checked());
  root.SetChecked(false);
  CheckChildren(root);
  EXPECT_FALSE(node.Checked());
  tree.Remove(root);
  EXPECT_EQ(0u, tree.Count());
  EXPECT_RAISES(91, CheckParents({}));
  EXPECT_RAISES(91, CheckChildren({}));
}

}  // namespace
}  // namespace kxrestore::controls
