#include "tests/engine/test_databases.h"

#include <chrono>
#include <cstdlib>
#include <regex>
#include <utility>

#include "base/text.h"
#include "engine/odbc/odbc_session.h"

#ifdef __SANITIZE_ADDRESS__
// The catalog functions of the PostgreSQL driver leak some memory.
extern "C" const char* __lsan_default_suppressions() {
  return "leak:psqlodbcw.so";
}
#endif

namespace kxrestore::engine::testing {
namespace {

constexpr std::string_view kNames =
    " Catalog ID DateStamp SetNameID Extension Filename File LongPaths LongPathID StoreName StoreMethod "
    "Plugin Restore OrigSize Status Attributes SubFolder EncryptMethod OrigName PathID LongPath SetNames "
    "Name BackupAudit Permanent FullCatalog FullCatalogLatestBySet SetName Mine P ";

// Spells the catalog's names in a statement as the database does. Texts in apostrophes stay.
std::string Spelled(std::string_view statement, Spelling spelling) {
  static const std::regex kPiece("'[^']*'|\"?(\\w+)\"?");
  const std::string sql(statement);
  std::string result;
  auto end = sql.cbegin();
  for (std::sregex_iterator match(sql.begin(), sql.end(), kPiece), last; match != last; ++match) {
    const auto& [piece, word] = std::pair((*match)[0], (*match)[1].str());
    result.append(end, piece.first);
    end = piece.second;
    const std::size_t known =
        word.empty() ? std::string::npos : FoldCase(kNames).find(" " + FoldCase(word) + " ");
    if (known == std::string::npos) {
      result += piece.str();
    } else if (spelling == Spelling::kFolded) {
      result += FoldCase(word);
    } else {
      result.append("\"").append(kNames.substr(known + 1, word.size())).append("\"");
    }
  }
  return result.append(end, sql.cend());
}

class OdbcTestDatabase final : public TestDatabase {
 public:
  OdbcTestDatabase(std::string connect, Spelling spelling)
      : m_connect(std::move(connect)), m_session(m_connect), m_spelling(spelling) {}

  OpenRequest Request() const override { return {.connect = m_connect}; }

  // The driver accepts one statement at a time.
  void Run(std::string_view sql) override {
    std::string statement;
    bool inText = false;
    for (const char c : std::string(sql) + ';') {
      if (c == '\'') inText = !inText;
      if (c != ';' || inText) {
        statement += c;
      } else if (const std::string next = std::exchange(statement, {});
                 next.find_first_not_of(" \n") != std::string::npos) {
        m_session.RunSchemaChange({Spelled(next, m_spelling)});
      }
    }
  }

  std::string Ask(std::string_view sql) override {
    try {
      odbc::OdbcStatement statement(m_session, Spelled(sql, m_spelling));
      const odbc::Outcome outcome = statement.ExecuteReading({});
      if (outcome.Failed()) m_session.RaiseFailure(outcome, sql);
      if (!statement.Next()) return "no row";
      const ValueView value = statement.Value(0);
      if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "1" : "0";
      return IsNull(value) ? "NULL" : ToText(value);
    } catch (const Error& error) {
      return error.Description();
    }
  }

 private:
  std::string m_connect;
  odbc::Session m_session;
  Spelling m_spelling;
};

}  // namespace

std::unique_ptr<TestDatabase> MakePostgres(Spelling spelling) {
  const std::string password = ServerSetting("KX_TEST_PASSWORD"), user = ServerSetting("KX_TEST_USER");
  const std::string administrator = ServerSetting("KX_TEST_ADMIN");
  static const std::string database = [&] {
    const std::string made =
        "kx_" + std::to_string(std::chrono::steady_clock::now().time_since_epoch().count());
    odbc::Session(ServerConnect("postgres", administrator, password)).Ask("CREATE DATABASE " + made);
    return made;
  }();
  odbc::Session session(ServerConnect(database, administrator, password));
  session.RunSchemaChange({"DROP SCHEMA public CASCADE", "CREATE SCHEMA public AUTHORIZATION " + user});
  // The tests' SQL writes Booleans as numbers and calls group_concat; PostgreSQL has neither.
  session.RunSchemaChange(
      {"UPDATE pg_cast SET castcontext = 'i' WHERE castsource = 'int4'::regtype AND casttarget = "
       "'bool'::regtype",
       "CREATE FUNCTION public.joined(int[]) RETURNS text LANGUAGE sql AS 'SELECT array_to_string($1, "
       "'','')'",
       "CREATE AGGREGATE public.group_concat(int) (SFUNC = array_append, STYPE = int[], INITCOND = '{}', "
       "FINALFUNC = public.joined)",
       "ALTER DEFAULT PRIVILEGES IN SCHEMA public GRANT ALL ON TABLES TO " + user});
  return std::make_unique<OdbcTestDatabase>(ServerConnect(database, user, password), spelling);
}

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

}  // namespace kxrestore::engine::testing
