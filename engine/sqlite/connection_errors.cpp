// The part of Connection that maps SQLite's result codes to errors of the engine.
#include <filesystem>
#include <fstream>

#include "base/text.h"
#include "engine/error_numbers.h"
#include "engine/sqlite/connection.h"

namespace kxrestore::engine::sqlite {
namespace {

namespace number = error_number;

bool TakePrefix(std::string_view& text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

// SQLite reports unknown names and syntax errors by their messages only.
[[noreturn]] void RaiseStatement(std::string_view message, const std::string& file, std::string_view piece) {
  const std::string shown(LeftCharacters(piece, 200));
  std::string_view rest = message;
  if (TakePrefix(rest, "no such column: ")) {
    Raise(number::kParameterMissing,
          "Too few parameters. Expected 1. No such column: '" + std::string(rest) + "'.");
  }
  if (message.find(" has no column named ") != std::string_view::npos) {
    Raise(number::kParameterMissing, "Too few parameters. Expected 1. The " + std::string(message) + ".");
  }
  if (TakePrefix(rest, "no such table: ")) {
    if (rest.starts_with("main.")) rest.remove_prefix(5);
    Raise(number::kTableNotFound, "The database engine cannot find the input table or query '" +
                                      std::string(rest) + "' in '" + file +
                                      "'. Make sure it exists and that its name is spelled correctly.");
  }
  if (TakePrefix(rest, "no such function: ")) {
    Raise(number::kUndefinedFunction, "Undefined function '" + std::string(rest) + "' in expression.");
  }
  if (TakePrefix(rest, "ambiguous column name: ")) {
    Raise(number::kAmbiguousName, "The specified field '" + std::string(rest) +
                                      "' could refer to more than one table listed in the FROM clause.");
  }
  if (message.find("because it is a view") != std::string_view::npos) {
    Raise(number::kReadOnly, "Cannot update. Database or object is read-only: " + std::string(message) + ".");
  }
  Raise(number::kSyntax, "Syntax error (" + std::string(message) + ") in query expression '" + shown + "'.");
}

[[noreturn]] void RaiseDamaged(const std::string& quoted, const std::string& message) {
  Raise(number::kDamaged, "Cannot read the database " + quoted + ": it is damaged (" + message + ").");
}

// Whether a file that SQLite keeps next to a database exists and is not empty.
bool HasBeside(const std::string& file, std::string_view suffix) {
  const std::string name = file + std::string(suffix);
  std::error_code failure;
  const auto size = std::filesystem::file_size(std::u8string(name.begin(), name.end()), failure);
  return !failure && size > 0;
}

bool IsInWalMode(const std::string& file) {
  constexpr std::streamoff kWriteVersion = 18;
  std::ifstream stream(std::filesystem::path(std::u8string(file.begin(), file.end())), std::ios::binary);
  return stream.seekg(kWriteVersion) && stream.get() == 2;
}

// A database with an interrupted change, or in write-ahead mode, cannot even be read from a read-only place.
// Raises an error that says why and what to do; returns if neither is the case.
void RaiseWhatNeedsWriting(const std::string& file) {
  const std::string quoted = "'" + file + "'";
  const std::string cannotOpen = "The database engine cannot open the file " + quoted + ". ";
  if (HasBeside(file, "-journal")) {
    Raise(number::kCannotOpen, cannotOpen + "A change to it was interrupted, and its journal '" + file +
                                   "-journal' holds what must be put back first, but the file may not be "
                                   "written to. Allow that, or copy both files together to a folder that may "
                                   "be written to.");
  }
  if (HasBeside(file, "-wal")) {
    Raise(number::kCannotOpen,
          cannotOpen + "Its latest changes are in the log '" + file +
              "-wal', and the index that reading the log takes, '" + file +
              "-shm', can be neither used nor made. Allow writing to the folder, or copy "
              "the file and its log together to a folder that may be written to.");
  }
  if (IsInWalMode(file)) {
    Raise(number::kCannotOpen,
          cannotOpen +
              "It is in write-ahead mode (WAL), in which reading, too, makes files beside "
              "it, and its folder may not be written to. Copy it to a folder that may be "
              "written to.");
  }
}

}  // namespace

void Connection::Raise(int code, Doing doing, std::string_view piece) const {
  using engine::Raise;
  if (m_tables) m_tables->RaiseFailure(sqlite3_errmsg(Get()));
  const bool latest = Get() != nullptr && (sqlite3_errcode(Get()) & 0xFF) == (code & 0xFF);
  const std::string message = latest ? sqlite3_errmsg(Get()) : sqlite3_errstr(code);
  const std::string quoted = "'" + m_file + "'";
  switch (code & 0xFF) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_PROTOCOL:
      if (doing == Doing::kWriting) {
        Raise(number::kRowLocked, "Could not update " + quoted + "; currently locked by another process.");
      }
      Raise(number::kRecordLocked, "Could not read " + quoted + "; currently locked by another process.");
    case SQLITE_READONLY:
      if (code != SQLITE_READONLY) RaiseWhatNeedsWriting(m_file);
      Raise(number::kReadOnly, "Cannot update. Database or object is read-only: " + quoted + ".");
    case SQLITE_FULL:
      Raise(number::kDiskFull, "Not enough space on disk to change " + quoted + ".");
    case SQLITE_AUTH:
      Raise(number::kReadOnly,
            "Cannot update " + quoted + ": " +
                (m_refusedTrigger.empty()
                     ? "it asks for more than to be read and marked."
                     : "its trigger '" + m_refusedTrigger + "' would change more than was asked for."));
    case SQLITE_CANTOPEN:
      RaiseWhatNeedsWriting(m_file);
      [[fallthrough]];
    case SQLITE_PERM:
      Raise(number::kCannotOpen,
            "The database engine cannot open the file " + quoted +
                ". It is opened exclusively by another user, or you need permission to use it.");
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_FORMAT:
      RaiseDamaged(quoted, message);
    case SQLITE_IOERR:
      if (code == SQLITE_IOERR_SHORT_READ || code == SQLITE_IOERR_CORRUPTFS) {
        RaiseDamaged(quoted, message);
      }
      if (code != SQLITE_IOERR_NOMEM) {
        Raise(number::kDiskError, "Disk or network error on " + quoted + " (" + message + ").");
      }
      [[fallthrough]];
    case SQLITE_NOMEM:
      Raise(kxrestore::error_number::kOutOfMemory, "Out of memory while working on " + quoted + ".");
    case SQLITE_CONSTRAINT:
      if (code == SQLITE_CONSTRAINT_UNIQUE || code == SQLITE_CONSTRAINT_PRIMARYKEY ||
          code == SQLITE_CONSTRAINT_ROWID) {
        Raise(number::kDuplicateKey,
              "The changes were not made because they would create duplicate values (" + message + ") in " +
                  quoted + ".");
      }
      Raise(number::kConstraint,
            "A rule of the table refuses the value (" + message + ") in " + quoted + ".");
    case SQLITE_INTERRUPT:
      Raise(number::kCanceled, "Operation canceled by user.");
    case SQLITE_ERROR:
      if (message == "unsupported file format") RaiseDamaged(quoted, message);
      [[fallthrough]];
    case SQLITE_TOOBIG:
      RaiseStatement(message, m_file, piece);
    default:
      Raise(number::kInvalidOperation, "Invalid operation on " + quoted + " (" + message + ").");
  }
}

}  // namespace kxrestore::engine::sqlite
