#include "component/com/wide_text.h"

#include "base/utf16.h"

namespace kxrestore::component::com {

std::string FromWide(std::wstring_view text) {
  std::string out;
  AppendUtf8(out, text);
  return out;
}

std::wstring ToWide(std::string_view text) {
  return ToUtf16<wchar_t>(text);
}

std::string FromBstr(BSTR text) {
  return FromWide({text ? text : L"", SysStringLen(text)});
}

}  // namespace kxrestore::component::com
