#include "tests/dao_server/dispatch_object.h"

#include <algorithm>
#include <utility>

#include "base/error.h"
#include "base/utf16.h"

namespace kxrestore::dao_server {
namespace {

constexpr int kBadCall = 5;

BSTR MakeBstr(std::string_view text) {
  return std::exchange(Variant(text).Raw().bstrVal, nullptr);
}

std::string Shown(const VARIANT& variant) {
  std::string text;
  const engine::ValueView value = engine::dao::ToValue(variant, text);
  return variant.vt == VT_BSTR ? "\"" + text + "\"" : engine::ToText(value);
}

VARTYPE TypeOf(char letter) {
  return letter == 's' ? VT_BSTR : letter == 'i' ? VT_I4 : letter == 'b' ? VT_BOOL : VT_VARIANT;
}

WORD HowOf(std::string_view kind) {
  return kind == "get" ? DISPATCH_PROPERTYGET : kind == "put" ? DISPATCH_PROPERTYPUT : DISPATCH_METHOD;
}

class DispatchObject final : public ComObject<IDispatch> {
 public:
  DispatchObject(Journal& journal, std::string name, std::vector<Member> members)
      : m_journal(journal), m_name(std::move(name)), m_members(std::move(members)) {
    ++m_journal.liveObjects;
  }

  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }

  // The identifier of a name is the position of the first member of that name.
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* identifiers) override {
    std::string wanted;
    AppendUtf8(wanted, std::wstring_view(names[0]));
    const auto found = std::ranges::find(m_members, wanted, &Member::name);
    identifiers[0] =
        found == m_members.end() ? DISPID_UNKNOWN : static_cast<DISPID>(found - m_members.begin());
    return found == m_members.end() ? DISP_E_UNKNOWNNAME : S_OK;
  }

  STDMETHODIMP Invoke(DISPID member, REFIID, LCID, WORD how, DISPPARAMS* parameters, VARIANT* result,
                      EXCEPINFO* details, UINT*) override {
    const ComPtr<DispatchObject> self(this);
    std::vector<VARIANT> arguments(parameters->rgvarg, parameters->rgvarg + parameters->cArgs);
    std::reverse(arguments.begin(), arguments.end());
    try {
      const bool named =
          parameters->cNamedArgs == 1 && parameters->rgdispidNamedArgs[0] == DISPID_PROPERTYPUT;
      if (parameters->cNamedArgs > 1 || named != (how == DISPATCH_PROPERTYPUT)) {
        throw Error(kBadCall, m_name + ": a value that is put has to be named as such, and nothing else");
      }
      Variant answer = Run(m_members.at(static_cast<std::size_t>(member)).name, how, arguments);
      if (result != nullptr) *result = std::exchange(answer.Raw(), VARIANT{});
      return S_OK;
    } catch (const Error& error) {
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
  }

 private:
  ~DispatchObject() override { --m_journal.liveObjects; }

  Variant Run(const std::string& name, WORD how, Arguments arguments) {
    const std::string call = m_name + "." + name;
    const auto member = std::ranges::find_if(m_members, [&](const Member& candidate) {
      return candidate.name == name && (HowOf(candidate.kind) & how) != 0;
    });
    if (member == m_members.end()) throw Error(kBadCall, call + " cannot be used like this");
    if (arguments.size() != member->types.size()) throw Error(kBadCall, call + " has other arguments");
    std::string shown;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      const VARTYPE type = TypeOf(member->types[i]);
      if (type != VT_VARIANT && type != arguments[i].vt) {
        throw Error(kBadCall, call + ": argument " + std::to_string(i + 1) + " has another type");
      }
      shown += (i == 0 ? "" : ", ") + Shown(arguments[i]);
    }
    m_journal.calls.push_back(call + "(" + shown + ")");
    return member->run(arguments);
  }

  Journal& m_journal;
  const std::string m_name;
  const std::vector<Member> m_members;
};

}  // namespace

Variant MakeObject(Journal& journal, std::string name, std::vector<Member> members) {
  Variant object;
  object.Raw().vt = VT_DISPATCH;
  object.Raw().pdispVal = new DispatchObject(journal, std::move(name), std::move(members));
  object.Raw().pdispVal->AddRef();
  return object;
}

}  // namespace kxrestore::dao_server
