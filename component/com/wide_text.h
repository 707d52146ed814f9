// Between the UTF-16 of COM and the UTF-8 inside; see base/utf16.h for what happens to odd texts.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <string>

#include "base/utf16.h"

namespace kxrestore::component::com {

using kxrestore::FromWide;
using kxrestore::ToWide;

// A BSTR may be null, which is the empty text, and may hold NULs.
inline std::string FromBstr(BSTR text) {
  return FromWide({text ? text : L"", SysStringLen(text)});
}

}  // namespace kxrestore::component::com
