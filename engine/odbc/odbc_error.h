// The one gate where a driver's diagnostics become errors of the engine.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "engine/odbc/odbc_api.h"

namespace kxrestore::engine::odbc {

struct Diagnostic {
  std::string state;  // SQLSTATE
  int native = 0;
  std::string message;
};

std::vector<Diagnostic> ReadDiagnostics(SQLSMALLINT type, SQLHANDLE handle);

// What an error asks of the session.
enum class Failure {
  kStatement,   // only the statement has failed
  kConflict,    // lost against another connection: worth trying again
  kStale,       // prepared for tables that are others now: worth preparing again
  kConnection,  // the server is gone
};
Failure FailureOf(const std::vector<Diagnostic>& diagnostics);

// Takes every occurrence of a password out of a message.
std::string WithoutPassword(std::string message, std::string_view password);

// `piece` is the statement or name at work. Errors: 3151 while `connecting`; 3078, 3061, 3022, 3317, 3260,
// 3027, 3026 where the state tells, else 3146; the driver's words and the state stand in the description.
[[noreturn]] void RaiseOdbc(const std::vector<Diagnostic>& diagnostics, bool connecting,
                            std::string_view piece, std::string_view password);

}  // namespace kxrestore::engine::odbc
