// PostgreSQL behind the ODBC driver manager, under the driver name that hosts ask for. scripts/test.sh starts
// the server and names it in the environment.
#pragma once

#include "tests/engine/test_databases.h"

namespace kxrestore::engine::testing {

// How a server catalog spells its names: made without quotes they are in small letters.
enum class Spelling { kFolded, kQuoted };

// Whether the environment names a server. Under scripts/test.sh one that is missing is a failure.
bool HasTestServer();

std::unique_ptr<TestDatabase> MakePostgres(Spelling spelling);

// A connect string as hosts give it, for the server of the environment.
std::string ServerConnect(const std::string& database, const std::string& user, const std::string& password);
std::string ServerSetting(const char* name);  // of the environment

}  // namespace kxrestore::engine::testing
