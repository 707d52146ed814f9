// The system's headers without the macros that rename members of the portable interfaces.
#pragma once

#include <windows.h>

#include <commctrl.h>
#include <windowsx.h>

#undef MessageBox
#undef GetClassName
#undef GetFirstChild
#undef GetNextSibling
#undef FindText
