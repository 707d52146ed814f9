// Where everything stands, at any size of the window, and that it comes back there.
#include <random>

#include "tests/dialog/dialog_fixture.h"

namespace kxrestore::dialog_test {
namespace {

using controls::Container;
using controls::Control;
using controls::WindowState;

class LayoutTest : public DialogTest {
 protected:
  LayoutTest() { MakeCatalog({}); }

  void Resize(int width, int height, WindowState state = WindowState::kNormal) {
    ui().form.UserResize(width, height, state);
  }
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

  void CheckContainer(const Container& container, int width, int height) {
    const auto& children = container.Children();
    for (const Control* const child : children) {
      if (!child->Visible()) continue;
      const auto right = [](const Control& control) { return control.Left() + control.Width(); };
      const auto bottom = [](const Control& control) { return control.Top() + control.Height(); };
      EXPECT_TRUE(child->Left() >= 0 && child->Top() >= 0 && right(*child) <= width &&
                  bottom(*child) <= height)
          << child->Name();
      for (const Control* const other : children) {
        if (other <= child || !other->Visible() || MayOverlap(*child, *other)) continue;
        EXPECT_TRUE(right(*child) <= other->Left() || right(*other) <= child->Left() ||
                    bottom(*child) <= other->Top() || bottom(*other) <= child->Top())
            << child->Name() << " on " << other->Name();
      }
      if (const auto* const inner = dynamic_cast<const Container*>(child)) {
        CheckContainer(*inner, inner->Width(), inner->Height());
      }
    }
  }
};

// Left, top, width and height of every control that can be seen.
void Measure(const Control& control, std::vector<std::pair<std::string, Strings>>& places,
             std::size_t& next) {
  if (next == places.size()) places.emplace_back(control.Name(), Strings());
  std::string place;
  for (const int twips : {control.Left(), control.Top(), control.Width(), control.Height()}) {
    place.append(place.empty() ? "" : " ").append(std::to_string(twips));
  }
  places[next++].second.push_back(place);
  const auto* const container = dynamic_cast<const Container*>(&control);
  if (container == nullptr) return;
  for (const Control* const child : container->Children()) {
    const bool designedHidden =
        !child->Visible() && child->GetKind() != controls::Kind::kPictureBox && child->Name() != "frLoadCD";
    if (!designedHidden) Measure(*child, places, next);
  }
}

TEST_F(LayoutTest, EverythingHasItsTwipsInAWindowOfEachSize) {
  std::vector<std::pair<std::string, Strings>> places;
  for (const auto& [width, height] : {std::pair(7000, 6100), {11880, 9000}, {20000, 15000}}) {
    Resize(width, height);
    if (width == 20000) {
      Drag(ui().splitH, 4000);
      Drag(ui().SplitV, 3000);
    }
    std::size_t next = 0;
    Measure(ui().form, places, next);
  }
  Strings lines;
  for (const auto& [name, at] : places) {
    lines.push_back(name + ": " + at[0] + " | " + at[1] + " | " + at[2]);
  }
  EXPECT_EQ(Text(lines), R"--(
frmRestore: 0 0 7000 6100 | 0 0 11880 9000 | 0 0 20000 15000
picTop: 0 0 4860 3396 | 0 0 8610 3396 | 0 0 16730 7396
tbsOptions: 0 0 4860 3366 | 0 0 8610 3366 | 0 0 16730 7366
tvwSets: 60 470 1300 2926 | 60 470 3200 2926 | 60 470 6200 6926
SplitV: 1360 470 60 2926 | 3260 470 60 2926 | 6260 470 60 6926
picTabs: 1420 360 3350 2976 | 3320 360 5200 2976 | 6320 360 10320 6976
panel(0): 0 0 3260 2916 | 0 0 5110 2916 | 0 0 10230 6916
tvwDetails: 45 110 1655 2806 | 45 110 3505 2806 | 45 110 8625 6806
frLoadCD: 45 110 1655 2806 | 45 110 3505 2806 | 45 110 8625 6806
lblCD(0): 90 285 1475 225 | 90 330 1350 225 | 90 330 1350 225
lblCD(1): 90 1425 1475 225 | 90 1110 1350 225 | 90 1110 1350 225
lblCD(2): 90 2340 1475 406 | 90 1905 3325 675 | 90 1905 8445 675
DriveCD: 90 510 1475 315 | 1440 285 1975 315 | 1440 285 7095 315
lblVL: 90 855 1475 225 | 90 735 1350 225 | 90 735 1350 225
txtVL: 90 1080 1475 315 | 1440 690 1975 315 | 1440 690 7095 315
ProgressBar1: 90 1650 1475 255 | 1440 1095 1975 255 | 1440 1095 7095 255
cmdCD: 90 1935 1335 375 | 90 1440 1335 375 | 90 1440 1335 375
cmdAction(0): 1745 110 1335 375 | 3595 110 1335 375 | 8715 110 1335 375
cmdAction(1): 1745 545 1335 375 | 3595 545 1335 375 | 8715 545 1335 375
cmdAction(2): 1745 980 1335 375 | 3595 980 1335 375 | 8715 980 1335 375
cmdAction(3): 1745 1415 1335 375 | 3595 1415 1335 375 | 8715 1415 1335 375
lblTreeCount: 1745 1910 1335 675 | 3595 1910 1335 675 | 8715 1910 1335 675
panel(1): 0 0 3260 2916 | 0 0 5110 2916 | 0 0 10230 6916
lblMask: 45 110 1745 225 | 45 110 2170 225 | 45 155 1200 225
cboMask: 45 335 1745 315 | 45 335 2170 315 | 1245 110 6090 315
chk(1): 45 695 1745 450 | 2460 1205 2300 225 | 2460 770 2300 225
frLookin(1): 45 1175 1745 720 | 45 980 2325 525 | 45 545 2325 525
optLookIn(0): 90 225 1565 225 | 90 225 1020 225 | 90 225 1020 225
optLookIn(1): 90 465 1565 225 | 1170 225 1020 225 | 1170 225 1020 225
cmdSearch(0): 1880 110 1335 375 | 2305 110 1335 375 | 7425 110 1335 375
cmdSearch(1): 1880 545 1335 375 | 3730 110 1335 375 | 8850 110 1335 375
cmdSearch(2): 1880 980 1335 375 | 2305 545 1335 375 | 7425 545 1335 375
cmdSearch(3): 1880 1415 1335 375 | 3730 545 1335 375 | 8850 545 1335 375
lblSearchCount: 1880 1835 1335 225 | 3730 965 1335 225 | 8850 965 1335 225
asSearch: 45 2090 3170 726 | 45 1595 5020 1221 | 45 1220 10140 5596
panel(2): 0 0 3260 2916 | 0 0 5110 2916 | 0 0 10230 6916
asFiles: 45 110 3170 1441 | 45 110 5020 1696 | 45 110 10140 5696
frLookin(2): 45 2091 1745 720 | 45 1866 2325 525 | 45 5866 2325 525
optLookIn(2): 90 225 1565 225 | 90 225 1020 225 | 90 225 1020 225
optLookIn(3): 90 465 1565 225 | 1170 225 1020 225 | 1170 225 1020 225
chk(2): 45 1611 1745 450 | 2460 2091 2300 225 | 2460 6091 2300 225
cmdAuto(0): 1880 1611 1335 375 | 45 2481 1335 375 | 45 6481 1335 375
cmdAuto(1): 1880 2046 1335 375 | 1470 2481 1335 375 | 1470 6481 1335 375
cmdAuto(2): 1880 2481 1335 375 | 2895 2481 1335 375 | 2895 6481 1335 375
picTopButtons: 4890 110 1700 2115 | 8640 110 2830 1455 | 16760 110 2830 1455
cmdRestore(0): 355 0 1335 375 | 60 0 1335 375 | 60 0 1335 375
cmdRestore(1): 355 435 1335 375 | 1485 0 1335 375 | 1485 0 1335 375
lblCurrSet: 60 900 1640 225 | 60 465 2770 225 | 60 465 2770 225
lblSetName: 60 1125 1640 900 | 60 690 2770 675 | 60 690 2770 675
splitH: 0 3396 4860 60 | 0 3396 8610 60 | 0 7396 16730 60
picBottom: 0 3512 6760 2044 | 0 3512 11640 4944 | 0 7456 19760 7000
lblList: 45 90 4985 240 | 45 90 9865 240 | 45 90 17985 240
lblRestorePath: 2440 92 2485 215 | 2440 92 7365 215 | 2440 92 15485 215
asRestoreList: 45 360 4985 1564 | 45 360 9865 4464 | 45 360 17985 6520
cmdRestore(2): 5245 690 1335 375 | 10125 360 1335 375 | 18245 360 1335 375
cmdRestore(3): 5245 1125 1335 375 | 10125 795 1335 375 | 18245 795 1335 375
cmdRestore(4): 5245 1560 1335 375 | 10125 1230 1335 375 | 18245 1230 1335 375
picCounts: 5245 0 1335 675 | 10125 1665 1335 900 | 18245 1665 1335 900
lblCounts(0): 0 0 1335 450 | 0 0 1335 450 | 0 0 1335 450
lblCounts(1): 0 450 1335 225 | 0 450 1335 450 | 0 450 1335 450
lblHelp: 4950 2225 1640 1287 | 8700 1565 2770 1947 | 16820 1565 2770 5891
picProgress: 4950 2225 1640 1287 | 8700 1565 2770 1947 | 16820 1565 2770 5891
lblProgress: 0 0 1640 900 | 0 0 2770 900 | 0 0 2770 900
barProgress: 0 930 1640 180 | 0 930 2770 180 | 0 930 2770 180
)--");
}

TEST_F(LayoutTest, WhatHasNoRoomStaysAsItWas) {
  const int width = ui().picTabs.Width();
  ui().picTop.SetWidth(1000);
  EXPECT_EQ(ui().picTabs.Width(), width);
  ui().lblTreeCount.SetVisible(false);
  Resize(12000, 9000);
  EXPECT_EQ(ui().picTop.Width(), 8730);
  EXPECT_TRUE(ui().lblTreeCount.Visible()) << "shown by every resize of its panel";
}

TEST_F(LayoutTest, NothingOverlapsOrLeavesItsContainerAtAnySize) {
  std::mt19937 random(4);
  const auto upTo = [&](int most) { return static_cast<int>(random() % static_cast<unsigned>(most)); };
  const Control* const lists[] = {&ui().tvwSets, &ui().asRestoreList, &ui().tvwDetails};
  Resize(3000, 2000);
  EXPECT_EQ(ui().form.Width(), 7000) << "a window too small snaps back";
  EXPECT_EQ(ui().form.Height(), 6100);
  for (int round = 0; round < 300 && !HasFailure(); ++round) {
    // Now and then a bar is dragged as far as it goes.
    if (round % 10 == 5) Drag(ui().splitH, upTo(30'000) - 15'000);
    if (round % 10 == 9) Drag(ui().SplitV, upTo(30'000) - 15'000);
    ShowTab(round % 3 + 1);
    ui().frLoadCD.SetVisible(round % 6 == 0);
    SCOPED_TRACE(std::to_string(ui().form.Width()) + " x " + std::to_string(ui().form.Height()));
    CheckContainer(ui().form, ui().form.ScaleWidth(), ui().form.ScaleHeight());
    for (int panel = 0; panel < 3; ++panel) EXPECT_EQ(ui().panel[panel].Visible(), panel == round % 3);
    for (const Control* const list : lists) {
      EXPECT_GT(list->Width(), 600) << list->Name();
      EXPECT_GT(list->Height(), 600) << list->Name();
    }
    // The pointer gets from the lower area and from the buttons to the help without touching the form.
    EXPECT_EQ(ui().lblHelp.Top() + ui().lblHelp.Height(), ui().picBottom.Top());
    EXPECT_EQ(ui().lblHelp.Top(), ui().picTopButtons.Top() + ui().picTopButtons.Height());
    // Room for a heading and a line even in the smallest window.
    EXPECT_GE(ui().asSearch.Height(), 500);
    EXPECT_GE(ui().asFiles.Height(), 900);
    Resize(7000 + upTo(round % 2 == 0 ? 32'000 : 6'000), 6100 + upTo(round % 3 == 0 ? 16'000 : 3'000));
  }
}

TEST_F(LayoutTest, TheWindowAndItsBarsComeBackWhereTheyWere) {
  desktop.user = [&](controls::Form& shown) {
    Resize(14000, 12000);
    shown.placement = {true, 1500, -300};
    Drag(ui().splitH, 8000 - ui().splitH.Top());
    Drag(ui().SplitV, 5000 - ui().SplitV.Left());
    EXPECT_EQ(ui().picTop.Height(), 8000);
    EXPECT_EQ(ui().tvwSets.Width(), 5000 - ui().tvwSets.Left());
    Resize(7000, 6100);
    EXPECT_LT(ui().splitH.Top(), 4000) << "they give way in a small window";
    EXPECT_LT(ui().SplitV.Left(), 3000);
    Resize(14000, 12000);
    EXPECT_EQ(ui().splitH.Top(), 8000);
    EXPECT_EQ(ui().SplitV.Left(), 5000);

    // Bars that only the maximized window has room for.
    Resize(28000, 20000, WindowState::kMaximized);
    Drag(ui().splitH, 15'000 - ui().splitH.Top());
    Drag(ui().SplitV, 12'000 - ui().SplitV.Left());
    const int before = ui().picTop.Width();
    Resize(160, 30, WindowState::kMinimized);
    EXPECT_EQ(ui().picTop.Width(), before);
    Resize(28000, 20000, WindowState::kMaximized);
  };
  form.ShowModal();
  EXPECT_EQ(ui().form.WindowState(), WindowState::kMaximized);
  EXPECT_EQ(ui().form.Width(), 14000);
  EXPECT_EQ(ui().form.Height(), 12000);
  EXPECT_EQ(ui().form.placement.left, 1500);
  EXPECT_LT(ui().splitH.Top(), 12'000);
  Resize(28000, 20000, WindowState::kMaximized);
  EXPECT_EQ(ui().splitH.Top(), 15'000);
  EXPECT_EQ(ui().SplitV.Left(), 12'000);
  EXPECT_EQ(ui().form.NormalWidth(), 14000);
  EXPECT_EQ(ui().form.NormalHeight(), 12000);
}

TEST_F(LayoutTest, NonsenseThatWasRememberedIsNotUsed) {
  const int width = ui().form.Width(), bar = ui().splitH.Top();
  for (const char* text :
       {"1 2 3", "0 0 -5 9000 0", "a b c d e", "0 0 99999999999 5 0", "99999999999 5", "0 0 9000 9000 0 7"}) {
    ui().form.Unload();
    for (const char* name : {"RestoreWindow", "RestoreSplitters"}) {
      PutSetting(platform::kHkeyCurrentUser, name, text);
    }
    EXPECT_EQ(ui().form.Width(), width) << text;
    EXPECT_EQ(ui().splitH.Top(), bar) << text;
    EXPECT_FALSE(ui().form.placement.known) << text;
  }
}

}  // namespace
}  // namespace kxrestore::dialog_test
