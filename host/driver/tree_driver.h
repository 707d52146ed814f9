// Operates a native tree view as a user does: by its labels, buttons and check boxes.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <string>
#include <vector>

#include "host/driver/native_windows.h"

namespace kxrestore::driver {

class TreeDriver {
 public:
  TreeDriver(HWND tree, Timeout timeout) : m_tree(tree), m_timeout(timeout) {}

  // The item at the path `texts`, from the top level down; parents are expanded on the way.
  HTREEITEM Find(const std::vector<std::string>& texts) const;
  // All items `depth` levels below the first top-level item, in display order; parents are expanded on the
  // way.
  std::vector<HTREEITEM> Level(int depth) const;

  std::string Text(HTREEITEM item) const;
  bool Ticked(HTREEITEM item) const;
  void Click(HTREEITEM item) const;   // on its label; returns when it is selected
  void Toggle(HTREEITEM item) const;  // its check box; returns when it has changed

 private:
  std::vector<HTREEITEM> Children(HTREEITEM parent) const;  // nullptr: the top
  void Open(HTREEITEM item) const;
  HTREEITEM Next(HTREEITEM item, int relation) const;
  unsigned State(HTREEITEM item) const;
  RECT LabelOf(HTREEITEM item) const;
  void ClickPart(HTREEITEM item, unsigned part) const;

  HWND m_tree;
  Timeout m_timeout;
};

}  // namespace kxrestore::driver
