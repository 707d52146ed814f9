// Sets controls out in rows, left to right, beginning a new row where the next one does not fit.
#pragma once

#include <algorithm>

#include "controls/control.h"

namespace kxrestore::dialog {

class Flow {
 public:
  Flow(int left, int top, int width, int gap) : m_left(left), m_top(top), m_width(width), m_gap(gap) {}

  // The control's own size, narrowed to the row when that is all there is.
  void Add(controls::Control& control) { Add(control, control.Width()); }
  void Add(controls::Control& control, int width) {
    width = std::clamp(width, 0, std::max(m_width, 0));
    if (m_used > 0 && m_used + width > m_width) NewRow();
    control.Move(m_left + m_used, m_top, width, control.Height());
    m_used += width + m_gap;
    m_rowHeight = std::max(m_rowHeight, control.Height());
  }
  // Takes what is left of the row, at least `least`, leaving room for `behind` more.
  void AddStretched(controls::Control& control, int least, int behind = 0) {
    if (m_used > 0 && m_used + least + behind > m_width) NewRow();
    Add(control, std::max(least, m_width - m_used - behind));
  }
  void NewRow() {
    m_top += m_rowHeight + m_gap;
    m_used = 0;
    m_rowHeight = 0;
  }
  // Where the next row would begin.
  int Bottom() const { return m_rowHeight == 0 ? m_top : m_top + m_rowHeight + m_gap; }

 private:
  int m_left, m_top, m_width, m_gap;
  int m_used = 0;
  int m_rowHeight = 0;
};

}  // namespace kxrestore::dialog
