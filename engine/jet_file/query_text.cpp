#include "engine/jet_file/query_text.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

#include "base/text.h"
#include "engine/error_numbers.h"
#include "engine/jet_sql/reading/lexer.h"

namespace kxrestore::engine::jet_file {
namespace {

// The meaning of a line.
enum Attribute {
  kKind = 1,
  kParameter = 2,
  kOptions = 3,
  kInput = 5,
  kOutput = 6,
  kJoin = 7,
  kWhere = 8,
  kGroupBy = 9,
  kHaving = 10,
  kOrderBy = 11
};
enum Kind { kSelect = 1, kUnion = 9 };
enum Option { kAllColumns = 1, kDistinct = 2, kDistinctRow = 8, kTop = 0x10, kPercent = 0x20 };

constexpr std::array<std::string_view, 10> kKindNames = {
    "",       "select",   "make table",      "append",       "update",
    "delete", "crosstab", "data definition", "pass-through", "union"};

// Words that must be in brackets when used as a name.
constexpr std::string_view kWords =
    " all and any as asc between by cross delete desc distinct distinctrow exists false from full group "
    "having in "
    "inner insert into is join left like not null on or order outer owneraccess parameters percent procedure "
    "right select set some table top transform true union update values where with ";

std::string Bracketed(const std::string& name) {
  const bool plain = !name.empty() && jet_sql::IsWordStart(name.front()) &&
                     std::all_of(name.begin(), name.end(), jet_sql::IsWordCharacter) &&
                     kWords.find(" " + FoldCase(name) + " ") == std::string_view::npos;
  return plain ? name : "[" + name + "]";
}

// A table, or several joined tables.
struct Source {
  std::string text;
  std::vector<std::string> names;
  bool joined = false;

  bool Has(std::string_view name) const {
    return std::any_of(names.begin(), names.end(),
                       [&](const std::string& held) { return EqualIgnoringCase(held, name); });
  }
  std::string Operand() const { return joined ? "(" + text + ")" : text; }
};

class Builder {
 public:
  Builder(const std::string& name, std::span<const QueryLine> lines) : m_name(name), m_lines(lines) {}

  std::string Text() const {
    const QueryLine* kind = First(kKind);
    const int number = kind == nullptr ? kSelect : kind->flag;
    if (First(kParameter) != nullptr) Refuse("it asks for parameters");
    if (number == kUnion) return Union();
    if (number != kSelect) {
      const bool known = number > 0 && number < static_cast<int>(kKindNames.size());
      Refuse("it is a " + std::string(known ? kKindNames[static_cast<std::size_t>(number)] : "strange") +
             " query");
    }
    return Select();
  }

 private:
  [[noreturn]] void Refuse(const std::string& reason) const {
    Raise(error_number::kInvalidOperation,
          "Invalid operation: the saved query '" + m_name + "' cannot be read as rows, " + reason + ".");
  }

  const QueryLine* First(int attribute) const {
    const auto found = std::find_if(m_lines.begin(), m_lines.end(),
                                    [&](const QueryLine& line) { return line.attribute == attribute; });
    return found == m_lines.end() ? nullptr : &*found;
  }

  template <class Operation>
  void ForEach(int attribute, Operation operation) const {
    for (const QueryLine& line : m_lines) {
      if (line.attribute == attribute) operation(line);
    }
  }

  std::string Union() const {
    const QueryLine* options = First(kOptions);
    const bool all = options == nullptr || (options->flag & kDistinct) == 0;
    std::string text;
    ForEach(kInput, [&](const QueryLine& line) {
      std::string_view branch = line.expression;
      while (!branch.empty() && (jet_sql::IsBlank(branch.back()) || branch.back() == ';'))
        branch.remove_suffix(1);
      if (!text.empty()) text += all ? " UNION ALL " : " UNION ";
      text += branch;
    });
    AppendList(text, kOrderBy, " ORDER BY ");
    return text + ";";
  }

