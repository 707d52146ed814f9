// The dialog's interfaces to the real machine: desktop, registry, regional settings, drives.
#pragma once

#include "platform/platform.h"
#include "platform/win32/form/desktop.h"
#include "platform/win32/services/drives.h"
#include "platform/win32/services/regional.h"
#include "platform/win32/services/registry.h"

namespace kxrestore::win32 {

class Win32Platform {
 public:
  // `module` contains the manifest for the common controls as resource 2.
  explicit Win32Platform(HINSTANCE module) : m_desktop(module) {}
  Win32Platform(const Win32Platform&) = delete;
  Win32Platform& operator=(const Win32Platform&) = delete;

  platform::Platform& Get() { return m_platform; }

 private:
  Win32Desktop m_desktop;
  Win32Registry m_registry;
  Win32Regional m_regional;
  Win32Drives m_drives;
  platform::Platform m_platform{m_desktop, m_registry, m_regional, m_drives};
};

}  // namespace kxrestore::win32
