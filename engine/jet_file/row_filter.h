// Conditions on the columns of a row, evaluated before the row is returned. SQLite evaluates them again, so
// the filter may pass too much but never too little.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

#include "engine/jet_file/marks.h"
#include "engine/jet_file/table.h"

namespace kxrestore::engine::jet_file {

// A value that a column is compared with, of the column's kind: an integer or a text.
struct Wanted {
  bool isText = false;
  std::int64_t number = 0;
  std::string text;            // UTF-8
  std::string latin, unicode;  // as files store it, compressed (if possible) and uncompressed
  bool hasLatin = false;

  static Wanted Number(std::int64_t number);
  static Wanted Text(std::string_view text);
};

class RowFilter {
 public:
  enum class Test { kIs, kIsNot, kIsOneOf };

  void Clear() { m_conditions.clear(); }
  // kIsNot is for integers only.
  void Add(const Column& column, Test test, std::vector<Wanted> wanted);
  bool IsEmpty() const { return m_conditions.empty(); }

  bool Passes(const Table& table, const Marks& marks, const FoundRow& found);

 private:
  struct Condition {
    const Column* column;
    Test test;
    std::vector<Wanted> wanted;
    std::unordered_set<std::string> texts;  // of a long list
    std::unordered_set<std::int64_t> numbers;
  };
  bool Passes(const Table& table, Condition& condition, const Bytes& stored);

  std::vector<Condition> m_conditions;
  std::string m_text;
};

// The value of an integer column.
std::int64_t WholeNumberOf(const Column& column, const Bytes& stored);

}  // namespace kxrestore::engine::jet_file
