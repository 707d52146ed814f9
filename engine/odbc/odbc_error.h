// Where a driver's diagnostics become errors of the engine.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/error.h"
#include "engine/odbc/driver.h"

namespace kxrestore::engine::odbc {

// What the session can do about an error.
enum class Failure {
  kStatement,   // only the statement has failed
  kConflict,    // the server chose this statement to end a deadlock: worth trying again
  kLock,        // another connection kept a lock for too long
  kStale,       // the tables have changed since it was prepared: worth preparing again
  kCanceled,    // ended by the user or by a time limit: not to be repeated
  kConnection,  // the server is gone
};
Failure FailureOf(const std::vector<Diagnostic>& diagnostics);

// The error that diagnostics stand for; see RaiseOdbc.
Error ErrorOf(const std::vector<Diagnostic>& diagnostics, bool connecting, std::string_view piece,
              const Password& password);

// `piece` is the statement or name at work. Errors: 3151 while `connecting`; 3078, 3061, 3022, 3317, 3260,
// 3027, 3026 where the state tells, else 3146; the driver's words and the state stand in the description.
[[noreturn]] void RaiseOdbc(const std::vector<Diagnostic>& diagnostics, bool connecting,
                            std::string_view piece, const Password& password);

}  // namespace kxrestore::engine::odbc
