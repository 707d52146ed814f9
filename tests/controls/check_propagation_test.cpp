#include "controls/check_propagation.h"

#include <gtest/gtest.h>

#include <string>

#include "controls/form.h"
#include "platform/headless/recording_peer.h"
#include "tests/raises.h"

namespace kxrestore::controls {
namespace {

class CheckPropagationTest : public ::testing::Test {
 protected:
  void Set(Node node, bool checked) {
    node.SetChecked(checked);
    CheckParents(node);
    CheckChildren(node);
  }
  std::string Checked() const {
    std::string texts;
    for (std::uint32_t index = 1; index <= tree.Count(); ++index) {
      if (tree.Item(index).Checked()) texts += std::string(tree.Item(index).Text()) + " ";
    }
    return texts;
  }

  Form form{"form"};
  TreeView tree{"tree", &form, true};
  Node root = tree.Add({}, "", "C:\\");
  Node data = tree.Add(root, "", "Data");
  Node reports = tree.Add(data, "", "Reports");
  Node a = tree.Add(reports, "", "a");
  Node b = tree.Add(reports, "", "b");
  Node c = tree.Add(data, "", "c");
  Node other = tree.Add({}, "", "D:\\");
};

TEST_F(CheckPropagationTest, AFolderIsCheckedWhileAnythingInItIs) {
  Set(a, true);
  EXPECT_EQ("C:\\ Data Reports a ", Checked());
  Set(c, true);
  Set(a, false);
  EXPECT_EQ("C:\\ Data c ", Checked());
  Set(c, false);
  EXPECT_EQ("", Checked());
  Set(root, true);
  EXPECT_EQ("C:\\ Data Reports a b c ", Checked());
  other.SetChecked(true);
  Set(root, false);
  EXPECT_EQ("D:\\ ", Checked());
  EXPECT_RAISES(91, CheckParents({}));
  EXPECT_RAISES(91, CheckChildren({}));
}

TEST_F(CheckPropagationTest, ANodeWithTheRootsTextEndsTheClimb) {
  Node same = tree.Add(reports, "", "C:\\");
  Set(same, true);
  EXPECT_EQ("C:\\ ", Checked());

  // A parent with that text is still set itself; nothing above it is.
  const Node below = tree.Add(same, "", "below");
  same.SetChecked(false);
  Set(below, true);
  EXPECT_EQ("C:\\ below ", Checked());
  Set(tree.Add(reports, "", "c:\\"), true);
  EXPECT_TRUE(root.Checked()) << "in another case it is another text";
}

TEST_F(CheckPropagationTest, ParentsAreSetBeforeTheirChildrenInTreeOrder) {
  platform::PeerLog log;
  platform::Record(tree, log);
  root.SetChecked(true);
  CheckChildren(root);
  std::string order;
  for (const auto& [node, property] : log.nodesChanged) order += tree.Item(node).Text()[0];
  EXPECT_EQ("CDRabc", order);
}

TEST_F(CheckPropagationTest, TheCountOfCheckedSiblingsEndsAt16Bit) {
  Node folder = tree.Add(root, "", "folder");
  Node last;
  for (int i = 0; i < 32768; ++i) {
    last = tree.Add(folder, "", "file");
    last.SetChecked(i < 32767);
  }
  CheckParents(last);
  EXPECT_TRUE(folder.Checked());
  folder.SetChecked(false);
  last.SetChecked(true);
  EXPECT_RAISES(6, CheckParents(last));
  EXPECT_FALSE(folder.Checked());
}

TEST_F(CheckPropagationTest, DepthIsNoLimit) {
  Node node = other;
  for (int depth = 0; depth < 100000; ++depth) node = tree.Add(node, "", std::to_string(depth));
  EXPECT_EQ(other, node.Root());
  Set(node, true);
  EXPECT_TRUE(other.Checked());
  Set(other, false);
  EXPECT_EQ("", Checked());
  tree.Remove(other);
  EXPECT_EQ(6u, tree.Count());
}

}  // namespace
}  // namespace kxrestore::controls
