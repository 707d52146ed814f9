// The bare sides of the comparisons on a server: PostgreSQL through its own client library, and the sample
// catalogs on it. The environment names the server, see scripts/test_server.sh.
#pragma once

#include <libpq-fe.h>

#include <concepts>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kxrestore::bench {

struct ServerAddress {
  std::string host, user, password;
  int port = 0;
};
const ServerAddress& TestServer();  // error 1 when there is none

// A database with the same rows as BenchCatalog(rows). It is made once a program.
std::string ServerCatalog(std::int64_t rows);

class BareRows {
 public:
  explicit BareRows(PGresult* result) : m_result(result) {}

  std::int64_t Count() const { return PQntuples(m_result.get()); }
  std::int64_t Changed() const;
  std::string_view Text(std::int64_t row, int column) const {
    const auto number = static_cast<int>(row);
    return {PQgetvalue(m_result.get(), number, column),
            static_cast<std::size_t>(PQgetlength(m_result.get(), number, column))};
  }
  std::int64_t Integer(std::int64_t row, int column) const;

 private:
  struct Clear {
    void operator()(PGresult* result) const { PQclear(result); }
  };
  std::unique_ptr<PGresult, Clear> m_result;
};

class BarePostgres {
 public:
  explicit BarePostgres(const std::string& database);

  BareRows Execute(const std::string& sql);
  // Reads a statement's rows a thousand at a time, to limit memory.
  template <std::invocable<const BareRows&> Visit>
  void Walk(const std::string& sql, Visit visit) {
    Execute("BEGIN");
    Execute("SET LOCAL cursor_tuple_fraction = 1");
    Execute("DECLARE walked CURSOR FOR " + sql);
    for (;;) {
      const BareRows rows = Execute("FETCH 1000 FROM walked");
      if (rows.Count() == 0) break;
      visit(rows);
    }
    Execute("COMMIT");
  }
  void Prepare(const char* name, const char* sql);
  BareRows Run(const char* name, const std::vector<const char*>& values);
  // The same in a transaction that has a savepoint "alone", and takes only itself back if it fails.
  BareRows RunAlone(const char* name, const std::vector<const char*>& values);
  void Copy(const std::string& sql, const std::vector<std::string>& pieces);

 private:
  BareRows Checked(PGresult* result) const;

  struct Finish {
    void operator()(PGconn* connection) const { PQfinish(connection); }
  };
  std::unique_ptr<PGconn, Finish> m_connection;
};

}  // namespace kxrestore::bench
