#include "catalog/type_census.h"

#include <algorithm>

#include "base/sorting.h"
#include "base/text.h"
#include "catalog/text_routines.h"
#include "engine/error_numbers.h"

namespace kxrestore::catalog {

std::unique_ptr<engine::Recordset> OpenTypes(engine::Database& database) {
  constexpr const char* kFrom =
      " FROM [Catalog] WHERE (((Catalog.Status)=2) AND ((Catalog.OrigName) Like \"*.*\"))";
  try {
    const std::string tail = "Mid([OrigName],InStrRev([OrigName],\".\"))";
    return database.OpenRecordset(
        "SELECT " + tail + " AS FileType, Count(*) AS Files" + kFrom + " GROUP BY " + tail + ";",
        engine::RecordsetType::kSnapshot);
  } catch (const Error& error) {
    if (error.Number() != engine::error_number::kUndefinedFunction) throw;
  }
  return database.OpenRecordset(std::string("SELECT Catalog.OrigName AS FileType, 1 AS Files") + kFrom + ";",
                                engine::RecordsetType::kSnapshot);
}

void TypeCensus::Count(std::string_view name, std::int64_t files) {
  const std::string_view extension = GetExtension(LastPathComponent(name));
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

std::vector<TypeCensus::Counted> TypeCensus::Types() const {
  std::vector<Counted> types;
  for (const auto& [extension, files] : m_counts) {
    const FileType type = FindFileType(extension);
    types.push_back({{extension, type.description, type.kind}, files});
  }
  std::sort(types.begin(), types.end(), [](const Counted& left, const Counted& right) {
    if (left.files != right.files) return left.files > right.files;
    return CompareForSorting(left.type.extension, right.type.extension) < 0;
  });
  return types;
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

}  // namespace kxrestore::catalog
