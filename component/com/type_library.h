// The component's own type library, and late-bound calls by its descriptions.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include "component/com/com_object.h"

namespace kxrestore::component::com {

// The library embedded in the DLL. Both raise an Error when it cannot be read.
ComPtr<ITypeLib> LoadOwnTypeLibrary();
ComPtr<ITypeInfo> LoadTypeInfo(REFGUID type);

// IDispatch::Invoke on `object`, a pointer to the dual interface that `type` describes. Script variables,
// which come as a reference to a variant, are put in the place of the parameter first: a text variable by
// reference, any other by value.
HRESULT InvokeByType(ITypeInfo& type, void* object, DISPID member, WORD flags, const DISPPARAMS& parameters,
                     VARIANT* result, EXCEPINFO* exception, UINT* wrongArgument);

}  // namespace kxrestore::component::com
