// Makes RestoreDlg objects; what DllGetClassObject hands out.
#pragma once

#include <windows.h>

namespace kxrestore::component::com {

HRESULT GetClassObject(REFCLSID classId, REFIID iid, void** object);

}  // namespace kxrestore::component::com
