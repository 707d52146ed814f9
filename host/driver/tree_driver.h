// Works a native tree view the way a user does: by its labels, buttons and check boxes.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <string>
#include <vector>

#include "host/driver/native_windows.h"

namespace kxrestore::driver {

class TreeDriver {
 public:
  TreeDriver(HWND tree, Patience patience) : m_tree(tree), m_patience(patience) {}

  // The item that the texts lead to, each the text of a child of the one before; parents are opened on the
  // way.
  HTREEITEM Find(const std::vector<std::string>& texts) const;
  // Every item that is `depth` levels below the first one of the top, in the order shown; parents are opened
  // on the way.
  std::vector<HTREEITEM> Level(int depth) const;

  std::string Text(HTREEITEM item) const;
  bool Ticked(HTREEITEM item) const;
  void Click(HTREEITEM item) const;   // on its label; returns when it is the selected one
  void Toggle(HTREEITEM item) const;  // its check box; returns when that has changed

 private:
  std::vector<HTREEITEM> Children(HTREEITEM parent) const;  // nullptr: the top
  void Open(HTREEITEM item) const;
  HTREEITEM Next(HTREEITEM item, int relation) const;
  unsigned State(HTREEITEM item) const;
  RECT LabelOf(HTREEITEM item) const;
  void ClickPart(HTREEITEM item, unsigned part) const;

  HWND m_tree;
  Patience m_patience;
};

}  // namespace kxrestore::driver
