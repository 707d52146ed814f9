// Where a driver's diagnostics become errors of the engine.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "engine/odbc/driver.h"

namespace kxrestore::engine::odbc {

// What an error asks of the session.
enum class Failure {
  kStatement,   // only the statement has failed
  kConflict,    // lost against another connection: worth trying again
  kLock,        // waited in vain for a lock of another connection
  kStale,       // prepared for tables that are others now: worth preparing again
  kConnection,  // the server is gone
};
Failure FailureOf(const std::vector<Diagnostic>& diagnostics);

// `piece` is the statement or name at work. Errors: 3151 while `connecting`; 3078, 3061, 3022, 3317, 3260,
// 3027, 3026 where the state tells, else 3146; the driver's words and the state stand in the description.
[[noreturn]] void RaiseOdbc(const std::vector<Diagnostic>& diagnostics, bool connecting,
                            std::string_view piece, const Password& password);

}  // namespace kxrestore::engine::odbc
