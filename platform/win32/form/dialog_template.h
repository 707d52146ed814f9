// Builds a dialog template in memory: words, each item aligned to four bytes. Positions are in dialog units.
#pragma once

#include <string>
#include <vector>

#include "platform/win32/win32.h"

namespace kxrestore::win32 {

class DialogTemplate {
 public:
  static constexpr WORD kButton = 0x0080, kStatic = 0x0082;  // window classes

  // `style` is added to the common style. `items`: the number of items to be added.
  DialogTemplate(const std::wstring& title, DWORD style, WORD items, short width, short height);
  void Item(DWORD style, WORD id, RECT place, const std::wstring& text, WORD windowClass);
  // `size` in bytes, including the terminating zero.
  void Item(DWORD style, WORD id, RECT place, const std::wstring& text, const void* windowClass,
            std::size_t size);
  const DLGTEMPLATE* Get() const { return reinterpret_cast<const DLGTEMPLATE*>(m_bytes.data()); }

 private:
  void Put(const void* data, std::size_t size);
  void Word(WORD word) { Put(&word, sizeof word); }
  void Text(const std::wstring& text) { Put(text.c_str(), (text.size() + 1) * sizeof(wchar_t)); }

  std::vector<BYTE> m_bytes;
};

}  // namespace kxrestore::win32
