#include "tests/engine/odbc_test_database.h"

#include <algorithm>
#include <chrono>
#include <clocale>
#include <cstdlib>
#include <stdexcept>

#include "base/text.h"
#include "engine/odbc/odbc_session.h"

#ifdef __SANITIZE_ADDRESS__
// The driver for PostgreSQL keeps a little of what its catalog functions take.
extern "C" const char* __lsan_default_suppressions() {
  return "leak:psqlodbcw.so";
}
#endif

namespace kxrestore::engine::testing {
namespace {

constexpr const char* kNames[] = {
    "Catalog",   "ID",         "DateStamp",   "SetNameID",     "Extension",   "Filename", "File",
    "LongPaths", "LongPathID", "StoreName",   "StoreMethod",   "Plugin",      "Restore",  "OrigSize",
    "Status",    "Attributes", "SubFolder",   "EncryptMethod", "OrigName",    "PathID",   "LongPath",
    "SetNames",  "Name",       "BackupAudit", "Permanent",     "FullCatalog", "SetName",  "Mine",
    "P"};

bool IsNameCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

// The statement with the catalog's names as the spelling has them; texts stay.
std::string Spelled(std::string_view sql, Spelling spelling) {
  std::string result;
  for (std::size_t i = 0; i < sql.size();) {
    std::size_t end = i + 1;
    if (sql[i] == '\'') {
      while (end < sql.size() && sql[end] != '\'') ++end;
      end = std::min(end + 1, sql.size());
    } else if (IsNameCharacter(sql[i])) {
      while (end < sql.size() && IsNameCharacter(sql[end])) ++end;
    }
    const std::string_view word = sql.substr(i, end - i);
    const auto* known = std::find_if(std::begin(kNames), std::end(kNames),
                                     [word](const char* name) { return EqualIgnoringCase(word, name); });
    if (known == std::end(kNames)) {
      result += word;
    } else {
      const bool quoted = i > 0 && sql[i - 1] == '"';
      if (quoted) result.pop_back();
      if (quoted) ++end;
      result += spelling == Spelling::kQuoted ? "\"" + std::string(*known) + "\"" : FoldCase(*known);
    }
    i = end;
  }
  return result;
}

class OdbcTestDatabase final : public TestDatabase {
 public:
  OdbcTestDatabase(std::string connect, std::string asAdministrator, Spelling spelling)
      : m_connect(std::move(connect)), m_session(asAdministrator, false, nullptr), m_spelling(spelling) {}

  OpenRequest Request() const override {
    OpenRequest request;
    request.connect = m_connect;
    return request;
  }

  // Drivers take one statement at a time.
  void Run(std::string_view sql) override {
    std::vector<std::string> statements(1);
    bool inText = false;
    for (const char c : sql) {
      if (c == '\'') inText = !inText;
      if (c == ';' && !inText) {
        statements.emplace_back();
      } else {
        statements.back() += c;
      }
    }
    for (const std::string& statement : statements) {
      if (statement.find_first_not_of(" \n") == std::string::npos) continue;
      try {
        m_session.RunSchemaChange({Spelled(statement, m_spelling)});
      } catch (const Error& error) {
        throw std::runtime_error(error.Description());
      }
    }
  }

  std::string Ask(std::string_view sql) override {
    try {
      odbc::OdbcStatement statement(m_session, Spelled(sql, m_spelling));
      m_session.RunRead(statement, {});
      RowReader& rows = statement.Rows();
      if (!rows.Next()) return "no row";
      const ValueView value = rows.Value(0);
      if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "1" : "0";
      return IsNull(value) ? "NULL" : ToText(value);
    } catch (const Error& error) {
      return error.Description();
    }
  }

 private:
  using RowReader = odbc::RowReader;
  std::string m_connect;
  odbc::Session m_session;
  Spelling m_spelling;
};

// A database of this process's own, emptied for every test.
class PostgresTestKind final : public TestDatabaseKind {
 public:
  explicit PostgresTestKind(Spelling spelling) : m_spelling(spelling) {}

