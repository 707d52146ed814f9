// The component's own type library, and late-bound calls through it.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include "component/com/com_object.h"

namespace kxrestore::component::com {

// Loads from the library embedded in the DLL. Both raise an Error when it cannot be read.
ComPtr<ITypeLib> LoadOwnTypeLibrary();
ComPtr<ITypeInfo> LoadTypeInfo(REFGUID type);

// IDispatch::Invoke on `object`, a pointer to the dual interface that `type` describes. Script variables
// arrive as references to a variant and are unwrapped first: text as text by reference, anything else by
// value.
HRESULT InvokeByType(ITypeInfo& type, void* object, DISPID member, WORD flags, const DISPPARAMS& parameters,
                     VARIANT* result, EXCEPINFO* exception, UINT* wrongArgument);

}  // namespace kxrestore::component::com