  std::string Select() const {
    std::string text = "SELECT ";
    int options = 0;
    if (const QueryLine* line = First(kOptions)) {
      options = line->flag;
      if ((options & kDistinct) != 0) text += "DISTINCT ";
      if ((options & kDistinctRow) != 0) text += "DISTINCTROW ";
      if ((options & kTop) != 0)
        text += "TOP " + line->name1 + ((options & kPercent) != 0 ? " PERCENT " : " ");
    }
    std::string items;
    ForEach(kOutput, [&](const QueryLine& line) {
      items += (items.empty() ? "" : ", ") + line.expression;
      if (!line.name1.empty()) items += " AS " + Bracketed(line.name1);
    });
    if (items.empty() || (options & kAllColumns) != 0) items += items.empty() ? "*" : ", *";
    text += items;
    AppendSources(text);
    if (const QueryLine* line = First(kWhere)) text += " WHERE " + line->expression;
    AppendList(text, kGroupBy, " GROUP BY ");
    if (const QueryLine* line = First(kHaving)) text += " HAVING " + line->expression;
    AppendList(text, kOrderBy, " ORDER BY ");
    return text + ";";
  }

  void AppendList(std::string& text, int attribute, std::string_view heading) const {
    bool first = true;
    ForEach(attribute, [&](const QueryLine& line) {
      text += first ? heading : std::string_view(", ");
      text += line.expression;
      if (attribute == kOrderBy && (line.name1 == "D" || line.name1 == "d")) text += " DESC";
      first = false;
    });
  }

  std::vector<Source> Inputs() const {
    std::vector<Source> sources;
    ForEach(kInput, [&](const QueryLine& line) {
      Source source;
      source.text = line.expression.empty() ? Bracketed(line.name1) : "(" + line.expression + ")";
      if (!line.name2.empty()) source.text += " AS " + Bracketed(line.name2);
      source.names.push_back(line.name2.empty() ? line.name1 : line.name2);
      sources.push_back(std::move(source));
    });
    return sources;
  }

  // Joins of the same pair of tables form one join with several conditions.
  void AppendSources(std::string& text) const {
    std::vector<Source> sources = Inputs();
    std::vector<const QueryLine*> joins;
    ForEach(kJoin, [&](const QueryLine& line) { joins.push_back(&line); });
    while (!joins.empty()) {
      const QueryLine first = *joins.front();
      std::string condition;
      const auto belongs = [&](const QueryLine* line) {
        return line->flag == first.flag && EqualIgnoringCase(line->name1, first.name1) &&
               EqualIgnoringCase(line->name2, first.name2);
      };
      const auto count = std::count_if(joins.begin(), joins.end(), belongs);
      for (const QueryLine* line : joins) {
        if (!belongs(line)) continue;
        condition += (condition.empty() ? "" : " AND ");
        condition += count > 1 ? "(" + line->expression + ")" : line->expression;
      }
      std::erase_if(joins, belongs);
      Join(sources, first, condition);
    }
    for (std::size_t i = 0; i < sources.size(); ++i) text += (i == 0 ? " FROM " : ", ") + sources[i].text;
  }

  void Join(std::vector<Source>& sources, const QueryLine& line, const std::string& condition) const {
    const auto find = [&](const std::string& name) {
      return std::find_if(sources.begin(), sources.end(),
                          [&](const Source& source) { return source.Has(name); });
    };
    const auto left = find(line.name1), right = find(line.name2);
    if (left == sources.end() || right == sources.end()) Refuse("it joins tables that it does not name");
    if (left == right) {  // already joined: add the condition to that join
      left->text += " AND (" + condition + ")";
      return;
    }
    constexpr std::array<const char*, 4> kJoins = {" INNER", " INNER", " LEFT", " RIGHT"};
    if (line.flag < 0 || line.flag > 3) Refuse("it joins in an unknown way");
    Source joined;
    joined.joined = true;
    joined.text = left->Operand() + kJoins[static_cast<std::size_t>(line.flag)] + " JOIN " +
                  right->Operand() + " ON " + condition;
    joined.names = left->names;
    joined.names.insert(joined.names.end(), right->names.begin(), right->names.end());
    *left = std::move(joined);
    sources.erase(right);
  }

  const std::string& m_name;
  std::span<const QueryLine> m_lines;
};

}  // namespace

std::string BuildQueryText(const std::string& name, std::span<const QueryLine> lines) {
  return Builder(name, lines).Text();
}

}  // namespace kxrestore::engine::jet_file
