#include "host/driver/tree_driver.h"

#include <cstring>

#include "base/utf16.h"

namespace kxrestore::driver {

HTREEITEM TreeDriver::Next(HTREEITEM item, int relation) const {
  return reinterpret_cast<HTREEITEM>(Ask(m_tree, TVM_GETNEXTITEM, relation, item));
}

std::vector<HTREEITEM> TreeDriver::Children(HTREEITEM parent) const {
  std::vector<HTREEITEM> children;
  for (HTREEITEM item = Next(parent, parent ? TVGN_CHILD : TVGN_ROOT); item; item = Next(item, TVGN_NEXT)) {
    children.push_back(item);
  }
  return children;
}

std::string TreeDriver::Text(HTREEITEM item) const {
  wchar_t text[1024] = L"";
  TVITEMW ask{};
  ask.mask = TVIF_TEXT;
  ask.hItem = item;
  ask.pszText = text;
  ask.cchTextMax = 1024;
  Ask(m_tree, TVM_GETITEMW, 0, &ask);
  return FromWide(ask.pszText ? ask.pszText : L"");
}

unsigned TreeDriver::State(HTREEITEM item) const {
  TVITEMW ask{};
  ask.mask = TVIF_STATE;
  ask.hItem = item;
  ask.stateMask = TVIS_STATEIMAGEMASK | TVIS_EXPANDED;
  Ask(m_tree, TVM_GETITEMW, 0, &ask);
  return ask.state;
}

bool TreeDriver::Ticked(HTREEITEM item) const {
  return (State(item) & TVIS_STATEIMAGEMASK) == INDEXTOSTATEIMAGEMASK(2);
}

RECT TreeDriver::LabelOf(HTREEITEM item) const {
  Ask(m_tree, TVM_ENSUREVISIBLE, 0, item);
  Ask(m_tree, WM_HSCROLL, SB_LEFT);  // buttons and boxes are left of the label
  RECT label{};
  std::memcpy(&label, &item, sizeof item);  // the message takes its item from there
  if (!Ask(m_tree, TVM_GETITEMRECT, TRUE, &label))
    throw DriverError("the item " + Quoted(Text(item)) + " cannot be seen");
  return label;
}

void TreeDriver::ClickPart(HTREEITEM item, unsigned part) const {
  const RECT label = LabelOf(item);
  const LONG middle = (label.top + label.bottom) / 2;
  for (LONG x = label.left + 2; x >= 0; --x) {
    TVHITTESTINFO hit{};
    hit.pt = {x, middle};
    Ask(m_tree, TVM_HITTEST, 0, &hit);
    if (hit.hItem == item && (hit.flags & part)) {
      PostClick(m_tree, hit.pt);
      return;
    }
  }
  throw DriverError("the item " + Quoted(Text(item)) + " has nothing to click there");
}

void TreeDriver::Open(HTREEITEM item) const {
  if (State(item) & TVIS_EXPANDED) return;
  ClickPart(item, TVHT_ONITEMBUTTON);
  WaitFor(m_timeout, Quoted(Text(item)) + " to open", [&] { return (State(item) & TVIS_EXPANDED) != 0; });
}

HTREEITEM TreeDriver::Find(const std::vector<std::string>& texts) const {
  HTREEITEM item = nullptr;
  for (const std::string& text : texts) {
    if (item) Open(item);
    HTREEITEM found = nullptr;
    WaitFor(m_timeout, "the tree item " + Quoted(text), [&] {
      for (HTREEITEM child : Children(item)) {
        if (Text(child) == text) found = child;
      }
      return found != nullptr;
    });
    item = found;
  }
  return item;
}

std::vector<HTREEITEM> TreeDriver::Level(int depth) const {
  std::vector<HTREEITEM> level = Children(nullptr);
  if (!level.empty()) level.erase(level.begin() + 1, level.end());
  for (; depth > 0; --depth) {
    std::vector<HTREEITEM> below;
    for (HTREEITEM parent : level) {
      if (!Next(parent, TVGN_CHILD)) {
        TVITEMW ask{};
        ask.mask = TVIF_CHILDREN;
        ask.hItem = parent;
        Ask(m_tree, TVM_GETITEMW, 0, &ask);
        if (ask.cChildren == 0) continue;
      }
      Open(parent);
      const std::vector<HTREEITEM> children = Children(parent);
      below.insert(below.end(), children.begin(), children.end());
    }
    level = std::move(below);
  }
  return level;
}

void TreeDriver::Click(HTREEITEM item) const {
  ClickPart(item, TVHT_ONITEMLABEL);
  WaitFor(m_timeout, Quoted(Text(item)) + " to be selected",
          [&] { return Next(nullptr, TVGN_CARET) == item; });
}

void TreeDriver::Toggle(HTREEITEM item) const {
  const bool before = Ticked(item);
  ClickPart(item, TVHT_ONITEMSTATEICON);
  WaitFor(m_timeout, "the box of " + Quoted(Text(item)) + " to change",
          [&] { return Ticked(item) != before; });
}

}  // namespace kxrestore::driver
