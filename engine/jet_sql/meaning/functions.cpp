#include "engine/jet_sql/meaning/functions.h"

#include <algorithm>
#include <iterator>

#include "engine/jet_sql/reading/lexer.h"

namespace kxrestore::engine::jet_sql {
namespace {

constexpr int kFixed = FunctionFacts::kNoArgument;
constexpr ValueKind kUnknown = ValueKind::kUnknown, kText = ValueKind::kText, kNumber = ValueKind::kNumber,
                    kBoolean = ValueKind::kBoolean, kDate = ValueKind::kDate;

// In the order of the enumeration.
constexpr FunctionFacts kFunctions[] = {
    {Function::kOther, "", false, false, kUnknown, kFixed},
    {Function::kAvg, "AVG", true, false, kNumber, kFixed},
    {Function::kCount, "COUNT", true, false, kNumber, kFixed},
    {Function::kFirst, "FIRST", true, false, kUnknown, 0},
    {Function::kLast, "LAST", true, false, kUnknown, 0},
    {Function::kMax, "MAX", true, false, kUnknown, 0},
    {Function::kMin, "MIN", true, false, kUnknown, 0},
    {Function::kSum, "SUM", true, false, kNumber, kFixed},
    {Function::kTotal, "TOTAL", true, false, kNumber, kFixed},
    {Function::kCLng, "CLNG", false, true, kNumber, kFixed},
    {Function::kCStr, "CSTR", false, true, kText, kFixed},
    {Function::kIIf, "IIF", false, true, kUnknown, 1},
    {Function::kInStrRev, "INSTRREV", false, true, kNumber, kFixed},
    {Function::kInt, "INT", false, true, kNumber, kFixed},
    {Function::kIsNull, "ISNULL", false, true, kBoolean, kFixed},
    {Function::kLCase, "LCASE", false, true, kText, kFixed},
    {Function::kLeft, "LEFT", false, true, kText, kFixed},
    {Function::kLen, "LEN", false, true, kNumber, kFixed},
    {Function::kMid, "MID", false, true, kText, kFixed},
    {Function::kNow, "NOW", false, false, kDate, kFixed},
    {Function::kNz, "NZ", false, true, kUnknown, 0},
    {Function::kRight, "RIGHT", false, true, kText, kFixed},
    {Function::kUCase, "UCASE", false, true, kText, kFixed},
    {Function::kCoalesce, "COALESCE", false, true, kUnknown, 0},
    {Function::kIfNull, "IFNULL", false, true, kUnknown, 0},
    {Function::kLength, "LENGTH", false, true, kNumber, kFixed},
    {Function::kLower, "LOWER", false, true, kText, kFixed},
    {Function::kNullIf, "NULLIF", false, true, kUnknown, 0},
    {Function::kReplace, "REPLACE", false, true, kText, kFixed},
    {Function::kSubstr, "SUBSTR", false, true, kText, kFixed},
    {Function::kTrim, "TRIM", false, true, kText, kFixed},
    {Function::kUpper, "UPPER", false, true, kText, kFixed},
};

}  // namespace

Function FunctionNamed(std::string_view name) {
  const auto* found =
      std::find_if(std::begin(kFunctions) + 1, std::end(kFunctions),
                   [name](const FunctionFacts& facts) { return IsKeyword(name, facts.name); });
  return found == std::end(kFunctions) ? Function::kOther : found->function;
}

const FunctionFacts& FactsOf(Function function) {
  return kFunctions[static_cast<std::size_t>(function)];
}

}  // namespace kxrestore::engine::jet_sql
