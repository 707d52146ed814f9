#include "engine/jet_sql/reading/source_text.h"

#include "base/error.h"
#include "base/text.h"
#include "engine/error_numbers.h"
#include "engine/jet_sql/reading/lexer.h"
#include "engine/jet_sql/reading/parser.h"

namespace kxrestore::engine::jet_sql {
namespace {

using Exists = std::function<bool(std::string_view)>;

[[noreturn]] void RaiseNotReading(std::string_view text) {
  Raise(error_number::kInvalidOperation,
        "Invalid operation: '" + std::string(LeftCharacters(text, 80)) + "' is no reading statement.");
}

SelectStatement WholeTable(std::string name) {
  SelectStatement statement;
  SelectCore& core = statement.cores.emplace_back();
  core.items.emplace_back();
  core.from.emplace_back().first.name = std::move(name);
  return statement;
}

// A recordset's source may be a name instead of a statement.
std::string NameIn(std::string_view source, const Exists& exists) {
  while (!source.empty() && IsBlank(source.front())) source.remove_prefix(1);
  while (!source.empty() && (IsBlank(source.back()) || source.back() == ';')) source.remove_suffix(1);
  std::size_t word = 0;
  while (word < source.size() && IsWordCharacter(source[word])) ++word;
  for (const char* verb : {"SELECT", "UPDATE", "INSERT", "DELETE"}) {
    if (IsKeyword(source.substr(0, word), verb)) return {};
  }
  if (source.size() > 2 && source.front() == '[' && source.find(']') == source.size() - 1) {
    return std::string(source.substr(1, source.size() - 2));
  }
  if (!source.empty() && word == source.size()) return std::string(source);
  if (!source.empty() && source.size() < 200 && exists(source)) return std::string(source);
  for (const char* verb : {"ALTER", "ANALYZE", "ATTACH", "BEGIN", "COMMIT", "CREATE", "DETACH", "DROP",
                           "PRAGMA", "REINDEX", "REPLACE", "ROLLBACK", "SAVEPOINT", "VACUUM"}) {
    if (IsKeyword(source.substr(0, word), verb)) RaiseNotReading(source);
  }
  return {};
}

}  // namespace

Statement ReadSource(const Sql& sql, bool reads, const Exists& exists) {
  const std::string_view source = sql.Text();
  if (reads) {
    if (std::string name = NameIn(source, exists); !name.empty()) return WholeTable(std::move(name));
  }
  Statement statement = Parse(source, sql.Values().size());
  if (reads && !IsReading(statement)) RaiseNotReading(source);
  if (!reads && IsReading(statement)) {
    Raise(error_number::kSelectNotExecutable,
          "Cannot execute a select query: '" + std::string(LeftCharacters(source, 80)) + "'.");
  }
  return statement;
}

Statement ParseReading(std::string_view text) {
  Statement statement = Parse(text);
  if (!IsReading(statement)) RaiseNotReading(text);
  return statement;
}

}  // namespace kxrestore::engine::jet_sql
