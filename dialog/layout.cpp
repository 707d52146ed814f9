#include "dialog/layout.h"

#include <algorithm>

namespace kxrestore::dialog {

namespace {

constexpr const char* kTabClick = "tbsOptions.Click";
constexpr int kMinWidth = 7000;  // of the window, with its frame
constexpr int kMinHeight = 6100;
constexpr double kTopShare = 0.4;  // of the upper area when the form loads

// The smallest areas for the controls on them.
constexpr int kMinTop = 3360;
constexpr int kMinBottom = 2040;
constexpr int kCountsBelow = 2580;  // the lower area, with the counts below its buttons
constexpr int kMinTree = 1300;
constexpr int kMinTabs = 3360;

constexpr int kBarSize = 60;
constexpr int kTabsTop = 360;
constexpr int kTreeTop = 470;
constexpr int kDesignedTree = 3200;
constexpr int kEdge = 60;                  // from the tab strip's border to its contents
constexpr int kRow = kTreeTop - kTabsTop;  // first row on a panel, level with the set tree
constexpr int kGap = 90;
constexpr int kInset = 45;                                    // left of everything on a panel
constexpr int kFieldText = (kFieldHeight - kLineHeight) / 2;  // from a field's top to its label's

constexpr int kColumnEdge = 180;  // right of a column of buttons
constexpr int kListTop = 360;     // on the lower area
constexpr int kHeadingRoom = 2500;

// The column right of the upper area takes a quarter of the window within these.
constexpr int kNarrowColumn = 1700;
constexpr int kWideColumn = 2830;  // room for both buttons side by side
constexpr int kColumnInset = 10;   // right of its buttons, which end where the lower buttons end

// Widths below which controls are stacked.
constexpr int kLabelAndField = 2700;
constexpr int kOptionsInRow = 2325;
constexpr int kBoxInRow = 2300;
constexpr int kChoicesInRow = kOptionsInRow + kGap + kBoxInRow;
constexpr int kMinField = 2000;
constexpr int kArchiveLabel = 1350;
constexpr int kProgressLines = 4;
constexpr int kProgressBar = 180;

int ButtonTop(int row) {
  return kRow + row * kButtonPitch;
}

}  // namespace

Layout::Layout(FormContext& context) : m_context(context), m_ui(context.ui) {
  const auto resize = [this](void (Layout::*handler)()) {
    return [this, handler] { m_context.Skipping([&] { (this->*handler)(); }); };
  };
  m_ui.form.SetMinimumSize(kMinWidth, kMinHeight);
  m_ui.form.Resize = resize(&Layout::Form_Resize);
  m_ui.picTop.Resize = resize(&Layout::picTop_Resize);
  m_ui.picTabs.Resize = resize(&Layout::picTabs_Resize);
  m_ui.picBottom.Resize = resize(&Layout::picBottom_Resize);
  for (int index = 0; index < static_cast<int>(m_ui.panel.size()); ++index) {
    m_ui.panel[index].Resize = [this, index] { m_context.Skipping([&] { panel_Resize(index); }); };
  }
  m_ui.tbsOptions.Click = [this] { m_context.Event(kTabClick, [this] { tbsOptions_Click(); }); };
}

// Controls without room stay where they are.
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
  m_ui.splitH.SetMinTopHeight(kMinTop);
  m_ui.splitH.SetMinBottomHeight(kMinBottom + kBarSize);
  m_ui.splitH.update();

  Place(m_ui.tvwSets, kEdge, kTabsTop, kDesignedTree, m_ui.tvwSets.Height());
  m_ui.tvwSets.Refresh();
  m_ui.picTabs.Move(kEdge, kTabsTop, m_ui.picTabs.Width(), m_ui.picTabs.Height());
  Place(m_ui.SplitV, m_ui.tvwSets.Left() + m_ui.tvwSets.Width(), kTreeTop, kBarSize, m_ui.picTabs.Height());
  m_ui.SplitV.AddControlLeft(m_ui.tvwSets);
  m_ui.SplitV.AddControlRight(m_ui.picTabs);
  m_ui.SplitV.SetMinLeftWidth(kEdge + kMinTree);
  m_ui.SplitV.SetMinRightWidth(kMinTabs + kBarSize);
  Form_Resize();
  picTop_Resize();
}

