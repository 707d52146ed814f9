#include "platform/win32/wide_text.h"

#include "platform/win32/win32.h"

namespace kxrestore::win32 {

namespace {

std::wstring Decode(unsigned codePage, std::string_view text) {
  if (text.empty()) return {};
  const int length = static_cast<int>(text.size());
  std::wstring wide(text.size(), L'\0');  // never more units than bytes
  wide.resize(MultiByteToWideChar(codePage, 0, text.data(), length, wide.data(), length));
  return wide;
}

std::string Encode(unsigned codePage, std::wstring_view wide) {
  if (wide.empty()) return {};
  const int length = static_cast<int>(wide.size());
  const int size = WideCharToMultiByte(codePage, 0, wide.data(), length, nullptr, 0, nullptr, nullptr);
  std::string text(size, '\0');
  WideCharToMultiByte(codePage, 0, wide.data(), length, text.data(), size, nullptr, nullptr);
  return text;
}

}  // namespace

std::wstring Wide(std::string_view utf8) {
  return Decode(CP_UTF8, utf8);
}

std::string Narrow(std::wstring_view utf16) {
  return Encode(CP_UTF8, utf16);
}

std::string ToAnsi(std::string_view utf8) {
  return Encode(CP_ACP, Wide(utf8));
}

std::string FromAnsi(std::string_view ansi) {
  return Narrow(Decode(CP_ACP, ansi));
}

std::string WindowText(HWND window) {
  std::wstring text(GetWindowTextLengthW(window) + 1, L'\0');
  text.resize(GetWindowTextW(window, text.data(), static_cast<int>(text.size())));
  return Narrow(text);
}

}  // namespace kxrestore::win32
