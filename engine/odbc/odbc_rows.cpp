#include "engine/odbc/odbc_rows.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "base/text.h"
#include "engine/odbc/odbc_session.h"

namespace kxrestore::engine::odbc {
namespace {

using jet_sql::ValueKind;

constexpr std::size_t kBlockBytes = 1 << 21;
constexpr std::size_t kMaxBlockRows = 512;
constexpr std::size_t kLongestBound = 512;  // characters; longer columns are bound for what is usual
constexpr std::size_t kUsualText = 256;
constexpr std::size_t kFlagCharacters = 8;

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

// Most texts are ASCII, and a walk converts millions of them.
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

SQLPOINTER AsPointer(std::size_t number) {
  return reinterpret_cast<SQLPOINTER>(number);
}

std::vector<ColumnType> Describe(const Session& session, SQLHSTMT statement, std::string_view sql) {
  SQLSMALLINT count = 0;
  SQLNumResultCols(statement, &count);
  std::vector<ColumnType> columns(static_cast<std::size_t>(std::max<SQLSMALLINT>(count, 0)));
  std::array<char16_t, 512> name{}, typeName{};
  for (std::size_t i = 0; i < columns.size(); ++i) {
    SQLSMALLINT nameSize = 0, type = 0, digits = 0, nullable = 0, typeNameSize = 0;
    SQLULEN size = 0;
    const auto column = static_cast<SQLUSMALLINT>(i + 1);
    if (!SQL_SUCCEEDED(SQLDescribeColW(statement, column, WideBuffer(name.data()),
                                       static_cast<SQLSMALLINT>(name.size()), &nameSize, &type, &size,
                                       &digits, &nullable))) {
      session.Raise(SQL_HANDLE_STMT, statement, sql);
    }
    typeName[0] = u'\0';
    SQLColAttributeW(statement, column, SQL_DESC_TYPE_NAME, typeName.data(),
                     static_cast<SQLSMALLINT>(typeName.size() * sizeof(char16_t)), &typeNameSize, nullptr);
    columns[i].name = FromWide(name.data());
    const std::string named = FromWide(typeName.data());
    columns[i].kind = KindOfType(type, named);
    columns[i].isPlainText = named == "text" || named == "varchar" || named == "bpchar";
    columns[i].isShort = type == SQL_TINYINT || type == SQL_SMALLINT || type == SQL_INTEGER;
    columns[i].isInteger = type == SQL_TINYINT || type == SQL_SMALLINT || type == SQL_INTEGER ||
                           type == SQL_BIGINT ||
                           ((type == SQL_DECIMAL || type == SQL_NUMERIC) && digits == 0 && size <= 18);
    const bool bounded = type == SQL_CHAR || type == SQL_VARCHAR || type == SQL_WCHAR || type == SQL_WVARCHAR;
    columns[i].characters = bounded ? static_cast<std::size_t>(size) : 0;
  }
  return columns;
}

}  // namespace

ValueKind KindOfType(SQLSMALLINT type, std::string_view typeName) {
  for (const char* name : {"bool", "boolean", "bit"}) {
    if (EqualIgnoringCase(typeName, name)) return ValueKind::kBoolean;
  }
  switch (type) {
    case SQL_BIT:
      return ValueKind::kBoolean;
    case SQL_TINYINT:
    case SQL_SMALLINT:
    case SQL_INTEGER:
    case SQL_BIGINT:
    case SQL_DECIMAL:
    case SQL_NUMERIC:
    case SQL_REAL:
    case SQL_FLOAT:
    case SQL_DOUBLE:
      return ValueKind::kNumber;
    case SQL_TYPE_DATE:
    case SQL_TYPE_TIMESTAMP:
    case SQL_DATE:
    case SQL_TIMESTAMP:
      return ValueKind::kDate;
    case SQL_CHAR:
    case SQL_VARCHAR:
    case SQL_LONGVARCHAR:
    case SQL_WCHAR:
    case SQL_WVARCHAR:
    case SQL_WLONGVARCHAR:
      return ValueKind::kText;
    default:
      return ValueKind::kUnknown;
  }
}

RowReader::RowReader(Session& session, SQLHSTMT statement, std::string sql)
    : m_session(session), m_statement(statement), m_sql(std::move(sql)) {
  m_types = Describe(session, statement, m_sql);
  const bool longTexts = std::any_of(m_types.begin(), m_types.end(), [](const ColumnType& type) {
    return (type.kind == ValueKind::kText || type.kind == ValueKind::kUnknown) &&
           (type.characters == 0 || type.characters > kLongestBound);
  });
  m_piecewise = longTexts && !session.Facts().readsPartsInBlocks;
  m_buffers.resize(m_types.size());
  Bind();
}

RowReader::~RowReader() {
  SQLFreeStmt(m_statement, SQL_UNBIND);
  SQLSetStmtAttrW(m_statement, SQL_ATTR_ROWS_FETCHED_PTR, nullptr, SQL_IS_POINTER);
}

void RowReader::Bind() {
  std::size_t rowBytes = 1;
  for (std::size_t i = 0; i < m_types.size(); ++i) {
    Buffer& buffer = m_buffers[i];
    const ColumnType& type = m_types[i];
    if (type.kind == ValueKind::kNumber) {
      buffer.cType = type.isShort ? SQL_C_SLONG : type.isInteger ? SQL_C_SBIGINT : SQL_C_DOUBLE;
      buffer.width = type.isShort ? sizeof(SQLINTEGER) : 8;
    } else if (type.kind == ValueKind::kDate) {
      buffer.cType = SQL_C_TYPE_TIMESTAMP;
      buffer.width = sizeof(SQL_TIMESTAMP_STRUCT);
    } else {
      const bool bounded = type.characters > 0 && type.characters <= kLongestBound;
      const std::size_t characters = type.kind == ValueKind::kBoolean ? kFlagCharacters
                                     : bounded ? std::max(type.characters, kUsualText / 8)
                                               : kUsualText;
      buffer.width = (characters + 1) * sizeof(char16_t);
      if (m_session.Facts().textsAsBytes && type.isPlainText) buffer.cType = SQL_C_BINARY;
    }
    rowBytes += buffer.width + sizeof(SQLLEN);
  }
  // A power of two, so that no block stands across the pieces that the driver fetches from the server.
  m_blockRows =
      m_piecewise ? 1 : std::bit_floor(std::clamp<std::size_t>(kBlockBytes / rowBytes, 16, kMaxBlockRows));
  SQLSetStmtAttrW(m_statement, SQL_ATTR_ROWS_FETCHED_PTR, &m_fetched, SQL_IS_POINTER);
  for (std::size_t i = 0; i < m_buffers.size(); ++i) {
    m_buffers[i].data = std::make_unique_for_overwrite<char[]>(m_buffers[i].width * m_blockRows);
    m_buffers[i].sizes.resize(m_blockRows);
    if (!m_piecewise) BindColumn(i);
  }
}

void RowReader::BindColumn(std::size_t column) {
  Buffer& buffer = m_buffers[column];
  const SQLRETURN result =
      SQLBindCol(m_statement, static_cast<SQLUSMALLINT>(column + 1), buffer.cType, buffer.data.get(),
                 static_cast<SQLLEN>(buffer.width), buffer.sizes.data());
  if (!SQL_SUCCEEDED(result)) m_session.Raise(SQL_HANDLE_STMT, m_statement, m_sql);
}

// The block's size is set behind the execution: asked for before it, some drivers would make a cursor of the
// server's instead of sending the rows.
void RowReader::Restart() {
  m_fetched = 0;
  m_row = 0;
  m_firstBlock = m_inOneBlock = true;
  SQLSetStmtAttrW(m_statement, SQL_ATTR_ROW_ARRAY_SIZE, AsPointer(m_blockRows), SQL_IS_UINTEGER);
}

bool RowReader::Next() {
  ++m_number;
  if (m_row + 1 < m_fetched) {
    ++m_row;
    return true;
  }
  m_row = 0;
  const auto fetch = [this] { return SQLFetch(m_statement); };
  const SQLRETURN result = m_firstBlock  ? m_session.CallAgain(m_statement, fetch, m_isQuick)
                           : m_piecewise ? fetch()
                                         : m_session.Call(m_statement, fetch);
  if (result == SQL_NO_DATA) return false;
  if (!SQL_SUCCEEDED(result)) m_session.Raise(SQL_HANDLE_STMT, m_statement, m_sql);
  if (m_piecewise) ReadPiecewise();
  m_inOneBlock = m_firstBlock && m_fetched < m_blockRows;
  m_firstBlock = false;
  return m_fetched > 0 || m_piecewise;
}

void RowReader::ReadPiecewise() {
  for (std::size_t column = 0; column < m_buffers.size(); ++column) {
    Buffer& buffer = m_buffers[column];
    if (buffer.cType == SQL_C_WCHAR || buffer.cType == SQL_C_BINARY) {
      ReadLongText(column, buffer.text);
      buffer.converted = m_number;
      continue;
    }
    const SQLRETURN result =
        SQLGetData(m_statement, static_cast<SQLUSMALLINT>(column + 1), buffer.cType, buffer.data.get(),
                   static_cast<SQLLEN>(buffer.width), &buffer.sizes.front());
    if (!SQL_SUCCEEDED(result)) m_session.Raise(SQL_HANDLE_STMT, m_statement, m_sql);
  }
}

void RowReader::StandOnRow() const {
  if (m_blockRows == 1) return;
  SQLSetPos(m_statement, static_cast<SQLSETPOSIROW>(m_row + 1), SQL_POSITION, SQL_LOCK_NO_CHANGE);
}

// In UTF-16 even where bytes are bound: the driver's later pieces of bytes end in a zero that is not the
// text's.
void RowReader::ReadLongText(std::size_t column, std::string& text) const {
  std::array<char16_t, 2048> piece;
  std::u16string whole;
  SQLLEN& size = m_buffers[column].sizes[m_row];
  for (;;) {
    SQLLEN left = 0;
    const SQLRETURN result = SQLGetData(m_statement, static_cast<SQLUSMALLINT>(column + 1), SQL_C_WCHAR,
                                        piece.data(), sizeof piece, &left);
    if (result == SQL_NO_DATA) break;
    if (!SQL_SUCCEEDED(result)) m_session.Raise(SQL_HANDLE_STMT, m_statement, m_sql);
    if (left == SQL_NULL_DATA) {
      size = SQL_NULL_DATA;
      text.clear();
      return;
    }
    const bool more = left == SQL_NO_TOTAL || left >= static_cast<SQLLEN>(sizeof piece);
    whole.append(piece.data(), more ? piece.size() - 1 : static_cast<std::size_t>(left) / sizeof(char16_t));
    if (!more) break;
  }
  size = static_cast<SQLLEN>(whole.size() * sizeof(char16_t));
  Convert(whole, text);
}

std::string_view RowReader::TextOf(std::size_t column) const {
  Buffer& buffer = m_buffers[column];
  if (buffer.converted == m_number) return buffer.text;
  const SQLLEN size = buffer.sizes[m_row];
  const bool bytes = buffer.cType == SQL_C_BINARY;
  const auto room = static_cast<SQLLEN>(buffer.width - (bytes ? 1 : sizeof(char16_t)));
  const char* data = buffer.Data(m_row);
  if (size == SQL_NO_TOTAL || size > room) {
    StandOnRow();
    ReadLongText(column, buffer.text);
  } else if (bytes) {
    return {data, static_cast<std::size_t>(size)};
  } else {
    const auto* units = reinterpret_cast<const char16_t*>(data);
    Convert({units, static_cast<std::size_t>(size) / sizeof(char16_t)}, buffer.text);
  }
  buffer.converted = m_number;
  return buffer.text;
}

ValueView RowReader::Value(std::size_t column) const {
  const Buffer& buffer = m_buffers[column];
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
      if (m_types[column].kind == ValueKind::kBoolean) return IsTrue(TextOf(column));
      return TextOf(column);
  }
}

}  // namespace kxrestore::engine::odbc
