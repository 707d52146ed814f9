#include "platform/win32/icons.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include "base/text.h"
#include "platform/win32/form_window.h"
#include "platform/win32/picture.h"

namespace kxrestore::win32 {

namespace {

constexpr Color kAmber{0xF2, 0xC1, 0x4E};
constexpr Color kPaleAmber{0xFB, 0xDD, 0x8A};
constexpr Color kDarkAmber{0xB9, 0x86, 0x1C};
constexpr Color kWhite{0xFF, 0xFF, 0xFF};
constexpr Color kPaper{0xF7, 0xF9, 0xFC};
constexpr Color kPale{0xD5, 0xDC, 0xE4};
constexpr Color kGrey{0x8A, 0x95, 0xA3};
constexpr Color kDark{0x4A, 0x55, 0x63};
constexpr Color kBlue{0x2F, 0x74, 0xC0};
constexpr Color kPaleBlue{0x8C, 0xBD, 0xEC};
constexpr Color kDeepBlue{0x1B, 0x4A, 0x82};
constexpr Color kGreen{0x3B, 0xA5, 0x5D};
constexpr Color kRed{0xC0, 0x39, 0x2B};

Color SystemColor(int index) {
  const COLORREF color = GetSysColor(index);
  return {GetRValue(color), GetGValue(color), GetBValue(color)};
}

void ClosedFolder(Picture& picture) {
  picture.Fill(kDarkAmber, {{1, 2.5}, {6.3, 2.5}, {8, 4.5}, {15, 4.5}, {15, 13.5}, {1, 13.5}});
  picture.Fill(kAmber, {{2, 3.5}, {5.9, 3.5}, {7.4, 5.5}, {14, 5.5}, {14, 12.5}, {2, 12.5}});
  picture.FillBox(kPaleAmber, 2, 6.5, 14, 12.5);
}

void OpenFolder(Picture& picture) {
  picture.Fill(kDarkAmber, {{1, 2.5}, {6.3, 2.5}, {8, 4.5}, {13.5, 4.5}, {13.5, 13.5}, {1, 13.5}});
  picture.Fill(kAmber, {{2, 3.5}, {5.9, 3.5}, {7.4, 5.5}, {12.5, 5.5}, {12.5, 12.5}, {2, 12.5}});
  picture.Fill(kDarkAmber, {{3.8, 6.5}, {16, 6.5}, {13.5, 13.5}, {1, 13.5}});
  picture.Fill(kPaleAmber, {{4.5, 7.5}, {14.6, 7.5}, {12.8, 12.5}, {2.5, 12.5}});
}

void Page(Picture& picture) {
  picture.Fill(kGrey, {{3, 1}, {10, 1}, {13.5, 4.5}, {13.5, 15}, {3, 15}});
  picture.Fill(kPaper, {{4, 2}, {9.5, 2}, {12.5, 5}, {12.5, 14}, {4, 14}});
  picture.Fill(kGrey, {{9.2, 1.5}, {13, 5.3}, {9.2, 5.3}});
  picture.Fill(kPale, {{10, 3.2}, {11.2, 4.4}, {10, 4.4}});
}

void File(Picture& picture) {
  Page(picture);
  for (const double line : {7.0, 9.0, 11.0}) picture.FillBox(kPaleBlue, 5.5, line, 11, line + 0.9);
}

void Drive(Picture& picture) {
  picture.Fill(kDark, {{3, 4}, {13, 4}, {15.5, 8.5}, {15.5, 13}, {0.5, 13}, {0.5, 8.5}});
  picture.Fill(kPale, {{3.7, 5}, {12.3, 5}, {14.2, 8.5}, {1.8, 8.5}});
  picture.FillBox(kGrey, 1.5, 9, 14.5, 12);
  picture.FillBox(kGreen, 11, 10, 13, 11);
}

void SystemState(Picture& picture) {
  picture.FillBox(kDark, 1, 2, 15, 11.5);
  picture.FillBox(kBlue, 2, 3, 14, 10.5);
  picture.Fill(kPaleBlue, {{2, 3}, {9, 3}, {4, 10.5}, {2, 10.5}});
  picture.FillBox(kDark, 7, 11.5, 9, 13.5);
  picture.FillBox(kDark, 4, 13.2, 12, 14.5);
}

void ActiveDirectory(Picture& picture) {
  picture.Stroke(kDark, 0.9, {{3.5, 12}, {3.5, 8.5}, {12.5, 8.5}, {12.5, 12}});
  picture.Stroke(kDark, 0.9, {{8, 5}, {8, 8.5}});
  picture.FillBox(kDeepBlue, 5.5, 1, 10.5, 5.5);
  picture.FillBox(kPaleBlue, 6.3, 1.8, 9.7, 4.7);
  for (const double left : {1.0, 10.0}) {
    picture.FillBox(kDeepBlue, left, 10.5, left + 5, 15);
    picture.FillBox(kAmber, left + 0.8, 11.3, left + 4.2, 14.2);
  }
}

void Envelope(Picture& picture, double left, double top, double right, double bottom) {
  const double middle = (left + right) / 2;
  picture.FillBox(kDark, left, top, right, bottom);
  picture.FillBox(kPaper, left + 0.9, top + 0.9, right - 0.9, bottom - 0.9);
  picture.Stroke(kDark, 0.8,
                 {{left + 0.6, top + 0.8}, {middle, (top + bottom) / 2 + 0.8}, {right - 0.6, top + 0.8}});
}

void Exchange(Picture& picture) {
  picture.FillBox(kDeepBlue, 1, 1, 15, 15);
  picture.FillBox(kBlue, 1.8, 1.8, 14.2, 14.2);
  Envelope(picture, 3, 4.5, 13, 11.5);
}

void People(Picture& picture) {
  picture.FillEllipse(kWhite, {11.3, 11.3}, 4.4, 4.4);
  picture.FillEllipse(kBlue, {11.3, 9.6}, 1.7, 1.7);
  picture.Fill(kBlue, {{8.3, 14.2}, {9.1, 12.1}, {10.3, 11.6}, {12.3, 11.6}, {13.5, 12.1}, {14.3, 14.2}});
}

void PublicFolders(Picture& picture) {
  ClosedFolder(picture);
  People(picture);
}

void PublicFolder(Picture& picture) {
  Page(picture);
  People(picture);
}

void AddressLists(Picture& picture) {
  picture.FillBox(kDeepBlue, 2.5, 1, 14, 15);
  picture.FillBox(kBlue, 4.5, 2, 13, 14);
  for (const double ring : {3.5, 7.5, 11.5}) picture.FillBox(kGrey, 1.5, ring, 4, ring + 1);
  picture.FillEllipse(kWhite, {8.8, 6}, 1.8, 1.8);
  picture.Fill(kWhite, {{5.8, 11.8}, {6.6, 9.2}, {7.8, 8.6}, {9.8, 8.6}, {11, 9.2}, {11.8, 11.8}});
}

void MailBoxes(Picture& picture) {
  Envelope(picture, 3.5, 2.5, 15.5, 10);
  Envelope(picture, 0.5, 6, 12.5, 13.5);
}

void MailBox(Picture& picture) {
  Envelope(picture, 1, 3.5, 15, 12.5);
}

void SqlServer(Picture& picture) {
  picture.FillEllipse(kDeepBlue, {8, 12.3}, 6, 2.7);
  picture.FillBox(kDeepBlue, 2, 3.7, 14, 12.3);
  picture.FillEllipse(kBlue, {8, 12}, 5.1, 2);
  picture.FillBox(kBlue, 2.9, 4, 13.1, 12);
  picture.FillEllipse(kDeepBlue, {8, 8.4}, 5.1, 2.1);
  picture.FillEllipse(kBlue, {8, 7.6}, 5.1, 2.1);
  picture.FillEllipse(kDeepBlue, {8, 3.7}, 6, 2.7);
  picture.FillEllipse(kPaleBlue, {8, 3.7}, 5.1, 1.9);
}

void Box(Picture& picture) {
  picture.FillBox(SystemColor(COLOR_WINDOWTEXT), 2, 2, 14, 14);
  picture.FillBox(SystemColor(COLOR_WINDOW), 3, 3, 13, 13);
}

void Tick(Picture& picture, Color color) {
  picture.Stroke(color, 1.7, {{4.8, 8.2}, {7.1, 10.6}, {11.3, 5.4}});
}

void TickedBox(Picture& picture) {
  Box(picture);
  Tick(picture, SystemColor(COLOR_WINDOWTEXT));
}

void CrossedBox(Picture& picture) {
  Box(picture);
  picture.Stroke(kRed, 1.6, {{5, 5}, {11, 11}});
  picture.Stroke(kRed, 1.6, {{11, 5}, {5, 11}});
}

void FormPicture(Picture& picture) {
  Drive(picture);
  picture.Stroke(kWhite, 4, {{8, 0.5}, {8, 5.5}});
  picture.Fill(kWhite, {{2.6, 4.2}, {13.4, 4.2}, {8, 10.8}});
  picture.FillBox(kGreen, 6.6, 0.3, 9.4, 5.5);
  picture.Fill(kGreen, {{4, 5}, {12, 5}, {8, 9.6}});
}

struct Drawing {
  const char* key;
  void (*draw)(Picture& picture);
};

constexpr Drawing kDrawings[] = {
    {"cfolder", ClosedFolder},
    {"ofolder", OpenFolder},
    {"file", File},
    {"drive", Drive},
    {"systemstate", SystemState},
    {"activedirectory", ActiveDirectory},
    {"exchange", Exchange},
    {"publicfolders", PublicFolders},
    {"publicfolder", PublicFolder},
    {"publicitem", PublicFolder},
    {"addresslists", AddressLists},
    {"mailboxes", MailBoxes},
    {"mailbox", MailBox},
    {"sqlserver", SqlServer},
    {"box", Box},
    {"boxcheck", TickedBox},
    {"boxx", CrossedBox},
    {"check", TickedBox},
    {"uncheck", Box},
};

struct BitmapDeleter {
  void operator()(HBITMAP bitmap) const { DeleteObject(bitmap); }
};
using BitmapHandle = std::unique_ptr<std::remove_pointer_t<HBITMAP>, BitmapDeleter>;

IconHandle MakeIcon(const Picture& picture, int pixels) {
  BITMAPV5HEADER header{sizeof header};
  header.bV5Width = pixels;
  header.bV5Height = -pixels;  // rows from the top
  header.bV5Planes = 1;
  header.bV5BitCount = 32;
  header.bV5Compression = BI_BITFIELDS;
  header.bV5RedMask = 0x00FF0000;
  header.bV5GreenMask = 0x0000FF00;
  header.bV5BlueMask = 0x000000FF;
  header.bV5AlphaMask = 0xFF000000;
  void* bits = nullptr;
  const BitmapHandle color(CreateDIBSection(nullptr, reinterpret_cast<const BITMAPINFO*>(&header),
                                            DIB_RGB_COLORS, &bits, nullptr, 0));
  if (!color) return nullptr;
  const std::vector<std::uint32_t> image = picture.Draw(pixels);
  std::copy(image.begin(), image.end(), static_cast<std::uint32_t*>(bits));

  // Where transparency is not supported the mask decides: a set bit is see-through. Its rows are padded to 16
  // bit.
  const int rowBytes = (pixels + 15) / 16 * 2;
  std::vector<BYTE> mask(static_cast<std::size_t>(rowBytes) * pixels);
  for (int y = 0; y < pixels; ++y) {
    for (int x = 0; x < pixels; ++x) {
      if (image[static_cast<std::size_t>(y) * pixels + x] >> 24 < 0x80) {
        mask[static_cast<std::size_t>(y) * rowBytes + x / 8] |= static_cast<BYTE>(0x80 >> x % 8);
      }
    }
  }
  const BitmapHandle maskBitmap(CreateBitmap(pixels, pixels, 1, 1, mask.data()));
  ICONINFO icon{};
  icon.fIcon = TRUE;
  icon.hbmColor = color.get();
  icon.hbmMask = maskBitmap.get();
  return IconHandle(CreateIconIndirect(&icon));
}

void Append(HIMAGELIST list, const Picture& picture, int pixels) {
  if (const IconHandle icon = MakeIcon(picture, pixels)) ImageList_ReplaceIcon(list, -1, icon.get());
}

}  // namespace

ImageListHandle MakeImageList(const controls::ImageList& images, int pixels) {
  ImageListHandle list(
      ImageList_Create(pixels, pixels, ILC_COLOR32 | ILC_MASK, static_cast<int>(images.Keys().size()), 4));
  for (const std::string& key : images.Keys()) {
    Picture picture;
    const auto drawing =
        std::find_if(std::begin(kDrawings), std::end(kDrawings),
                     [&](const Drawing& candidate) { return EqualIgnoringCase(candidate.key, key); });
    if (drawing != std::end(kDrawings)) drawing->draw(picture);
    Append(list.get(), picture, pixels);
  }
  return list;
}

ImageListHandle MakeCheckBoxList(int pixels) {
  ImageListHandle list(ImageList_Create(pixels, pixels, ILC_COLOR32 | ILC_MASK, 3, 1));
  for (auto* const draw : {+[](Picture&) {}, &Box, &TickedBox}) {
    Picture picture;
    draw(picture);
    Append(list.get(), picture, pixels);
  }
  return list;
}

HICON MakeFormIcon(int pixels) {
  Picture picture;
  FormPicture(picture);
  return MakeIcon(picture, pixels).release();
}

}  // namespace kxrestore::win32
