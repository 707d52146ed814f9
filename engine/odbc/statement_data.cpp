#include "engine/odbc/statement_data.h"

#include <algorithm>
#include <utility>

#include "engine/odbc/connection.h"
#include "engine/odbc/odbc_error.h"

namespace kxrestore::engine::odbc {
namespace {

constexpr std::size_t kMaxShortText = 4000;  // characters

}  // namespace

// ---- values

void BoundValues::Set(const std::vector<Value>& values) {
  while (m_slots.size() < values.size()) m_slots.push_back(std::make_unique<Slot>());
  for (std::size_t i = 0; i < values.size(); ++i) Fill(*m_slots[i], values[i]);
  m_count = values.size();
}

void BoundValues::Fill(Slot& slot, const Value& value) {
  slot.size = 0;
  ParameterBinding& binding = slot.binding;
  binding = {.data = &slot.integer, .size = &slot.size};
  if (const auto* flag = std::get_if<bool>(&value)) {
    slot.bit = *flag ? 1 : 0;
    binding.cType = SQL_C_BIT, binding.sqlType = SQL_BIT, binding.data = &slot.bit;
  } else if (const auto* integer = std::get_if<std::int64_t>(&value)) {
    slot.integer = *integer;
    binding.cType = SQL_C_SBIGINT, binding.sqlType = SQL_BIGINT, binding.columnSize = 19;
  } else if (const auto* real = std::get_if<double>(&value)) {
    slot.real = *real;
    binding.cType = SQL_C_DOUBLE, binding.sqlType = SQL_DOUBLE, binding.columnSize = 15;
    binding.data = &slot.real;
  } else if (const auto* text = std::get_if<std::string>(&value)) {
    slot.text = ToUtf16<char16_t>(*text);
    slot.size = static_cast<SQLLEN>(slot.text.size() * sizeof(char16_t));
    binding.columnSize = std::max<std::size_t>(slot.text.size(), 1);
    if (binding.columnSize > kMaxShortText) binding.sqlType = SQL_WLONGVARCHAR;
    binding.data = slot.text.data();
  } else if (const auto* date = std::get_if<DateTime>(&value)) {
    slot.date = {date->year,
                 static_cast<SQLUSMALLINT>(date->month),
                 static_cast<SQLUSMALLINT>(date->day),
                 static_cast<SQLUSMALLINT>(date->hour),
                 static_cast<SQLUSMALLINT>(date->minute),
                 static_cast<SQLUSMALLINT>(date->second),
                 0};
    binding.cType = SQL_C_TYPE_TIMESTAMP, binding.sqlType = SQL_TYPE_TIMESTAMP, binding.columnSize = 19;
    binding.data = &slot.date;
  } else {
    slot.size = SQL_NULL_DATA;
  }
}

Outcome BoundValues::Bind(StatementHandle& statement) {
  for (std::size_t i = 0; i < m_count; ++i) {
    Outcome outcome = statement.BindParameter(i, m_slots[i]->binding);
    if (outcome.Failed()) return outcome;
  }
  return {};
}

// ---- statements

StatementData::StatementData(jet_sql::PrintedSql sql, const ServerFacts& facts)
    : m_sql(std::move(sql)),
      m_timeout(facts.serverKeepsTime ? 0 : kQueryTimeout),
      m_rows(facts.textsAsBytes, facts.readsPartsInBlocks) {}

// Registers the statement with the handles, which own it until it is freed.
Outcome StatementData::Allocate(DriverHandles& handles) {
  if (m_handle.IsAllocated()) return {};
  handles.statements.reserve(handles.statements.size() + 1);
  Outcome outcome = m_handle.Allocate(handles.connection);
  if (outcome.Failed()) return outcome;
  handles.statements.push_back(shared_from_this());
  // A driver without time limits is bound by the limit of the call.
  if (m_timeout > 0) m_handle.SetAttribute(SQL_ATTR_QUERY_TIMEOUT, m_timeout).Ignore();
  return {};
}

// Prepares this text unless it is prepared already, and executes it.
Outcome StatementData::Send(Text text) {
  Outcome outcome;
  if (m_prepared != text) {
    WideText wide(text == Text::kCall ? m_call : m_sql.Text());
    m_prepared = Text::kNone;
    outcome = m_handle.Prepare(wide);
    if (!outcome.Failed()) m_prepared = text;
  }
  if (!outcome.Failed()) outcome = m_values.Bind(m_handle);
  return outcome.Failed() ? outcome : m_handle.Execute();
}

// A statement that the server does not prepare is executed as plain text, which reports what is wrong with
// it.
void StatementData::PrepareByName(DriverHandles& handles) {
  const std::string name = std::exchange(m_name, {});
  std::string call = "EXECUTE " + name;
  for (std::size_t i = 0; i < m_values.Count(); ++i) call += i == 0 ? " (?" : ", ?";
  if (m_values.Count() > 0) call += ")";
  WideText prepare("PREPARE " + name + " AS " + m_sql.TextWithNumbers());
  StatementHandle statement;
  m_canBeNamed =
      !statement.Allocate(handles.connection).Failed() && !statement.ExecuteDirect(prepare).Failed();
  if (statement.Free().Failed()) m_canBeNamed = false;
  if (m_canBeNamed) m_call = std::move(call);
}

Outcome StatementData::Execute(DriverHandles& handles, bool byName, bool wantsRows) {
  Outcome outcome = Allocate(handles);
  if (outcome.Failed()) return outcome;
  if (byName && !m_name.empty()) PrepareByName(handles);
  const bool named = byName && !m_call.empty();
  outcome = Send(named ? Text::kCall : Text::kOwn);
  if (outcome.Failed() && named && FailureOf(outcome.Diagnostics()) == Failure::kStatement) {
    // A value may not fit its parameter's type although it could be compared as plain text.
    m_canBeNamed = false;
    m_call.clear();
    outcome = Send(Text::kOwn);
  }
  if (outcome.Failed()) return outcome;
  m_executed = true;
  return wantsRows ? m_rows.Begin(m_handle) : m_handle.CountRows(m_changedRows);
}

Outcome StatementData::ExecuteDirect(DriverHandles& handles) {
  Outcome outcome = Allocate(handles);
  WideText text(m_sql.Text());
  return outcome.Failed() ? outcome : m_handle.ExecuteDirect(text);
}

Outcome StatementData::Ask(DriverHandles& handles, const CatalogFunction& function) {
  Outcome outcome = Allocate(handles);
  if (!outcome.Failed()) outcome = function(m_handle);
  return outcome.Failed() ? outcome : m_rows.Begin(m_handle);
}

bool StatementData::Tidy(Outcome& outcome) {
  if (m_freeing) {
    outcome = m_handle.Free();
    return true;
  }
  if (m_closing.exchange(false)) outcome = m_handle.CloseCursor();
  return false;
}

}  // namespace kxrestore::engine::odbc