  std::string Name() const override {
    return m_spelling == Spelling::kFolded ? "Postgres" : "PostgresQuoted";
  }

  std::unique_ptr<TestDatabase> Make() const override {
    const std::string password = ServerSetting("KX_TEST_PASSWORD"), user = ServerSetting("KX_TEST_USER");
    const std::string administrator = ServerSetting("KX_TEST_ADMIN");
    const std::string& database = Database(administrator, password);
    const std::string asAdministrator = ServerConnect(database, administrator, password);
    odbc::Session session(asAdministrator, false, nullptr);
    session.RunSchemaChange({"DROP SCHEMA public CASCADE", "CREATE SCHEMA public AUTHORIZATION " + user});
    // Numbers where the tables have Booleans, as other databases take them.
    session.RunSchemaChange(
        {"UPDATE pg_cast SET castcontext = 'i' WHERE castsource = 'int4'::regtype AND casttarget = "
         "'bool'::regtype",
         "CREATE FUNCTION public.joined(int[]) RETURNS text LANGUAGE sql AS 'SELECT array_to_string($1, "
         "'','')'",
         "CREATE AGGREGATE public.group_concat(int) (SFUNC = array_append, STYPE = int[], INITCOND = '{}', "
         "FINALFUNC = public.joined)",
         "ALTER DEFAULT PRIVILEGES IN SCHEMA public GRANT ALL ON TABLES TO " + user});
    return std::make_unique<OdbcTestDatabase>(ServerConnect(database, user, password),
                                              ServerConnect(database, user, password), m_spelling);
  }

 private:
  static const std::string& Database(const std::string& administrator, const std::string& password) {
    static const std::string name = [&] {
      const auto stamp = std::chrono::steady_clock::now().time_since_epoch().count();
      std::string made = "kx_" + std::to_string(stamp);
      odbc::Session session(ServerConnect("postgres", administrator, password), false, nullptr);
      session.Ask("CREATE DATABASE " + made);
      return made;
    }();
    return name;
  }

  Spelling m_spelling;
};

class OdbcSqliteTestDatabase final : public TestDatabase {
 public:
  OdbcSqliteTestDatabase() : m_inner(Connect(), Connect(), Spelling::kFolded) {}
  OpenRequest Request() const override { return m_inner.Request(); }
  void Run(std::string_view sql) override { m_inner.Run(sql); }
  std::string Ask(std::string_view sql) override { return m_inner.Ask(sql); }

 private:
  std::string Connect() const {
    std::setlocale(LC_CTYPE,
                   "C.UTF-8");  // in which the driver manager hands texts to a driver without UTF-16
    return "ODBC;DRIVER={SQLite3};Database=" + m_folder.File("catalog.db") + ";Timeout=300";
  }

  TemporaryFolder m_folder;
  OdbcTestDatabase m_inner;
};

class OdbcSqliteTestKind final : public TestDatabaseKind {
 public:
  std::string Name() const override { return "OdbcSqlite"; }
  bool NoticesViewsOfOthers() const override { return false; }
  std::unique_ptr<TestDatabase> Make() const override { return std::make_unique<OdbcSqliteTestDatabase>(); }
};

}  // namespace

std::string ServerSetting(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : value;
}

bool HasTestServer() {
  return !ServerSetting("KX_TEST_SERVER").empty();
}

std::string ServerConnect(const std::string& database, const std::string& user, const std::string& password) {
  return "ODBC;DRIVER={sql server};DATABASE=" + database + ";SERVER=" + ServerSetting("KX_TEST_SERVER") +
         ";UID=" + user + ";PWD=" + password;
}

const TestDatabaseKind& PostgresKind(Spelling spelling) {
  static const PostgresTestKind folded(Spelling::kFolded), quoted(Spelling::kQuoted);
  return spelling == Spelling::kFolded ? folded : quoted;
}

const TestDatabaseKind& OdbcSqliteKind() {
  static const OdbcSqliteTestKind kind;
  return kind;
}

}  // namespace kxrestore::engine::testing
