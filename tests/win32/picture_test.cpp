#include "platform/win32/picture.h"

#include <gtest/gtest.h>

#include "platform/win32/icons.h"

namespace kxrestore::win32::test {

TEST(Picture, EdgesAreSmoothAndOutsideIsClear) {
  Picture picture;
  picture.FillBox({0xFF, 0, 0}, 0, 0, 8.5, 16);
  picture.FillBox({0, 0, 0xFF}, 0, 0, 4, 16);
  const auto image = picture.Draw(16);
  ASSERT_EQ(image.size(), 256u);
  EXPECT_EQ(image[0], 0xFF0000FFu);
  EXPECT_EQ(image[5], 0xFFFF0000u);
  EXPECT_EQ(image[8] & 0xFFFFFF, 0xFF0000u);
  EXPECT_NEAR(image[8] >> 24, 0x7F, 1);
  EXPECT_EQ(image[9], 0u);
}

TEST(Icons, EveryKeyOfTheFormHasItsOwnPictureAtEverySize) {
  const controls::ImageList keys{{"cfolder", "file", "ofolder", "drive", "SystemState", "activedirectory",
                                  "Exchange", "PublicFolders", "publicfolder", "AddressLists", "MailBoxes",
                                  "MailBox", "SQLServer", "boxCheck", "box", "boxX", "no such key"}};
  for (const int pixels : {16, 24, 32}) {
    const ImageListHandle list = MakeImageList(keys, pixels);
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
      EXPECT_EQ(colors.front(), RGB(255, 255, 255)) << keys.Keys()[image] << ": corners are see-through";
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
