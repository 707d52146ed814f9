#include "controls/splitters.h"

#include <gtest/gtest.h>

#include "base/error.h"
#include "controls/form.h"
#include "controls/widgets.h"
#include "platform/headless/recording_peer.h"

namespace kxrestore::controls {
namespace {

// The same cases test both bars along the axis of their movement. The parameter is true for SplitVertical,
// which moves left and right.
class SplitBarTest : public ::testing::TestWithParam<bool> {
 protected:
  SplitBarTest() {
    Put(before, 0, 1000);
    Put(Bar(), 1000, 60);
    Put(after, 1060, 1940);
    AddBefore(before);
    AddAfter(after);
  }

  void AddBefore(Control& control) {
    GetParam() ? sideways.AddControlLeft(control) : upright.AddControlTop(control);
  }
  void AddAfter(Control& control) {
    GetParam() ? sideways.AddControlRight(control) : upright.AddControlBottom(control);
  }
  SplitBar& Bar() { return GetParam() ? static_cast<SplitBar&>(sideways) : upright; }
  void Put(Control& control, int position, int extent) {
    GetParam() ? control.Move(position, 11, extent, 22) : control.Move(11, position, 22, extent);
  }
  int At(const Control& control) const { return GetParam() ? control.Left() : control.Top(); }
  int Extent(const Control& control) const { return GetParam() ? control.Width() : control.Height(); }
  void SetLimits(int near, int far) {
    upright.SetMinTopHeight(near);
    upright.SetMinBottomHeight(far);
    sideways.SetMinLeftWidth(near);
    sideways.SetMinRightWidth(far);
  }
  void Drag(int by, int buttons = SplitBar::kLeftButton) {
    Bar().UserMouseMoveOver(buttons, GetParam() ? by : 9999, GetParam() ? 9999 : by);
  }

  // The extent of the control before the bar, the bar's position, the position and extent of the control
  // after it.
  std::string Places() {
    std::string places;
    for (const int place : {Extent(before), At(Bar()), At(after), Extent(after)}) {
      places.append(places.empty() ? "" : " ").append(std::to_string(place));
    }
    return places;
  }

