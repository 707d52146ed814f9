#include "engine/sqlite/statement.h"

#include "engine/sqlite/connection.h"

namespace kxrestore::engine::sqlite {

void Statement::Bind(int parameter, std::int64_t value) {
  m_connection->Check(Outcome(sqlite3_bind_int64(Get(), parameter, value)));
}

void Statement::Bind(int parameter, std::string_view value) {
  const char* const text =
      value.data() == nullptr ? "" : value.data();  // a null pointer would be bound as null
  m_connection->Check(
      Outcome(sqlite3_bind_text64(Get(), parameter, text, value.size(), SQLITE_TRANSIENT, SQLITE_UTF8)));
}

void Statement::Bind(const std::vector<Value>& values) {
  struct Binder {
    Statement& statement;
    int parameter;
    void operator()(std::monostate) const { Check(sqlite3_bind_null(statement.Get(), parameter)); }
    void operator()(bool flag) const { statement.Bind(parameter, std::int64_t{flag ? 1 : 0}); }
    void operator()(std::int64_t integer) const { statement.Bind(parameter, integer); }
    void operator()(double real) const { Check(sqlite3_bind_double(statement.Get(), parameter, real)); }
    void operator()(const std::string& text) const { statement.Bind(parameter, std::string_view(text)); }
    void operator()(const DateTime& date) const { statement.Bind(parameter, std::string_view(ToText(date))); }
    void Check(int code) const { statement.m_connection->Check(Outcome(code)); }
  };
  int parameter = 0;
  for (const Value& value : values) std::visit(Binder{*this, ++parameter}, value);
}

Outcome Statement::Step(Stop stop) {
  Waiter& waiter = m_connection->Waits();
  waiter.Enter(stop);
  return waiter.Leave(sqlite3_step(Get()));
}

bool Statement::Next(std::string_view piece) {
  const Outcome outcome = Step(Stop::kWork);
  if (outcome.IsRow()) return true;
  if (outcome.IsDone()) return false;
  const ResetGuard guard(*this);
  m_connection->Raise(outcome.Code(), Doing::kReading, piece);
}

void Statement::Reset() noexcept {
  sqlite3_reset(Get());  // its result repeats that of the last step
}

// Looks the value up once for all its properties, which a connection without a mutex allows.
ValueView Statement::Read(int column) const {
  sqlite3_value* const value = sqlite3_column_value(Get(), column);
  switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER:
      return static_cast<std::int64_t>(sqlite3_value_int64(value));
    case SQLITE_FLOAT:
      return sqlite3_value_double(value);
    case SQLITE_TEXT: {
      const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
      if (text == nullptr) m_connection->Raise(SQLITE_NOMEM, Doing::kReading);
      return std::string_view(text, static_cast<std::size_t>(sqlite3_value_bytes(value)));
    }
    case SQLITE_BLOB: {
      const auto* bytes = static_cast<const char*>(sqlite3_value_blob(value));
      const int size = sqlite3_value_bytes(value);
      if (bytes == nullptr && size > 0) m_connection->Raise(SQLITE_NOMEM, Doing::kReading);
      return bytes == nullptr ? std::string_view("")
                              : std::string_view(bytes, static_cast<std::size_t>(size));
    }
    default:
      return std::monostate();
  }
}

std::string Statement::Text(int column) const {
  const ValueView value = Read(column);
  return IsNull(value) ? std::string() : ToText(value);
}

std::string Statement::ColumnName(int column) const {
  const char* const name = sqlite3_column_name(Get(), column);
  if (name == nullptr) m_connection->Raise(SQLITE_NOMEM, Doing::kReading);
  return name;
}

}  // namespace kxrestore::engine::sqlite
