// A popup menu as the form's code builds it, each time that the user asks for one. The front end shows it and
// tells which item was chosen; see Control::FillMenu.
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

  // `subject`: what the user asked about, the index of a node or the number of an entry; 0 for nothing.
  explicit Menu(std::size_t subject = 0) : m_subject(subject) {}
  std::size_t Subject() const { return m_subject; }

  // The item that was added, for its other properties; valid until the next one is added.
  Item& Add(std::string text, std::function<void()> chosen);
  // A line before what is added next; none at the top or the end, and never two.
  void AddLine() { m_lineIsDue = !m_items.empty(); }

  const std::vector<Item>& Items() const { return m_items; }
  bool Empty() const { return m_items.empty(); }

  // The user chose an item, by its place in Items(). Nothing happens where it is disabled or a line. A menu
  // is chosen from once: the item's work leaves the menu, which may be gone before the work is done.
  void UserChoose(std::size_t place);

 private:
  std::size_t m_subject;
  std::vector<Item> m_items;
  bool m_lineIsDue = false;
};

}  // namespace kxrestore::controls
