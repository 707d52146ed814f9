#include "dialog/layout.h"

#include <random>

#include "controls/program_settings.h"
#include "dialog/window_placement.h"
#include "platform/headless/recording_peer.h"
#include "tests/dialog/panel_fixture.h"

namespace kxrestore::dialog {
namespace {

using controls::Container;
using controls::Control;

class LayoutTest : public PanelTest {
 protected:
  LayoutTest() { layout.PlaceInitially(); }

  void Resize(int width, int height) { ui.form.UserResize(width, height, controls::WindowState::kNormal); }
  static void Drag(controls::SplitBar& bar, int by) {
    bar.UserMouseMoveOver(controls::SplitBar::kLeftButton, by, by);
    bar.UserMouseUp();
  }

  // Controls that may lie on another: by rule the heading carries the destination, the tab strip is the
  // ground for what stands on its pages, and the frame for archives takes the place of the tree.
  static bool MayOverlap(const Control& a, const Control& b) {
    const auto pair = [&](std::string_view one, std::string_view other) {
      return (a.Name() == one && b.Name() == other) || (a.Name() == other && b.Name() == one);
    };
    return a.Name() == "tbsOptions" || b.Name() == "tbsOptions" || pair("lblList", "lblRestorePath") ||
           pair("tvwDetails", "frLoadCD");
  }

  void CheckContainer(const Container& container, int width, int height, const std::string& where) {
    const auto& children = container.Children();
    for (const Control* const child : children) {
      if (!child->Visible()) continue;
      EXPECT_GE(child->Left(), 0) << child->Name() << where;
      EXPECT_GE(child->Top(), 0) << child->Name() << where;
      EXPECT_LE(child->Left() + child->Width(), width) << child->Name() << where;
      EXPECT_LE(child->Top() + child->Height(), height) << child->Name() << where;
      for (const Control* const other : children) {
        if (other <= child || !other->Visible() || MayOverlap(*child, *other)) continue;
        const bool apart = child->Left() + child->Width() <= other->Left() ||
                           other->Left() + other->Width() <= child->Left() ||
                           child->Top() + child->Height() <= other->Top() ||
                           other->Top() + other->Height() <= child->Top();
        EXPECT_TRUE(apart) << child->Name() << " on " << other->Name() << where;
      }
      if (const auto* const inner = dynamic_cast<const Container*>(child)) {
        CheckContainer(*inner, inner->Width(), inner->Height(), where);
      }
    }
  }

