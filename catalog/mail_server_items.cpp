#include "catalog/mail_server_items.h"

#include "catalog/text_routines.h"

namespace kxrestore::catalog {

bool IsMailServerPlugin(std::string_view plugin) {
  return plugin.starts_with(kMailServerPlugin);
}

std::string_view ShownName(std::string_view name, std::string_view plugin, std::string_view file,
                           std::string& buffer) {
  if (!IsMailServerPlugin(plugin)) return name;
  buffer.assign(plugin == kMailServerPlugin ? file : plugin).append(".").append(kAggregateExtension);
  return buffer;
}

bool IsAggregate(std::string_view shownName) {
  return GetExtension(shownName) == kAggregateExtension;
}

}  // namespace kxrestore::catalog
