// Creates RestoreDlg objects; returned by DllGetClassObject.
#pragma once

#include <windows.h>

namespace kxrestore::component::com {

HRESULT GetClassObject(REFCLSID classId, REFIID iid, void** object);

}  // namespace kxrestore::component::com