  Layout layout{context};
};

TEST_F(LayoutTest, NothingOverlapsOrLeavesItsContainerAtAnySize) {
  std::mt19937 random(4);
  const auto upTo = [&](int most) { return static_cast<int>(random() % static_cast<unsigned>(most)); };
  Resize(7000, 6100);
  for (int round = 0; round < 300; ++round) {
    // Now and then a bar is dragged as far as it goes.
    if (round % 10 == 5) Drag(ui.splitH, upTo(30'000) - 15'000);
    if (round % 10 == 9) Drag(ui.SplitV, upTo(30'000) - 15'000);
    ui.tbsOptions.UserSelect(round % 3 + 1);
    ui.frLoadCD.SetVisible(round % 6 == 0);
    CheckContainer(ui.form, ui.form.ScaleWidth(), ui.form.ScaleHeight(),
                   " at " + std::to_string(ui.form.Width()) + " x " + std::to_string(ui.form.Height()));
    for (const Control* const list :
         {static_cast<Control*>(&ui.tvwSets), static_cast<Control*>(&ui.asRestoreList),
          static_cast<Control*>(&ui.tvwDetails)}) {
      EXPECT_GT(list->Width(), 600) << list->Name();
      EXPECT_GT(list->Height(), 600) << list->Name();
    }
    // The pointer gets from the lower area and from the buttons to the help without touching the form.
    EXPECT_EQ(ui.lblHelp.Top() + ui.lblHelp.Height(), ui.picBottom.Top());
    EXPECT_EQ(ui.lblHelp.Top(), ui.picTopButtons.Top() + ui.picTopButtons.Height());
    // Room for a heading and a line even in the smallest window.
    EXPECT_GE(ui.asSearch.Height(), 500);
    EXPECT_GE(ui.asFiles.Height(), 900);
    if (HasFailure()) break;
    Resize(7000 + upTo(round % 2 == 0 ? 32'000 : 6'000), 6100 + upTo(round % 3 == 0 ? 16'000 : 3'000));
  }
}

TEST_F(LayoutTest, RulesHoldAtEverySize) {
  for (const int width : {7000, 9000, 12345, 30000}) {
    for (const int height : {6100, 8000, 20000}) {
      Resize(width, height);
      const int scaleWidth = ui.form.ScaleWidth();
      const int scaleHeight = ui.form.ScaleHeight();
      EXPECT_EQ(ui.picTop.Width(), scaleWidth - ui.picTopButtons.Width() - 200);
      EXPECT_EQ(ui.picTopButtons.Left(), ui.picTop.Left() + ui.picTop.Width() + 30);
      EXPECT_EQ(ui.picBottom.Top(), ui.splitH.Top() + ui.splitH.Height() + 56);
      EXPECT_EQ(ui.picBottom.Height(), scaleHeight - (ui.splitH.Top() + ui.splitH.Height()) - 90);
      EXPECT_EQ(ui.splitH.Width(), ui.tbsOptions.Width());
      EXPECT_EQ(ui.tbsOptions.Height(), ui.picTop.Height() - 30);
      EXPECT_EQ(ui.tvwSets.Top(), 470);
      EXPECT_EQ(ui.tvwSets.Height(), ui.picTop.Height() - 470);
      EXPECT_EQ(ui.SplitV.Height(), ui.tvwSets.Height());
      EXPECT_EQ(ui.picTabs.Top(), 360);
      EXPECT_EQ(ui.picTabs.Left(), ui.SplitV.Left() + ui.SplitV.Width());
      EXPECT_EQ(ui.picTabs.Width(), ui.picTop.Width() - ui.picTabs.Left() - 90);
      for (const auto& panel : ui.panel) {
        EXPECT_EQ(panel.Width(), ui.picTabs.Width() - 90);
        EXPECT_EQ(panel.Height(), ui.picTabs.Height() - 60);
      }
      EXPECT_EQ(ui.cmdRestore[4].Left(), ui.picBottom.Width() - ui.cmdRestore[2].Width() - 180);
      EXPECT_EQ(ui.asRestoreList.Height(), ui.picBottom.Height() - ui.asRestoreList.Top() - 120);
      EXPECT_EQ(ui.lblList.Width(), ui.asRestoreList.Width());
      EXPECT_EQ(ui.cmdAction[3].Left(), ui.panel[0].Width() - (ui.cmdAction[0].Width() + 180));
      EXPECT_EQ(ui.asSearch.Width(), ui.panel[1].Width() - 90);
      EXPECT_EQ(ui.asSearch.Height(), ui.panel[1].Height() - ui.asSearch.Top() - 100);
      EXPECT_EQ(ui.asFiles.Width(), ui.panel[2].Width() - 90);
      EXPECT_EQ(ui.lblTreeCount.Top(), ui.cmdAction[3].Top() + ui.cmdAction[3].Height() + 120);
    }
  }
}

TEST_F(LayoutTest, ASmallWindowSnapsBackAndAMinimizedOneIsLeftAlone) {
  Resize(3000, 2000);
  EXPECT_EQ(ui.form.Width(), 7000);
  EXPECT_EQ(ui.form.Height(), 6100);
  Resize(12000, 9000);
  const int before = ui.picTop.Width();
  ui.form.UserResize(160, 30, controls::WindowState::kMinimized);
  EXPECT_EQ(ui.picTop.Width(), before);
  ui.form.UserResize(14000, 9000, controls::WindowState::kNormal);
  EXPECT_EQ(ui.picTop.Width(), before + 2000);
}

TEST_F(LayoutTest, DraggedBarsGiveWayInASmallWindowAndComeBack) {
  Resize(14000, 12000);
  Drag(ui.splitH, 8000 - ui.splitH.Top());
  EXPECT_EQ(ui.splitH.Top(), 8000);
  EXPECT_EQ(ui.picTop.Height(), 8000);
  Drag(ui.SplitV, 5000 - ui.SplitV.Left());
  EXPECT_EQ(ui.tvwSets.Width(), 5000 - ui.tvwSets.Left());
  Resize(7000, 6100);
  EXPECT_LT(ui.splitH.Top(), 4000);
  EXPECT_LT(ui.SplitV.Left(), 3000);
  Resize(14000, 12000);
  EXPECT_EQ(ui.splitH.Top(), 8000);
  EXPECT_EQ(ui.SplitV.Left(), 5000);
}

TEST_F(LayoutTest, OneTabIsShownAndTheChooserIsFilledOnce) {
  int filled = 0;
  bool ready = false;
  layout.InitializeFileTypes = [&] {
    ++filled;
    return ready;
  };
  platform::PeerLog log;
  ui.tbsOptions.AttachPeer(std::make_unique<platform::RecordingPeer>(log));
  for (int tab = 3; tab >= 1; --tab) {
    ui.tbsOptions.UserSelect(tab);
    for (int panel = 0; panel < 3; ++panel) {
      EXPECT_EQ(ui.panel[static_cast<std::size_t>(panel)].Visible(), panel == tab - 1) << tab;
    }
  }
  EXPECT_EQ(log.frozen, 0);
  EXPECT_EQ(filled, 1);
  EXPECT_EQ(ui.panel[2].Tag(), "");  // it could not be filled: another visit tries again
  ready = true;
  ui.tbsOptions.UserSelect(3);
  ui.tbsOptions.UserSelect(2);
  ui.tbsOptions.UserSelect(3);
  EXPECT_EQ(filled, 2);
  EXPECT_EQ(ui.panel[2].Tag(), "ok");
  EXPECT_EQ(ui.panel[1].Tag(), "");

  layout.InitializeFileTypes = [&]() -> bool { throw Error(5, "broken"); };
  ui.panel[2].SetTag("");
  ui.tbsOptions.UserSelect(1);
  ui.tbsOptions.UserSelect(3);
  ASSERT_EQ(machine.desktop.messages.size(), 1u);
  EXPECT_EQ(machine.desktop.messages[0].title, "tbsOptions.Click");
  EXPECT_EQ(machine.desktop.messages[0].text, "(5) broken");
}

TEST_F(LayoutTest, TheWindowComesBackWhereItWas) {
  Resize(13000, 10000);
  ui.form.placement = {true, 1500, -300};
  ui.form.UserResize(28000, 20000, controls::WindowState::kMaximized);
  // Bars that only the maximized window has room for.
  Drag(ui.splitH, 15'000 - ui.splitH.Top());
  Drag(ui.SplitV, 12'000 - ui.SplitV.Left());
  ui.form.UserResize(160, 30, controls::WindowState::kMinimized);
  ui.form.UserResize(28000, 20000, controls::WindowState::kMaximized);
  WindowPlacement(ui, layout, platform).Remember();

  FormControls again;
  FormContext othersContext(parameters, again, platform, *workspace);
  Layout othersLayout(othersContext);
  WindowPlacement placement(again, othersLayout, platform);
  placement.RestoreWindow();
  othersLayout.PlaceInitially();
  placement.RestoreSplitters();
  EXPECT_EQ(again.form.WindowState(), controls::WindowState::kMaximized);
  EXPECT_EQ(again.form.Width(), 13000);
  EXPECT_EQ(again.form.Height(), 10000);
  EXPECT_EQ(again.form.placement.left, 1500);
  EXPECT_LT(again.splitH.Top(), 10'000);
  again.form.UserResize(28000, 20000, controls::WindowState::kMaximized);
  EXPECT_EQ(again.splitH.Top(), 15'000);
  EXPECT_EQ(again.SplitV.Left(), 12'000);
  EXPECT_EQ(again.form.NormalWidth(), 13000);
  EXPECT_EQ(again.form.NormalHeight(), 10000);
}

TEST_F(LayoutTest, NonsenseThatWasRememberedIsNotUsed) {
  ui.form.placement = {true, 0, 0};
  const int width = ui.form.Width();
  controls::CProgramSettings settings(machine.registry, machine.desktop);
  settings.SetRootKey(platform::kHkeyCurrentUser);
  settings.SetMainBranch("Software");
  settings.SetRegBase("Brellick Labs, Inc.");
  settings.SetProgram("Tarvane");
  for (const char* text :
       {"1 2 3", "0 0 -5 9000 0", "a b c d e", "0 0 99999999999 5 0", "0 0 9000 9000 0 7"}) {
    settings.WriteEntry("RestoreWindow", text);
    settings.WriteEntry("RestoreSplitters", text);
    FormControls again;
    FormContext othersContext(parameters, again, platform, *workspace);
    Layout othersLayout(othersContext);
    WindowPlacement placement(again, othersLayout, platform);
    placement.RestoreWindow();
    placement.RestoreSplitters();
    EXPECT_EQ(again.form.Width(), width) << text;
    EXPECT_FALSE(again.form.placement.known) << text;
  }
}

}  // namespace
}  // namespace kxrestore::dialog
