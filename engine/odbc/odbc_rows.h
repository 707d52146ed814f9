// The rows of an executed statement, fetched in blocks into buffers that are kept from execution to
// execution.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "engine/jet_sql/ast.h"
#include "engine/odbc/odbc_api.h"
#include "engine/value.h"

namespace kxrestore::engine::odbc {

class Session;

struct ColumnType {
  std::string name;
  jet_sql::ValueKind kind = jet_sql::ValueKind::kUnknown;
  bool isInteger = false;      // of numbers
  bool isShort = false;        // of at most 32 bits
  bool isPlainText = false;    // PostgreSQL's types that hold nothing but a text
  std::size_t characters = 0;  // of texts; 0 when they may have any length
};

// The kind of a column by its type's number and name: drivers differ in how they tell Booleans.
jet_sql::ValueKind KindOfType(SQLSMALLINT type, std::string_view typeName);

class RowReader {
 public:
  // The statement has been executed.
  RowReader(Session& session, SQLHSTMT statement, std::string sql);
  ~RowReader();
  RowReader(const RowReader&) = delete;
  RowReader& operator=(const RowReader&) = delete;

  const std::vector<ColumnType>& Columns() const { return m_types; }
  void Restart();
  bool Next();
  // Whether the rows fetched so far are one block that was not filled.
  bool InOneBlock() const { return m_inOneBlock; }
  // Of the current row; a text holds until the next call of Next.
  ValueView Value(std::size_t column) const;

 private:
  struct Buffer {
    SQLSMALLINT cType = SQL_C_WCHAR;
    std::size_t width = 0;         // bytes of one row
    std::unique_ptr<char[]> data;  // of a block's rows; most blocks are never filled
    std::vector<SQLLEN> sizes;     // as many
    std::string text;              // of the row that `converted` numbers
    std::uint64_t converted = 0;

    const char* Data(std::size_t row) const { return data.get() + row * width; }
  };

  void Bind();
  void BindColumn(std::size_t column);
  void ReadPiecewise();
  std::string_view TextOf(std::size_t column) const;
  void ReadLongText(std::size_t column, std::string& text) const;
  void StandOnRow() const;

  Session& m_session;
  SQLHSTMT m_statement;
  std::string m_sql;
  std::vector<ColumnType> m_types;
  mutable std::vector<Buffer> m_buffers;
  std::size_t m_blockRows = 1;
  bool m_piecewise = false;  // the driver hands out long texts only column by column, row by row
  bool m_firstBlock = true, m_inOneBlock = true;
  bool m_isQuick = false;  // to fetch the first block
  SQLULEN m_fetched = 0;
  std::size_t m_row = 0;       // in the block
  std::uint64_t m_number = 0;  // of all rows that were ever read
};

}  // namespace kxrestore::engine::odbc
