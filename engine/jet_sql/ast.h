// The syntax tree. Chains of operators, joins and unions are kept flat, so that the depth of the tree is the
// bracket depth of the text, which the parser limits.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "engine/jet_sql/meaning/functions.h"
#include "engine/value.h"

namespace kxrestore::engine::jet_sql {

struct SelectStatement;

enum class ExpressionKind {
  // literals, and a parameter in place of one
  kNull,
  kBoolean,    // number: 0 or 1
  kNumber,     // text as written
  kText,       // text
  kDate,       // date
  kParameter,  // number: 1, 2, ...
  // others
  kColumn,    // qualifier (may be empty), text
  kStar,      // only inside Count(*)
  kNot,       // args[0]
  kMinus,     // args[0]
  kChain,     // args joined by operators, all of one precedence: AND, OR, + -, * / Mod, &
  kCompare,   // args[0] operators[0] args[1]
  kLike,      // args[0] Like args[1]
  kBetween,   // args[0] Between args[1] And args[2]
  kIn,        // args[0] In (args[1]...) or (query)
  kIsNull,    // args[0]
  kFunction,  // text(args), and which function that is
  kCase,      // [base] when/then pairs, else
  kCast,      // args[0] as text
  kCollate,   // args[0] collate text
  kSubquery,  // (query)
  kExists,    // exists (query)
};

enum class Operator {
  kOr,
  kAnd,
  kEqual,
  kNotEqual,
  kLess,
  kGreater,
  kLessOrEqual,
  kGreaterOrEqual,
  kConcatenate,   // & in which Null is an empty text
  kStandardJoin,  // ||
  kAdd,
  kSubtract,
  kMultiply,
  kDivide,
  kDivideWhole,
  kModulo,
};

struct Expression;
using ExpressionPtr = std::unique_ptr<Expression>;

struct Expression {
  ExpressionKind kind = ExpressionKind::kNull;
  bool negated = false;   // Not Like, Not In, Not Between, Is Not Null
  bool distinct = false;  // Count(Distinct x)
  bool hasBase = false;   // of CASE: args[0] is what the others are compared with
  bool hasElse = false;
  Function function = Function::kOther;
  ValueKind valueKind = ValueKind::kUnknown;
  int depth = 1;
  std::int64_t number = 0;
  std::string qualifier;
  std::string text;
  DateTime date;
  std::vector<ExpressionPtr> args;
  std::vector<Operator> operators;
  std::unique_ptr<SelectStatement> query;

  Expression();
  ~Expression();
};

ExpressionPtr MakeColumn(std::string qualifier, std::string name);

inline bool IsLiteral(const Expression& expression) {
  return expression.kind <= ExpressionKind::kParameter;
}

// The kind of an expression whose parts are resolved; unknown for columns, parameters and nested queries.
ValueKind KindOf(const Expression& expression);

// Whether the expression is an aggregate, or contains one outside of nested queries.
bool IsAggregate(const Expression& expression);
bool HoldsAggregate(const Expression& expression);

// Unwraps the NOCASE collation of a GROUP BY key. Saved queries of SQLite need it; in this dialect grouping
// ignores case anyway.
const Expression& GroupedExpression(const Expression& key);

struct SelectItem {
  ExpressionPtr expression;   // empty for *
  std::string starQualifier;  // T of T.*
  std::string alias;
};

// The name of a result column. `place`: its index among the items, which must not be a star.
inline std::string ColumnName(const SelectItem& item, std::size_t place) {
  if (!item.alias.empty()) return item.alias;
  if (item.expression->kind == ExpressionKind::kColumn) return item.expression->text;
  return "Expr" + std::to_string(1000 + place);
}

struct JoinChain;

struct TableRef {
  std::string name;
  std::string alias;
  std::unique_ptr<SelectStatement> query;  // (SELECT ...) AS alias
  std::unique_ptr<JoinChain> nested;       // (A JOIN B ...)
};

enum class JoinType { kInner, kLeft, kCross };

struct Join {
  JoinType type = JoinType::kInner;
  TableRef table;
  ExpressionPtr on;
};

// RIGHT JOIN is turned into its mirror image while parsing: A RIGHT JOIN B becomes B LEFT JOIN A.
struct JoinChain {
  TableRef first;
  std::vector<Join> joins;
};

// Calls `visit` for each table of the chain, nested chains included.
template <class Chain, class Visit>
void ForEachTable(Chain& chain, const Visit& visit) {
  const auto each = [&visit](auto& table) {
    if (table.nested) {
      ForEachTable(*table.nested, visit);
    } else {
      visit(table);
    }
  };
  each(chain.first);
  for (auto& join : chain.joins) each(join.table);
}

struct SelectCore {
  bool distinct = false;
  std::optional<std::int64_t> top;
  std::vector<SelectItem> items;
  std::vector<JoinChain> from;
  ExpressionPtr where;
  std::vector<ExpressionPtr> groupBy;
  ExpressionPtr having;
};

struct OrderItem {
  ExpressionPtr expression;
  bool descending = false;
};

struct SelectStatement {
  std::vector<SelectCore> cores;
  std::vector<bool> unionAll;  // between the cores
  std::vector<OrderItem> orderBy;
};

struct UpdateStatement {
  TableRef table;
  std::vector<std::pair<std::string, ExpressionPtr>> assignments;
  ExpressionPtr where;
};

struct InsertStatement {
  std::string table;
  std::vector<std::string> columns;
  std::vector<std::vector<ExpressionPtr>> rows;
  std::unique_ptr<SelectStatement> query;
};

struct DeleteStatement {
  TableRef table;
  ExpressionPtr where;
};

using Statement = std::variant<SelectStatement, UpdateStatement, InsertStatement, DeleteStatement>;

inline bool IsReading(const Statement& statement) {
  return statement.index() == 0;
}

}  // namespace kxrestore::engine::jet_sql
