// The dialog's interfaces to its machine. All members outlive the form.
#pragma once

namespace kxrestore::platform {

class Desktop;
class Registry;
class Regional;
class Drives;

struct Platform {
  Desktop& desktop;
  Registry& registry;
  Regional& regional;
  Drives& drives;
};

}  // namespace kxrestore::platform
