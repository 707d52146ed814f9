#include "engine/dao/values.h"

#include <cmath>
#include <limits>

#include "base/error.h"
#include "base/utf16.h"

namespace kxrestore::engine::dao {
namespace {

constexpr std::int64_t kCurrencyUnit = 10000;
[[noreturn]] void RaiseTypeMismatch() {
  throw Error(kxrestore::error_number::kTypeMismatch, "Type mismatch", "DAO");
}

ValueView FromCurrency(std::int64_t units) {
  if (units % kCurrencyUnit == 0) return units / kCurrencyUnit;
  return static_cast<double>(units) / static_cast<double>(kCurrencyUnit);
}

ValueView FromDecimal(DECIMAL decimal) {
  double number = 0;
  if (FAILED(VarR8FromDec(&decimal, &number))) RaiseTypeMismatch();
  LONG64 whole = 0;
  if (number == std::trunc(number) && SUCCEEDED(VarI8FromDec(&decimal, &whole))) return whole;
  return number;
}

ValueView FromBytes(SAFEARRAY* array, std::string& text) {
  LONG low = 0, high = -1;
  void* data = nullptr;
  if (SafeArrayGetDim(array) != 1 || FAILED(SafeArrayGetLBound(array, 1, &low)) ||
      FAILED(SafeArrayGetUBound(array, 1, &high)) || FAILED(SafeArrayAccessData(array, &data))) {
    RaiseTypeMismatch();
  }
  text.assign(static_cast<const char*>(data), static_cast<std::size_t>(high - low + 1));
  SafeArrayUnaccessData(array);
  return std::string_view(text);
}

}  // namespace

ValueView ToValue(const VARIANT& variant, std::string& text) {
  switch (variant.vt) {
    case VT_EMPTY:
    case VT_NULL:
      return std::monostate();
    case VT_BSTR:
      text.clear();
      if (variant.bstrVal != nullptr) {
        AppendUtf8(text, std::wstring_view(variant.bstrVal, SysStringLen(variant.bstrVal)));
      }
      return std::string_view(text);
    case VT_BOOL:
      return variant.boolVal != VARIANT_FALSE;
    case VT_UI1:
      return std::int64_t{variant.bVal};
    case VT_I2:
      return std::int64_t{variant.iVal};
    case VT_I4:
      return std::int64_t{variant.lVal};
    case VT_I8:
      return std::int64_t{variant.llVal};
    case VT_R4:
      return double{variant.fltVal};
    case VT_R8:
      return variant.dblVal;
    case VT_CY:
      return FromCurrency(variant.cyVal.int64);
    case VT_DECIMAL:
      return FromDecimal(variant.decVal);
    case VT_DATE:
      if (const auto date = DateOfSerial(variant.date)) return *date;
      RaiseTypeMismatch();
    case VT_ARRAY | VT_UI1:
      return FromBytes(variant.parray, text);
    default:
      RaiseTypeMismatch();
  }
}

Variant FromValue(const Value& value) {
  struct Visitor {
    Variant operator()(std::monostate) const {
      Variant null;
      null.Raw().vt = VT_NULL;
      return null;
    }
    Variant operator()(bool b) const { return Variant(b); }
    Variant operator()(std::int64_t number) const {
      const auto small = static_cast<std::int32_t>(number);
      if (small == number) return Variant(small);
      if (std::abs(static_cast<double>(number)) < 0x1p53) return (*this)(static_cast<double>(number));
      return (*this)(std::to_string(number));  // the engine converts it to the field's type
    }
    Variant operator()(double number) const {
      Variant real;
      real.Raw().vt = VT_R8;
      real.Raw().dblVal = number;
      return real;
    }
    Variant operator()(const std::string& text) const { return Variant(text); }
    Variant operator()(const DateTime& date) const {
      Variant serial;
      serial.Raw().vt = VT_DATE;
      serial.Raw().date = SerialOfDate(date);
      return serial;
    }
  };
  return std::visit(Visitor{}, value);
}

}  // namespace kxrestore::engine::dao
