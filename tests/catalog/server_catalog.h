// A catalog in a new database on the test server, created by the script for PostgreSQL, and access to its
// marks.
#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <string>

#include "host/catalog_maker/model.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::catalog_test {

class ServerCatalog {
 public:
  explicit ServerCatalog(const std::function<void(sample::CatalogSink&)>& fill);
  ~ServerCatalog();
  ServerCatalog(const ServerCatalog&) = delete;
  ServerCatalog& operator=(const ServerCatalog&) = delete;

  // Whether the environment names a server, see scripts/test_server.sh.
  static bool HasServer() { return engine::testing::HasTestServer(); }
  // The values that a host sets as DBServer, DBUser and DBPass.
  static std::string Server() { return engine::testing::ServerSetting("KX_TEST_SERVER"); }
  static std::string User() { return engine::testing::ServerSetting("KX_TEST_USER"); }
  static std::string Password() { return engine::testing::ServerSetting("KX_TEST_PASSWORD"); }
  const std::string& Database() const { return m_name; }
  std::string Connect() const;

  // These use a new connection.
  void Execute(const std::string& sql);
  std::set<std::int64_t> Marked();

 private:
  std::string m_name;
};

}  // namespace kxrestore::catalog_test
