// Gives the identifiers of the generated header their one definition.
#include <windows.h>

#include <olectl.h>

#include <cguid.h>

#include <initguid.h>

#include "component/com/kxrestore.h"
