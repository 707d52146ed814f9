// The models of the simple controls: geometry, visibility, focus, values, menus and notifications.
#include "controls/control.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "controls/form.h"
#include "controls/widgets.h"
#include "platform/headless/headless_menu.h"
#include "platform/headless/recording_peer.h"
#include "tests/raises.h"

namespace kxrestore::controls {
namespace {

using platform::PeerLog;
using platform::Record;
using State = controls::WindowState;

class ControlTest : public ::testing::Test {
 protected:
  PeerLog log;  // of the control that a test records
  Form form{"form"};
};

TEST_F(ControlTest, ResizeIsRaisedForAnotherSizeOnlyAndAfterThePeerIsNotified) {
  PictureBox box("box", &form);
  Record(box, log);
  std::vector<std::size_t> toldWhenResized;
  box.Resize = [&] { toldWhenResized.push_back(log.changed.size()); };

  box.Move(0, 0, 300, 400);
  box.SetLeft(-50);  // positions may be negative
  box.SetTop(6);
  box.Move(-50, 6, 300, 400);
  EXPECT_RAISES(380, box.SetWidth(-1));
  EXPECT_RAISES(380, box.Move(1, 2, 3, -4));
  EXPECT_EQ(-50, box.Left()) << "a refused size changes nothing";
  EXPECT_EQ(300, box.Width());
  EXPECT_EQ(std::vector<std::size_t>({1}), toldWhenResized);
  EXPECT_EQ(3u, log.changed.size());
  EXPECT_EQ(3u, log.Count(Property::kGeometry));
  box.SetWidth(0);
  EXPECT_EQ(0, box.Width());
}

TEST_F(ControlTest, InputToAHiddenOrDisabledControlIsIgnored) {
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
  for (Control* control : std::initializer_list<Control*>{&button, &box, &form}) {
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

TEST_F(ControlTest, ComesToTheFrontAmongItsSiblings) {
  PictureBox first("first", &form), second("second", &form);
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

TEST_F(ControlTest, FreezesNestAndApplyToAPeerThatIsAttachedLater) {
  PeerLog late;
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

TEST_F(ControlTest, ThePeerIsNotifiedOfRealChangesOnly) {
  Label label("label", &form, "text");
  label.SetFocus();  // it has no peer
  Record(label, log);
  label.SetFocus();
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
  label.SetVisible(true);
  form.SetEnabled(false);
  label.SetFocus();
  EXPECT_EQ(1, log.focused);
}

TEST_F(ControlTest, ResizeIsRaisedForAnotherSizeFrameOrState) {
  std::vector<State> states;
  form.Resize = [&] { states.push_back(form.WindowState()); };
  form.Move(0, 0, 7000, 6100);
  for (int i = 0; i < 2; ++i) form.SetFrame(200, 600);
  EXPECT_EQ(6800, form.ScaleWidth());
  EXPECT_EQ(5500, form.ScaleHeight());
  for (int i = 0; i < 2; ++i) form.UserResize(0, 0, State::kMinimized);
  EXPECT_EQ(7000, form.Width()) << "minimizing keeps the size";
  for (int i = 0; i < 2; ++i) form.UserResize(7000, 6100, State::kNormal);
  form.UserResize(-5, 100, State::kMaximized);
  EXPECT_EQ(std::vector<State>(
                {State::kNormal, State::kNormal, State::kMinimized, State::kNormal, State::kMaximized}),
            states);
  EXPECT_EQ(0, form.Width());
  EXPECT_EQ(100, form.Height());
  EXPECT_EQ(0, form.ScaleWidth());

  // The peer is notified of a size only if the form corrects it.
  form.Resize = [&] {
    if (form.Width() < 7000) form.SetWidth(7000);
  };
  Record(form, log);
  form.UserResize(8500, 8000, State::kNormal);
  EXPECT_TRUE(log.changed.empty());
  form.UserResize(3000, 8000, State::kNormal);
  EXPECT_EQ(7000, form.Width());
  EXPECT_EQ(1u, log.Count(Property::kGeometry));
}

TEST_F(ControlTest, UnloadingAsksOnceAndMayFailOrBeRefused) {
  form.OnUnload = [](bool&) { throw std::runtime_error("no"); };
  EXPECT_THROW(form.Unload(), std::runtime_error);
  int asked = 0, requests = 0, escapes = 0;
  bool refuse = true;
  form.OnUnload = [&](bool& cancel) {
    ++asked;
    form.Unload();  // a handler that unloads again changes nothing
    cancel = refuse;
  };
  form.Unload();
  EXPECT_TRUE(form.IsOpen());
  // A handler of close requests replaces unloading.
  refuse = false;
  form.CloseRequest = [&] { ++requests; };
  form.KeyPress = [&](Key key) { escapes += key == Key::kEscape; };
  for (const bool enabled : {false, true}) {
    form.SetEnabled(enabled);
    form.UserClose();
    form.UserKey(Key::kEscape);
    form.UserKey(Key::kF5);
  }
  EXPECT_TRUE(form.IsOpen());
  form.CloseRequest = nullptr;
  for (int i = 0; i < 2; ++i) form.UserClose();
  EXPECT_FALSE(form.IsOpen());
  EXPECT_EQ(2, asked);
  EXPECT_EQ(1, requests);
  EXPECT_EQ(1, escapes);
}

TEST_F(ControlTest, AClickIsRaisedWhenTheValueChanges) {
  Frame left("left", &form, ""), right("right", &form, "");
  OptionButton a("a", &left, "A"), b("b", &left, "B"), other("other", &right, "C");
  CheckBox box("box", &left, "&Only");
  std::string clicks;
  box.Click = [&] { clicks += box.Value() == 1 ? '+' : '-'; };
  a.Click = [&] { clicks += b.Value() ? "both" : "a"; };
  b.Click = [&] { clicks += a.Value() ? "both" : "b"; };
  Record(a, log);
  box.SetValue(0);
  box.SetValue(1);
  box.UserClick();
  box.UserClick();
  EXPECT_RAISES(380, box.SetValue(2));

  // Option buttons exclude those of their own container only.
  other.SetValue(true);
  a.SetValue(true);
  b.UserClick();
  b.UserClick();  // is chosen already
  EXPECT_EQ("+-+ab", clicks);
  EXPECT_TRUE(b.Value() && other.Value());
  EXPECT_EQ(1, box.Value());
  EXPECT_EQ(2u, log.Count(Property::kValue));
  b.SetValue(false);
  a.SetEnabled(false);
  a.UserClick();
  EXPECT_FALSE(a.Value() || b.Value());
  EXPECT_EQ("+-+ab", clicks);
}

TEST_F(ControlTest, TypedTextIsNotSentBackToThePeer) {
  TextBox text("text", &form);
  ComboBox combo("combo", &form);
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

TEST_F(ControlTest, TheSelectedTabAndTabsOutsideAreNotSelected) {
  TabStrip tabs("tabs", &form, {{"One", "1"}, {"Two", "2"}});
  tabs.Click = [] { ADD_FAILURE() << "nothing was selected"; };
  tabs.SetSelectedIndex(1);
  for (const int outside : {0, 3, -1}) {
    EXPECT_RAISES(35600, tabs.SetSelectedIndex(outside));
    tabs.UserSelect(outside);
  }
  EXPECT_EQ(1, tabs.SelectedIndex());
}

TEST_F(ControlTest, AMenuIsFilledOnRequestAndRunsTheChosenItem) {
  using platform::HeadlessMenu;
  using Texts = std::vector<std::string>;
  PictureBox box("box", &form);
  EXPECT_EQ(HeadlessMenu(box).Texts(), Texts());
  std::vector<std::string> chosen;
  box.FillMenu = [&](Menu& menu) {
    const std::string subject = std::to_string(menu.Subject());
    menu.AddLine();
    menu.Add("&Open", [&chosen, subject] { chosen.push_back("open " + subject); });
    menu.AddLine();
    menu.AddLine();
    menu.Add("&All", [&chosen] { chosen.emplace_back("all"); }).checked = true;
    menu.Add("&Gone", [&chosen] { chosen.emplace_back("gone"); }).enabled = false;
    menu.AddLine();
  };
  HeadlessMenu menu(box, 7);
  EXPECT_EQ(menu.Texts(), (Texts{"Open", "-", "*All", "Gone (off)"}));
  EXPECT_TRUE(menu.Choose("Open") && menu.Choose("All"));
  EXPECT_FALSE(menu.Choose("Gone"));
  Menu own;
  box.UserMenu(own);
  for (const std::size_t place : {1, 3, 4}) own.UserChoose(place);
  EXPECT_EQ(chosen, (Texts{"open 7", "all"}));
  form.SetEnabled(false);
  EXPECT_EQ(HeadlessMenu(box).Texts(), Texts());
}

}  // namespace
}  // namespace kxrestore::controls
