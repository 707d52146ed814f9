// The columns of a list and the user's arrangement of them.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace kxrestore::controls {

enum class ListColumn : std::uint8_t {
  kName,       // the last component of a path; a file type
  kFolder,     // the path before that
  kSize,       // bytes; for a file type the number of its files
  kExtension,  // of the run; for a file type its description
  kSet,
  kDate,     // of the file
  kBackup,   // date of the run
  kVersion,  // newest or older, where several versions of a file are listed
};
inline constexpr int kListColumns = 8;

struct ListLook {
  struct Column {
    ListColumn column;
    int width;  // twips
    friend bool operator==(const Column&, const Column&) = default;
  };
  std::vector<Column> columns;  // from left to right; empty: as designed
  bool sorted = false;
  bool descending = false;
  ListColumn by = ListColumn::kName;
  friend bool operator==(const ListLook&, const ListLook&) = default;
};

// Splits a path before its last component; the folder keeps its backslash. A trailing backslash belongs to
// the name. A text without any other backslash is all name.
struct SplitName {
  std::string_view folder, name;
};
inline SplitName SplitPath(std::string_view path) {
  const std::size_t end = path.ends_with('\\') ? path.size() - 1 : path.size();
  const std::size_t slash = path.substr(0, end).rfind('\\');
  if (slash == std::string_view::npos) return {{}, path};
  return {path.substr(0, slash + 1), path.substr(slash + 1)};
}

}  // namespace kxrestore::controls
