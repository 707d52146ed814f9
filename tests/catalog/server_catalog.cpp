#include "tests/catalog/server_catalog.h"

#include <chrono>

#include "catalog/connection.h"
#include "engine/odbc/odbc_session.h"
#include "host/catalog_maker/server_writer.h"
#include "server_tables.h"

namespace kxrestore::catalog_test {
namespace {

using engine::odbc::Session;

std::string ConnectTo(const std::string& database) {
  return catalog::BuildConnectString(database, ServerCatalog::Server(), ServerCatalog::User(),
                                     ServerCatalog::Password());
}

}  // namespace

ServerCatalog::ServerCatalog(const std::function<void(sample::CatalogSink&)>& fill)
    : m_name("kx_catalog_" + std::to_string(std::chrono::steady_clock::now().time_since_epoch().count())) {
  Session(ConnectTo("postgres")).Ask("CREATE DATABASE " + m_name);
  Session(Connect()).RunSchemaChange({kServerTables});
  sample::FillServerCatalog(Connect(), fill);
}

ServerCatalog::~ServerCatalog() {
  try {
    Session(ConnectTo("postgres")).Ask("DROP DATABASE " + m_name + " WITH (FORCE)");
  } catch (const Error&) {  // the server is gone, and the database with it
  }
}

std::string ServerCatalog::Connect() const {
  return ConnectTo(m_name);
}

void ServerCatalog::Execute(const std::string& sql) {
  Session(Connect()).Ask(sql);
}

std::set<std::int64_t> ServerCatalog::Marked() {
  std::set<std::int64_t> ids;
  for (const auto& row : Session(Connect()).Ask("SELECT ID FROM Catalog WHERE Restore")) {
    ids.insert(std::stoll(row.front()));
  }
  return ids;
}

}  // namespace kxrestore::catalog_test
