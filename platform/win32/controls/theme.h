// A visual theme's data for one class of controls; empty on a system without themes.
#pragma once

#include <memory>
#include <type_traits>

#include "platform/win32/win32.h"

#include <uxtheme.h>
#include <vssym32.h>

namespace kxrestore::win32 {

struct ThemeCloser {
  void operator()(HTHEME theme) const { CloseThemeData(theme); }
};
using ThemeHandle = std::unique_ptr<std::remove_pointer_t<HTHEME>, ThemeCloser>;

}  // namespace kxrestore::win32
