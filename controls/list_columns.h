// The columns of a list, and how the user has arranged them.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace kxrestore::controls {

enum class ListColumn : std::uint8_t {
  kName,       // the last component of a path; a file type
  kFolder,     // what comes before it
  kSize,       // bytes; of a file type the number of its files
  kExtension,  // of the run; of a file type its description
  kSet,
  kDate,     // of the version
  kBackup,   // the date of the run
  kVersion,  // where several versions of a file are listed, which of them is the newest
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

// A path's last component and what comes before it, with the backslash. A trailing backslash belongs to the
// name; a text without another backslash is all name.
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
