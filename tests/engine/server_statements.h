// The statements that this component puts to a server, taken down from the code that builds them, and what
// the server gets of them.
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

// The listings of the dialog's panels, and their rows where the catalog has those of CatalogRows().
struct PanelStatement {
  std::string text;
  std::vector<std::string> rows;
};
std::vector<PanelStatement> PanelStatements();

// A statement as a server gets it that spells names as the catalog does and has its kinds of columns.
// `read`: see Database::OpenRecordset.
std::string ForServer(const jet_sql::Dialect& dialect, const std::string& text, bool savedQuery = false,
                      const ColumnNames& read = {});
std::string ForSqlServer(const std::string& text, bool savedQuery = false, bool mindsCase = false,
                         const ColumnNames& read = {});

}  // namespace kxrestore::engine::testing
