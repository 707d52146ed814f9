#include "dialog/type_census.h"

#include <algorithm>
#include <array>
#include <vector>

#include "base/text.h"
#include "catalog/text_routines.h"
#include "dialog/file_types.h"

namespace kxrestore::dialog {

void TypeCensus::Count(std::string_view name) {
  const std::string_view extension = catalog::GetExtension(catalog::LastPathComponent(name));
  if (extension.empty()) return;
  m_folded.clear();
  AppendFolded(m_folded, extension);
  const auto found = m_counts.find(std::string_view(m_folded));
  if (found != m_counts.end()) {
    ++found->second;
  } else {
    m_counts.emplace(m_folded, 1);
  }
}

void TypeCensus::List(controls::AutoSelect& list) const {
  struct Counted {
    FileType type;
    std::int64_t files;
  };
  std::array<std::vector<Counted>, kFileKinds> kinds;
  for (const auto& [extension, files] : m_counts) {
    const FileType type = FindFileType(extension);
    kinds[static_cast<std::size_t>(type.kind)].push_back({{extension, type.description, type.kind}, files});
  }

  std::string name;
  for (std::size_t kind = 0; kind < kFileKinds; ++kind) {
    auto& types = kinds[kind];
    if (types.empty()) continue;
    std::sort(types.begin(), types.end(), [](const Counted& left, const Counted& right) {
      if (left.files != right.files) return left.files > right.files;
      return CompareForSorting(left.type.extension, right.type.extension) < 0;
    });
    controls::AutoSelect::Entry group;
    group.name = KindName(static_cast<FileKind>(kind));
    group.isGroup = true;
    for (const Counted& counted : types) group.size += counted.files;
    list.Add(group);

    for (const Counted& counted : types) {
      name.assign(1, '.').append(counted.type.extension);
      const std::string pattern = TypePattern(counted.type.extension);
      controls::AutoSelect::Entry entry;
      entry.name = name;
      entry.storedName = pattern;
      entry.extension = counted.type.description;
      entry.size = counted.files;
      list.Add(entry);
    }
  }
}

std::string TypePattern(std::string_view extension) {
  std::string pattern = ".";
  for (const char character : extension) {
    switch (character) {
      case '[':
      case '#':
      case '*':
      case '?':
        pattern.append("[").append(1, character).append("]");
        break;
      case ';':  // would end the type in the list
        pattern += '?';
        break;
      default:
        pattern += character;
    }
  }
  return pattern;
}

}  // namespace kxrestore::dialog
