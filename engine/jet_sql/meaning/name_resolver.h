// Resolves the names of a statement to the spelling of the server: the dialect ignores case in names, but
// servers do not in quoted ones. Also determines the kinds of values, which decide how a Boolean is tested
// and how a literal is typed, and the table column that each result column comes from.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/jet_sql/ast.h"

namespace kxrestore::engine::jet_sql {

struct KnownColumn {
  std::string name;  // as the server spells it
  ValueKind kind = ValueKind::kUnknown;
  bool isWhole = false;  // holds whole numbers only
};

struct KnownRelation {
  std::string name;
  bool isTable = false;
  std::vector<KnownColumn> columns;  // empty if unknown
  std::optional<std::string> text;   // of a saved query that is inlined
};

class Relations {
 public:
  virtual ~Relations() = default;
  // Finds a table or saved query, ignoring case; null if there is none. The pointer is valid while one
  // statement is resolved.
  virtual const KnownRelation* Find(std::string_view name) = 0;
};

struct ParameterUse {
  ValueKind kind = ValueKind::kUnknown;  // of the other operand
  bool isMask = false;
};

struct ResultColumn {
  static constexpr std::size_t kNoTable = static_cast<std::size_t>(-1);
  std::string name;
  ValueKind kind = ValueKind::kUnknown;
  std::size_t table = kNoTable;  // index into Resolution::tables
  std::string baseName;
};

struct ResultTable {
  const KnownRelation* relation;
  std::string alias;
};

struct Resolution {
  std::vector<ParameterUse> parameters;  // number 1 first
  bool readsQueries = false;             // views are among the tables
  bool columnsKnown = false;
  std::vector<ResultColumn> columns;
  std::vector<ResultTable> tables;  // whose rows the result maps to one by one; of SELECT only
};

// Errors: 3061 for a column that a known table lacks, 3079 for an ambiguous one.
Resolution ResolveNames(Statement& statement, Relations& relations);

}  // namespace kxrestore::engine::jet_sql
