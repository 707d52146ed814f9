#include "dialog/type_census.h"

#include <algorithm>
#include <array>
#include <vector>

#include "base/text.h"
#include "catalog/text_routines.h"
#include "dialog/file_types.h"

namespace kxrestore::dialog {

void TypeCensus::Count(std::string_view name, std::int64_t files) {
  const std::string_view extension = catalog::GetExtension(catalog::LastPathComponent(name));
  if (extension.empty()) return;
  m_folded.clear();
  AppendFolded(m_folded, extension);
  const auto found = m_counts.find(std::string_view(m_folded));
  if (found != m_counts.end()) {
    found->second += files;
  } else {
    m_counts.emplace(m_folded, files);
  }
}

void TypeCensus::List(controls::AutoSelect& list) const {
  struct Counted {
    FileType type;
    std::int64_t files;
  };
  std::vector<Counted> types;
  std::array<std::int64_t, kFileKinds> kinds{};
  for (const auto& [extension, files] : m_counts) {
    const FileType type = FindFileType(extension);
    types.push_back({{extension, type.description, type.kind}, files});
    kinds[static_cast<std::size_t>(type.kind)] += files;
  }
  std::sort(types.begin(), types.end(), [](const Counted& left, const Counted& right) {
    if (left.files != right.files) return left.files > right.files;
    return CompareForSorting(left.type.extension, right.type.extension) < 0;
  });

  const auto groupOf = [](FileKind kind) { return static_cast<std::int32_t>(kind) + 1; };
  for (std::size_t kind = 0; kind < kFileKinds; ++kind) {
    const auto fileKind = static_cast<FileKind>(kind);
    if (kinds[kind] == 0 || fileKind == FileKind::kOther) continue;
    controls::AutoSelect::Entry group;
    group.name = KindName(fileKind);
    group.isGroup = true;
    group.setId = groupOf(fileKind);
    group.size = kinds[kind];
    list.Add(group);
  }
  std::string name;
  for (const Counted& counted : types) {
    name.assign(1, '.').append(counted.type.extension);
    const std::string pattern = TypePattern(counted.type.extension);
    controls::AutoSelect::Entry entry;
    entry.name = name;
    entry.storedName = pattern;
    entry.extension = counted.type.description;
    entry.size = counted.files;
    if (counted.type.kind != FileKind::kOther) entry.setId = groupOf(counted.type.kind);
    list.Add(entry);
  }
}

std::vector<std::string> PatternsOf(std::string_view types) {
  std::vector<std::string> patterns;
  for (auto end = types.find(';'); end != std::string_view::npos; end = types.find(';')) {
    patterns.push_back(std::string("*").append(types.substr(0, end)));
    types.remove_prefix(end + 1);
  }
  return patterns;
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
