#include "platform/win32/services/icons.h"

#include <string>
#include <string_view>
#include <vector>

#include "platform/win32/wide_text.h"

namespace kxrestore::win32 {

namespace {

IconHandle LoadDrawing(HINSTANCE module, std::string_view name, int pixels) {
  const std::wstring resource = L"kx_" + Wide(name);
  return IconHandle(
      static_cast<HICON>(LoadImageW(module, resource.c_str(), IMAGE_ICON, pixels, pixels, LR_DEFAULTCOLOR)));
}

// An icon of only a mask with set bits, which are transparent; rows are padded to 16 bits.
IconHandle BlankIcon(int pixels) {
  const std::size_t bytes =
      static_cast<std::size_t>((pixels + 15) / 16 * 2) * static_cast<std::size_t>(pixels);
  const std::vector<BYTE> seeThrough(bytes, 0xFF), black(bytes, 0);
  return IconHandle(CreateIcon(nullptr, pixels, pixels, 1, 1, seeThrough.data(), black.data()));
}

ImageListHandle MakeList(std::size_t count, int pixels) {
  return ImageListHandle(
      ImageList_Create(pixels, pixels, ILC_COLOR32 | ILC_MASK, static_cast<int>(count), 4));
}

}  // namespace

ImageListHandle MakeImageList(HINSTANCE module, const controls::ImageList& images, int pixels) {
  ImageListHandle list = MakeList(images.Keys().size(), pixels);
  for (const std::string& key : images.Keys()) {
    IconHandle icon = LoadDrawing(module, key, pixels);
    if (!icon) icon = BlankIcon(pixels);
    ImageList_ReplaceIcon(list.get(), -1, icon.get());
  }
  return list;
}

ImageListHandle MakeBlankList(int count, int pixels) {
  ImageListHandle list = MakeList(static_cast<std::size_t>(count), pixels);
  const IconHandle blank = BlankIcon(pixels);
  for (int image = 0; image < count; ++image) ImageList_ReplaceIcon(list.get(), -1, blank.get());
  return list;
}

IconHandle LoadFormIcon(HINSTANCE module, int pixels) {
  return LoadDrawing(module, "form", pixels);
}

}  // namespace kxrestore::win32
