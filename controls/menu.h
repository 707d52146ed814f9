// A popup menu. Form code builds it each time that the user opens it (Control::FillMenu); the front end shows
// it and reports the chosen item.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace kxrestore::controls {

class Menu {
 public:
  struct Item {
    std::string text;  // "&" marks the accelerator; empty for a line between items
    std::string keys;  // that do the same without the menu, "Ctrl+C"; shown, not acted on
    std::function<void()> chosen;
    bool enabled = true;
    bool checked = false;
    bool IsLine() const { return text.empty(); }
  };

  // `subject`: the index of the node or the number of the entry that the menu is for; 0 for none.
  explicit Menu(std::size_t subject = 0) : m_subject(subject) {}
  std::size_t Subject() const { return m_subject; }

  // Adds an item. The reference is valid until the next call.
  Item& Add(std::string text, std::function<void()> chosen);
  // Adds a separator before the next item. There is none at the top or the end, and never two in a row.
  void AddLine() { m_lineIsDue = !m_items.empty(); }

  const std::vector<Item>& Items() const { return m_items; }
  bool Empty() const { return m_items.empty(); }

  // Runs the item at a place in Items(), unless it is disabled or a separator. Call it once: it moves the
  // item's work out of the menu, so the work may outlive the menu.
  void UserChoose(std::size_t place);

 private:
  std::size_t m_subject;
  std::vector<Item> m_items;
  bool m_lineIsDue = false;
};

}  // namespace kxrestore::controls
