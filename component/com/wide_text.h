// Conversion between the UTF-16 of COM and the UTF-8 used inside; base/utf16.h specifies invalid text.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <string>

#include "base/utf16.h"

namespace kxrestore::component::com {

using kxrestore::FromWide;
using kxrestore::ToWide;

// A null BSTR is the empty text. A BSTR may contain NULs.
inline std::string FromBstr(BSTR text) {
  return FromWide({text ? text : L"", SysStringLen(text)});
}

}  // namespace kxrestore::component::com
