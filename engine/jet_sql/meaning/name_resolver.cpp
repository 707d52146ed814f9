#include "engine/jet_sql/meaning/name_resolver.h"

#include <algorithm>

#include "base/text.h"
#include "engine/error_numbers.h"
#include "engine/jet_sql/reading/parser.h"

namespace kxrestore::engine::jet_sql {
namespace {

constexpr int kMaxSavedQueryDepth = 32;

struct Source {
  std::string visible;  // the qualifier of its columns in the text
  std::string spelled;
  bool known = false;
  std::vector<KnownColumn> columns;
  const KnownRelation* table = nullptr;
};

struct Scope {
  std::vector<Source> sources;
  const Scope* outer = nullptr;
};

struct Found {
  const Source* source = nullptr;
  const KnownColumn* column = nullptr;
};

[[noreturn]] void RaiseNoColumn(const std::string& name) {
  Raise(error_number::kParameterMissing, "Too few parameters. Expected 1. No such column: '" + name + "'.");
}

class Resolver {
 public:
  explicit Resolver(Relations& relations) : m_relations(relations) {}

  Resolution TakeResolution() { return std::move(m_resolution); }

  void operator()(SelectStatement& statement) {
    Scope scope;
    m_resolution.columnsKnown = Select(statement, nullptr, m_resolution.columns, &scope);
    const SelectCore& core = statement.cores.front();
    const auto aggregate = [](const SelectItem& item) {
      return item.expression && HoldsAggregate(*item.expression);
    };
    if (statement.cores.size() == 1 && !core.distinct && core.groupBy.empty() && !core.having &&
        std::none_of(core.items.begin(), core.items.end(), aggregate)) {
      FindBases(core, scope);
    }
  }

  void operator()(UpdateStatement& statement) {
    Scope scope;
    AddSource(statement.table, nullptr, scope);
    for (auto& [column, expression] : statement.assignments) {
      Resolve(*expression, scope);
      Adapt(*expression, Target(scope.sources.front(), column), true);
    }
    if (statement.where) Resolve(*statement.where, scope);
  }

  void operator()(InsertStatement& statement) {
    Scope scope;
    TableRef table;
    table.name = statement.table;
    AddSource(table, nullptr, scope);
    statement.table = table.name;
    const Source& source = scope.sources.front();
    std::vector<ValueKind> kinds;
    for (std::string& column : statement.columns) kinds.push_back(Target(source, column));
    if (kinds.empty()) {
      for (const KnownColumn& column : source.columns) kinds.push_back(column.kind);
    }
    for (std::vector<ExpressionPtr>& row : statement.rows) {
      for (std::size_t i = 0; i < row.size(); ++i) {
        Resolve(*row[i], scope);
        if (i < kinds.size()) Adapt(*row[i], kinds[i], true);
      }
    }
    std::vector<ResultColumn> columns;
    if (statement.query) Select(*statement.query, nullptr, columns);
  }

  void operator()(DeleteStatement& statement) {
    Scope scope;
    AddSource(statement.table, nullptr, scope);
    if (statement.where) Resolve(*statement.where, scope);
  }

 private:
  // ---- tables

  bool Select(SelectStatement& statement, const Scope* outer, std::vector<ResultColumn>& columns,
              Scope* kept = nullptr) {
    bool known = true;
    for (std::size_t i = 0; i < statement.cores.size(); ++i) {
      Scope scope;
      scope.outer = outer;
      std::vector<ResultColumn> ofCore;
      const bool coreKnown = Core(statement.cores[i], scope, ofCore);
      if (statement.cores.size() == 1) {
        for (OrderItem& item : statement.orderBy) OrderBy(*item.expression, statement.cores[i], scope);
      }
      if (i == 0) {
        known = coreKnown;
        columns = std::move(ofCore);
        if (kept != nullptr) *kept = std::move(scope);
      }
    }
    if (statement.cores.size() > 1) {
      for (OrderItem& item : statement.orderBy) NameOutput(*item.expression, statement.cores.front());
    }
    return known;
  }

  bool Core(SelectCore& core, Scope& scope, std::vector<ResultColumn>& columns) {
    for (JoinChain& chain : core.from) AddChain(chain, scope);
    bool known = true;
    for (std::size_t i = 0; i < core.items.size(); ++i) {
      SelectItem& item = core.items[i];
      if (!item.expression) {
        known = AddStar(item, scope, columns) && known;
        continue;
      }
      item.alias = ColumnName(item, i);  // the name that the text uses
      Resolve(*item.expression, scope);
      columns.push_back({item.alias, item.expression->valueKind});
    }
    if (core.where) Resolve(*core.where, scope);
    for (ExpressionPtr& expression : core.groupBy) Resolve(*expression, scope);
    if (core.having) Resolve(*core.having, scope);
    return known;
  }

  void AddChain(JoinChain& chain, Scope& scope) {
    AddSource(chain.first, scope.outer, scope);
    for (Join& join : chain.joins) AddSource(join.table, scope.outer, scope);
    for (Join& join : chain.joins) {
      if (join.on) Resolve(*join.on, scope);
    }
  }

