// A catalog in a database of its own on the test server, set up by the script for PostgreSQL, and what was
// marked in it.
#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <string>

#include "host/catalog_maker/model.h"

namespace kxrestore::catalog_test {

class ServerCatalog {
 public:
  explicit ServerCatalog(const std::function<void(sample::CatalogSink&)>& fill);
  ~ServerCatalog();
  ServerCatalog(const ServerCatalog&) = delete;
  ServerCatalog& operator=(const ServerCatalog&) = delete;

  // Whether the environment names a server, see scripts/test_server.sh.
  static bool HasServer();
  static std::string Server();  // what a host gives as DBServer, User and Password likewise
  static std::string User();
  static std::string Password();
  const std::string& Database() const { return m_name; }
  std::string Connect() const;

  // Beside the dialog, over a connection of its own.
  void Execute(const std::string& sql);
  std::set<std::int64_t> Marked();

 private:
  std::string m_name;
};

}  // namespace kxrestore::catalog_test