Layout::Splitters Layout::WishedSplitters() const {
  return {m_ui.splitH.Top() == m_placedTop ? m_wishedTop : m_ui.splitH.Top(),
          m_ui.SplitV.Left() == m_placedLeft ? m_wishedLeft : m_ui.SplitV.Left()};
}

void Layout::WishSplitters(const Splitters& wished) {
  m_wishedTop = wished.top;
  m_wishedLeft = wished.left;
  Form_Resize();
  picTop_Resize();
}

void Layout::Form_Resize() {
  const auto state = m_ui.form.WindowState();
  if (state != controls::WindowState::kMinimized) {
    if (m_ui.form.Height() < kMinHeight) m_ui.form.SetHeight(kMinHeight);
    if (m_ui.form.Width() < kMinWidth) m_ui.form.SetWidth(kMinWidth);
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
    PlaceHelp();
  }
  m_ui.picBottom.Refresh();
  m_ui.picTop.Refresh();
}

// Moves the bar up when the window is too small for both areas, and back when it grows.
void Layout::KeepSplitters() {
  m_wishedTop = WishedSplitters().top;
  const int most = m_ui.form.ScaleHeight() - m_ui.splitH.Height() - 90 - kMinBottom;
  m_placedTop = std::max(std::min(m_wishedTop, most), kMinTop);
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
  const int nameHeight = (wide ? 3 : 4) * kLineHeight;
  m_ui.lblSetName.Move(kEdge, top, width, nameHeight);
  top += nameHeight + kGap;

  column.Move(m_ui.picTop.Left() + m_ui.picTop.Width() + 30, kRow, column.Width(), top);
  column.BringToFront();
  PlaceHelp();
}

// The label touches the areas above and below: on the form's own surface between them a moving pointer would
// change its text.
void Layout::PlaceHelp() {
  const auto& column = m_ui.picTopButtons;
  const int top = column.Top() + column.Height();
  const int width = column.Width() - kEdge;
  const int height = m_ui.picBottom.Top() - top;
  Place(m_ui.lblHelp, column.Left() + kEdge, top, width, height);
  Place(m_ui.picProgress, column.Left() + kEdge, top, width, height);
  const int text = std::min(kProgressLines * kLineHeight, height - kProgressBar - kEdge);
  Place(m_ui.lblProgress, 0, 0, width, text);
  Place(m_ui.barProgress, 0, text + kEdge / 2, width, kProgressBar);
}

