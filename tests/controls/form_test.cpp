#include "controls/form.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "platform/headless/recording_peer.h"

namespace kxrestore::controls {
namespace {

using State = controls::WindowState;

TEST(Form, TheInnerSizeLeavesOutTheFrame) {
  Form form("form");
  int resized = 0;
  form.Resize = [&] { ++resized; };
  form.Move(0, 0, 7000, 6100);
  form.SetFrame(200, 600);
  EXPECT_EQ(6800, form.ScaleWidth());
  EXPECT_EQ(5500, form.ScaleHeight());
  EXPECT_EQ(2, resized);
  form.SetFrame(200, 600);
  EXPECT_EQ(2, resized);
  form.Move(0, 0, 100, 100);
  EXPECT_EQ(0, form.ScaleWidth());
  EXPECT_EQ(0, form.ScaleHeight());
}

TEST(Form, MinimizingKeepsTheSizeAndRestoringIsToldOf) {
  Form form("form");
  form.Move(0, 0, 9000, 8000);
  std::vector<State> states;
  form.Resize = [&] { states.push_back(form.WindowState()); };
  form.UserResize(0, 0, State::kMinimized);
  EXPECT_EQ(9000, form.Width());
  form.UserResize(0, 0, State::kMinimized);
  form.UserResize(9000, 8000, State::kNormal);
  form.UserResize(9000, 8000, State::kNormal);
  form.UserResize(-5, 100, State::kMaximized);
  EXPECT_EQ(std::vector<State>({State::kMinimized, State::kNormal, State::kMaximized}), states);
  EXPECT_EQ(0, form.Width());
  EXPECT_EQ(100, form.Height());
}

TEST(Form, ThePeerHearsOfASizeThatTheFormCorrects) {
  Form form("form");
  form.Move(0, 0, 9000, 8000);
  form.Resize = [&] {
    if (form.Width() < 7000) form.SetWidth(7000);
  };
  platform::PeerLog log;
  platform::Record(form, log);
  form.UserResize(8500, 8000, State::kNormal);
  EXPECT_TRUE(log.changed.empty());
  form.UserResize(3000, 8000, State::kNormal);
  EXPECT_EQ(7000, form.Width());
  EXPECT_EQ(1u, log.Count(Property::kGeometry));
}

TEST(Form, UnloadingAsksOnceAndMayBeRefused) {
  Form form("form");
  int asked = 0;
  bool refuse = true;
  form.OnUnload = [&](bool& cancel) {
    ++asked;
    form.Unload();  // a handler that unloads again changes nothing
    cancel = refuse;
  };
  form.Unload();
  EXPECT_TRUE(form.IsOpen());
  refuse = false;
  form.UserClose();
  EXPECT_FALSE(form.IsOpen());
  form.Unload();
  form.UserClose();
  EXPECT_EQ(2, asked);
}

TEST(Form, AFailedUnloadCanBeTriedAgain) {
  Form form("form");
  form.OnUnload = [](bool&) { throw std::runtime_error("no"); };
  EXPECT_THROW(form.Unload(), std::runtime_error);
  EXPECT_TRUE(form.IsOpen());
  form.OnUnload = nullptr;
  form.Unload();
  EXPECT_FALSE(form.IsOpen());
}

TEST(Form, ACloseRequestTakesThePlaceOfUnloading) {
  Form form("form");
  int requests = 0, escapes = 0;
  form.CloseRequest = [&] { ++requests; };
  form.KeyPress = [&](Key key) { escapes += key == Key::kEscape; };
  form.UserClose();
  EXPECT_EQ(1, requests);
  EXPECT_TRUE(form.IsOpen());
  form.UserKey(Key::kEscape);
  form.UserKey(Key::kF5);
  form.SetEnabled(false);
  form.UserKey(Key::kEscape);
  form.UserClose();
  EXPECT_EQ(1, escapes);
  EXPECT_EQ(1, requests);
}

}  // namespace
}  // namespace kxrestore::controls
