#include "host/catalog_maker/server_writer.h"

#include <deque>
#include <vector>

#include "engine/odbc/odbc_database.h"
#include "engine/odbc/odbc_statement.h"
#include "host/catalog_maker/table_writer.h"

namespace kxrestore::sample {

namespace {

namespace odbc = engine::odbc;
using engine::Value;

struct ToValue {
  Value operator()(std::monostate) const { return {}; }
  Value operator()(bool flag) const { return flag; }
  Value operator()(std::int64_t number) const { return number; }
  Value operator()(std::string_view text) const { return std::string(text); }
  Value operator()(DateText date) const {
    const auto value = engine::ToDateTime(date.text);
    return value ? Value(*value) : Value();
  }
};

// A ? of the statement is a parameter.
engine::jet_sql::PrintedSql WithParameters(std::string_view sql) {
  using engine::jet_sql::PrintedSql;
  PrintedSql result;
  std::int64_t count = 0;
  for (std::size_t mark; (mark = sql.find('?')) != std::string_view::npos; sql.remove_prefix(mark + 1)) {
    result += sql.substr(0, mark);
    result += PrintedSql::Parameter(++count);
  }
  return result + sql;
}

class ServerWriter final : public TableWriter {
 public:
  explicit ServerWriter(odbc::Session& session) : m_session(session) {
    for (const char* sql : kInsertStatements) m_inserts.emplace_back(session, WithParameters(sql));
  }

 private:
  void Insert(Table table, std::initializer_list<Cell> row) override {
    m_values.clear();
    for (const Cell& cell : row) m_values.push_back(std::visit(ToValue(), cell));
    m_session.RunWrite(m_inserts[static_cast<std::size_t>(table)], m_values);
  }

  odbc::Session& m_session;
  std::deque<odbc::OdbcStatement> m_inserts;
  std::vector<Value> m_values;
};

}  // namespace

void FillServerCatalog(const std::string& connect, const std::function<void(CatalogSink&)>& fill) {
  const auto session = std::make_shared<odbc::Session>(connect);
  odbc::OdbcDatabase database(session, false);
  database.BeginTrans();
  ServerWriter writer(*session);
  fill(writer);
  database.CommitTrans();
}

}  // namespace kxrestore::sample
