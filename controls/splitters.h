// Bars that the user drags to divide the space between two groups of controls. `splitbar` is dragged up and
// down, `SplitVertical` left and right; both share one implementation.
//
// Lengths are twips of the container. During a drag only the bar moves, and a move too close to the far edge
// of a group is refused; on release `update` lays the groups out against the bar.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "controls/control.h"

namespace kxrestore::controls {

// Properties that the form persists for a bar, by name.
using PropertyBag = std::map<std::string, std::int32_t>;

class SplitBar : public Control {
 public:
  enum class Direction { kHorizontalBar, kVerticalBar };
  enum MouseButton { kNoButton = 0, kLeftButton = 1, kRightButton = 2 };

  SplitBar(std::string name, Container* container, Direction direction);

  Direction GetDirection() const { return m_direction; }

  void update();

  std::uint32_t BackColor() const { return m_backColor; }
  void SetBackColor(std::uint32_t color);
  int BorderStyle() const { return m_borderStyle; }
  void SetBorderStyle(int style);
  int MousePointer() const { return m_mousePointer; }
  void SetMousePointer(int pointer);

  void ReadProperties(const PropertyBag& bag);
  void WriteProperties(PropertyBag& bag) const;

  // Pointer input over the bar: button state, and position in the bar's own coordinates.
  void UserMouseMoveOver(int buttons, int x, int y);
  void UserMouseUp();
  // Arrow keys on the focused bar: moves by `step` within the same limits, then updates.
  void UserNudge(int step);

 protected:
  void AddBefore(Control& control) { m_before.push_back(&control); }
  void AddAfter(Control& control) { m_after.push_back(&control); }
  std::int32_t m_minBefore = 5;
  std::int32_t m_minAfter = 5;

 private:
  int Position(const Control& control) const;
  int Extent(const Control& control) const;
  void Place(Control& control, int position, int extent) const;
  bool MoveTo(std::int64_t position);
  const char* MinBeforeName() const;
  const char* MinAfterName() const;

  Direction m_direction;
  std::vector<Control*> m_before;
  std::vector<Control*> m_after;
  std::uint32_t m_backColor = 0x80000001;
  int m_borderStyle = 0;
  int m_mousePointer = 7;
  std::uint32_t m_designedBackColor = 0x80000001;
  int m_designedBorderStyle = 0;
};

class splitbar : public SplitBar {
 public:
  splitbar(std::string name, Container* container)
      : SplitBar(std::move(name), container, Direction::kHorizontalBar) {}
  void AddControlTop(Control& control) { AddBefore(control); }
  void AddControlBottom(Control& control) { AddAfter(control); }
  std::int32_t MinTopHeight() const { return m_minBefore; }
  void SetMinTopHeight(std::int32_t height) { m_minBefore = height; }
  std::int32_t MinBottomHeight() const { return m_minAfter; }
  void SetMinBottomHeight(std::int32_t height) { m_minAfter = height; }
};

class SplitVertical : public SplitBar {
 public:
  SplitVertical(std::string name, Container* container)
      : SplitBar(std::move(name), container, Direction::kVerticalBar) {}
  void AddControlLeft(Control& control) { AddBefore(control); }
  void AddControlRight(Control& control) { AddAfter(control); }
  std::int32_t MinLeftWidth() const { return m_minBefore; }
  void SetMinLeftWidth(std::int32_t width) { m_minBefore = width; }
  std::int32_t MinRightWidth() const { return m_minAfter; }
  void SetMinRightWidth(std::int32_t width) { m_minAfter = width; }
};

}  // namespace kxrestore::controls
