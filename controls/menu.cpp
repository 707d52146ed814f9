#include "controls/menu.h"

#include <utility>

namespace kxrestore::controls {

Menu::Item& Menu::Add(std::string text, std::function<void()> chosen) {
  if (std::exchange(m_lineIsDue, false)) m_items.emplace_back();
  Item& item = m_items.emplace_back();
  item.text = std::move(text);
  item.chosen = std::move(chosen);
  return item;
}

void Menu::UserChoose(std::size_t place) {
  if (place >= m_items.size()) return;
  Item& item = m_items[place];
  if (!item.enabled || !item.chosen) return;
  const auto chosen = std::exchange(item.chosen, nullptr);
  chosen();
}

}  // namespace kxrestore::controls
