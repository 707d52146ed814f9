// Counts the file types that names have, and lists them by kind for the user to choose from.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "controls/auto_select.h"

namespace kxrestore::dialog {

class TypeCensus {
 public:
  // The type is what follows the last point of the name's last component, in either case. A name without one
  // is not counted: no pattern finds just those.
  void Count(std::string_view name, std::int64_t files = 1);

  // Adds a group for each kind of file that there is, and behind the groups all types, the most frequent
  // first. A type's text stands for itself in a pattern.
  void List(controls::AutoSelect& list) const;

 private:
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
  };
  std::unordered_map<std::string, std::int64_t, Hash, std::equal_to<>> m_counts;  // by extension, folded
  std::string m_folded;
};

// The type as a piece of a pattern that stands in a list ended by ";".
std::string TypePattern(std::string_view extension);

// The search patterns of such a list, in its order; text after the last ";" is no type.
std::vector<std::string> PatternsOf(std::string_view types);

}  // namespace kxrestore::dialog
