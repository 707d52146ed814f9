#include "platform/win32/controls/clipboard.h"

namespace kxrestore::win32 {

void CopyText(HWND owner, const std::wstring& text) {
  if (!OpenClipboard(owner)) return;
  EmptyClipboard();
  const SIZE_T bytes = (text.size() + 1) * sizeof(wchar_t);
  if (const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, bytes)) {
    if (void* const target = GlobalLock(memory)) {
      CopyMemory(target, text.c_str(), bytes);
      GlobalUnlock(memory);
    }
    if (SetClipboardData(CF_UNICODETEXT, memory) == nullptr) GlobalFree(memory);
  }
  CloseClipboard();
}

}  // namespace kxrestore::win32
