// Names of a statement as a server spells them: the catalog's dialect does not care about case, servers that
// take quoted names do. On the way it learns the kinds of values, which decide how a Boolean is tested, what
// a literal is compared as, and which columns of which tables a row's values come from.
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
  std::vector<KnownColumn> columns;  // empty when they are not known
  std::optional<std::string> text;   // a saved query that is read through its text in the catalog's dialect
};

class Relations {
 public:
  virtual ~Relations() = default;
  // The table or query of that name, without regard to case; null when none is known. It stays valid while
  // a statement is resolved.
  virtual const KnownRelation* Find(std::string_view name) = 0;
};

struct ParameterUse {
  ValueKind kind = ValueKind::kUnknown;  // of what it is compared with
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
  bool readsQueries = false;             // and not tables only
  bool columnsKnown = false;
  std::vector<ResultColumn> columns;
  std::vector<ResultTable> tables;  // whose rows the result shows one by one; only of reading statements
};

// Errors: 3061 for a column that a known table does not have, 3079 for one that several have.
Resolution ResolveNames(Statement& statement, Relations& relations);

}  // namespace kxrestore::engine::jet_sql