  void AddSource(TableRef& table, const Scope* outer, Scope& scope) {
    if (table.nested) {
      AddChain(*table.nested, scope);
      return;
    }
    Source source;
    const int depth = m_queryDepth;
    if (!table.query) {
      const KnownRelation* relation = m_relations.Find(table.name);
      if (relation != nullptr && relation->text) {
        ReadSavedQuery(table, *relation->text);
      } else if (relation != nullptr) {
        source.visible = table.alias.empty() ? table.name : table.alias;
        table.name = relation->name;
        source.known = !relation->columns.empty();
        source.columns = relation->columns;
        source.table = relation;
        m_resolution.readsQueries = m_resolution.readsQueries || !relation->isTable;
      } else {
        source.visible = table.alias.empty() ? table.name : table.alias;
      }
    }
    if (table.query) {
      source.visible = table.alias;
      std::vector<ResultColumn> columns;
      source.known = Select(*table.query, outer, columns);
      for (ResultColumn& column : columns) source.columns.push_back({std::move(column.name), column.kind});
    }
    m_queryDepth = depth;
    source.spelled = table.alias.empty() ? table.name : table.alias;
    scope.sources.push_back(std::move(source));
  }

  void ReadSavedQuery(TableRef& table, std::string_view text) {
    if (++m_queryDepth > kMaxSavedQueryDepth) {
      Raise(error_number::kCircularReference, "Circular reference caused by '" + table.name + "'.");
    }
    if (table.alias.empty()) table.alias = table.name;
    Statement statement = Parse(text);
    auto* select = std::get_if<SelectStatement>(&statement);
    if (select != nullptr) table.query = std::make_unique<SelectStatement>(std::move(*select));
  }

  static bool AddStar(SelectItem& item, const Scope& scope, std::vector<ResultColumn>& columns) {
    bool known = true;
    for (const Source& source : scope.sources) {
      if (!item.starQualifier.empty() && !EqualIgnoringCase(source.visible, item.starQualifier)) continue;
      known = known && source.known;
      for (const KnownColumn& column : source.columns) columns.push_back({column.name, column.kind});
      if (!item.starQualifier.empty()) item.starQualifier = source.spelled;
    }
    return known;
  }

  // ---- columns

  static const KnownColumn* FindColumn(const Source& source, std::string_view name) {
    const KnownColumn* found = nullptr;
    for (const KnownColumn& column : source.columns) {
      if (column.name == name) return &column;
      if (found == nullptr && EqualIgnoringCase(column.name, name)) found = &column;
    }
    return found;
  }

  static ValueKind Target(const Source& source, std::string& column) {
    const KnownColumn* found = FindColumn(source, column);
    if (found == nullptr && source.known) RaiseNoColumn(column);
    if (found == nullptr) return ValueKind::kUnknown;
    column = found->name;
    return found->kind;
  }

  static Found FindQualified(const Expression& node, const Scope& scope) {
    for (const Scope* level = &scope; level != nullptr; level = level->outer) {
      for (const Source& source : level->sources) {
        if (!EqualIgnoringCase(source.visible, node.qualifier)) continue;
        const KnownColumn* column = FindColumn(source, node.text);
        if (column == nullptr && source.known) RaiseNoColumn(node.qualifier + "." + node.text);
        return {&source, column};
      }
    }
    return {};
  }

  static Found FindUnqualified(const Expression& node, const Scope& scope, bool& allKnown) {
    for (const Scope* level = &scope; level != nullptr; level = level->outer) {
      Found found;
      for (const Source& source : level->sources) {
        allKnown = allKnown && source.known;
        const KnownColumn* column = FindColumn(source, node.text);
        if (column == nullptr) continue;
        if (found.column != nullptr) {
          Raise(error_number::kAmbiguousName,
                "The specified field '" + node.text +
                    "' could refer to more than one table listed in the FROM clause.");
        }
        found = {&source, column};
      }
      if (found.column != nullptr) return found;
    }
    return {};
  }

  static void ResolveColumn(Expression& node, const Scope& scope) {
    Found found;
    if (!node.qualifier.empty()) {
      found = FindQualified(node, scope);
      if (found.source == nullptr) RaiseNoColumn(node.qualifier + "." + node.text);
    } else {
      bool allKnown = true;
      found = FindUnqualified(node, scope, allKnown);
      if (found.source == nullptr && allKnown) RaiseNoColumn(node.text);
    }
    if (found.source == nullptr) return;
    node.qualifier = found.source->spelled;
    if (found.column == nullptr) return;
    node.text = found.column->name;
    node.valueKind = found.column->kind;
  }

  // ORDER BY may name a result column by its alias.
  static bool NameOutput(Expression& node, const SelectCore& core) {
    if (node.kind != ExpressionKind::kColumn || !node.qualifier.empty()) return false;
    for (const SelectItem& item : core.items) {
      if (!item.expression || !EqualIgnoringCase(item.alias, node.text)) continue;
      node.text = item.alias;
      return true;
    }
    return false;
  }

