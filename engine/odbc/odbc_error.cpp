#include "engine/odbc/odbc_error.h"

#include <algorithm>

#include "base/text.h"
#include "engine/error_numbers.h"

namespace kxrestore::engine::odbc {
namespace {

namespace number = kxrestore::engine::error_number;

constexpr std::size_t kMaxShownPiece = 200;  // characters

struct Meaning {
  std::string_view state;  // or a common prefix
  std::string_view words;  // text in the message, for drivers that report HY000 for everything
  int number;
};

constexpr Meaning kMeanings[] = {
    {"42S02", "", number::kTableNotFound},
    {"42P01", "", number::kTableNotFound},
    {"", "no such table", number::kTableNotFound},
    {"42S22", "", number::kParameterMissing},
    {"42703", "", number::kParameterMissing},
    {"", "no such column", number::kParameterMissing},
    {"42883", "", number::kUndefinedFunction},
    {"", "no such function", number::kUndefinedFunction},
    {"42702", "", number::kAmbiguousName},
    {"42P07", "", number::kObjectExists},
    {"42S01", "", number::kObjectExists},
    {"42601", "", number::kSyntax},
    {"23505", "", number::kDuplicateKey},
    {"", "UNIQUE constraint", number::kDuplicateKey},
    {"", "duplicate key", number::kDuplicateKey},
    {"23", "", number::kConstraint},
    {"", "constraint failed", number::kConstraint},
    {"40", "", number::kRowLocked},
    {"55P03", "", number::kRowLocked},
    {"", "database is locked", number::kRowLocked},
    {"", "Lock request time out", number::kRowLocked},
    {"25006", "", number::kReadOnly},
    {"53100", "", number::kDiskFull},
    {"", "disk is full", number::kDiskFull},
};

bool Holds(const std::vector<Diagnostic>& diagnostics, std::string_view state) {
  return std::any_of(diagnostics.begin(), diagnostics.end(),
                     [state](const Diagnostic& one) { return one.state.starts_with(state); });
}

bool Says(const std::vector<Diagnostic>& diagnostics, std::string_view words) {
  return std::any_of(diagnostics.begin(), diagnostics.end(),
                     [words](const Diagnostic& one) { return one.message.find(words) != std::string::npos; });
}

int NumberOf(const std::vector<Diagnostic>& diagnostics) {
  for (const Meaning& meaning : kMeanings) {
    if (!meaning.state.empty() && Holds(diagnostics, meaning.state)) return meaning.number;
    if (!meaning.words.empty() && Says(diagnostics, meaning.words)) return meaning.number;
  }
  return number::kOdbcFailed;
}

std::string Join(const std::vector<Diagnostic>& diagnostics) {
  std::string text;
  for (const Diagnostic& one : diagnostics) {
    std::string message = one.message;
    while (!message.empty() && (message.back() == '\n' || message.back() == ' ' || message.back() == '\r')) {
      message.pop_back();
    }
    if (!text.empty()) text += ' ';
    text += message + " (" + one.state + ")";
  }
  return text.empty() ? "the driver does not say why." : text;
}

}  // namespace

Failure FailureOf(const std::vector<Diagnostic>& diagnostics) {
  for (const char* state : {"08", "57P0", "HYT01"}) {
    if (Holds(diagnostics, state)) return Failure::kConnection;
  }
  for (const char* words : {"connection to the server was lost", "could not receive data from server",
                            "server closed the connection", "no connection to the server"}) {
    if (Says(diagnostics, words)) return Failure::kConnection;
  }
  for (const char* state : {"57014", "HY008", "HYT00"}) {
    if (Holds(diagnostics, state)) return Failure::kCanceled;
  }
  if (Holds(diagnostics, "40")) return Failure::kConflict;
  if (NumberOf(diagnostics) == number::kRowLocked) return Failure::kLock;
  if (Holds(diagnostics, "42P01") || Holds(diagnostics, "42S02") || Holds(diagnostics, "42703") ||
      Holds(diagnostics, "42S22") || Says(diagnostics, "cached plan must not change")) {
    return Failure::kStale;
  }
  return Failure::kStatement;
}

Error ErrorOf(const std::vector<Diagnostic>& diagnostics, bool connecting, std::string_view piece,
              const Password& password) {
  const std::string words = Join(diagnostics), hidden = password.Hide(piece);
  const auto error = [](int errorNumber, std::string text) {
    return Error(errorNumber, std::move(text), "Engine");
  };
  if (connecting) {
    return error(number::kOdbcConnectionFailed, "ODBC - connection to '" + hidden + "' failed: " + words);
  }
  const int errorNumber = NumberOf(diagnostics);
  if (errorNumber == number::kOdbcFailed) return error(errorNumber, "ODBC - call failed: " + words);
  return error(errorNumber, words + " In '" + std::string(LeftCharacters(hidden, kMaxShownPiece)) + "'.");
}

}  // namespace kxrestore::engine::odbc