  Form form{"form"};
  PictureBox before{"before", &form}, after{"after", &form};
  splitbar upright{"splitH", &form};
  SplitVertical sideways{"SplitV", &form};
};

INSTANTIATE_TEST_SUITE_P(BothBars, SplitBarTest, ::testing::Bool(),
                         [](const auto& bar) { return bar.param ? "SplitVertical" : "splitbar"; });

TEST_P(SplitBarTest, OnlyTheBarMovesUntilItIsDropped) {
  platform::PeerLog log;
  platform::Record(after, log);
  Drag(250);
  EXPECT_EQ("1000 1250 1060 1940", Places());
  EXPECT_EQ(0x80000003u, Bar().BackColor());
  EXPECT_EQ(static_cast<Control*>(&Bar()), form.ZOrder().back());

  Bar().UserMouseUp();
  EXPECT_EQ(0x80000001u, Bar().BackColor());
  EXPECT_EQ("1250 1250 1310 1690", Places());
  EXPECT_EQ(1, log.refreshed);
  EXPECT_EQ(11, GetParam() ? before.Top() : before.Left());
  EXPECT_EQ(22, GetParam() ? after.Height() : after.Width());

  // A drop lays out even without a drag.
  Put(Bar(), 1200, 60);
  Bar().UserMouseUp();
  EXPECT_EQ("1200 1200 1260 1740", Places());

  // So does a move by a key, unless it exceeds the limit.
  for (const int by : {-260, -935}) Bar().UserNudge(by);
  EXPECT_EQ("940 940 1000 2000", Places());
  EXPECT_EQ(0x80000001u, Bar().BackColor());
}

TEST_P(SplitBarTest, OnlyTheLeftButtonAloneDrags) {
  for (const int buttons : {0, 2, 3, 4, 5}) Drag(100, buttons);
  Bar().SetEnabled(false);
  Drag(100);
  Bar().SetEnabled(true);
  form.SetVisible(false);
  Drag(100);
  EXPECT_EQ(1000, At(Bar()));
  EXPECT_EQ(0x80000001u, Bar().BackColor());
}

TEST_P(SplitBarTest, AMoveToALimitIsRefusedNotShortened) {
  SetLimits(100, 200);
  for (int target = -50; target <= 3100; ++target) {
    Put(Bar(), 1000, 60);
    Drag(target - 1000);
    const bool allowed = target > 100 && target < 3000 - 200;
    ASSERT_EQ(allowed ? target : 1000, At(Bar())) << "dragged to " << target;
  }
}

TEST_P(SplitBarTest, TheEdgesAreThoseOfTheFarthestControls) {
  const struct {
    int before, after, end, bar, refused, allowed;  // the bar is dragged by the last two
  } cases[] = {{400, 1060, 3000, 1000, -995, -994},
               {-300, 1060, 3000, 1000, -1295, -1294},  // a control before the origin counts
               {-3000, -500, -400, -1000, 595, 594},    // on both sides
               {0, 1060, 4060, 1000, 3055, 3054}};
  PictureBox nearer("nearer", &form);
  for (const auto& [first, second, end, bar, refused, allowed] : cases) {
    SCOPED_TRACE(first);
    Put(before, first, 600);
    Put(after, second, end - second);
    Put(nearer, second, 10);
    AddAfter(nearer);
    Put(Bar(), bar, 60);
    Drag(refused);
    EXPECT_EQ(bar, At(Bar()));
    Drag(allowed);
    EXPECT_EQ(bar + allowed, At(Bar()));
  }
}

TEST_P(SplitBarTest, UpdateKeepsTheFarEdgesWhereTheyWere) {
  for (int position = -200; position <= 3400; position += 7) {
    Put(before, 0, 1000);
    Put(after, 1060, 1940);
    Put(Bar(), position, 60);
    Bar().update();
    const int edge = position + 60;
    ASSERT_EQ(position < 0 ? 1000 : position, Extent(before)) << position;  // a negative size is refused
    ASSERT_EQ(edge > 0 ? edge : 1060, At(after)) << position;
    ASSERT_EQ(std::max(3000 - edge, 0), Extent(after)) << position;
  }
}

TEST_P(SplitBarTest, OneControlsErrorDoesNotStopTheOthers) {
  PictureBox second("second", &form);
  Put(second, 100, 0);
  AddBefore(second);
  const auto fail = [] { throw Error(5, "Invalid procedure call or argument"); };
  before.Resize = fail;
  after.Resize = fail;
  platform::PeerLog log;
  platform::Record(after, log);
  Put(Bar(), 1200, 60);
  Bar().update();
  EXPECT_EQ(1100, Extent(second));
  EXPECT_EQ("1200 1200 1260 1740", Places());
  EXPECT_EQ(1, log.refreshed);
}

TEST_P(SplitBarTest, StoredPropertiesHaveTheirOwnNamesAndDefaults) {
  const std::string nearName = GetParam() ? "MinLeftWidth" : "MinTopHeight";
  const std::string farName = GetParam() ? "MinRightWidth" : "MinBottomHeight";
  const PropertyBag defaults{{"BackColor", static_cast<std::int32_t>(0x80000001)},
                             {"BorderStyle", 0},
                             {nearName, 5},
                             {farName, 5},
                             {"MousePointer", 7}};
  const PropertyBag designed{
      {"BackColor", 0x00C0FFEE}, {"BorderStyle", 1}, {nearName, 40}, {farName, 50}, {"MousePointer", 9}};
  const auto expectWritten = [&](const PropertyBag& expected) {
    PropertyBag bag;
    Bar().WriteProperties(bag);
    EXPECT_EQ(expected, bag);
  };
  expectWritten(defaults);
  Bar().ReadProperties(designed);
  Bar().SetBackColor(1);  // the next drag restores the designed colour
  Drag(-961);             // 39, within the limit
  EXPECT_EQ(1000, At(Bar()));
  EXPECT_EQ(0, Bar().BorderStyle());
  Bar().UserMouseUp();
  expectWritten(designed);
  Bar().ReadProperties({});
  expectWritten(defaults);
}

}  // namespace
}  // namespace kxrestore::controls
