#include "controls/splitters.h"

#include <algorithm>
#include <limits>

#include "base/error.h"

namespace kxrestore::controls {

namespace {

constexpr std::uint32_t kDragColor = 0x80000003;
constexpr int kDragBorder = 0;
constexpr std::int32_t kDefaultMin = 5;

// A control that refuses its new size does not keep the others from being laid out.
template <typename Statement>
void SkipError(Statement statement) {
  try {
    statement();
  } catch (const Error&) {
  }
}

int Clamp(std::int64_t value) {
  return static_cast<int>(
      std::clamp<std::int64_t>(value, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

std::int32_t Stored(const PropertyBag& bag, const char* name, std::int32_t otherwise) {
  const auto place = bag.find(name);
  return place == bag.end() ? otherwise : place->second;
}

}  // namespace

SplitBar::SplitBar(std::string name, Container* container, Direction direction)
    : Control(Kind::kSplitBar, std::move(name), container), m_direction(direction) {}

void SplitBar::SetBackColor(std::uint32_t color) {
  if (m_backColor == color) return;
  m_backColor = color;
  Notify(Property::kAppearance);
}

void SplitBar::SetBorderStyle(int style) {
  if (m_borderStyle == style) return;
  m_borderStyle = style;
  Notify(Property::kAppearance);
}

void SplitBar::SetMousePointer(int pointer) {
  if (m_mousePointer == pointer) return;
  m_mousePointer = pointer;
  Notify(Property::kAppearance);
}

const char* SplitBar::MinBeforeName() const {
  return m_direction == Direction::kHorizontalBar ? "MinTopHeight" : "MinLeftWidth";
}

const char* SplitBar::MinAfterName() const {
  return m_direction == Direction::kHorizontalBar ? "MinBottomHeight" : "MinRightWidth";
}

void SplitBar::ReadProperties(const PropertyBag& bag) {
  m_designedBackColor =
      static_cast<std::uint32_t>(Stored(bag, "BackColor", static_cast<std::int32_t>(0x80000001)));
  m_designedBorderStyle = Stored(bag, "BorderStyle", 0);
  m_minBefore = Stored(bag, MinBeforeName(), kDefaultMin);
  m_minAfter = Stored(bag, MinAfterName(), kDefaultMin);
  SetBackColor(m_designedBackColor);
  SetBorderStyle(m_designedBorderStyle);
  SetMousePointer(Stored(bag, "MousePointer", 7));
}

void SplitBar::WriteProperties(PropertyBag& bag) const {
  bag["BackColor"] = static_cast<std::int32_t>(m_backColor);
  bag["BorderStyle"] = m_borderStyle;
  bag[MinBeforeName()] = m_minBefore;
  bag[MinAfterName()] = m_minAfter;
  bag["MousePointer"] = m_mousePointer;
}

int SplitBar::Position(const Control& control) const {
  return m_direction == Direction::kHorizontalBar ? control.Top() : control.Left();
}

int SplitBar::Extent(const Control& control) const {
  return m_direction == Direction::kHorizontalBar ? control.Height() : control.Width();
}

void SplitBar::Place(Control& control, int position, int extent) const {
  if (m_direction == Direction::kHorizontalBar) {
    control.Move(control.Left(), position, control.Width(), extent);
  } else {
    control.Move(position, control.Top(), extent, control.Height());
  }
}

bool SplitBar::MoveTo(std::int64_t position) {
  std::int64_t nearest = 0;  // the far edge of the group before the bar, never above 0
  for (const Control* const control : m_before) nearest = std::min<std::int64_t>(nearest, Position(*control));
  std::int64_t farthest = 0;
  bool first = true;
  for (const Control* const control : m_after) {
    const std::int64_t end = std::int64_t{Position(*control)} + Extent(*control);
    if (first || end > farthest) farthest = end;
    first = false;
  }
  if (position <= nearest + m_minBefore || position >= farthest - m_minAfter) return false;
  Place(*this, Clamp(position), Extent(*this));
  return true;
}

void SplitBar::UserMouseMoveOver(int buttons, int x, int y) {
  if (buttons != kLeftButton || !AcceptsUser()) return;
  SetBorderStyle(kDragBorder);
  SetBackColor(kDragColor);
  BringToFront();
  MoveTo(std::int64_t{Position(*this)} + (m_direction == Direction::kHorizontalBar ? y : x));
}

void SplitBar::UserMouseUp() {
  if (AcceptsUser()) update();
}

void SplitBar::UserNudge(int step) {
  if (AcceptsUser() && MoveTo(std::int64_t{Position(*this)} + step)) update();
}

void SplitBar::update() {
  SetBorderStyle(m_designedBorderStyle);
  SetBackColor(m_designedBackColor);
  for (Control* const control : m_before) {
    const std::int64_t extent = std::int64_t{Position(*this)} - Position(*control);
    SkipError([&] { Place(*control, Position(*control), Clamp(extent)); });
  }
  for (Control* const control : m_after) {
    const std::int64_t edge = std::int64_t{Position(*this)} + Extent(*this);
    const std::int64_t end = std::int64_t{Position(*control)} + Extent(*control);
    const int position = edge > 0 ? Clamp(edge) : Position(*control);
    SkipError([&] { Place(*control, position, Clamp(std::max<std::int64_t>(end - edge, 0))); });
  }
  for (Control* const control : m_after) SkipError([&] { control->Refresh(); });
}

}  // namespace kxrestore::controls