  void OrderBy(Expression& node, const SelectCore& core, const Scope& scope) {
    if (!NameOutput(node, core)) {
      Resolve(node, scope);
      return;
    }
    for (const SelectItem& item : core.items) {
      if (item.alias != node.text || !item.expression || item.expression->kind != ExpressionKind::kColumn) {
        continue;
      }
      node.qualifier = item.expression->qualifier;
      node.valueKind = item.expression->valueKind;
      node.text = item.expression->text;
      return;
    }
  }

  // ---- expressions

  void Resolve(Expression& node, const Scope& scope) {
    if (node.kind == ExpressionKind::kColumn) {
      ResolveColumn(node, scope);
      return;
    }
    for (ExpressionPtr& argument : node.args) Resolve(*argument, scope);
    std::vector<ResultColumn> columns;
    if (node.query) Select(*node.query, &scope, columns);
    switch (node.kind) {
      case ExpressionKind::kParameter:
        if (m_resolution.parameters.size() < static_cast<std::size_t>(node.number)) {
          m_resolution.parameters.resize(static_cast<std::size_t>(node.number));
        }
        return;
      case ExpressionKind::kCompare:
      case ExpressionKind::kBetween:
      case ExpressionKind::kIn:
        AdaptOperands(node);
        break;
      case ExpressionKind::kLike:
        if (node.args[1]->kind == ExpressionKind::kParameter) Use(*node.args[1]).isMask = true;
        break;
      case ExpressionKind::kSubquery:
        if (columns.size() == 1) node.valueKind = columns.front().kind;
        return;
      default:
        break;
    }
    node.valueKind = KindOf(node);
  }

  ParameterUse& Use(const Expression& parameter) {
    return m_resolution.parameters[static_cast<std::size_t>(parameter.number - 1)];
  }

  void AdaptOperands(Expression& node) {
    Expression& first = *node.args.front();
    for (std::size_t i = 1; i < node.args.size(); ++i) {
      if (IsLiteral(*node.args[i])) {
        Adapt(*node.args[i], first.valueKind, false);
      } else if (i == 1 && IsLiteral(first)) {
        Adapt(first, node.args[i]->valueKind, false);
      }
    }
  }

  // Gives a literal the kind of the operand it is compared with or assigned to: servers do not convert
  // between numbers, texts and Booleans as the desktop engine does. The dialect handles numbers that are
  // tested for True; when assigned, True becomes 1.
  void Adapt(Expression& literal, ValueKind kind, bool assigned) {
    if (literal.kind == ExpressionKind::kParameter) {
      ParameterUse& use = Use(literal);
      if (use.kind == ValueKind::kUnknown) use.kind = kind;
    } else if (literal.kind == ExpressionKind::kBoolean && kind == ValueKind::kNumber && assigned) {
      literal.kind = ExpressionKind::kNumber;
      literal.text = literal.number != 0 ? "1" : "0";
    } else if (literal.kind == ExpressionKind::kNumber && kind == ValueKind::kBoolean) {
      literal.kind = ExpressionKind::kBoolean;
      literal.number = literal.text.find_first_not_of("0.") == std::string::npos ? 0 : 1;
    } else if (literal.kind == ExpressionKind::kNumber && kind == ValueKind::kText) {
      literal.kind = ExpressionKind::kText;
    }
  }

  // ---- the tables that result columns come from

  void FindBases(const SelectCore& core, const Scope& scope) {
    std::vector<std::size_t> tableOf;
    for (const Source& source : scope.sources) {
      tableOf.push_back(source.table != nullptr && source.table->isTable ? m_resolution.tables.size()
                                                                         : ResultColumn::kNoTable);
      if (tableOf.back() != ResultColumn::kNoTable) {
        m_resolution.tables.push_back({source.table, source.spelled});
      }
    }
    std::size_t next = 0;
    for (const SelectItem& item : core.items) {
      for (std::size_t i = 0; i < scope.sources.size(); ++i) {
        const Source& source = scope.sources[i];
        if (!item.expression) {
          if (!item.starQualifier.empty() && item.starQualifier != source.spelled) continue;
          for (const KnownColumn& column : source.columns) SetBase(next++, tableOf[i], column.name);
        } else if (item.expression->kind == ExpressionKind::kColumn &&
                   item.expression->qualifier == source.spelled) {
          SetBase(next, tableOf[i], item.expression->text);
        }
      }
      if (item.expression) ++next;
    }
  }

  void SetBase(std::size_t column, std::size_t table, const std::string& name) {
    if (column >= m_resolution.columns.size() || table == ResultColumn::kNoTable) return;
    m_resolution.columns[column].table = table;
    m_resolution.columns[column].baseName = name;
  }

  Relations& m_relations;
  Resolution m_resolution;
  int m_queryDepth = 0;
};

}  // namespace

Resolution ResolveNames(Statement& statement, Relations& relations) {
  Resolver resolver(relations);
  std::visit(resolver, statement);
  return resolver.TakeResolution();
}

}  // namespace kxrestore::engine::jet_sql
