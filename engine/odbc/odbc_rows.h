// Reads the rows of an executed statement, block by block.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engine/odbc/statement_data.h"
#include "engine/value.h"

namespace kxrestore::engine::odbc {

class Session;

class RowReader {
 public:
  RowReader(Session& session, std::shared_ptr<StatementData> statement)
      : m_session(session), m_statement(std::move(statement)) {}

  const std::vector<ColumnType>& Columns() const { return m_statement->Rows().Types(); }
  // Call after each execution, which fetches the first block. The position is before the first row.
  void Restart();
  bool Next();
  // Whether the first block contains all rows.
  bool InOneBlock() const { return m_isFirstBlock && m_statement->Rows().IsLast(); }
  // Value in the current row; a text is valid until the next call of Next.
  ValueView Value(std::size_t column) const;

 private:
  struct Converted {
    std::string text;
    std::uint64_t row = 0;  // number of the row that it belongs to
  };

  std::string_view TextOf(std::size_t column) const;
  void ReadLongText(std::size_t column) const;

  Session& m_session;
  std::shared_ptr<StatementData> m_statement;
  mutable std::vector<Converted> m_texts;  // by column
  bool m_beforeFirst = true, m_isFirstBlock = true;
  std::size_t m_row = 0;       // in the block
  std::uint64_t m_number = 0;  // among all rows read so far
};

}  // namespace kxrestore::engine::odbc
