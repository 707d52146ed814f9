#include "engine/dao/automation.h"

#include "base/error.h"
#include "base/utf16.h"

namespace kxrestore::engine::dao {
namespace {

constexpr const char* kSource = "DAO";
constexpr int kNoSuchMember = 438;

std::string Utf8(BSTR text) {
  return FromWide({text == nullptr ? L"" : text, SysStringLen(text)});
}

// Automation encodes error numbers in the facility of controls.
int ErrorNumber(HRESULT result) {
  switch (result) {
    case E_OUTOFMEMORY:
      return error_number::kOutOfMemory;
    case DISP_E_BADINDEX:
      return error_number::kSubscriptOutOfRange;
    case DISP_E_TYPEMISMATCH:
      return error_number::kTypeMismatch;
    case DISP_E_OVERFLOW:
      return error_number::kOverflow;
    case DISP_E_UNKNOWNNAME:
    case DISP_E_MEMBERNOTFOUND:
      return kNoSuchMember;
    default:
      return HRESULT_FACILITY(result) == FACILITY_CONTROL ? HRESULT_CODE(result) : result;
  }
}

std::string SystemDescription(HRESULT result) {
  wchar_t buffer[300];
  DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                static_cast<DWORD>(result), 0, buffer, std::size(buffer), nullptr);
  while (length > 0 && buffer[length - 1] <= L' ') --length;
  if (length == 0) return "Automation error";
  return FromWide({buffer, length});
}

struct Details {
  int number = 0;
  std::string description, source;
};

// Takes ownership of the texts, so that none leaks.
Details Taken(EXCEPINFO& info) {
  if (info.pfnDeferredFillIn != nullptr) info.pfnDeferredFillIn(&info);
  Details details{info.wCode != 0 ? info.wCode : ErrorNumber(info.scode), Utf8(info.bstrDescription),
                  Utf8(info.bstrSource)};
  for (const BSTR text : {info.bstrDescription, info.bstrSource, info.bstrHelpFile}) SysFreeString(text);
  return details;
}

// The engine lists errors from the innermost cause to the outermost, which is the one it raises.
void CompleteFromList(const Object& errors, Details& details) {
  try {
    const auto count = static_cast<std::int32_t>(errors.Get(L"Count").Integer());
    if (count == 0) return;
    const Object last = errors.Item(Variant(count - 1));
    const int listed = static_cast<int>(last.Get(L"Number").Integer());
    if (details.description.empty() && (details.number == 0 || details.number == listed)) {
      details = {listed, last.Get(L"Description").Text(), last.Get(L"Source").Text()};
    }
    if (count > 1 && details.number == listed) {
      details.description += " (" + errors.Item(Variant(0)).Get(L"Description").Text() + ")";
    }
  } catch (const Error&) {
    // The list is not available either; the error stays as it is.
  }
}

}  // namespace

Variant::Variant(std::string_view text) {
  const std::wstring wide = ToWide(text);
  m_value.vt = VT_BSTR;
  m_value.bstrVal = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
  if (m_value.bstrVal == nullptr) throw Error(error_number::kOutOfMemory, "Out of memory", kSource);
}

Variant::Variant(bool value) {
  m_value.vt = VT_BOOL;
  m_value.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
}

Variant::Variant(std::int32_t number) {
  m_value.vt = VT_I4;
  m_value.lVal = number;
}

std::int64_t Variant::Integer() const {
  Variant number;
  if (FAILED(VariantChangeType(&number.m_value, const_cast<VARIANT*>(&m_value), 0, VT_I8))) return 0;
  return number.m_value.llVal;
}

std::string Variant::Text() const {
  return m_value.vt == VT_BSTR ? Utf8(m_value.bstrVal) : std::string();
}

DISPID Object::Identifier(const wchar_t* name) const {
  for (const auto& [known, identifier] : m_identifiers) {
    if (known == name) return identifier;
  }
  if (!m_dispatch) {
    throw Error(error_number::kObjectVariableNotSet, "Object variable or With block variable not set",
                kSource);
  }
  DISPID identifier = DISPID_UNKNOWN;
  auto* names = const_cast<wchar_t*>(name);
  const HRESULT result = m_dispatch->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &identifier);
  if (FAILED(result)) {
    throw Error(ErrorNumber(result),
                "Object doesn't support this property or method: '" + FromWide(name) + "'", kSource);
  }
  m_identifiers.emplace_back(name, identifier);
  return identifier;
}

Variant Object::Invoke(WORD how, const wchar_t* name, std::span<VARIANT> reversed) const {
  const DISPID identifier = Identifier(name);
  DISPID put = DISPID_PROPERTYPUT;
  DISPPARAMS parameters{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
  const bool isPut = how == DISPATCH_PROPERTYPUT;
  if (isPut) {
    parameters.rgdispidNamedArgs = &put;
    parameters.cNamedArgs = 1;
  }
  Variant answer;
  EXCEPINFO details{};
  const HRESULT result = m_dispatch->Invoke(identifier, IID_NULL, LOCALE_USER_DEFAULT, how, &parameters,
                                            isPut ? nullptr : &answer.Raw(), &details, nullptr);
  if (FAILED(result)) Raise(result, result == DISP_E_EXCEPTION ? &details : nullptr);
  return answer;
}

Object Object::AsObject(Variant value) const {
  if (value.Raw().vt != VT_DISPATCH || value.Raw().pdispVal == nullptr) {
    throw Error(error_number::kObjectVariableNotSet, "Object variable or With block variable not set",
                kSource);
  }
  return Object(ComPtr<IDispatch>(value.Raw().pdispVal), m_errors);
}

void Object::Raise(HRESULT result, EXCEPINFO* info) const {
  Details told = info != nullptr ? Taken(*info) : Details{.number = ErrorNumber(result)};
  if (m_errors) CompleteFromList(Object(m_errors), told);
  if (told.description.empty()) told.description = SystemDescription(result);
  throw Error(told.number, std::move(told.description),
              told.source.empty() ? kSource : std::move(told.source));
}

}  // namespace kxrestore::engine::dao
