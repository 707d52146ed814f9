#include "engine/odbc/odbc_rows.h"

#include <cstring>

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
  DateTime date;
  date.year = static_cast<std::int16_t>(stamp.year);
  date.month = static_cast<std::int8_t>(stamp.month);
  date.day = static_cast<std::int8_t>(stamp.day);
  date.hour = static_cast<std::int8_t>(stamp.hour);
  date.minute = static_cast<std::int8_t>(stamp.minute);
  date.second = static_cast<std::int8_t>(stamp.second);
  return date;
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

void RowReader::Restart() {
  m_beforeFirst = m_isFirstBlock = true;
  m_row = 0;
  if (m_texts.size() != Columns().size()) m_texts = std::vector<Converted>(Columns().size());
}

bool RowReader::Next() {
  const RowBlock& block = m_statement->Rows();
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
  const auto fetch = [statement = m_statement](DriverHandles&) { return statement->FetchBlock(); };
  const Outcome outcome = m_session.Run(fetch, m_statement);
  if (outcome.Failed()) m_session.RaiseFailure(outcome, m_statement->Sql().Text());
  return block.RowCount() > 0;
}

void RowReader::ReadLongText(std::size_t column) const {
  const auto read = [statement = m_statement, column, row = m_row](DriverHandles&) {
    return statement->ReadLongText(column, row);
  };
  const Outcome outcome = m_session.Run(read, m_statement);
  if (outcome.Failed()) m_session.RaiseFailure(outcome, m_statement->Sql().Text());
}

std::string_view RowReader::TextOf(std::size_t column) const {
  Converted& converted = m_texts[column];
  if (converted.row == m_number) return converted.text;
  const RowBlock& block = m_statement->Rows();
  const ColumnBuffer& buffer = block.Column(column);
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

ValueView RowReader::Value(std::size_t column) const {
  const RowBlock& block = m_statement->Rows();
  const ColumnBuffer& buffer = block.Column(column);
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
      if (block.Types()[column].kind == ValueKind::kBoolean) return IsTrue(TextOf(column));
      return TextOf(column);
  }
}

}  // namespace kxrestore::engine::odbc
