#include "host/marked_files.h"

#include "catalog/connection.h"

namespace kxrestore::host {

std::vector<std::string> MarkedFiles(const Arguments& arguments) {
  const auto workspace = engine::MakeDefaultWorkspace();
  catalog::ConnectionSettings settings{arguments.dbType, arguments.catalog, {}};
  if (arguments.dbType == catalog::kServerCatalog) {
    settings.connect =
        catalog::BuildConnectString(arguments.database, arguments.server, arguments.user, arguments.password);
  }
  const auto catalog = catalog::OpenCatalog(*workspace, settings);
  const auto rows = catalog->OpenRecordset(
      "SELECT Catalog.Filename, LongPaths.LongPath "
      "FROM [Catalog] LEFT JOIN LongPaths ON Catalog.LongPathID = LongPaths.PathID "
      "WHERE Catalog.Restore = True ORDER BY Catalog.ID",
      engine::RecordsetType::kSnapshot);

  std::vector<std::string> paths;
  const engine::Field filename = rows->Fields("Filename");
  const engine::Field longPath = rows->Fields("LongPath");
  for (; !rows->Eof(); rows->MoveNext())
    paths.push_back(longPath.IsNull() ? filename.Text() : longPath.Text());
  return paths;
}

}  // namespace kxrestore::host