void Layout::picTop_Resize() {
  const auto& area = m_ui.picTop;
  Place(m_ui.tbsOptions, 0, 0, area.Width(), area.Height() - 30);

  m_wishedLeft = WishedSplitters().left;
  const int most = area.Width() - 90 - kMinTabs - m_ui.SplitV.Width();
  m_placedLeft = std::max(std::min(m_wishedLeft, most), m_ui.tvwSets.Left() + kMinTree);
  Place(m_ui.tvwSets, m_ui.tvwSets.Left(), kTreeTop, m_placedLeft - m_ui.tvwSets.Left(),
        area.Height() - kTreeTop);
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
  const bool countsBelow = area.Height() >= kCountsBelow;
  const int firstButton = countsBelow ? kListTop : 15 + 3 * kLineHeight;
  for (int row = 0; row < 3; ++row) {
    Place(buttons[2 + row], column, firstButton + row * kButtonPitch, kButtonWidth, kButtonHeight);
  }

  const int width = column - 260;
  Place(m_ui.lblList, 45, 90, width, m_ui.lblList.Height());
  Place(m_ui.asRestoreList, 45, kListTop, width, area.Height() - kListTop - 120);
  // The destination is on the line of the heading, right of the heading's text.
  const int path = std::max(0, width - kHeadingRoom);
  Place(m_ui.lblRestorePath, m_ui.lblList.Width() - path - 60, m_ui.lblList.Top() + 2, path,
        m_ui.lblList.Height() - 25);
  m_ui.lblRestorePath.BringToFront();

  // Each count may take two lines; with room for three lines, the bytes have one.
  const int bytes = countsBelow ? 2 * kLineHeight : kLineHeight;
  Place(m_ui.picCounts, column, countsBelow ? kListTop + 3 * kButtonPitch : 0, kButtonWidth,
        2 * kLineHeight + bytes);
  m_ui.picCounts.BringToFront();
  Place(m_ui.lblCounts[0], 0, 0, kButtonWidth, 2 * kLineHeight);
  Place(m_ui.lblCounts[1], 0, 2 * kLineHeight, kButtonWidth, bytes);
  PlaceHelp();
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
  const bool beside = width >= kLabelAndField;
  const int gap = beside ? kGap : 30;
  int top = 285;
  // Each field has its label on its line or, in a narrow frame, above.
  const auto placeField = [&](controls::Control& label, controls::Control& field, int height) {
    if (beside) {
      Place(label, kGap, top + (height - kLineHeight) / 2, kArchiveLabel, kLineHeight);
      Place(field, kGap + kArchiveLabel, top, width - kArchiveLabel, height);
    } else {
      Place(label, kGap, top, width, kLineHeight);
      top += kLineHeight;
      Place(field, kGap, top, width, height);
    }
    top += height + gap;
  };
  placeField(m_ui.lblCD[0], m_ui.DriveCD, kFieldHeight);
  placeField(m_ui.lblVL, m_ui.txtVL, kFieldHeight);
  placeField(m_ui.lblCD[1], m_ui.ProgressBar1, 255);
  Place(m_ui.cmdCD, kGap, top, std::min(kButtonWidth, width), kButtonHeight);
  top += kButtonHeight + gap;
  // Above the frame's lower edge, however low the window is.
  Place(m_ui.lblCD[2], kGap, top, width, std::clamp(tree.Height() - top - 60, 0, 3 * kLineHeight));
}

// Places options side by side if there is room, else stacked. Returns the height of their frame.
int Layout::PlaceOptions(int panel, int left, int top, int width) {
  auto& frame = m_ui.frLookin[panel];
  const bool row = width >= kOptionsInRow;
  const int first = panel == 0 ? 4 : (panel - 1) * 2;
  const int option = row ? 1020 : width - 2 * kGap;
  const int height = row ? 525 : 720;
  Place(frame, left, top, row ? kOptionsInRow : width, height);
  Place(m_ui.optLookIn[first], kGap, 225, option, kBoxHeight);
  Place(m_ui.optLookIn[first + 1], row ? kGap + 1080 : kGap, row ? 225 : 465, option, kBoxHeight);
  return height;
}

// Places the frame with its options, and the check box right of it. Returns their lower edge.
int Layout::PlaceChoicesInRow(int panel, controls::CheckBox& box, int top) {
  const int height = PlaceOptions(panel, kInset, top, kOptionsInRow);
  Place(box, kInset + kOptionsInRow + kGap, top + 225, kBoxInRow, kBoxHeight);
  return top + height;
}

// The same in a narrow column, the check box on top.
int Layout::PlaceChoicesInColumn(int panel, controls::CheckBox& box, int top, int width) {
  const int height = width >= kBoxInRow ? kBoxHeight : 2 * kBoxHeight;
  Place(box, kInset, top, width, height);
  top += height + 30;
  return top + PlaceOptions(panel, kInset, top, width);
}

