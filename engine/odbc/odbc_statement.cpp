#include "engine/odbc/odbc_statement.h"

#include <cstring>
#include <utility>

#include "engine/odbc/odbc_session.h"

namespace kxrestore::engine::odbc {
namespace {

using jet_sql::ValueKind;

template <typename Plain>
Plain Load(const char* from) {
  Plain plain;
  std::memcpy(&plain, from, sizeof plain);
  return plain;
}

bool IsTrue(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0.") != std::string_view::npos && text.front() != 'f' &&
         text.front() != 'F';
}

DateTime AsDate(const SQL_TIMESTAMP_STRUCT& stamp) {
  const auto small = [](SQLUSMALLINT number) { return static_cast<std::int8_t>(number); };
  return {stamp.year,        small(stamp.month),  small(stamp.day),
          small(stamp.hour), small(stamp.minute), small(stamp.second)};
}

// Most texts are ASCII, and a walk over a catalog converts millions of them.
void Convert(std::u16string_view units, std::string& text) {
  text.resize(units.size());
  unsigned all = 0;
  for (std::size_t i = 0; i < units.size(); ++i) {
    all |= units[i];
    text[i] = static_cast<char>(units[i]);
  }
  if (all < 0x80) return;
  text.clear();
  AppendUtf8(text, units);
}

}  // namespace

OdbcStatement::OdbcStatement(Session& session, jet_sql::PrintedSql sql)
    : m_session(session), m_data(std::make_shared<StatementData>(std::move(sql), session.Facts())) {}

OdbcStatement::~OdbcStatement() {
  m_data->AskToFree();
  if (HoldsServer()) m_session.Driver().Tidy();
}

// Executes and fetches the first block.
Outcome OdbcStatement::RunReading(std::function<Outcome(DriverHandles&)> call) {
  m_isOpen = true;
  Outcome outcome = m_session.Run(std::move(call), m_data);
  m_beforeFirst = m_isFirstBlock = true;
  m_row = 0;
  if (m_texts.size() != Columns().size()) m_texts = std::vector<Converted>(Columns().size());
  return outcome;
}

Outcome OdbcStatement::ExecuteWith(const std::vector<engine::Value>& values, bool wantsRows) {
  const bool byName = !m_session.FetchesPiecewise();
  if (byName && m_data->WantsName()) m_data->SetName(m_session.NameForPrepared());
  m_data->SetValues(values);
  const auto execute = [data = m_data, byName, wantsRows](DriverHandles& handles) {
    return data->Execute(handles, byName, wantsRows);
  };
  if (wantsRows) return RunReading(execute);
  m_isOpen = false;
  return m_session.Run(execute, m_data);
}

Outcome OdbcStatement::ExecuteDirect() {
  const auto execute = [data = m_data](DriverHandles& handles) { return data->ExecuteDirect(handles); };
  return m_session.Run(execute, m_data);
}

Outcome OdbcStatement::ExecuteCatalog(StatementData::CatalogFunction function) {
  return RunReading([data = m_data, function = std::move(function)](DriverHandles& handles) {
    return data->Ask(handles, function);
  });
}

void OdbcStatement::CloseCursor() noexcept {
  m_data->AskToClose();
  if (HoldsServer()) m_session.Driver().Tidy();
  m_isOpen = false;
}

// ---- rows

bool OdbcStatement::Next() {
  const RowBlock& block = m_data->Rows();
  ++m_number;
  if (std::exchange(m_beforeFirst, false)) return block.RowCount() > 0;
  if (m_row + 1 < block.RowCount()) {
    ++m_row;
    return true;
  }
  if (block.IsLast()) return false;
  m_session.GiveTurn();  // a listing may have many blocks, each fetched in no time
  m_row = 0;
  m_isFirstBlock = false;
  const auto fetch = [data = m_data](DriverHandles&) { return data->FetchBlock(); };
  const Outcome outcome = m_session.Run(fetch, m_data);
  if (outcome.Failed()) m_session.RaiseFailure(outcome, m_data->Sql().Text());
  return block.RowCount() > 0;
}

void OdbcStatement::ReadLongText(std::size_t column) const {
  const auto read = [data = m_data, column, row = m_row](DriverHandles&) {
    return data->ReadLongText(column, row);
  };
  const Outcome outcome = m_session.Run(read, m_data);
  if (outcome.Failed()) m_session.RaiseFailure(outcome, m_data->Sql().Text());
}

std::string_view OdbcStatement::TextOf(std::size_t column) const {
  Converted& converted = m_texts[column];
  if (converted.row == m_number) return converted.text;
  const RowBlock& block = m_data->Rows();
  const Column& buffer = block.Columns()[column];
  const SQLLEN size = buffer.sizes[m_row];
  const bool bytes = buffer.cType == SQL_C_BINARY;
  const auto room = static_cast<SQLLEN>(buffer.width - (bytes ? 1 : sizeof(char16_t)));
  const char* data = buffer.Data(m_row);
  if (block.IsPiecewise()) {
    Convert(buffer.longText, converted.text);
  } else if (size == SQL_NO_TOTAL || size > room) {
    ReadLongText(column);
    Convert(buffer.longText, converted.text);
  } else if (bytes) {
    return {data, static_cast<std::size_t>(size)};
  } else {
    const auto* units = reinterpret_cast<const char16_t*>(data);
    Convert({units, static_cast<std::size_t>(size) / sizeof(char16_t)}, converted.text);
  }
  converted.row = m_number;
  return converted.text;
}

ValueView OdbcStatement::Value(std::size_t column) const {
  const RowBlock& block = m_data->Rows();
  const Column& buffer = block.Columns()[column];
  if (buffer.sizes[m_row] == SQL_NULL_DATA) return std::monostate();
  const char* data = buffer.Data(m_row);
  switch (buffer.cType) {
    case SQL_C_SLONG:
      return std::int64_t{Load<SQLINTEGER>(data)};
    case SQL_C_SBIGINT:
      return Load<std::int64_t>(data);
    case SQL_C_DOUBLE:
      return Load<double>(data);
    case SQL_C_TYPE_TIMESTAMP:
      return AsDate(Load<SQL_TIMESTAMP_STRUCT>(data));
    default:
      if (buffer.kind == ValueKind::kBoolean) return IsTrue(TextOf(column));
      return TextOf(column);
  }
}

}  // namespace kxrestore::engine::odbc
