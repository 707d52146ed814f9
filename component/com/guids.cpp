// Defines the GUIDs that the generated header declares.
#include <windows.h>

#include <olectl.h>

#include <cguid.h>

#include <initguid.h>

#include "component/com/kxrestore.h"
