// How the catalog is reached. Every operation opens the catalog by itself and lets it go when it is done.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "engine/database.h"

namespace kxrestore::catalog {

inline constexpr std::int16_t kFileCatalog = 0;    // DBType of a catalog file
inline constexpr std::int16_t kServerCatalog = 1;  // DBType of a catalog on a database server

struct ConnectionSettings {
  std::int16_t dbType = kFileCatalog;
  std::string dbName;   // path of the catalog file
  std::string connect;  // of the server, see BuildConnectString
};

// The connect string of a server. Without a user the connection is a trusted one and the password is not
// used.
std::string BuildConnectString(std::string_view database, std::string_view server, std::string_view user,
                               std::string_view password);

// Never null. A DBType other than the two opens nothing, and whatever is then asked of the catalog fails:
// error 91, Object variable or With block variable not set, raised here. Other errors are those of
// Workspace::OpenDatabase.
std::unique_ptr<engine::Database> OpenCatalog(engine::Workspace& workspace,
                                              const ConnectionSettings& settings);

}  // namespace kxrestore::catalog
