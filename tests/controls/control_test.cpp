#include "controls/control.h"

#include <gtest/gtest.h>

#include "controls/form.h"
#include "controls/widgets.h"
#include "platform/headless/recording_peer.h"
#include "tests/controls/raises.h"

namespace kxrestore::controls {
namespace {

using platform::PeerLog;
using platform::Record;

TEST(Control, ARefusedSizeLeavesEverythingAsItWas) {
  Form form("form");
  PictureBox box("box", &form);
  int resized = 0;
  box.Resize = [&] { ++resized; };
  box.Move(10, 20, 300, 400);
  PeerLog log;
  Record(box, log);

  EXPECT_RAISES(380, box.SetWidth(-1));
  EXPECT_RAISES(380, box.Move(1, 2, 3, -4));
  EXPECT_EQ(10, box.Left());
  EXPECT_EQ(20, box.Top());
  EXPECT_EQ(300, box.Width());
  EXPECT_EQ(400, box.Height());
  EXPECT_TRUE(log.changed.empty());
  EXPECT_EQ(1, resized);

  box.Move(-50, -60, 0, 0);  // positions may be negative, a size may be nothing
  EXPECT_EQ(-50, box.Left());
  EXPECT_EQ(0, box.Width());
}

TEST(Control, ResizeIsRaisedForAnotherSizeOnlyAndAfterThePeerKnows) {
  Form form("form");
  PictureBox box("box", &form);
  PeerLog log;
  Record(box, log);
  std::vector<std::size_t> toldWhenResized;
  box.Resize = [&] { toldWhenResized.push_back(log.changed.size()); };

  box.Move(0, 0, 100, 100);
  box.SetLeft(5);
  box.SetTop(6);
  EXPECT_EQ(std::vector<std::size_t>({1}), toldWhenResized);
  EXPECT_EQ(3u, log.Count(Property::kGeometry));
  box.Move(5, 6, 100, 100);
  EXPECT_EQ(3u, log.changed.size());
}

TEST(Control, AHandlerMayResizeItsOwnControl) {
  Form form("form");
  form.Resize = [&] {
    if (form.Height() < 6100) form.SetHeight(6100);
    if (form.Width() < 7000) form.SetWidth(7000);
  };
  form.Move(0, 0, 100, 100);
  EXPECT_EQ(6100, form.Height());
  EXPECT_EQ(7000, form.Width());
}

TEST(Control, WhatTheUserDoesToAControlThatIsHiddenOrDisabledIsLost) {
  Form form("form");
  PictureBox box("box", &form);
  CommandButton button("button", &box, "&Go");
  int clicks = 0, moves = 0;
  button.Click = [&] { ++clicks; };
  button.MouseMove = [&] { ++moves; };
  const auto use = [&] {
    button.UserClick();
    button.UserMouseMove();
  };

  use();
  EXPECT_EQ(1, clicks);
  EXPECT_EQ(1, moves);
  for (Control* control :
       {static_cast<Control*>(&button), static_cast<Control*>(&box), static_cast<Control*>(&form)}) {
    control->SetVisible(false);
    EXPECT_FALSE(button.IsShown());
    use();
    control->SetVisible(true);
    control->SetEnabled(false);
    EXPECT_TRUE(button.IsShown());
    use();
    control->SetEnabled(true);
  }
  EXPECT_EQ(1, clicks);
  EXPECT_EQ(1, moves);
}

TEST(Control, ComesToTheFrontAmongItsSiblings) {
  Form form("form");
  PictureBox first("first", &form), second("second", &form);
  PeerLog log;
  Record(first, log);
  {
    PictureBox passing("passing", &form);
    first.BringToFront();
    EXPECT_EQ(std::vector<Control*>({&second, &passing, &first}), form.ZOrder());
    EXPECT_EQ(std::vector<Control*>({&first, &second, &passing}), form.Children());
  }
  EXPECT_EQ(std::vector<Control*>({&second, &first}), form.ZOrder());
  EXPECT_EQ(1, log.broughtToFront);
  form.BringToFront();
}

TEST(Control, OnlyAUsableControlTakesTheFocus) {
  Form form("form");
  TextBox box("box", &form);
  box.SetFocus();  // nobody shows it
  PeerLog log;
  Record(box, log);
  box.SetFocus();
  form.SetEnabled(false);
  box.SetFocus();
  EXPECT_EQ(1, log.focused);
}

TEST(Control, FreezingNestsAndAPeerThatComesLateIsFrozenToo) {
  Form form("form");
  PeerLog log, late;
  Record(form, log);
  {
    const RedrawFreeze outer(form);
    {
      const RedrawFreeze inner(form);
      EXPECT_EQ(2, log.frozen);
    }
    EXPECT_EQ(1, log.frozen);
    Record(form, late);
    EXPECT_EQ(1, late.frozen);
  }
  EXPECT_EQ(0, late.frozen);
}

TEST(Control, ThePeerHearsOfRealChangesOnly) {
  Form form("form");
  Label label("label", &form, "text");
  PeerLog log;
  Record(label, log);
  label.SetCaption("text");
  label.SetVisible(true);
  label.SetEnabled(true);
  label.SetToolTipText("");
  label.SetBold(false);
  EXPECT_TRUE(log.changed.empty());
  label.SetCaption("other");
  label.SetVisible(false);
  label.SetToolTipText("tip");
  label.SetFontName("Arial");
  EXPECT_EQ(std::vector<Property>(
                {Property::kCaption, Property::kVisible, Property::kToolTipText, Property::kAppearance}),
            log.changed);
}

}  // namespace
}  // namespace kxrestore::controls
