// The desktop engine's objects, as far as this program uses them, over the SQLite back end: what is asked of
// "x.mdb" is answered from "x.db" beside it.
#pragma once

#include "engine/database.h"
#include "tests/dao_server/dispatch_object.h"

namespace kxrestore::dao_server {

// A text that no row can be read with: GetRows stops before it, its field raises error 3197.
inline constexpr std::string_view kUnreadable = "unreadable";

Variant MakeDbEngine(Journal& journal, engine::Workspace& workspace);

}  // namespace kxrestore::dao_server
