#include "catalog/connection.h"

#include "base/error.h"

namespace kxrestore::catalog {

std::string BuildConnectString(std::string_view database, std::string_view server, std::string_view user,
                               std::string_view password) {
  std::string connect = "ODBC;DRIVER={sql server};DATABASE=";
  connect.append(database).append(";SERVER=").append(server);
  if (user.empty()) {
    connect.append(";Trusted_Connection=Yes;");
  } else {
    connect.append(";UID=").append(user).append(";PWD=").append(password);
  }
  return connect;
}

std::unique_ptr<engine::Database> OpenCatalog(engine::Workspace& workspace,
                                              const ConnectionSettings& settings) {
  engine::OpenRequest request;
  switch (settings.DBType) {
    case kFileCatalog:
      request.name = settings.DBName;
      break;
    case kServerCatalog:
      request.connect = settings.connect;
      break;
    default:
      throw Error(error_number::kObjectVariableNotSet, "Object variable or With block variable not set",
                  "KXRestore");
  }
  return workspace.OpenDatabase(request);
}

}  // namespace kxrestore::catalog
