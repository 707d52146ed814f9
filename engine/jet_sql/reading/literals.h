// Takes the literals out of a statement without parsing it, so that statements which differ in their values
// only share one key: every text and number that follows a comparison operator, an "=" or Like becomes a
// parameter.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace kxrestore::engine::jet_sql {

struct Literal {
  enum class Kind { kText, kInteger, kReal };
  Kind kind = Kind::kText;
  std::string text;  // buffer kept from call to call
  std::int64_t integer = 0;
  double real = 0;
};

// Reused from call to call, so that the hot path does not allocate.
struct ExtractedLiterals {
  std::string key;  // the statement with kParameterMark for each literal
  std::vector<Literal> literals;
  std::size_t count = 0;  // how many of `literals` are in use
};

// False when the text is better parsed as it stands (the key is then unusable).
bool ExtractLiterals(std::string_view source, ExtractedLiterals& result);

}  // namespace kxrestore::engine::jet_sql
