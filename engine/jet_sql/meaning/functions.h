// The table of known functions: those of the catalog's dialect, and those of standard SQL that views use.
#pragma once

#include <string_view>

namespace kxrestore::engine::jet_sql {

// The kind of a value. Unknown unless names were resolved against a server's tables.
enum class ValueKind { kUnknown, kText, kNumber, kBoolean, kDate };

enum class Function {
  kOther,
  // aggregates
  kAvg,
  kCount,
  kFirst,
  kLast,
  kMax,
  kMin,
  kSum,
  kTotal,
  // the dialect's own
  kCLng,
  kCStr,
  kIIf,
  kInStrRev,
  kInt,
  kIsNull,
  kLCase,
  kLeft,
  kLen,
  kMid,
  kNow,
  kNz,
  kRight,
  kUCase,
  // standard SQL's
  kCoalesce,
  kIfNull,
  kLength,
  kLower,
  kNullIf,
  kReplace,
  kSubstr,
  kTrim,
  kUpper,
};

struct FunctionFacts {
  static constexpr int kNoArgument = -1;

  Function function;
  std::string_view name;  // in capitals
  bool isAggregate;
  bool givesOneValue;  // depends on its arguments only
  ValueKind kind;      // of its result
  int kindLike;        // the result has the first known kind from this argument on
};

Function FunctionNamed(std::string_view name);
const FunctionFacts& FactsOf(Function function);

}  // namespace kxrestore::engine::jet_sql
