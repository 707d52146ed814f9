#include "catalog/entry_names.h"

#include "catalog/text_routines.h"

namespace kxrestore::catalog {

bool IsMailServer(std::string_view plugin) {
  return plugin.starts_with(kMailServer);
}

std::optional<std::string> AggregateName(std::string_view plugin, std::string_view file) {
  if (!IsMailServer(plugin)) return std::nullopt;
  std::string name(plugin.size() == kMailServer.size() ? file : plugin);
  return name.append(".").append(kAggregateExtension);
}

bool IsAggregateName(std::string_view name) {
  return GetExtension(name) == kAggregateExtension;
}

MarkResult MarkEntry(RestoreMarks& marks, std::string_view name, std::string_view storedName,
                     bool restoreValue) {
  return IsAggregateName(name) ? marks.UpdateSelectionByFile(storedName, restoreValue, 0, "")
                               : marks.UpdateSelectionByFileName(storedName, restoreValue, 0, "");
}

}  // namespace kxrestore::catalog
