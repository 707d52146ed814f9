// The statements that this component puts to a server: those that the catalog code builds, taken down from
// it, and those of the dialog's panels.
#pragma once

#include <string>
#include <vector>

#include "engine/database.h"
#include "engine/jet_sql/printing/dialect.h"

namespace kxrestore::engine::testing {

struct ServerStatement {
  std::string savedQuery;  // the name that it is saved under; empty for one that is carried out
  std::string text;
};

std::vector<ServerStatement> ServerStatements();

// What the panels of the dialog ask for, and its rows where the catalog has those of CatalogRows().
struct PanelStatement {
  std::string text;
  std::vector<std::string> rows;
};
std::vector<PanelStatement> PanelStatements();

// As SQL Server is to get it, names and kinds of columns being those of a catalog there.
// `read`: see Database::OpenRecordset.
std::string ForSqlServer(const std::string& text, bool savedQuery = false, bool mindsCase = false,
                         const ColumnNames& read = {});

}  // namespace kxrestore::engine::testing
