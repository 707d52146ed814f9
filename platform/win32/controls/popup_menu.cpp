#include "platform/win32/controls/popup_menu.h"

#include <memory>
#include <type_traits>

#include "platform/win32/wide_text.h"

namespace kxrestore::win32 {

namespace {

struct MenuDeleter {
  void operator()(HMENU menu) const { DestroyMenu(menu); }
};
using MenuHandle = std::unique_ptr<std::remove_pointer_t<HMENU>, MenuDeleter>;

}  // namespace

void ShowPopupMenu(HWND owner, controls::Menu& menu, POINT place) {
  if (menu.Empty()) return;
  const MenuHandle popup(CreatePopupMenu());
  UINT_PTR number = 0;  // of an item, from 1; 0 when nothing was chosen
  for (const controls::Menu::Item& item : menu.Items()) {
    ++number;
    if (item.IsLine()) {
      AppendMenuW(popup.get(), MF_SEPARATOR, 0, nullptr);
      continue;
    }
    std::wstring text = WideShown(item.text);
    if (!item.keys.empty()) text += L'\t' + WideShown(item.keys);
    const UINT look = (item.enabled ? MF_ENABLED : MF_GRAYED) | (item.checked ? MF_CHECKED : MF_UNCHECKED);
    AppendMenuW(popup.get(), MF_STRING | look, number, text.c_str());
  }
  const int chosen =
      TrackPopupMenu(popup.get(), TPM_RETURNCMD | TPM_RIGHTBUTTON, place.x, place.y, 0, owner, nullptr);
  if (chosen > 0) menu.UserChoose(static_cast<std::size_t>(chosen) - 1);
}

}  // namespace kxrestore::win32
