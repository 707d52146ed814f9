// The layout at any window size, and the layout that the next dialog restores.
#include <random>

#include "tests/dialog/form_text.h"

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

  // Controls that overlap by design: the heading and the destination share a line, the pages cover the
  // tab strip, and the archive frame takes the place of the tree.
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

TEST_F(LayoutTest, AControlWithoutRoomKeepsItsSize) {
  const int width = ui().picTabs.Width();
  ui().picTop.SetWidth(1000);
  EXPECT_EQ(ui().picTabs.Width(), width);
  ui().lblTreeCount.SetVisible(false);
  Resize(12000, 9000);
  EXPECT_EQ(ui().picTop.Width(), 8730);
  EXPECT_TRUE(ui().lblTreeCount.Visible()) << "a resize of its panel shows it";
}

TEST_F(LayoutTest, NothingOverlapsOrLeavesItsContainerAtAnySize) {
  std::mt19937 random(4);
  const auto upTo = [&](int most) { return static_cast<int>(random() % static_cast<unsigned>(most)); };
  const Control* const lists[] = {&ui().tvwSets, &ui().asRestoreList, &ui().tvwDetails};
  Resize(3000, 2000);
  EXPECT_EQ(ui().form.Width(), 7000) << "a window that is too small gets the minimum size";
  EXPECT_EQ(ui().form.Height(), 6100);
  for (int round = 0; round < 300 && !HasFailure(); ++round) {
    // In some rounds a bar is dragged, often beyond its limit.
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
    // The help adjoins the lower area and the buttons, so that the pointer does not cross the form in
    // between.
    EXPECT_EQ(ui().lblHelp.Top() + ui().lblHelp.Height(), ui().picBottom.Top());
    EXPECT_EQ(ui().lblHelp.Top(), ui().picTopButtons.Top() + ui().picTopButtons.Height());
    // Room for a heading and a line even in the smallest window.
    EXPECT_GE(ui().asSearch.Height(), 500);
    EXPECT_GE(ui().asFiles.Height(), 900);
    Resize(7000 + upTo(round % 2 == 0 ? 32'000 : 6'000), 6100 + upTo(round % 3 == 0 ? 16'000 : 3'000));
  }
}

TEST_F(LayoutTest, TheNextDialogRestoresTheWindowAndItsBars) {
  desktop.user = [&](controls::Form& shown) {
    Resize(14000, 12000);
    shown.placement = {true, 1500, -300};
    Drag(ui().splitH, 8000 - ui().splitH.Top());
    Drag(ui().SplitV, 5000 - ui().SplitV.Left());
    EXPECT_EQ(ui().picTop.Height(), 8000);
    EXPECT_EQ(ui().tvwSets.Width(), 5000 - ui().tvwSets.Left());
    Resize(7000, 6100);
    EXPECT_LT(ui().splitH.Top(), 4000) << "a small window moves the bars";
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

TEST_F(LayoutTest, InvalidStoredPlacementsAreIgnored) {
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
