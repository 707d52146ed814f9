// Saved queries of a server catalog. Each is a view, so that other programs see it. Its body refers to tables
// and other programs' views only: saved queries of ours are expanded in it, so that a query can be deleted
// while others refer to it. Deleting never drops another program's view: if one depends on the query's view,
// the query is not deleted, and the server's message is the error.
//
// On PostgreSQL the view's comment holds the query's own text, and a query that refers to something missing
// is a view without rows. Schema changes are short, serialised transactions, and within one user action a
// query is read by its text. So two dialogs that create queries of the same name do not affect each other;
// the later view remains.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "engine/odbc/odbc_schema.h"

namespace kxrestore::engine::odbc {

// The definition of a view as the server reports it, in the catalog's dialect.
std::string ViewText(Session& session, const Schema::Entry& view);

std::string SavedQueryText(Session& session, std::string_view name);
void CreateSavedQuery(Session& session, std::string_view name, std::string_view sql);
void DeleteSavedQuery(Session& session, std::string_view name);

std::map<std::string, Schema::StoredText> ReadStoredTexts(Session& session);

}  // namespace kxrestore::engine::odbc
