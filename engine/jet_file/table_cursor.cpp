#include "engine/jet_file/table_cursor.h"

#include <algorithm>
#include <charconv>
#include <new>

#include "base/text.h"
#include "engine/jet_file/decode.h"
#include "engine/sqlite/foreign_tables.h"

namespace kxrestore::engine::jet_file {
namespace {

// The operators of a plan, each followed by a column number and a semicolon.
constexpr char kByNumber = 'r', kIs = 'e', kIsOneOf = 'i', kIsNot = 'n';

constexpr std::size_t kRowsBetweenTurns = 4096;
constexpr int kLookUpsBeforeIndex = 2;
constexpr double kIndexedCost = 30, kCostOfRow = 1;

// Whether a condition on this column can be evaluated here.
bool CanCheck(const Column& column, sqlite3_index_info& info, int i) {
  if (IsWholeNumber(column.type)) return true;
  return IsText(column.type) && std::string_view(sqlite3_vtab_collation(&info, i)) == "BINARY";
}

std::int64_t EpochPart(std::uint32_t epoch) {
  return static_cast<std::int64_t>(epoch & 0x3FFFFFFF) << 32;
}

}  // namespace

std::int64_t RowNumber(std::uint32_t epoch, RowPointer home) {
  return EpochPart(epoch) | static_cast<std::int64_t>(home.page) << 8 | home.slot;
}

bool FindByNumber(TableServer& server, Table& table, std::int64_t number, FoundRow& found) {
  if (number < 0 || (number & ~std::int64_t{0xFFFFFFFF}) != EpochPart(server.epoch)) return false;
  return table.Find(RowPointer::From(static_cast<std::uint32_t>(number)), found);
}

bool IsRowKey(const TableDefinition& table, const Column& column) {
  return column.type != ColumnType::kYesNo && IsWholeNumber(column.type) &&
         std::any_of(table.indexes.begin(), table.indexes.end(), [&](const Index& index) {
           return index.primary && index.unique && index.columns.size() == 1 &&
                  index.columns.front() == column.number;
         });
}

int PlanAccess(const TableDefinition& table, sqlite3_index_info& info) {
  std::string plan;
  int arguments = 0;
  bool unique = false;
  double rows = std::max<double>(table.rowCount, 10);
  const double allRows = rows;
  bool indexed = false;
  for (int i = 0; i < info.nConstraint; ++i) {
    const auto& constraint = info.aConstraint[i];
    if (constraint.usable == 0) continue;
    char sign = 0;
    if (constraint.op == SQLITE_INDEX_CONSTRAINT_EQ) {
      if (constraint.iColumn < 0) {
        sign = kByNumber;
      } else if (CanCheck(table.columns[static_cast<std::size_t>(constraint.iColumn)], info, i)) {
        sign = sqlite3_vtab_in(&info, i, -1) != 0 ? kIsOneOf : kIs;
        if (sign == kIsOneOf) sqlite3_vtab_in(&info, i, 1);
      }
    } else if (constraint.op == SQLITE_INDEX_CONSTRAINT_NE && constraint.iColumn >= 0 &&
               IsWholeNumber(table.columns[static_cast<std::size_t>(constraint.iColumn)].type)) {
      sign = kIsNot;
    }
    if (sign == 0) continue;
    info.aConstraintUsage[i].argvIndex = ++arguments;
    plan += sign + std::to_string(constraint.iColumn) + ";";
    if (sign == kByNumber) {
      unique = true;
    } else if (sign == kIs) {
      const Column& column = table.columns[static_cast<std::size_t>(constraint.iColumn)];
      unique = unique || IsRowKey(table, column);
      indexed = indexed || column.type != ColumnType::kYesNo;
      rows /= 10;
    } else {
      rows /= 2;
    }
  }
  if (unique) plan.insert(0, sqlite::ForeignTables::kOneRow);
  info.idxStr = sqlite3_mprintf("%s", plan.c_str());
  if (info.idxStr == nullptr) return SQLITE_NOMEM;
  info.needToFreeIdxStr = 1;
  if (unique) {
    info.idxFlags = SQLITE_INDEX_SCAN_UNIQUE;
    rows = 1;
  }
  info.estimatedRows = std::max<sqlite3_int64>(1, static_cast<sqlite3_int64>(rows));
  info.estimatedCost = unique || indexed ? kIndexedCost + rows * kCostOfRow : allRows * kCostOfRow;
  return SQLITE_OK;
}

// The next condition of the plan with its values; false at the end of the plan.
bool TableCursor::Take(std::string_view& plan, sqlite3_value* value, Condition& condition) const {
  if (plan.empty()) return false;
  condition = {};
  condition.sign = plan.front();
  const std::size_t end = plan.find(';');
  std::from_chars(plan.data() + 1, plan.data() + end, condition.column);
  plan.remove_prefix(end + 1);
  if (condition.sign == kByNumber) {
    condition.usable = sqlite3_value_type(value) == SQLITE_INTEGER;
    if (condition.usable) condition.wanted.push_back(Wanted::Number(sqlite3_value_int64(value)));
    return true;
  }
  const bool text = IsText(m_table.Definition().columns[static_cast<std::size_t>(condition.column)].type);
  condition.usable = true;
  const auto add = [&](sqlite3_value* one) {
    const int type = sqlite3_value_type(one);
    if (type == SQLITE_NULL) return;  // NULL equals nothing
    if (type == SQLITE_INTEGER && !text) {
      condition.wanted.push_back(Wanted::Number(sqlite3_value_int64(one)));
    } else if (type == SQLITE_TEXT && text) {
      const auto* bytes = reinterpret_cast<const char*>(sqlite3_value_text(one));
      if (bytes == nullptr) throw std::bad_alloc();
      condition.wanted.push_back(Wanted::Text({bytes, static_cast<std::size_t>(sqlite3_value_bytes(one))}));
    } else {
      condition.usable = false;
    }
  };
  if (condition.sign != kIsOneOf) {
    add(value);
    return true;
  }
  sqlite3_value* one = nullptr;
  int code = sqlite3_vtab_in_first(value, &one);
  for (; code == SQLITE_OK && one != nullptr; code = sqlite3_vtab_in_next(value, &one)) add(one);
  if (code != SQLITE_OK && code != SQLITE_DONE) throw std::bad_alloc();
  return true;
}

int TableCursor::Start(const char* planned, int count, sqlite3_value** values) {
  m_filter.Clear();
  m_walk.reset();
  m_homes = {};
  m_index.reset();
  m_epoch = m_server.epoch;
  m_atEnd = false;
  m_seen = 0;
  std::string_view plan = planned == nullptr ? "" : planned;
  if (plan.starts_with(sqlite::ForeignTables::kOneRow)) plan.remove_prefix(1);
  std::vector<Condition> conditions;
  Condition condition;
  bool isLookUp = false;
  for (int i = 0; i < count && Take(plan, values[i], condition); ++i) {
    if (condition.usable && condition.wanted.empty()) {
      m_atEnd = true;
      return SQLITE_OK;
    }
    if (!condition.usable) continue;
    if (condition.sign == kByNumber) {
      m_atEnd = !FindByNumber(m_server, m_table, condition.wanted.front().number, m_found);
      return SQLITE_OK;  // SQLite checks the other conditions
    }
    isLookUp = isLookUp || condition.sign == kIs;
    conditions.push_back(std::move(condition));
  }
  bool started = false;
  if (isLookUp) {
    const int code = StartLookUp(conditions, started);
    if (code != SQLITE_OK) return code;
  }
  if (!started) m_walk.emplace(m_table);
  const auto& columns = m_table.Definition().columns;
  for (Condition& one : conditions) {
    const RowFilter::Test test = one.sign == kIs      ? RowFilter::Test::kIs
                                 : one.sign == kIsNot ? RowFilter::Test::kIsNot
                                                      : RowFilter::Test::kIsOneOf;
    m_filter.Add(columns[static_cast<std::size_t>(one.column)], test, std::move(one.wanted));
  }
  return Next();
}

// The second search by the same columns builds an index: for a single one, a walk is as fast.
int TableCursor::StartLookUp(const std::vector<Condition>& conditions, bool& started) {
  const auto& columns = m_table.Definition().columns;
  std::vector<std::pair<std::uint16_t, const Condition*>> parts;
  for (const Condition& one : conditions) {
    const Column& column = columns[static_cast<std::size_t>(one.column)];
    if (one.sign == kIs && column.type != ColumnType::kYesNo) parts.emplace_back(column.number, &one);
  }
  if (parts.empty()) return SQLITE_OK;
  std::sort(parts.begin(), parts.end());
  parts.erase(std::unique(parts.begin(), parts.end(),
                          [](const auto& a, const auto& b) { return a.first == b.first; }),
              parts.end());
  std::vector<std::uint16_t> numbers;
  for (const auto& part : parts) numbers.push_back(part.first);
  TableServer::LookUps& lookUps = m_server.lookUps[{&m_table, std::move(numbers)}];
  if (++lookUps.count < kLookUpsBeforeIndex) return SQLITE_OK;
  if (!lookUps.index) {
    std::vector<const Column*> indexed;
    for (const auto& part : parts) indexed.push_back(&columns[static_cast<std::size_t>(part.second->column)]);
    auto index = std::make_shared<RowIndex>();
    if (!index->Build(m_table, indexed, m_server.turn)) return SQLITE_INTERRUPT;
    lookUps.index = std::move(index);
  }
  std::vector<Wanted> wanted;
  for (const auto& part : parts) wanted.push_back(part.second->wanted.front());
  m_index = lookUps.index;
  m_homes = m_index->Find(wanted);
  started = true;
  return SQLITE_OK;
}

int TableCursor::Next() {
  if (m_walk) {
    while (m_walk->Next(m_found)) {
      if (++m_seen % kRowsBetweenTurns == 0 && !m_server.turn()) return SQLITE_INTERRUPT;
      if (m_filter.Passes(m_table, m_server.marks, m_found)) return SQLITE_OK;
    }
  }
  while (!m_homes.empty()) {
    const RowPointer home = RowIndex::HomeOf(m_homes.front());
    m_homes = m_homes.subspan(1);
    if (m_table.Find(home, m_found) && m_filter.Passes(m_table, m_server.marks, m_found)) return SQLITE_OK;
  }
  m_atEnd = true;
  return SQLITE_OK;
}

void TableCursor::Read(sqlite3_context* context, std::size_t index) {
  const Column& column = m_table.Definition().columns.at(index);
  if (column.type == ColumnType::kYesNo) {
    sqlite3_result_int(context, m_server.marks.At(m_found, column) ? 1 : 0);
    return;
  }
  const ValueView value = DecodeColumn(m_table, m_found, column, m_text);
  if (const auto* whole = std::get_if<std::int64_t>(&value)) {
    sqlite3_result_int64(context, *whole);
  } else if (const auto* real = std::get_if<double>(&value)) {
    sqlite3_result_double(context, *real);
  } else if (const auto* text = std::get_if<std::string_view>(&value)) {
    if (IsBytes(column.type)) {
      sqlite3_result_blob64(context, text->data(), text->size(), SQLITE_TRANSIENT);
    } else {
      sqlite3_result_text64(context, text->data(), text->size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    }
  } else {
    sqlite3_result_null(context);
  }
}

}  // namespace kxrestore::engine::jet_file
