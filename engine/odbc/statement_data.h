// A statement as the connection's thread uses it: the handle, the values bound to its parameters, and its
// rows. It exists until that thread has freed the handle, even if all other owners have released it before.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/jet_sql/printing/printed_sql.h"
#include "engine/odbc/driver.h"
#include "engine/odbc/row_block.h"
#include "engine/odbc/server_facts.h"
#include "engine/value.h"

namespace kxrestore::engine::odbc {

struct DriverHandles;

// Values of a statement's parameters, at the addresses where the driver reads them during execution.
class BoundValues {
 public:
  void Set(const std::vector<Value>& values);
  Outcome Bind(StatementHandle& statement);
  std::size_t Count() const { return m_count; }

 private:
  struct Slot {
    std::u16string text;
    std::int64_t integer = 0;
    double real = 0;
    unsigned char bit = 0;
    SQL_TIMESTAMP_STRUCT date{};
    SQLLEN size = 0;
    ParameterBinding binding;
  };
  static void Fill(Slot& slot, const Value& value);

  std::vector<std::unique_ptr<Slot>> m_slots;  // the driver keeps their addresses
  std::size_t m_count = 0;
};

// PostgreSQL's driver sends a separate savepoint, and so a round trip, before a statement prepared on the
// server. Plain text is sent together with its savepoint, but the server plans it each time. So a statement
// that is executed again is prepared by name with the server's PREPARE, and its plain text is EXECUTE.
class StatementData : public std::enable_shared_from_this<StatementData> {
 public:
  using CatalogFunction = std::function<Outcome(StatementHandle&)>;

  StatementData(jet_sql::PrintedSql sql, const ServerFacts& facts);

  // ---- for the session, between two calls
  const jet_sql::PrintedSql& Sql() const { return m_sql; }
  bool WantsName() const {
    return m_executed && m_canBeNamed && m_call.empty() && m_sql.Parameters().size() == m_values.Count();
  }
  void SetName(std::string name) { m_name = std::move(name); }
  void SetValues(const std::vector<Value>& values) { m_values.Set(values); }
  const RowBlock& Rows() const { return m_rows; }
  std::int64_t ChangedRows() const { return m_changedRows; }
  // Both are done by the thread before its next call.
  void AskToClose() { m_closing = true; }
  void AskToFree() { m_freeing = true; }

  // ---- for the thread
  Outcome Execute(DriverHandles& handles, bool byName, bool wantsRows);
  Outcome ExecuteDirect(DriverHandles& handles);
  Outcome Ask(DriverHandles& handles, const CatalogFunction& function);
  Outcome FetchBlock() { return m_rows.Fetch(m_handle); }
  Outcome ReadLongText(std::size_t column, std::size_t row) {
    return m_rows.ReadLongText(m_handle, column, row);
  }
  Outcome Cancel() { return m_handle.Cancel(); }
  // Carries out pending requests; returns whether the statement is to be dropped.
  bool Tidy(Outcome& outcome);

 private:
  enum class Text { kNone, kOwn, kCall };

  Outcome Allocate(DriverHandles& handles);
  Outcome Send(Text text);
  void PrepareByName(DriverHandles& handles);

  jet_sql::PrintedSql m_sql;
  std::string m_name;
  std::string m_call;     // EXECUTE, once it is prepared by name
  std::size_t m_timeout;  // seconds; 0: none
  StatementHandle m_handle;
  BoundValues m_values;
  RowBlock m_rows;
  std::int64_t m_changedRows = 0;
  Text m_prepared = Text::kNone;
  bool m_executed = false, m_canBeNamed = true;
  std::atomic<bool> m_closing{false}, m_freeing{false};
};

}  // namespace kxrestore::engine::odbc
