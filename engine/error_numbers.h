// Error numbers of the engine, the same for every back end. An error's description names the file, table,
// name or piece of text concerned.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "base/error.h"

namespace kxrestore::engine {

[[noreturn]] inline void Raise(int number, std::string description) {
  throw Error(number, std::move(description), "Engine");
}

namespace error_number {
inline constexpr int kCannotCreateObject = 429;  // the desktop engine is not installed
inline constexpr int kObjectInvalid = 3420;      // closed recordset or database used
inline constexpr int kObjectExists = 3012;       // saved query of that name is already there
inline constexpr int kNoCurrentRecord = 3021;
inline constexpr int kUpdateWithoutEdit = 3020;
inline constexpr int kFileNotFound = 3024;
inline constexpr int kNoTransaction = 3034;  // to commit or roll back; or an error has undone it
inline constexpr int kFileInUse = 3045;
inline constexpr int kPassword = 3031;
inline constexpr int kInvalidFieldType = 3259;
inline constexpr int kReadOnly = 3027;    // the file, the table or the query cannot be changed
inline constexpr int kDamaged = 3049;     // the file is a database but cannot be read
inline constexpr int kCannotOpen = 3051;  // no permission, a directory, exclusive elsewhere
inline constexpr int kDiskFull = 3026;
inline constexpr int kDuplicateKey = 3022;
inline constexpr int kDiskError = 3043;
inline constexpr int kAmbiguousName = 3079;
inline constexpr int kCircularReference = 3102;  // saved queries that read each other
inline constexpr int kUndefinedFunction = 3085;
inline constexpr int kRecordDeleted = 3167;     // by another process, between reading and updating
inline constexpr int kDataHasChanged = 3197;    // by another process, under an open file
inline constexpr int kConstraint = 3317;        // a rule of the table refuses the value
inline constexpr int kCanceled = 3059;          // by the user, while a statement was at work
inline constexpr int kParameterMissing = 3061;  // a column name that does not exist
inline constexpr int kSelectNotExecutable = 3065;
inline constexpr int kSyntax = 3075;  // names the offending piece
inline constexpr int kTableNotFound = 3078;
inline constexpr int kTextAfterEnd = 3142;  // more than one statement
inline constexpr int kOdbcFailed = 3146;
inline constexpr int kOdbcConnectionFailed = 3151;
inline constexpr int kRecordLocked = 3218;  // locked by another process, after a bounded wait
inline constexpr int kInvalidOperation = 3219;
inline constexpr int kRowLocked = 3260;           // a row or page is being changed by another process
inline constexpr int kItemNotFound = 3265;        // no such field or saved query
inline constexpr int kUnrecognizedFormat = 3343;  // the file is no database
}  // namespace error_number

[[noreturn]] inline void RaiseItemNotFound(std::string_view name) {
  Raise(error_number::kItemNotFound, "Item not found in this collection: '" + std::string(name) + "'.");
}

}  // namespace kxrestore::engine
