// The statements that this component builds, recorded while it runs, and their translations for a server.
#pragma once

#include <string>
#include <vector>

#include "engine/database.h"
#include "engine/jet_sql/printing/dialect.h"

namespace kxrestore::engine::testing {

struct ServerStatement {
  std::string savedQuery;  // the name of a saved query; empty for a statement that is executed
  std::string text;
};

std::vector<ServerStatement> ServerStatements();

// The listings of the dialog's panels, and their rows in a catalog with the rows of CatalogRows().
struct PanelStatement {
  std::string text;
  std::vector<std::string> rows;
};
std::vector<PanelStatement> PanelStatements();

// Translates a statement for a server whose tables have the names and column types of a catalog. `read` is as
// in Database::OpenRecordset.
std::string ForServer(const jet_sql::Dialect& dialect, const std::string& text, bool savedQuery = false,
                      const ColumnNames& read = {});
std::string ForSqlServer(const std::string& text, bool savedQuery = false, bool mindsCase = false,
                         const ColumnNames& read = {});

}  // namespace kxrestore::engine::testing
