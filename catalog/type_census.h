// The file types that a catalog's names have, and how many files are of each.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "catalog/file_types.h"
#include "engine/database.h"

namespace kxrestore::catalog {

// What the names of live entries end in, from their last point on, and how many of them do: the columns
// FileType and Files. A database without InStrRev hands out the names.
std::unique_ptr<engine::Recordset> OpenTypes(engine::Database& database);

class TypeCensus {
 public:
  struct Counted {
    FileType type;
    std::int64_t files = 0;
  };

  // The type is what follows the last point of the name's last component, in either case. A name without one
  // is not counted: no pattern finds just those.
  void Count(std::string_view name, std::int64_t files = 1);

  // The most frequent type first. The texts belong to the census.
  std::vector<Counted> Types() const;

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

}  // namespace kxrestore::catalog
