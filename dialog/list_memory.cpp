#include "dialog/list_memory.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "base/text.h"
#include "dialog/client_settings.h"

namespace kxrestore::dialog {

namespace {

using controls::ListColumn;
using controls::ListLook;

constexpr const char* kMasksEntry = "SearchMasks";  // a line each, the oldest first
constexpr std::size_t kMaxMasks = 20;
constexpr int kWidest = 30000;  // twips
constexpr std::pair<controls::AutoSelect FormControls::*, const char*> kLists[] = {
    {&FormControls::asRestoreList, "RestoreListColumns"},
    {&FormControls::asSearch, "SearchListColumns"},
    {&FormControls::asFiles, "TypeListColumns"},
};
constexpr std::string_view kNames[controls::kListColumns] = {"name", "folder", "size",   "extension",
                                                             "set",  "date",   "backup", "version"};

std::size_t PlaceOf(std::string_view name) {
  return static_cast<std::size_t>(std::find(std::begin(kNames), std::end(kNames), name) - kNames);
}

}  // namespace

std::string LookText(const ListLook& look) {
  std::string text;
  for (const auto& [column, width] : look.columns) {
    text.append(text.empty() ? "" : ",").append(kNames[static_cast<std::size_t>(column)]);
    text.append(" ").append(std::to_string(width));
  }
  if (look.sorted) {
    text.append(";").append(kNames[static_cast<std::size_t>(look.by)]).append(look.descending ? "-" : "+");
  }
  return text;
}

ListLook LookOf(std::string_view text) {
  ListLook look;
  const std::size_t end = std::min(text.find(';'), text.size());
  ForEachPiece(text.substr(0, end), ',', [&](std::string_view piece) {
    const std::size_t blank = std::min(piece.find(' '), piece.size());
    const std::size_t place = PlaceOf(piece.substr(0, blank));
    int width = 0;
    piece.remove_prefix(std::min(blank + 1, piece.size()));
    const auto [rest, error] = std::from_chars(piece.data(), piece.data() + piece.size(), width);
    const auto column = static_cast<ListColumn>(place);
    const bool known = std::any_of(look.columns.begin(), look.columns.end(),
                                   [column](const auto& one) { return one.column == column; });
    if (place == std::size(kNames) || known || error != std::errc() || rest != piece.data() + piece.size() ||
        width < 0 || width > kWidest) {
      return;
    }
    look.columns.push_back({column, width});
  });
  std::string_view order = text.substr(std::min(end + 1, text.size()));
  if (order.empty()) return look;
  const char direction = order.back();
  order.remove_suffix(1);
  const std::size_t place = PlaceOf(order);
  if (place == std::size(kNames) || (direction != '+' && direction != '-')) return look;
  look.sorted = true;
  look.descending = direction == '-';
  look.by = static_cast<ListColumn>(place);
  return look;
}

void ListMemory::Restore() {
  const platform::CProgramSettings settings = UserSettings(m_platform);
  m_masks = settings.ReadEntry(kMasksEntry, "");
  ForEachPiece(m_masks, '\n', [this](std::string_view mask) { m_ui.cboMask.AddItem(std::string(mask)); });
  m_looks.clear();
  for (const auto& [list, entry] : kLists) {
    m_looks.push_back(settings.ReadEntry(entry, ""));
    if (!m_looks.back().empty()) (m_ui.*list).SetLook(LookOf(m_looks.back()));
  }
}

void ListMemory::Remember() {
  if (m_looks.empty()) return;
  const platform::CProgramSettings settings = UserSettings(m_platform);
  const std::vector<std::string>& items = m_ui.cboMask.Items();
  std::string masks;
  for (std::size_t i = items.size() - std::min(items.size(), kMaxMasks); i < items.size(); ++i) {
    masks.append(masks.empty() ? "" : "\n").append(items[i]);
  }
  if (masks != m_masks) settings.WriteEntry(kMasksEntry, masks);
  std::size_t place = 0;
  for (const auto& [list, entry] : kLists) {
    const std::string look = LookText((m_ui.*list).Look());
    if (look != m_looks[place++]) settings.WriteEntry(entry, look);
  }
}

}  // namespace kxrestore::dialog
