// A recordset over an executed statement. Rows are fetched as they are walked; see StreamingRows for when
// they are taken into memory.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/database.h"
#include "engine/odbc/odbc_session.h"
#include "engine/row_store.h"

namespace kxrestore::engine::odbc {

class OdbcRecordset final : public Recordset, private StreamingRows {
 public:
  OdbcRecordset(std::shared_ptr<Session> session, std::string_view source, RecordsetType type, bool readOnly);
  ~OdbcRecordset() override;
  OdbcRecordset(const OdbcRecordset&) = delete;
  OdbcRecordset& operator=(const OdbcRecordset&) = delete;

  bool Eof() const override;
  void MoveNext() override;
  std::size_t FieldCount() const override;
  std::string_view FieldName(std::size_t index) const override;
  ValueView FieldValue(std::size_t index) const override;
  void Edit() override;
  void SetFieldValue(std::size_t index, Value value) override;
  void Update() override;
  void Close() override;

 private:
  enum class State { kStreaming, kStored, kAtEnd, kClosed };

  void Detach() override;

  void Open(std::string_view source);
  bool TryOpen(std::string_view source);
  void LetStatementGo();
  void NeedOpen() const;
  void NeedRow() const;
  bool CanChange(std::size_t index) const;
  ValueView RawValue(std::size_t index) const;
  const Value* Changed(std::size_t index) const;
  void UpdateTable(std::size_t table);

  std::shared_ptr<Session> m_session;
  std::shared_ptr<Plan> m_plan;
  std::unique_ptr<OdbcStatement> m_statement;
  RowReader* m_rows = nullptr;
  std::vector<std::string> m_names;
  std::size_t m_allColumns = 0;  // with the hidden ones
  RecordsetType m_type;
  bool m_readOnly;
  bool m_editing = false;
  State m_state = State::kStreaming;
  std::unique_ptr<RowStore> m_stored;
  std::vector<ValueView> m_row;                          // of a stored row
  std::vector<std::pair<std::size_t, Value>> m_pending;  // set since Edit
  std::vector<std::pair<std::size_t, Value>> m_written;  // in the current row
};

}  // namespace kxrestore::engine::odbc
