#include "component/com/type_library.h"

#include <oleauto.h>

#include <vector>

#include "base/error.h"

namespace kxrestore::component::com {
namespace {

void Check(HRESULT result, const char* what) {
  if (FAILED(result)) throw Error(static_cast<int>(result), what, "KXRestore");
}

// Shares what the argument refers to; the copy owns nothing.
VARIANTARG Unwrapped(VARIANTARG argument) {
  // A reference to a variant that is itself one is against the rules; a few are followed, a circle is not.
  for (int depth = 0; depth < 4 && argument.vt == (VT_BYREF | VT_VARIANT) && argument.pvarVal; ++depth) {
    VARIANT* inner = argument.pvarVal;
    if (inner->vt == VT_BSTR) {
      argument.vt = VT_BYREF | VT_BSTR;
      argument.pbstrVal = &inner->bstrVal;
    } else {
      argument = *inner;
    }
  }
  return argument;
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
  std::vector<VARIANTARG> arguments;
  arguments.reserve(parameters.cArgs);
  for (UINT i = 0; i < parameters.cArgs; ++i) arguments.push_back(Unwrapped(parameters.rgvarg[i]));
  DISPPARAMS plain = parameters;
  plain.rgvarg = arguments.data();
  return type.Invoke(object, member, flags, &plain, result, exception, wrongArgument);
}

}  // namespace kxrestore::component::com
