// Connecting to the catalog. Every operation opens the catalog and closes it again.
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
  std::int16_t DBType = kFileCatalog;
  std::string DBName;   // path of the catalog file
  std::string connect;  // of the server, see BuildConnectString
};

// The connect string of a server. Without a user the connection is a trusted one and the password is not
// used.
std::string BuildConnectString(std::string_view database, std::string_view server, std::string_view user,
                               std::string_view password);

// Never null. Raises error 91, Object variable or With block variable not set, for any other DBType, and the
// errors of Workspace::OpenDatabase.
[[nodiscard]] std::unique_ptr<engine::Database> OpenCatalog(engine::Workspace& workspace,
                                                            const ConnectionSettings& settings);

}  // namespace kxrestore::catalog
