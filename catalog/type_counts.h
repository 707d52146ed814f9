// Counts the files that the pattern of each file type matches. A pattern matches a name that contains the
// type anywhere, so ".doc" also counts ".docx". Each name is examined once for all types.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "catalog/file_types.h"

namespace kxrestore::catalog {

class TypeCounts {
 public:
  // Adds a type, identified by the order of adding from 0. `extension`: lower case, without the dot.
  void AddType(std::string_view extension, FileKind kind);

  // Counts a file for each type, and each kind of file, whose pattern matches its name.
  void Count(std::string_view name);

  std::int64_t OfType(std::size_t type) const { return m_types[type].files; }
  std::int64_t OfKind(FileKind kind) const { return m_kinds[static_cast<std::size_t>(kind)].files; }

 private:
  struct Counter {
    std::int64_t files = 0;
    std::uint64_t lastName = 0;  // that it has counted; a name counts once
  };
  struct Type : Counter {
    FileKind kind = FileKind::kOther;
  };
  // A letter of the extensions that begin with those before it.
  struct Letter {
    static constexpr std::size_t kNoType = ~std::size_t{0};
    std::size_t type = kNoType;  // that ends here
    std::vector<std::pair<char, std::size_t>> next;
  };

  std::vector<Type> m_types;
  Counter m_kinds[kFileKinds];
  std::vector<Letter> m_letters{1};
  std::uint64_t m_name = 0;
  std::string m_folded;
};

}  // namespace kxrestore::catalog
