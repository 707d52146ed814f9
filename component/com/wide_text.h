// Between the UTF-16 of COM and the UTF-8 inside; see base/utf16.h for what happens to odd texts.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <string>
#include <string_view>

namespace kxrestore::component::com {

std::string FromWide(std::wstring_view text);
std::wstring ToWide(std::string_view text);

// A BSTR may be null, which is the empty text, and may hold NULs.
std::string FromBstr(BSTR text);

}  // namespace kxrestore::component::com
