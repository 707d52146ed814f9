// Maps SQLite's result codes to errors of the engine.
#pragma once

#include <string>
#include <string_view>

struct sqlite3;

namespace kxrestore::engine::sqlite {

enum class Doing { kOpening, kReading, kWriting };

// The context of an error.
struct ErrorPlace {
  const std::string& file;
  const std::string& refusedTrigger;  // empty: none
};

// Raises the error for `code`, the result of the last call on `connection` (may be null). `piece` is the
// statement or the name at work; the description tells it together with the file.
[[noreturn]] void RaiseSqlite(sqlite3* connection, int code, Doing doing, const ErrorPlace& place,
                              std::string_view piece = {});

}  // namespace kxrestore::engine::sqlite
