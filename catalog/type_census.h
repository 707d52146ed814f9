// Counts the file types that occur in a catalog.
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

// Query for the endings of the names of live entries, from their last dot on, and their number: columns
// FileType and Files. A database without InStrRev returns whole names.
[[nodiscard]] std::unique_ptr<engine::Recordset> OpenTypes(engine::Database& database);

class TypeCensus {
 public:
  struct Counted {
    FileType type;
    std::int64_t files = 0;
  };

  // Adds a name. Its type is what follows the last dot of its last component, in either case. A name without
  // a dot is not counted, because no pattern matches only those.
  void Count(std::string_view name, std::int64_t files = 1);

  // Sorted by frequency, most frequent first. The texts belong to the census.
  std::vector<Counted> Types() const;

 private:
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
  };
  std::unordered_map<std::string, std::int64_t, Hash, std::equal_to<>> m_counts;  // by extension, folded
  std::string m_folded;
};

// Escapes a type for use in a list of patterns separated by ";".
std::string TypePattern(std::string_view extension);

// The search patterns of such a list, in its order; text after the last ";" is ignored.
std::vector<std::string> PatternsOf(std::string_view types);

}  // namespace kxrestore::catalog
