// A recordset over a prepared statement. Rows stream; see StreamingRows for when they are taken into memory.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/database.h"
#include "engine/row_store.h"
#include "engine/sqlite/session.h"

namespace kxrestore::engine::sqlite {

class SqliteRecordset final : public Recordset, private StreamingRows {
 public:
  SqliteRecordset(std::shared_ptr<Session> session, std::string_view source, RecordsetType type,
                  bool readOnly);
  ~SqliteRecordset() override;
  SqliteRecordset(const SqliteRecordset&) = delete;
  SqliteRecordset& operator=(const SqliteRecordset&) = delete;

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
  bool IsSnapshot() const override { return m_type == RecordsetType::kSnapshot; }

  int Open(std::string_view source);
  void Step();
  void LetStatementGo();
  void NeedOpen() const;
  void NeedRow() const;
  ValueView RawValue(std::size_t index) const;
  const Value* Changed(std::size_t index) const;
  void UpdateTable(std::size_t table);

  std::shared_ptr<Session> m_session;
  std::shared_ptr<Plan> m_plan;
  Statement m_statement;
  RecordsetType m_type;
  bool m_readOnly;
  bool m_editing = false;
  State m_state = State::kStreaming;
  std::unique_ptr<RowStore> m_stored;
  std::vector<ValueView> m_row;                          // of a stored row
  std::vector<std::pair<std::size_t, Value>> m_pending;  // set since Edit
  std::vector<std::pair<std::size_t, Value>> m_written;  // in the current row
};

}  // namespace kxrestore::engine::sqlite
