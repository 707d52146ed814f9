#include "component/com/type_library.h"

#include <oleauto.h>

#include <vector>

#include "base/error.h"

namespace kxrestore::component::com {
namespace {

void Check(HRESULT result, const char* what) {
  if (FAILED(result)) throw Error(static_cast<int>(result), what, "KXRestore");
}

// Replaces a reference to a variant by what it refers to; the argument still owns nothing. False for a
// reference to another reference, which is invalid and might be circular.
bool Unwrap(VARIANTARG& argument) {
  if (argument.vt != (VT_BYREF | VT_VARIANT) || !argument.pvarVal) return true;
  VARIANT& inner = *argument.pvarVal;
  if (inner.vt == (VT_BYREF | VT_VARIANT)) return false;
  if (inner.vt == VT_BSTR) {
    argument.vt = VT_BYREF | VT_BSTR;
    argument.pbstrVal = &inner.bstrVal;
  } else {
    argument = inner;
  }
  return true;
}

}  // namespace

ComPtr<ITypeLib> LoadOwnTypeLibrary() {
  ComPtr<ITypeLib> library;
  Check(LoadTypeLibEx(ModulePath().c_str(), REGKIND_NONE, &library), "The type library cannot be loaded.");
  return library;
}

ComPtr<ITypeInfo> LoadTypeInfo(REFGUID type) {
  ComPtr<ITypeInfo> info;
  Check(LoadOwnTypeLibrary()->GetTypeInfoOfGuid(type, &info), "The type library does not hold the type.");
  return info;
}

HRESULT InvokeByType(ITypeInfo& type, void* object, DISPID member, WORD flags, const DISPPARAMS& parameters,
                     VARIANT* result, EXCEPINFO* exception, UINT* wrongArgument) {
  std::vector<VARIANTARG> arguments(parameters.rgvarg, parameters.rgvarg + parameters.cArgs);
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (Unwrap(arguments[i])) continue;
    if (wrongArgument) *wrongArgument = static_cast<UINT>(i);
    return DISP_E_TYPEMISMATCH;
  }
  DISPPARAMS plain = parameters;
  plain.rgvarg = arguments.data();
  return type.Invoke(object, member, flags, &plain, result, exception, wrongArgument);
}

}  // namespace kxrestore::component::com
