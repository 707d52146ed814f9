#include "dialog/type_list.h"

#include <array>
#include <string>
#include <vector>

#include "base/phrases.h"

namespace kxrestore::dialog {

using catalog::FileKind;
using catalog::TypeCensus;

namespace {

// Types that begin with this one match its pattern, too.
std::string OthersFoundBy(std::string_view extension, const std::vector<TypeCensus::Counted>& types) {
  constexpr int kMaxNamed = 3;
  std::string others;
  int named = 0;
  for (const TypeCensus::Counted& other : types) {
    if (other.type.extension.size() <= extension.size() || !other.type.extension.starts_with(extension))
      continue;
    if (named++ == kMaxNamed) return others + ", ...";
    others.append(others.empty() ? "." : ", .").append(other.type.extension);
  }
  return others;
}

}  // namespace

void ListTypes(const TypeCensus& census, controls::AutoSelect& list) {
  const auto types = census.Types();
  std::array<std::int64_t, catalog::kFileKinds> kinds{};
  for (const TypeCensus::Counted& counted : types)
    kinds[static_cast<std::size_t>(counted.type.kind)] += counted.files;

  const auto groupOf = [](FileKind kind) { return static_cast<std::int32_t>(kind) + 1; };
  for (std::size_t kind = 0; kind < catalog::kFileKinds; ++kind) {
    const auto fileKind = static_cast<FileKind>(kind);
    if (kinds[kind] == 0 || fileKind == FileKind::kOther) continue;
    controls::AutoSelect::Entry group;
    group.name = KindName(fileKind);
    group.isGroup = true;
    group.setId = groupOf(fileKind);
    group.size = kinds[kind];
    list.Add(group);
  }
  std::string name, description;
  for (const TypeCensus::Counted& counted : types) {
    description = counted.type.description;
    if (const std::string others = OthersFoundBy(counted.type.extension, types); !others.empty()) {
      description = description.empty() ? Say(Phrase::kTypeTakesOnly, {others})
                                        : Say(Phrase::kTypeTakes, {description, others});
    }
    name.assign(1, '.').append(counted.type.extension);
    const std::string pattern = catalog::TypePattern(counted.type.extension);
    controls::AutoSelect::Entry entry;
    entry.name = name;
    entry.storedName = pattern;
    entry.extension = description;
    entry.size = counted.files;
    if (counted.type.kind != FileKind::kOther) entry.setId = groupOf(counted.type.kind);
    list.Add(entry);
  }
}

}  // namespace kxrestore::dialog
