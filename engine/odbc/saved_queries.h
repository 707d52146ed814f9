// Saved queries of a server catalog. Each is a view, so that other programs see it, whose body stands on
// tables and on others' views only: what it names of saved queries made here is written out in it. So one can
// be deleted while others name it, and no view of others ever goes with it; one that others' views stand on
// is refused with the server's words.
//
// PostgreSQL keeps the text that was given as the view's comment, and a query that names what is not there
// yet as a view without rows. Changes of the schema are short transactions that wait for each other, and
// within one user action a query is read by its text: two dialogs that make queries of the same names do not
// disturb each other, though the view that is left is that of the later one.
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
