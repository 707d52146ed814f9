// The complete platform without a desktop.
#pragma once

#include <optional>

#include "platform/headless/headless_desktop.h"
#include "platform/headless/headless_drives.h"
#include "platform/headless/headless_registry.h"
#include "platform/platform.h"
#include "platform/regional.h"

namespace kxrestore::platform {

// Fixed formats, with a clock that can be stopped.
class HeadlessRegional : public FixedRegional {
 public:
  CivilTime Now() const override { return now ? *now : FixedRegional::Now(); }
  std::optional<CivilTime> now;
};

struct HeadlessPlatform {
  HeadlessDesktop desktop;
  HeadlessRegistry registry;
  HeadlessRegional regional;
  HeadlessDrives drives;

  platform::Platform Get() { return {desktop, registry, regional, drives}; }
};

}  // namespace kxrestore::platform
