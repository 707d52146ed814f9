#include "platform/win32/form/dialog_template.h"

namespace kxrestore::win32 {

DialogTemplate::DialogTemplate(const std::wstring& title, DWORD style, WORD items, short width,
                               short height) {
  const DLGTEMPLATE head{style | DS_MODALFRAME | DS_CENTER | DS_SHELLFONT | WS_POPUP | WS_CAPTION,
                         0,
                         items,
                         0,
                         0,
                         width,
                         height};
  Put(&head, sizeof head);
  Word(0);  // no menu
  Word(0);  // the usual class
  Text(title);
  Word(8);
  Text(L"MS Shell Dlg");
}

void DialogTemplate::Item(DWORD style, WORD id, RECT place, const std::wstring& text, WORD windowClass) {
  const WORD words[] = {0xFFFF, windowClass};
  Item(style, id, place, text, words, sizeof words);
}

void DialogTemplate::Item(DWORD style, WORD id, RECT place, const std::wstring& text, const void* windowClass,
                          std::size_t size) {
  if (m_bytes.size() % 4 != 0) Word(0);
  const DLGITEMTEMPLATE item{style | WS_CHILD | WS_VISIBLE,
                             0,
                             static_cast<short>(place.left),
                             static_cast<short>(place.top),
                             static_cast<short>(place.right - place.left),
                             static_cast<short>(place.bottom - place.top),
                             id};
  Put(&item, sizeof item);
  Put(windowClass, size);
  Text(text);
  Word(0);  // no data
}

void DialogTemplate::Put(const void* data, std::size_t size) {
  const auto* bytes = static_cast<const BYTE*>(data);
  m_bytes.insert(m_bytes.end(), bytes, bytes + size);
}

}  // namespace kxrestore::win32
