// The pictures of trees and lists. They are drawn when they are asked for, at the wanted size, so that they
// are sharp at every resolution.
#pragma once

#include <memory>
#include <string_view>
#include <type_traits>

#include "controls/widgets.h"
#include "platform/win32/win32.h"

namespace kxrestore::win32 {

struct ImageListDeleter {
  void operator()(HIMAGELIST list) const { ImageList_Destroy(list); }
};
using ImageListHandle = std::unique_ptr<std::remove_pointer_t<HIMAGELIST>, ImageListDeleter>;

// The images of a list in the order of its keys, so that image index i stands at position i - 1. A key
// without a picture of its own gets an empty image.
ImageListHandle MakeImageList(const controls::ImageList& images, int pixels);

// The icon of a form that names none of its own. The caller destroys it.
HICON MakeFormIcon(int pixels);

// The states of a check box as a state image list wants them: position 0 is unused, 1 clear, 2 ticked.
ImageListHandle MakeCheckBoxList(int pixels);

}  // namespace kxrestore::win32
