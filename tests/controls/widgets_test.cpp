#include "controls/widgets.h"

#include <gtest/gtest.h>

#include "controls/form.h"
#include "platform/headless/recording_peer.h"
#include "tests/controls/raises.h"

namespace kxrestore::controls {
namespace {

using platform::PeerLog;
using platform::Record;

TEST(CheckBox, RaisesClickWhenItsValueChanges) {
  Form form("form");
  CheckBox box("box", &form, "&Only");
  std::vector<int> values;
  box.Click = [&] { values.push_back(box.Value()); };
  box.SetValue(0);
  box.SetValue(1);
  box.UserClick();
  box.UserClick();
  EXPECT_EQ(std::vector<int>({1, 0, 1}), values);
  EXPECT_RAISES(380, box.SetValue(2));
  EXPECT_EQ(1, box.Value());
}

TEST(OptionButton, ExcludesTheOthersOfItsContainerOnly) {
  Form form("form");
  Frame left("left", &form, ""), right("right", &form, "");
  OptionButton a("a", &left, "A"), b("b", &left, "B"), c("c", &right, "C");
  CheckBox neighbour("neighbour", &left, "");
  neighbour.SetValue(1);
  std::string clicks;
  a.Click = [&] {
    clicks += 'a';
    EXPECT_FALSE(b.Value());
  };
  b.Click = [&] {
    clicks += 'b';
    EXPECT_FALSE(a.Value());
  };
  PeerLog log;
  Record(a, log);

  c.SetValue(true);
  a.SetValue(true);
  b.UserClick();
  b.UserClick();  // is chosen already
  EXPECT_EQ("ab", clicks);
  EXPECT_TRUE(b.Value());
  EXPECT_TRUE(c.Value());
  EXPECT_EQ(1, neighbour.Value());
  EXPECT_EQ(2u, log.Count(Property::kValue));
  b.SetValue(false);
  EXPECT_EQ("ab", clicks);
  a.SetEnabled(false);
  a.UserClick();
  EXPECT_FALSE(a.Value());
}

TEST(TextAndComboBox, TypedTextIsNotToldBack) {
  Form form("form");
  TextBox text("text", &form);
  ComboBox combo("combo", &form);
  PeerLog log;
  Record(text, log);
  Record(combo, log);
  text.UserType("typed");
  combo.UserType("*.txt");
  EXPECT_TRUE(log.changed.empty());
  EXPECT_EQ("typed", text.Text());
  EXPECT_EQ("*.txt", combo.Text());
  text.SetLocked(true);
  text.UserType("more");
  EXPECT_EQ("typed", text.Text());
  combo.AddItem("*.txt");
  combo.SetText("");
  EXPECT_EQ(std::vector<Property>({Property::kItems, Property::kCaption}), log.changed);
  EXPECT_EQ(std::vector<std::string>({"*.txt"}), combo.Items());
}

TEST(TabStrip, SelectsWithinItsTabs) {
  Form form("form");
  TabStrip tabs("tabs", &form, {{"One", "1"}, {"Two", "2"}});
  int clicks = 0;
  tabs.Click = [&] { ++clicks; };
  tabs.SetSelectedIndex(1);
  EXPECT_EQ(0, clicks);
  tabs.UserSelect(2);
  EXPECT_EQ(2, tabs.SelectedIndex());
  for (const int outside : {0, 3, -1}) {
    EXPECT_RAISES(35600, tabs.SetSelectedIndex(outside));
    tabs.UserSelect(outside);
  }
  EXPECT_EQ(2, tabs.SelectedIndex());
  EXPECT_EQ(1, clicks);
}

}  // namespace
}  // namespace kxrestore::controls
