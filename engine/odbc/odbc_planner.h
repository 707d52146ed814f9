// Makes plans: parses, resolves names, translates, and adds the keys used to update a dynaset's rows.
#pragma once

#include <memory>
#include <string_view>

#include "engine/odbc/odbc_session.h"

namespace kxrestore::engine::odbc {

// `read`: see Database::OpenRecordset.
std::shared_ptr<Plan> MakePlan(Session& session, const Sql& sql, Session::Use use, const ColumnNames& read);

// The UPDATE of some columns of a row; all columns are of one table.
RowUpdate& FindRowUpdate(Session& session, Plan& plan, const std::vector<std::size_t>& columns);

// The parts of CREATE VIEW for a saved query.
struct ViewBody {
  std::string sql;
  std::vector<std::string> columns;  // names; empty when unknown
};
ViewBody TranslateSavedQuery(Session& session, std::string_view text);

}  // namespace kxrestore::engine::odbc
