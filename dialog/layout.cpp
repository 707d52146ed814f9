#include "dialog/layout.h"

#include <algorithm>

namespace kxrestore::dialog {

namespace {

constexpr int kLeastWidth = 7000;  // of the window, with its frame
constexpr int kLeastHeight = 6100;
constexpr double kTopShare = 0.4;  // of the upper area when the form loads

// What the areas need at least for the controls on them.
constexpr int kLeastTop = 3060;
constexpr int kLeastBottom = 2130;
constexpr int kLeastTree = 1300;
constexpr int kLeastTabs = 3140;

constexpr int kBarSize = 60;
constexpr int kTabsTop = 360;
constexpr int kTreeTop = 470;
constexpr int kDesignedTree = 3200;
constexpr int kEdge = 60;                  // from the tab strip's border to what stands inside
constexpr int kRow = kTreeTop - kTabsTop;  // first row on a panel, level with the set tree
constexpr int kGap = 90;
constexpr int kInset = 45;  // left of everything on a panel

constexpr int kColumnEdge = 180;  // right of a column of buttons
constexpr int kListTop = 360;     // on the lower area
constexpr int kHeadingRoom = 2500;

// The column right of the upper area takes a quarter of the window within these.
constexpr int kNarrowColumn = 1700;
constexpr int kWideColumn = 2830;  // room for both buttons side by side
constexpr int kColumnInset = 10;   // right of its buttons, which end where the lower buttons end

// Widths below which things stand one below the other.
constexpr int kLabelAndField = 2700;
constexpr int kOptionsInRow = 2325;
constexpr int kBoxInRow = 2300;

int ButtonTop(int row) {
  return kRow + row * kButtonPitch;
}

}  // namespace

Layout::Layout(FormContext& context) : m_context(context), m_ui(context.ui) {
  const auto resize = [this](void (Layout::*handler)()) {
    return [this, handler] { m_context.Skipping([&] { (this->*handler)(); }); };
  };
  m_ui.form.SetMinimumSize(kLeastWidth, kLeastHeight);
  m_ui.form.Resize = resize(&Layout::Form_Resize);
  m_ui.picTop.Resize = resize(&Layout::picTop_Resize);
  m_ui.picTabs.Resize = resize(&Layout::picTabs_Resize);
  m_ui.picBottom.Resize = resize(&Layout::picBottom_Resize);
  for (int index = 0; index < static_cast<int>(m_ui.panel.size()); ++index) {
    m_ui.panel[index].Resize = [this, index] { m_context.Skipping([&] { panel_Resize(index); }); };
  }
  m_ui.tbsOptions.Click = [this] { m_context.Event("tbsOptions.Click", [this] { tbsOptions_Click(); }); };
}

// What cannot be placed for want of room stays where it is.
void Layout::Place(controls::Control& control, int left, int top, int width, int height) {
  m_context.Skipping([&] { control.Move(left, top, width, height); });
}

void Layout::PlaceInitially() {
  const int width = m_ui.form.ScaleWidth();
  const int height = m_ui.form.ScaleHeight();
  m_ui.picTopButtons.SetTop(450);
  Place(m_ui.picTop, 0, 0, width - m_ui.picTopButtons.Width(), static_cast<int>(height * kTopShare));
  m_ui.tbsOptions.SetTop(0);
  Place(m_ui.splitH, 0, m_ui.picTop.Top() + m_ui.picTop.Height(), m_ui.picTop.Width(), kBarSize);
  const int bottom = m_ui.splitH.Top() + m_ui.splitH.Height() + 120;
  Place(m_ui.picBottom, 0, bottom, width, height - bottom);
  m_ui.splitH.AddControlTop(m_ui.picTop);
  m_ui.splitH.AddControlBottom(m_ui.picBottom);
  m_ui.splitH.SetMinTopHeight(kLeastTop);
  m_ui.splitH.SetMinBottomHeight(kLeastBottom + kBarSize);
  m_ui.splitH.update();

  Place(m_ui.tvwSets, kEdge, kTabsTop, kDesignedTree, m_ui.tvwSets.Height());
  m_ui.tvwSets.Refresh();
  m_ui.picTabs.Move(kEdge, kTabsTop, m_ui.picTabs.Width(), m_ui.picTabs.Height());
  Place(m_ui.SplitV, m_ui.tvwSets.Left() + m_ui.tvwSets.Width(), kTreeTop, kBarSize, m_ui.picTabs.Height());
  m_ui.SplitV.AddControlLeft(m_ui.tvwSets);
  m_ui.SplitV.AddControlRight(m_ui.picTabs);
  m_ui.SplitV.SetMinLeftWidth(kEdge + kLeastTree);
  m_ui.SplitV.SetMinRightWidth(kLeastTabs + kBarSize);
  Form_Resize();
  picTop_Resize();
}

void Layout::Form_Resize() {
  const auto state = m_ui.form.WindowState();
  if (state != controls::WindowState::kMinimized) {
    if (m_ui.form.Height() < kLeastHeight) m_ui.form.SetHeight(kLeastHeight);
    if (m_ui.form.Width() < kLeastWidth) m_ui.form.SetWidth(kLeastWidth);
    const int width = m_ui.form.ScaleWidth();
    const int height = m_ui.form.ScaleHeight();

    m_ui.picTopButtons.SetWidth(std::clamp(width / 4, kNarrowColumn, kWideColumn));
    KeepSplitters();
    m_context.Skipping([&] { m_ui.picTop.SetWidth(width - m_ui.picTopButtons.Width() - 200); });
    PlaceRightColumn();

    const int below = m_ui.splitH.Top() + m_ui.splitH.Height();
    Place(m_ui.picBottom, 0, below + 56, width, height - below - 90);
    m_ui.splitH.SetLeft(m_ui.picTop.Left());
    m_ui.splitH.SetWidth(m_ui.tbsOptions.Width());
  }
  m_ui.picBottom.Refresh();
  m_ui.picTop.Refresh();
}

// Gives the lower area its room when the window became too small for both, and gives it back when the window
// grows.
void Layout::KeepSplitters() {
  if (m_ui.splitH.Top() != m_placedTop) m_wishedTop = m_ui.splitH.Top();
  const int most = m_ui.form.ScaleHeight() - m_ui.splitH.Height() - 90 - kLeastBottom;
  m_placedTop = std::max(std::min(m_wishedTop, most), kLeastTop);
  m_ui.splitH.SetTop(m_placedTop);
  m_ui.picTop.SetHeight(m_placedTop - m_ui.picTop.Top());
}

void Layout::PlaceRightColumn() {
  auto& column = m_ui.picTopButtons;
  auto& commit = m_ui.cmdRestore;
  const bool wide = column.Width() >= kWideColumn;
  const int last = column.Width() - kColumnInset - kButtonWidth;
  commit[0].Move(wide ? last - kGap - kButtonWidth : last, 0, kButtonWidth, kButtonHeight);
  commit[1].Move(last, wide ? 0 : kButtonPitch, kButtonWidth, kButtonHeight);
  int top = commit[1].Top() + kButtonHeight + kGap;
  const int width = column.Width() - kEdge;
  m_ui.lblCurrSet.Move(kEdge, top, width, kLineHeight);
  top += kLineHeight;
  m_ui.lblSetName.Move(kEdge, top, width, 4 * kLineHeight);
  top += 4 * kLineHeight;

  column.Move(m_ui.picTop.Left() + m_ui.picTop.Width() + 30, kRow, column.Width(), top);
  column.BringToFront();
  const int help = column.Top() + column.Height() + kGap;
  Place(m_ui.lblHelp, column.Left() + kEdge, help, width, m_ui.picTop.Top() + m_ui.picTop.Height() - help);
}

void Layout::picTop_Resize() {
  const auto& area = m_ui.picTop;
  Place(m_ui.tbsOptions, 0, 0, area.Width(), area.Height() - 30);

  if (m_ui.tvwSets.Width() != m_placedTree) m_wishedTree = m_ui.tvwSets.Width();
  const int most = area.Width() - 90 - kLeastTabs - m_ui.SplitV.Width() - m_ui.tvwSets.Left();
  m_placedTree = std::max(std::min(m_wishedTree, most), kLeastTree);
  Place(m_ui.tvwSets, m_ui.tvwSets.Left(), kTreeTop, m_placedTree, area.Height() - kTreeTop);
  Place(m_ui.SplitV, m_ui.tvwSets.Left() + m_ui.tvwSets.Width(), kTreeTop, kBarSize, m_ui.tvwSets.Height());

  const int left = m_ui.SplitV.Left() + m_ui.SplitV.Width();
  const int width = area.Width() - left - 90;
  Place(m_ui.picTabs, left, kTabsTop, width < 0 ? m_ui.picTabs.Width() : width,
        area.Height() - kTabsTop - kEdge);
  PlaceRightColumn();
}

void Layout::picTabs_Resize() {
  for (auto& panel : m_ui.panel) Place(panel, 0, 0, m_ui.picTabs.Width() - 90, m_ui.picTabs.Height() - 60);
}

void Layout::picBottom_Resize() {
  const auto& area = m_ui.picBottom;
  auto& buttons = m_ui.cmdRestore;
  const int column = area.Width() - buttons[2].Width() - kColumnEdge;
  for (int row = 0; row < 3; ++row) {
    Place(buttons[2 + row], column, kListTop + row * kButtonPitch, kButtonWidth, kButtonHeight);
  }

  const int width = column - 260;
  Place(m_ui.lblList, 45, 90, width, m_ui.lblList.Height());
  Place(m_ui.asRestoreList, 45, kListTop, width, area.Height() - kListTop - 120);
  // The destination shares the heading's line and leaves the heading's own text free.
  const int path = std::max(0, width - kHeadingRoom);
  Place(m_ui.lblRestorePath, m_ui.lblList.Width() - path - 60, m_ui.lblList.Top() + 2, path,
        m_ui.lblList.Height() - 25);
  m_ui.lblRestorePath.BringToFront();

  Place(m_ui.picCounts, column, kListTop + 3 * kButtonPitch, kButtonWidth, 2 * kLineHeight);
  m_ui.picCounts.BringToFront();
  for (auto& label : m_ui.lblCounts) Place(label, 0, 0, kButtonWidth, 2 * kLineHeight);
}

void Layout::panel_Resize(int index) {
  switch (index) {
    case 0:
      PlaceSetsPanel();
      break;
    case 1:
      PlaceSearchPanel();
      break;
    case 2:
      PlaceAutoPanel();
      break;
    default:
      break;
  }
}

void Layout::PlaceSetsPanel() {
  const auto& area = m_ui.panel[0];
  const int column = area.Width() - (m_ui.cmdAction[0].Width() + kColumnEdge);
  for (int row = 0; row < 4; ++row) {
    Place(m_ui.cmdAction[row], column, ButtonTop(row), kButtonWidth, kButtonHeight);
  }
  Place(m_ui.tvwDetails, kInset, kRow, column - kGap, area.Height() - kRow);
  const auto& last = m_ui.cmdAction[3];
  Place(m_ui.lblTreeCount, column, last.Top() + last.Height() + 120, kButtonWidth, 3 * kLineHeight);
  m_ui.lblTreeCount.SetVisible(true);
  PlaceArchiveFrame();
}

// The frame lies on the detail tree, edge to edge.
void Layout::PlaceArchiveFrame() {
  const auto& tree = m_ui.tvwDetails;
  Place(m_ui.frLoadCD, tree.Left(), tree.Top(), tree.Width(), tree.Height());
  const int width = tree.Width() - 2 * kGap;
  const int text = std::min(1200, width / 2);
  const int field = kGap + text;
  const int fieldWidth = width - text;
  int top = 285;
  Place(m_ui.lblCD[0], kGap, top + 60, text, kLineHeight);
  Place(m_ui.DriveCD, field, top, fieldWidth, kFieldHeight);
  top += kFieldHeight + kGap;
  Place(m_ui.lblVL, kGap, top + 60, text, kLineHeight);
  Place(m_ui.txtVL, field, top, fieldWidth, kFieldHeight);
  top += kFieldHeight + kGap;
  Place(m_ui.lblCD[1], kGap, top + 30, text, kLineHeight);
  Place(m_ui.ProgressBar1, field, top, fieldWidth, 255);
  top += 255 + kGap;
  Place(m_ui.cmdCD, kGap, top, std::min(kButtonWidth, width), kButtonHeight);
  top += kButtonHeight + kGap;
  // Above the frame's lower edge, however low the window is.
  Place(m_ui.lblCD[2], kGap, top, width, std::clamp(tree.Height() - top - 60, 0, 3 * kLineHeight));
}

// Options side by side where there is room, else one below the other.
void Layout::PlaceOptions(int panel) {
  auto& frame = m_ui.frLookin[panel];
  const bool row = frame.Width() >= kOptionsInRow;
  const int first = panel == 0 ? 4 : (panel - 1) * 2;
  const int width = row ? 1020 : frame.Width() - 2 * kGap;
  Place(m_ui.optLookIn[first], kGap, 225, width, kBoxHeight);
  Place(m_ui.optLookIn[first + 1], row ? kGap + 1080 : kGap, row ? 225 : 465, width, kBoxHeight);
  frame.SetHeight(row ? 525 : 765);
}

void Layout::PlaceSearchPanel() {
  const auto& area = m_ui.panel[1];
  const int column = area.Width() - (kButtonWidth + kColumnEdge);
  const int width = column - kGap;
  for (int row = 0; row < 4; ++row) {
    Place(m_ui.cmdSearch[row], column, ButtonTop(row), kButtonWidth, kButtonHeight);
  }
  Place(m_ui.lblSearchCount, column, ButtonTop(3) + kButtonHeight + 120, kButtonWidth, 2 * kLineHeight);

  int top = kRow;
  if (width >= kLabelAndField) {
    Place(m_ui.lblMask, kInset, top + 60, 1200, kLineHeight);
    Place(m_ui.cboMask, kInset + 1200, top, width - 1200, kFieldHeight);
  } else {
    Place(m_ui.lblMask, kInset, top, width, kLineHeight);
    top += kLineHeight;
    Place(m_ui.cboMask, kInset, top, width, kFieldHeight);
  }
  top += kFieldHeight + 60;
  if (width >= kBoxInRow + kGap + kOptionsInRow) {
    Place(m_ui.chk1, kInset, top + 225, kBoxInRow, kBoxHeight);
    Place(m_ui.frLookin[1], kInset + kBoxInRow + kGap, top, kOptionsInRow, m_ui.frLookin[1].Height());
  } else {
    const int height = width >= kBoxInRow ? kBoxHeight : 2 * kBoxHeight;
    Place(m_ui.chk1, kInset, top, width, height);
    top += height + 30;
    Place(m_ui.frLookin[1], kInset, top, std::min(width, kOptionsInRow), m_ui.frLookin[1].Height());
  }
  m_context.Skipping([this] { PlaceOptions(1); });
  top += m_ui.frLookin[1].Height() + kGap;
  Place(m_ui.asSearch, kInset, top, width, area.Height() - top - 100);
  m_ui.lblMask.BringToFront();
  m_ui.cboMask.BringToFront();
  m_ui.chk1.BringToFront();
  m_ui.frLookin[1].BringToFront();
}

// From the lower edge up: the buttons, the check box and the look-in frame; the chooser takes what is left.
void Layout::PlaceAutoPanel() {
  const auto& area = m_ui.panel[2];
  const int width = area.Width() - kGap;
  const int perRow = width >= 3 * kButtonWidth + 2 * kGap ? 3 : 2;
  int top = area.Height() - kButtonPitch * (3 / perRow + (3 % perRow != 0 ? 1 : 0));
  for (int index = 0; index < 3; ++index) {
    Place(m_ui.cmdAuto[index], kInset + index % perRow * (kButtonWidth + kGap),
          top + index / perRow * kButtonPitch, kButtonWidth, kButtonHeight);
  }
  const bool row = width >= kBoxInRow + kGap + kOptionsInRow;
  Place(m_ui.frLookin[2], kInset, m_ui.frLookin[2].Top(), std::min(width, kOptionsInRow),
        m_ui.frLookin[2].Height());
  m_context.Skipping([this] { PlaceOptions(2); });
  top -= m_ui.frLookin[2].Height() + kGap;
  m_ui.frLookin[2].SetTop(top);
  if (row) {
    Place(m_ui.chk2, kInset + kOptionsInRow + kGap, top + 225, kBoxInRow, kBoxHeight);
  } else {
    top -= kBoxHeight + 30;
    Place(m_ui.chk2, kInset, top, width, kBoxHeight);
  }
  Place(m_ui.asFiles, kInset, kRow, width, top - kRow - 60);
}

void Layout::tbsOptions_Click() {
  m_context.Reporting("tbsOptions.Click", [this] {
    const controls::RedrawFreeze freeze(m_ui.tbsOptions);
    const controls::RedrawFreeze freezePanels(m_ui.picTabs);
    const int chosen = m_ui.tbsOptions.SelectedIndex() - 1;
    for (int index = 0; index < static_cast<int>(m_ui.tbsOptions.Tabs().size()); ++index) {
      if (index == chosen) {
        ShowPanel(index);
      } else {
        m_ui.panel[index].SetVisible(false);
      }
    }
  });
}

void Layout::ShowPanel(int index) {
  auto& panel = m_ui.panel[index];
  panel.SetVisible(true);
  panel.BringToFront();
  if (index == 0) {
    m_ui.tvwDetails.SetVisible(true);
    m_ui.tvwDetails.Refresh();
    if (m_ui.frLoadCD.Visible()) m_ui.frLoadCD.BringToFront();
  }
  if (!panel.Tag().empty()) return;
  if (index == 2) {
    // Filling the chooser is a walk; while another one runs it waits for the next visit.
    if (!m_context.Walking() && (!InitializeFileTypes || InitializeFileTypes())) panel.SetTag("ok");
  } else if (index == 1) {
    panel.SetVisible(true);
    for (controls::Control* control :
         {static_cast<controls::Control*>(&m_ui.lblMask), static_cast<controls::Control*>(&m_ui.cboMask),
          static_cast<controls::Control*>(&m_ui.chk1)}) {
      control->SetVisible(true);
      control->BringToFront();
    }
  }
}

}  // namespace kxrestore::dialog
