// Late-bound automation: values and objects of IDispatch. A failing call raises kxrestore::Error with the
// object's number, description and source or, if it gives none, with those of the engine's own list of
// errors.
#pragma once

#include <windows.h>

#include <oleauto.h>
#include <wrl/client.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kxrestore::engine::dao {

using Microsoft::WRL::ComPtr;

class Variant {
 public:
  Variant() { VariantInit(&m_value); }
  explicit Variant(std::string_view text);
  explicit Variant(bool value);
  explicit Variant(std::int32_t number);
  ~Variant() { VariantClear(&m_value); }
  Variant(Variant&& other) noexcept : m_value(other.m_value) { VariantInit(&other.m_value); }
  Variant& operator=(Variant&& other) noexcept {
    std::swap(m_value, other.m_value);
    return *this;
  }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;

  const VARIANT& Raw() const { return m_value; }
  VARIANT& Raw() { return m_value; }

  // Null, Empty and anything that is not a number convert to 0 and an empty text.
  std::int64_t Integer() const;
  std::string Text() const;
  bool Boolean() const { return Integer() != 0; }

 private:
  VARIANT m_value;
};

class Object {
 public:
  Object() = default;
  // `errors` is the engine's list of errors; objects obtained from this one inherit it.
  explicit Object(ComPtr<IDispatch> dispatch, ComPtr<IDispatch> errors = {})
      : m_dispatch(std::move(dispatch)), m_errors(std::move(errors)) {}

  explicit operator bool() const { return m_dispatch; }
  IDispatch* Dispatch() const { return m_dispatch.Get(); }

  // `name` must be a literal: member ids are cached by its address.
  template <class... Arguments>
  Variant Call(const wchar_t* name, const Arguments&... arguments) const {
    return InvokeWith(DISPATCH_METHOD, name, arguments...);
  }
  Variant Get(const wchar_t* name) const { return InvokeWith(DISPATCH_PROPERTYGET, name); }
  void Put(const wchar_t* name, const Variant& value) const { InvokeWith(DISPATCH_PROPERTYPUT, name, value); }

  template <class... Arguments>
  Object CallForObject(const wchar_t* name, const Arguments&... arguments) const {
    return AsObject(Call(name, arguments...));
  }
  Object GetObject(const wchar_t* name) const { return AsObject(Get(name)); }
  // An element of a collection, by position or by name.
  Object Item(const Variant& which) const {
    return AsObject(InvokeWith(DISPATCH_METHOD | DISPATCH_PROPERTYGET, L"Item", which));
  }

 private:
  template <class... Arguments>
  Variant InvokeWith(WORD how, const wchar_t* name, const Arguments&... arguments) const {
    constexpr std::size_t kCount = sizeof...(arguments);
    VARIANT reversed[kCount + 1];
    std::size_t position = kCount;
    ((reversed[--position] = arguments.Raw()), ...);
    return Invoke(how, name, std::span(reversed, kCount));
  }
  Variant Invoke(WORD how, const wchar_t* name, std::span<VARIANT> reversed) const;
  DISPID Identifier(const wchar_t* name) const;
  Object AsObject(Variant value) const;
  [[noreturn]] void Raise(HRESULT result, EXCEPINFO* info) const;

  ComPtr<IDispatch> m_dispatch;
  ComPtr<IDispatch> m_errors;
  mutable std::vector<std::pair<const wchar_t*, DISPID>> m_identifiers;
};

}  // namespace kxrestore::engine::dao
