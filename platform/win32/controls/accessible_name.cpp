#include "platform/win32/controls/accessible_name.h"

#include <oleacc.h>

namespace kxrestore::win32 {

void AnnotateName(HWND window, const std::wstring& name) {
  IAccPropServices* services = nullptr;
  if (FAILED(CoCreateInstance(CLSID_AccPropServices, nullptr, CLSCTX_INPROC_SERVER, IID_IAccPropServices,
                              reinterpret_cast<void**>(&services)))) {
    return;
  }
  services->SetHwndPropStr(window, static_cast<DWORD>(OBJID_CLIENT), CHILDID_SELF, PROPID_ACC_NAME,
                           name.c_str());
  services->Release();
}

}  // namespace kxrestore::win32
