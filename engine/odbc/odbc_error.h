// Maps a driver's diagnostics to errors of the engine.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/error.h"
#include "engine/odbc/driver.h"

namespace kxrestore::engine::odbc {

// How the session can react to an error.
enum class Failure {
  kStatement,   // only the statement has failed
  kConflict,    // the server chose this statement to end a deadlock: retry
  kLock,        // another connection held a lock for too long
  kStale,       // the tables have changed since it was prepared: prepare again
  kCanceled,    // ended by the user or a time limit: do not repeat
  kConnection,  // the server is gone
};
Failure FailureOf(const std::vector<Diagnostic>& diagnostics);

// The error for these diagnostics. `piece` is the statement or name concerned. Numbers: 3151 while
// `connecting`; 3078, 3061, 3022, 3317, 3260, 3027, 3026 by SQLSTATE, else 3146. The description contains the
// driver's message and the SQLSTATE.
Error ErrorOf(const std::vector<Diagnostic>& diagnostics, bool connecting, std::string_view piece,
              const Password& password);

}  // namespace kxrestore::engine::odbc
