#include "tests/dao_server/dispatch_object.h"

#include <algorithm>

#include "base/error.h"
#include "base/utf16.h"
#include "engine/dao/values.h"

namespace kxrestore::dao_server {
namespace {

constexpr int kBadCall = 5;

BSTR MakeBstr(std::string_view text) {
  const std::wstring wide = ToUtf16<wchar_t>(text);
  return SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
}

std::string Shown(const VARIANT& variant) {
  std::string text;
  const engine::ValueView value = engine::dao::ToValue(variant, text);
  return variant.vt == VT_BSTR ? "\"" + text + "\"" : engine::ToText(value);
}

}  // namespace

bool Journal::Called(std::string_view call) const {
  return std::find(calls.begin(), calls.end(), call) != calls.end();
}

STDMETHODIMP DispatchObject::QueryInterface(REFIID iid, void** object) {
  const bool known = iid == IID_IUnknown || iid == IID_IDispatch;
  *object = known ? this : nullptr;
  if (!known) return E_NOINTERFACE;
  AddRef();
  return S_OK;
}

STDMETHODIMP_(ULONG) DispatchObject::Release() {
  const ULONG left = --m_references;
  if (left == 0) delete this;
  return left;
}

void DispatchObject::Method(const wchar_t* name, std::vector<VARTYPE> types, Handler handler) {
  m_members.push_back({name, DISPATCH_METHOD, std::move(types), std::move(handler)});
}

void DispatchObject::Property(const wchar_t* name, Handler handler) {
  m_members.push_back({name, DISPATCH_PROPERTYGET, {}, std::move(handler)});
}

void DispatchObject::Property(const wchar_t* name, engine::Value value) {
  Property(name, [value](Arguments, VARIANT& result) {
    Answer(result, std::visit([](const auto& held) -> engine::ValueView { return held; }, value));
  });
}

void DispatchObject::WritableProperty(const wchar_t* name, Handler handler) {
  m_members.push_back({name, DISPATCH_PROPERTYPUT, {kAnyType}, std::move(handler)});
}

// The identifier of a name is the first member of that name.
STDMETHODIMP DispatchObject::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* identifiers) {
  if (count != 1) return DISP_E_UNKNOWNNAME;
  for (std::size_t i = 0; i < m_members.size(); ++i) {
    if (m_members[i].name != names[0]) continue;
    identifiers[0] = static_cast<DISPID>(i + 1);
    return S_OK;
  }
  identifiers[0] = DISPID_UNKNOWN;
  return DISP_E_UNKNOWNNAME;
}

STDMETHODIMP DispatchObject::Invoke(DISPID member, REFIID, LCID, WORD how, DISPPARAMS* parameters,
                                    VARIANT* result, EXCEPINFO* details, UINT*) {
  ComPtr<DispatchObject> self(this);
  std::vector<VARIANT> arguments(parameters->rgvarg, parameters->rgvarg + parameters->cArgs);
  std::reverse(arguments.begin(), arguments.end());
  VARIANT answer;
  VariantInit(&answer);
  try {
    const bool named = parameters->cNamedArgs == 1 && parameters->rgdispidNamedArgs[0] == DISPID_PROPERTYPUT;
    if (parameters->cNamedArgs != (how == DISPATCH_PROPERTYPUT ? 1u : 0u) ||
        named != (how == DISPATCH_PROPERTYPUT)) {
      throw Error(kBadCall, m_name + ": a value that is put has to be named as such, and nothing else");
    }
    Run(member, how, arguments, answer);
  } catch (const Error& error) {
    VariantClear(&answer);
    const std::string source = error.Source() == "Engine" ? "DAO." + m_name : "DAO server";
    m_journal.errors.clear();
    if (!m_journal.innerCause.empty()) m_journal.errors.push_back({1, m_journal.innerCause, "driver"});
    m_journal.errors.push_back({error.Number(), error.Description(), source});
    details->scode = MAKE_HRESULT(SEVERITY_ERROR, FACILITY_CONTROL, error.Number());
    if (!m_journal.bareErrors) {
      details->bstrDescription = MakeBstr(error.Description());
      details->bstrSource = MakeBstr(source);
    }
    return DISP_E_EXCEPTION;
  }
  if (result != nullptr) {
    *result = answer;
  } else {
    VariantClear(&answer);
  }
  return S_OK;
}

void DispatchObject::Run(DISPID identifier, WORD how, Arguments arguments, VARIANT& result) {
  const std::wstring& name = m_members.at(static_cast<std::size_t>(identifier - 1)).name;
  std::string call = m_name + ".";
  AppendUtf8(call, std::wstring_view(name));
  const auto member = std::find_if(m_members.begin(), m_members.end(), [&](const Member& candidate) {
    return candidate.name == name && (candidate.how & how) != 0;
  });
  if (member == m_members.end()) {
    throw Error(kBadCall, call + " cannot be used like this (" + std::to_string(how) + ")");
  }
  if (arguments.size() != member->types.size()) {
    throw Error(kBadCall, call + " has " + std::to_string(member->types.size()) + " arguments, not " +
                              std::to_string(arguments.size()));
  }
  std::string shown;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (member->types[i] != kAnyType && member->types[i] != arguments[i].vt) {
      throw Error(kBadCall, call + ": argument " + std::to_string(i + 1) + " has type " +
                                std::to_string(arguments[i].vt) + ", not " +
                                std::to_string(member->types[i]));
    }
    shown += (i == 0 ? "" : ", ") + Shown(arguments[i]);
  }
  m_journal.calls.push_back(call + "(" + shown + ")");
  member->handler(arguments, result);
}

void Answer(VARIANT& result, const engine::ValueView& value) {
  engine::dao::Variant variant = engine::dao::FromValue(engine::OwnedOf(value));
  std::swap(result, variant.Raw());
}

void Answer(VARIANT& result, DispatchObject* object) {
  object->AddRef();
  result.vt = VT_DISPATCH;
  result.pdispVal = object;
}

std::string TextOf(const VARIANT& variant) {
  std::string text;
  engine::dao::ToValue(variant, text);
  return text;
}

}  // namespace kxrestore::dao_server
