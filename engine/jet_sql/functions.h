// What is known of functions: the catalog's dialect's own, and those of standard SQL that views use.
#pragma once

#include <string_view>

namespace kxrestore::engine::jet_sql {

// What is known of a value's type: nothing, unless names were resolved against a server's tables.
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
  bool givesOneValue;  // one for each row, out of its arguments only
  ValueKind kind;      // of its values
  int kindLike;        // or that of this argument, or the next one's where it is unknown
};

Function FunctionNamed(std::string_view name);
const FunctionFacts& FactsOf(Function function);

}  // namespace kxrestore::engine::jet_sql
