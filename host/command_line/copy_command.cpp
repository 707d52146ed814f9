#include "host/command_line/copy_command.h"

#include <ostream>

#include "host/catalog_copier/catalog_copy.h"
#include "host/command_line/output.h"

namespace kxrestore::cli {

int Copy(Session& session, const Options& options) {
  const auto progress = [&](const char* doing, const std::string& table, std::int64_t rows, std::int64_t of) {
    session.ShowStep(std::string(doing) + " " + table + ": " + Grouped(rows) + " of " + Grouped(of) +
                     " rows");
  };
  const auto copied = host::CopyCatalog(*session.workspace, options.catalog, options.argument, progress);
  session.Finish();
  RowWriter writer(session.host.out, options.json, {{"rows", "ROWS", -12}, {"table", "TABLE"}});
  for (const host::CopiedTable& table : copied) writer.Row({table.rows, std::string_view(table.name)});
  return ExitCode::kDone;
}

}  // namespace kxrestore::cli
