// The columns of an executed statement and a block of its rows, in the buffers that the driver fills. Reused
// from execution to execution. The functions are called on the connection's thread; between its calls any
// thread may read.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "engine/jet_sql/ast.h"
#include "engine/odbc/driver.h"
#include "engine/odbc/server_facts.h"

namespace kxrestore::engine::odbc {

// The kind of a column from its type's number and name: drivers differ in how they report Booleans.
jet_sql::ValueKind KindOfType(SQLSMALLINT type, std::string_view typeName);

// A column of the result and the buffer for its values.
struct Column {
  std::string name;
  jet_sql::ValueKind kind = jet_sql::ValueKind::kUnknown;
  bool mayBeLong = false;  // a text may not fit its buffer
  SQLSMALLINT cType = SQL_C_WCHAR;
  std::size_t width = 0;         // bytes of one row
  std::unique_ptr<char[]> data;  // of a block's rows; most blocks are never filled
  std::vector<SQLLEN> sizes;     // bytes or SQL_NULL_DATA, as many
  std::u16string longText;       // what was read piece by piece

  const char* Data(std::size_t row) const { return data.get() + row * width; }
};

class RowBlock {
 public:
  RowBlock(bool textsAsBytes, bool readsPartsInBlocks)
      : m_textsAsBytes(textsAsBytes), m_readsPartsInBlocks(readsPartsInBlocks) {}

  // Call after each execution: describes and binds the columns if their number has changed, and fetches the
  // first block.
  Outcome Begin(StatementHandle& statement);
  Outcome Fetch(StatementHandle& statement);
  // Reads a text that did not fit its buffer into `longText`, and whether it is null into `sizes`.
  Outcome ReadLongText(StatementHandle& statement, std::size_t column, std::size_t row);

  const std::vector<Column>& Columns() const { return m_columns; }
  std::size_t RowCount() const { return m_isAtEnd ? 0 : m_isPiecewise ? 1 : m_fetched; }
  bool IsLast() const { return m_isAtEnd || (!m_isPiecewise && m_fetched < m_maxRows); }
  // Whether the driver returns long texts only column by column and row by row.
  bool IsPiecewise() const { return m_isPiecewise; }

 private:
  Outcome Describe(StatementHandle& statement, std::size_t count);
  Outcome Bind(StatementHandle& statement);
  Outcome ReadPiecewise(StatementHandle& statement);

  bool m_textsAsBytes, m_readsPartsInBlocks;
  std::vector<Column> m_columns;
  std::size_t m_maxRows = 1;
  bool m_isBound = false, m_isPiecewise = false, m_isAtEnd = true;
  SQLULEN m_fetched = 0;
};

}  // namespace kxrestore::engine::odbc
