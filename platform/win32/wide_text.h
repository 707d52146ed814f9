// Conversions at the Win32 edge: UTF-8 inside, UTF-16 or the ANSI code page outside. What the code page lacks
// becomes its replacement character; see base/utf16.h for odd UTF-16.
#pragma once

#include <string>
#include <string_view>

namespace kxrestore::win32 {

std::wstring Wide(std::string_view utf8);
std::string Narrow(std::wstring_view utf16);

// What is drawn of a text: see Shown and ShownLines in base/text.h.
std::wstring WideShown(std::string_view utf8);
std::wstring WideShownLines(std::string_view utf8);

std::string ToAnsi(std::string_view utf8);
std::string FromAnsi(std::string_view ansi);

// The text of a window.
std::string WindowText(struct HWND__* window);

}  // namespace kxrestore::win32
