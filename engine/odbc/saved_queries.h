// Saved queries of a server catalog. Each is a view, so that other programs see it. Its body reads tables and
// views of other programs only: a saved query of ours that it names is written out in it. So a query can be
// deleted while others of ours name it. Deleting never takes another program's view along: a view that such a
// view depends on is not deleted, and the server's words are the error.
//
// On PostgreSQL the view's comment keeps the query's own text, and a query that names something missing is a
// view without rows. Changes of the schema are short transactions that wait for each other, and within one
// user action a query is read by its text. So two dialogs that make queries of the same name do not disturb
// each other; the view that remains is that of the later one.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "engine/odbc/odbc_schema.h"

namespace kxrestore::engine::odbc {

// What the server itself shows of a view, in the catalog's dialect.
std::string ViewText(Session& session, const Schema::Entry& view);

std::string SavedQueryText(Session& session, std::string_view name);
void CreateSavedQuery(Session& session, std::string_view name, std::string_view sql);
void DeleteSavedQuery(Session& session, std::string_view name);

std::map<std::string, Schema::StoredText> ReadStoredTexts(Session& session);

}  // namespace kxrestore::engine::odbc
