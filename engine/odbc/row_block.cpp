#include "engine/odbc/row_block.h"

#include <algorithm>
#include <array>
#include <bit>
#include <initializer_list>

#include "base/text.h"

namespace kxrestore::engine::odbc {
namespace {

using jet_sql::ValueKind;

constexpr std::size_t kBlockBytes = 1 << 21;
constexpr std::size_t kMinBlockRows = 16, kMaxBlockRows = 512;
constexpr std::size_t kMaxBoundText = 512;  // characters; longer columns get a buffer of the usual size
constexpr std::size_t kUsualText = 256;
constexpr std::size_t kFlagCharacters = 8;

// Describes the column and chooses its buffer. `textsAsBytes`: see ServerFacts.
Column ColumnOf(ColumnDescription& described, bool textsAsBytes) {
  const SQLSMALLINT type = described.type;
  Column column;
  column.name = std::move(described.name);
  column.kind = KindOfType(type, described.typeName);
  if (column.kind == ValueKind::kNumber) {
    const bool isShort = type == SQL_TINYINT || type == SQL_SMALLINT || type == SQL_INTEGER;
    const bool isInteger = type == SQL_BIGINT || ((type == SQL_DECIMAL || type == SQL_NUMERIC) &&
                                                  described.digits == 0 && described.size <= 18);
    column.cType = isShort ? SQL_C_SLONG : isInteger ? SQL_C_SBIGINT : SQL_C_DOUBLE;
    column.width = isShort ? sizeof(SQLINTEGER) : 8;
  } else if (column.kind == ValueKind::kDate) {
    column.cType = SQL_C_TYPE_TIMESTAMP;
    column.width = sizeof(SQL_TIMESTAMP_STRUCT);
  } else {
    const bool hasLimit =
        type == SQL_CHAR || type == SQL_VARCHAR || type == SQL_WCHAR || type == SQL_WVARCHAR;
    const std::size_t limit = hasLimit ? static_cast<std::size_t>(described.size) : 0;
    const bool fits = limit > 0 && limit <= kMaxBoundText;
    const bool isFlag = column.kind == ValueKind::kBoolean;
    column.mayBeLong = !isFlag && !fits;
    const std::size_t characters = isFlag ? kFlagCharacters
                                   : fits ? std::max(limit, kUsualText / 8)
                                          : kUsualText;
    column.width = (characters + 1) * sizeof(char16_t);
    const std::string& name = described.typeName;
    const bool isPlainText = name == "text" || name == "varchar" || name == "bpchar";  // PostgreSQL's
    if (textsAsBytes && isPlainText) column.cType = SQL_C_BINARY;
  }
  return column;
}

}  // namespace

ValueKind KindOfType(SQLSMALLINT type, std::string_view typeName) {
  for (const char* name : {"bool", "boolean", "bit"}) {
    if (EqualIgnoringCase(typeName, name)) return ValueKind::kBoolean;
  }
  const auto isOneOf = [type](std::initializer_list<SQLSMALLINT> types) {
    return std::find(types.begin(), types.end(), type) != types.end();
  };
  if (type == SQL_BIT) return ValueKind::kBoolean;
  if (isOneOf({SQL_TINYINT, SQL_SMALLINT, SQL_INTEGER, SQL_BIGINT, SQL_DECIMAL, SQL_NUMERIC, SQL_REAL,
               SQL_FLOAT, SQL_DOUBLE})) {
    return ValueKind::kNumber;
  }
  if (isOneOf({SQL_TYPE_DATE, SQL_TYPE_TIMESTAMP, SQL_DATE, SQL_TIMESTAMP})) return ValueKind::kDate;
  if (isOneOf({SQL_CHAR, SQL_VARCHAR, SQL_LONGVARCHAR, SQL_WCHAR, SQL_WVARCHAR, SQL_WLONGVARCHAR})) {
    return ValueKind::kText;
  }
  return ValueKind::kUnknown;
}

Outcome RowBlock::Begin(StatementHandle& statement) {
  m_isAtEnd = true;
  m_fetched = 0;
  std::size_t count = 0;
  Outcome outcome = statement.CountColumns(count);
  if (outcome.Failed()) return outcome;
  if (!m_isBound || count != m_columns.size()) {
    if (m_isBound) outcome = statement.UnbindColumns();
    m_isBound = false;
    if (!outcome.Failed()) outcome = Describe(statement, count);
    if (!outcome.Failed()) outcome = Bind(statement);
    if (outcome.Failed()) return outcome;
    m_isBound = true;
  }
  // Set the block's size after the execution: if it is set before, some drivers open a cursor on the server
  // instead of sending the rows.
  outcome = statement.SetAttribute(SQL_ATTR_ROW_ARRAY_SIZE, m_maxRows);
  if (outcome.Failed() || count == 0) return outcome;
  return Fetch(statement);
}

Outcome RowBlock::Describe(StatementHandle& statement, std::size_t count) {
  m_columns.clear();
  for (std::size_t i = 0; i < count; ++i) {
    ColumnDescription described;
    Outcome outcome = statement.DescribeColumn(i, described);
    if (outcome.Failed()) return outcome;
    m_columns.push_back(ColumnOf(described, m_textsAsBytes));
  }
  m_isPiecewise = !m_readsPartsInBlocks && std::any_of(m_columns.begin(), m_columns.end(),
                                                       [](const Column& one) { return one.mayBeLong; });
  return {};
}

Outcome RowBlock::Bind(StatementHandle& statement) {
  std::size_t rowBytes = 1;
  for (const Column& column : m_columns) rowBytes += column.width + sizeof(SQLLEN);
  // A power of two, so that no block spans two of the portions that the driver fetches from the server.
  m_maxRows =
      m_isPiecewise ? 1 : std::bit_floor(std::clamp(kBlockBytes / rowBytes, kMinBlockRows, kMaxBlockRows));
  Outcome outcome = statement.SetFetchedCount(&m_fetched);
  for (std::size_t i = 0; i < m_columns.size() && !outcome.Failed(); ++i) {
    Column& column = m_columns[i];
    column.data = std::make_unique_for_overwrite<char[]>(column.width * m_maxRows);
    column.sizes.resize(m_maxRows);
    if (!m_isPiecewise) {
      outcome = statement.BindColumn(i, column.cType, column.data.get(), column.width, column.sizes.data());
    }
  }
  return outcome;
}

Outcome RowBlock::Fetch(StatementHandle& statement) {
  m_isAtEnd = true;
  m_fetched = 0;
  Outcome outcome = statement.Fetch();
  if (outcome.HasNoData()) return {};
  if (outcome.Failed()) return outcome;
  if (m_isPiecewise) outcome = ReadPiecewise(statement);
  m_isAtEnd = outcome.Failed() || (!m_isPiecewise && m_fetched == 0);
  return outcome;
}

Outcome RowBlock::ReadPiecewise(StatementHandle& statement) {
  for (std::size_t i = 0; i < m_columns.size(); ++i) {
    Column& column = m_columns[i];
    const bool isText = column.cType == SQL_C_WCHAR || column.cType == SQL_C_BINARY;
    Outcome outcome =
        isText ? ReadLongText(statement, i, 0)
               : statement.GetData(i, column.cType, column.data.get(), column.width, &column.sizes.front());
    if (outcome.Failed()) return outcome;
  }
  return {};
}

// UTF-16 even where bytes are bound: the driver's further pieces of bytes end in a zero that is not part of
// the text.
Outcome RowBlock::ReadLongText(StatementHandle& statement, std::size_t column, std::size_t row) {
  std::array<char16_t, 2048> piece;
  std::u16string& whole = m_columns[column].longText;
  SQLLEN& size = m_columns[column].sizes[row];
  whole.clear();
  if (m_maxRows > 1) {
    Outcome outcome = statement.MoveTo(row);
    if (outcome.Failed()) return outcome;
  }
  for (;;) {
    SQLLEN left = 0;
    Outcome outcome = statement.GetData(column, SQL_C_WCHAR, piece.data(), sizeof piece, &left);
    if (outcome.HasNoData()) break;
    if (outcome.Failed()) return outcome;
    if (left == SQL_NULL_DATA) {
      size = SQL_NULL_DATA;
      return {};
    }
    const bool more = left == SQL_NO_TOTAL || left >= static_cast<SQLLEN>(sizeof piece);
    whole.append(piece.data(), more ? piece.size() - 1 : static_cast<std::size_t>(left) / sizeof(char16_t));
    if (!more) break;
  }
  // In blocks, the buffer still records that the text did not fit.
  if (m_isPiecewise) size = static_cast<SQLLEN>(whole.size() * sizeof(char16_t));
  return {};
}

}  // namespace kxrestore::engine::odbc
