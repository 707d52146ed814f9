// An automation object made of a table of members, each with the types of its arguments. A call with another
// name, another kind, another number, order or type of arguments is refused, and says what is wrong.
#pragma once

#include <windows.h>

#include <oleauto.h>
#include <wrl/client.h>

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "engine/value.h"

namespace kxrestore::dao_server {

using Microsoft::WRL::ComPtr;
using Arguments = std::span<const VARIANT>;  // in the order they are written

// State shared by all objects of a server: recorded calls, and the errors of the last failed call.
struct Journal {
  struct Entry {
    int number;
    std::string description;
    std::string source;
  };
  std::vector<std::string> calls;
  std::vector<Entry> errors;
  std::string innerCause;  // of the failures to come
  int liveObjects = 0;
  bool bareErrors = false;  // failures give only their number; the list has the rest
  bool Called(std::string_view call) const;
};

constexpr VARTYPE kAnyType = VT_VARIANT;

class DispatchObject : public IDispatch {
 public:
  DispatchObject(Journal& journal, std::string name) : m_journal(journal), m_name(std::move(name)) {
    ++m_journal.liveObjects;
  }
  DispatchObject(const DispatchObject&) = delete;
  DispatchObject& operator=(const DispatchObject&) = delete;

  using Handler = std::function<void(Arguments, VARIANT&)>;
  void Method(const wchar_t* name, std::vector<VARTYPE> types, Handler handler);
  void Property(const wchar_t* name, Handler handler);          // to read
  void Property(const wchar_t* name, engine::Value value);      // that stays the same
  void WritableProperty(const wchar_t* name, Handler handler);  // the value is the one argument

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override { return ++m_references; }
  STDMETHODIMP_(ULONG) Release() override;
  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* identifiers) override;
  STDMETHODIMP Invoke(DISPID member, REFIID, LCID, WORD how, DISPPARAMS* parameters, VARIANT* result,
                      EXCEPINFO* details, UINT*) override;

 protected:
  virtual ~DispatchObject() { --m_journal.liveObjects; }
  Journal& m_journal;

 private:
  struct Member {
    std::wstring name;
    WORD how;
    std::vector<VARTYPE> types;
    Handler handler;
  };
  void Run(DISPID member, WORD how, Arguments arguments, VARIANT& result);

  std::string m_name;
  std::vector<Member> m_members;
  ULONG m_references = 0;
};

void Answer(VARIANT& result, const engine::ValueView& value);
void Answer(VARIANT& result, DispatchObject* object);
std::string TextOf(const VARIANT& variant);

}  // namespace kxrestore::dao_server
