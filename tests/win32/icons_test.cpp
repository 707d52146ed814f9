#include "platform/win32/services/icons.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace kxrestore::win32::test {

TEST(Icons, EveryKeyOfTheFormHasItsOwnPictureAtEverySize) {
  const controls::ImageList keys{{"cfolder", "file", "ofolder", "drive", "SystemState", "activedirectory",
                                  "Exchange", "PublicFolders", "publicfolder", "AddressLists", "MailBoxes",
                                  "MailBox", "SQLServer", "boxCheck", "box", "boxX", "no such key"}};
  for (const int pixels : {16, 20, 24, 32, 40, 48}) {
    const ImageListHandle list = MakeImageList(GetModuleHandleW(nullptr), keys, pixels);
    ASSERT_EQ(ImageList_GetImageCount(list.get()), static_cast<int>(keys.Keys().size()));
    std::vector<std::vector<COLORREF>> drawn;
    const HDC screen = GetDC(nullptr);
    const HDC dc = CreateCompatibleDC(screen);
    const HBITMAP bitmap = CreateCompatibleBitmap(screen, pixels, pixels);
    const HGDIOBJ before = SelectObject(dc, bitmap);
    for (std::size_t image = 0; image < keys.Keys().size(); ++image) {
      const RECT area{0, 0, pixels, pixels};
      FillRect(dc, &area, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
      ImageList_Draw(list.get(), static_cast<int>(image), dc, 0, 0, ILD_TRANSPARENT);
      std::vector<COLORREF> colors;
      for (int i = 0; i < pixels * pixels; ++i) colors.push_back(GetPixel(dc, i % pixels, i / pixels));
      EXPECT_EQ(colors.front(), RGB(255, 255, 255)) << keys.Keys()[image] << ": corners are transparent";
      EXPECT_EQ(std::find(drawn.begin(), drawn.end(), colors), drawn.end()) << keys.Keys()[image];
      drawn.push_back(std::move(colors));
    }
    SelectObject(dc, before);
    DeleteObject(bitmap);
    DeleteDC(dc);
    ReleaseDC(nullptr, screen);
  }
}

}  // namespace kxrestore::win32::test