// The list takes the whole width; the search fields are above it, left of the buttons.
void Layout::PlaceSearchPanel() {
  const auto& area = m_ui.panel[1];
  const int column = area.Width() - kInset - kButtonWidth;
  const int secondColumn = column - kGap - kButtonWidth;
  const bool wide = secondColumn - kGap - kInset >= kMinField;
  for (int index = 0; index < 4; ++index) {
    const int row = wide ? index / 2 : index;
    Place(m_ui.cmdSearch[index], wide && index % 2 == 0 ? secondColumn : column, ButtonTop(row), kButtonWidth,
          kButtonHeight);
  }
  const int belowButtons = ButtonTop(wide ? 1 : 3) + kButtonHeight + 45;
  const int width = (wide ? secondColumn : column) - kGap - kInset;

  int top = kRow;
  if (width >= kLabelAndField) {
    Place(m_ui.lblMask, kInset, top + kFieldText, 1200, kLineHeight);
    Place(m_ui.cboMask, kInset + 1200, top, width - 1200, kFieldHeight);
  } else {
    Place(m_ui.lblMask, kInset, top, width, kLineHeight);
    top += kLineHeight;
    Place(m_ui.cboMask, kInset, top, width, kFieldHeight);
  }
  int count = belowButtons;
  int countLeft = column;
  if (wide) {
    top = PlaceChoicesInRow(1, m_ui.chk1, ButtonTop(width >= kChoicesInRow ? 1 : 2));
    top = std::max(top, count + kLineHeight - 60);
  } else {
    top = PlaceChoicesInColumn(1, m_ui.chk1, top + kFieldHeight + 45, width);
    if (top + 45 + kLineHeight <= belowButtons) {
      count = top + 45;
      countLeft = kInset;
    }
    top = std::max(top, std::max(count + kLineHeight, belowButtons - 45));
  }
  Place(m_ui.lblSearchCount, countLeft, count, kButtonWidth, kLineHeight);
  top += wide ? kGap : 30;
  Place(m_ui.asSearch, kInset, top, area.Width() - kGap, area.Height() - top - 100);
  m_ui.lblMask.BringToFront();
  m_ui.cboMask.BringToFront();
  m_ui.chk1.BringToFront();
  m_ui.frLookin[1].BringToFront();
}

// The buttons, the check box and the look-in frame are along the lower edge; the chooser takes the rest.
void Layout::PlaceAutoPanel() {
  const auto& area = m_ui.panel[2];
  const int width = area.Width() - kGap;
  const bool wide = width >= kChoicesInRow;
  const int column = area.Width() - kInset - kButtonWidth;
  const int choices = 3 * kButtonPitch;
  const int bottom = area.Height() - kButtonPitch + kButtonHeight;
  int top = area.Height() - choices;
  if (wide) {
    const int row = bottom - kButtonHeight;
    for (int index = 0; index < 3; ++index) {
      Place(m_ui.cmdAuto[index], kInset + index * (kButtonWidth + kGap), row, kButtonWidth, kButtonHeight);
    }
    top = row - kGap - 525;
    PlaceChoicesInRow(2, m_ui.chk2, top);
  } else {
    for (int index = 0; index < 3; ++index) {
      Place(m_ui.cmdAuto[index], column, top + index * kButtonPitch, kButtonWidth, kButtonHeight);
    }
    PlaceChoicesInColumn(2, m_ui.chk2, top, column - kGap - kInset);
  }
  Place(m_ui.asFiles, kInset, kRow, width, top - kRow - 60);
}

void Layout::tbsOptions_Click() {
  m_context.Reporting(kTabClick, [this] {
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

// Filling the chooser takes long, so it waits until the form is idle.
void Layout::FillChooser() {
  controls::PictureBox& panel = m_ui.panel[2];
  if (!panel.Tag().empty() || !panel.Visible()) return;
  if (!InitializeFileTypes || InitializeFileTypes()) panel.SetTag("ok");
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
    if (m_context.IsOutermostEvent()) {
      FillChooser();
    } else {
      m_context.Command(kTabClick, [this] { m_context.Reporting(kTabClick, [this] { FillChooser(); }); });
    }
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
