// Text conversion for Win32: UTF-8 inside, UTF-16 or the ANSI code page outside. Characters missing in the
// code page become its replacement character; base/utf16.h specifies invalid UTF-16.
#pragma once

#include <string>
#include <string_view>

namespace kxrestore::win32 {

std::wstring Wide(std::string_view utf8);
std::string Narrow(std::wstring_view utf16);

// The displayed form of a text, see Shown and ShownLines in base/shown_text.h.
std::wstring WideShown(std::string_view utf8);
std::wstring WideShownLines(std::string_view utf8);

std::string ToAnsi(std::string_view utf8);
std::string FromAnsi(std::string_view ansi);

// The text of a window.
std::string WindowText(struct HWND__* window);

}  // namespace kxrestore::win32
