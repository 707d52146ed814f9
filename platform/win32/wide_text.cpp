#include "platform/win32/wide_text.h"

#include "base/shown_text.h"
#include "base/utf16.h"
#include "platform/win32/win32.h"

namespace kxrestore::win32 {

std::wstring Wide(std::string_view utf8) {
  return ToWide(utf8);
}

std::string Narrow(std::wstring_view utf16) {
  return FromWide(utf16);
}

std::wstring WideShown(std::string_view utf8) {
  return Wide(Shown(utf8));
}

std::wstring WideShownLines(std::string_view utf8) {
  return Wide(ShownLines(utf8));
}

std::string ToAnsi(std::string_view utf8) {
  const std::wstring wide = Wide(utf8);
  if (wide.empty()) return {};
  const int length = static_cast<int>(wide.size());
  const int size = WideCharToMultiByte(CP_ACP, 0, wide.data(), length, nullptr, 0, nullptr, nullptr);
  std::string ansi(size, '\0');
  WideCharToMultiByte(CP_ACP, 0, wide.data(), length, ansi.data(), size, nullptr, nullptr);
  return ansi;
}

std::string FromAnsi(std::string_view ansi) {
  if (ansi.empty()) return {};
  const int length = static_cast<int>(ansi.size());
  std::wstring wide(ansi.size(), L'\0');  // at most one unit for each byte
  wide.resize(MultiByteToWideChar(CP_ACP, 0, ansi.data(), length, wide.data(), length));
  return Narrow(wide);
}

std::string WindowText(HWND window) {
  std::wstring text(GetWindowTextLengthW(window) + 1, L'\0');
  text.resize(GetWindowTextW(window, text.data(), static_cast<int>(text.size())));
  return Narrow(text);
}

}  // namespace kxrestore::win32
