// The popup menu of a control without a window: what a user would see in it, and choosing from it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "controls/control.h"
#include "controls/menu.h"

namespace kxrestore::platform {

class HeadlessMenu {
 public:
  // Asks the control for its menu, about a node or an entry where `subject` is not 0.
  explicit HeadlessMenu(controls::Control& control, std::size_t subject = 0) : m_menu(subject) {
    control.UserMenu(m_menu);
  }

  // One text an item, with "*" before a checked one, " (off)" after a disabled one, and "-" for a line.
  std::vector<std::string> Texts() const {
    std::vector<std::string> texts;
    for (const controls::Menu::Item& item : m_menu.Items()) {
      texts.push_back(item.IsLine()
                          ? "-"
                          : (item.checked ? "*" : "") + Plain(item.text) + (item.enabled ? "" : " (off)"));
    }
    return texts;
  }

  // Chooses the enabled item of this text, written without "&". Whether there is one.
  bool Choose(std::string_view text) {
    for (std::size_t place = 0; place < m_menu.Items().size(); ++place) {
      const controls::Menu::Item& item = m_menu.Items()[place];
      if (item.IsLine() || !item.enabled || !Reads(item.text, text)) continue;
      m_menu.UserChoose(place);
      return true;
    }
    return false;
  }

 private:
  // Takes no memory: tests choose while memory runs out.
  static bool Reads(std::string_view text, std::string_view plain) {
    for (const char c : text) {
      if (c == '&') continue;
      if (plain.empty() || plain.front() != c) return false;
      plain.remove_prefix(1);
    }
    return plain.empty();
  }
  static std::string Plain(std::string text) {
    std::erase(text, '&');
    return text;
  }

  controls::Menu m_menu;
};

}  // namespace kxrestore::platform
