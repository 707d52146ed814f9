// The images of trees and of the form. They are drawn in platform/win32/icons/*.svg; the build converts each
// to an icon of several sizes, a resource of the module named "kx_" and the drawing's name.
#pragma once

#include <memory>
#include <type_traits>

#include "controls/widgets.h"
#include "platform/win32/win32.h"

namespace kxrestore::win32 {

struct IconDeleter {
  void operator()(HICON icon) const { DestroyIcon(icon); }
};
using IconHandle = std::unique_ptr<std::remove_pointer_t<HICON>, IconDeleter>;

struct ImageListDeleter {
  void operator()(HIMAGELIST list) const { ImageList_Destroy(list); }
};
using ImageListHandle = std::unique_ptr<std::remove_pointer_t<HIMAGELIST>, ImageListDeleter>;

// The images of a list in the order of its keys, so image index i is at position i - 1. A key without a
// drawing (ignoring case) gets an empty image.
ImageListHandle MakeImageList(HINSTANCE module, const controls::ImageList& images, int pixels);

// A list of `count` empty images.
ImageListHandle MakeBlankList(int count, int pixels);

// The default icon of a form.
IconHandle LoadFormIcon(HINSTANCE module, int pixels);

}  // namespace kxrestore::win32
