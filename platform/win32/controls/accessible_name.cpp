#include "platform/win32/controls/accessible_name.h"

#include <oleacc.h>

#include <memory>

namespace kxrestore::win32 {

namespace {

struct Releaser {
  void operator()(IUnknown* object) const { object->Release(); }
};

std::unique_ptr<IAccPropServices, Releaser> Services() {
  IAccPropServices* services = nullptr;
  CoCreateInstance(CLSID_AccPropServices, nullptr, CLSCTX_INPROC_SERVER, IID_IAccPropServices,
                   reinterpret_cast<void**>(&services));
  return std::unique_ptr<IAccPropServices, Releaser>(services);
}

constexpr auto kClient = static_cast<DWORD>(OBJID_CLIENT);

}  // namespace

void AnnotateName(HWND window, const std::wstring& name) {
  if (const auto services = Services()) {
    services->SetHwndPropStr(window, kClient, CHILDID_SELF, PROPID_ACC_NAME, name.c_str());
  }
}

void RemoveName(HWND window) {
  if (const auto services = Services()) {
    services->ClearHwndProps(window, kClient, CHILDID_SELF, &PROPID_ACC_NAME, 1);
  }
}

}  // namespace kxrestore::win32
