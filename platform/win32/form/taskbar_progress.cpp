#include "platform/win32/form/taskbar_progress.h"

#include <initguid.h>
#include <shobjidl.h>

#include <cmath>
#include <utility>

namespace kxrestore::win32 {

namespace {

constexpr ULONGLONG kSteps = 10000;

}  // namespace

TaskbarProgress::~TaskbarProgress() {
  if (m_taskbar != nullptr) m_taskbar->Release();
}

void TaskbarProgress::Show(HWND window, const controls::Form::TaskProgress& progress) {
  if (!std::exchange(m_sought, true)) {
    void* found = nullptr;
    if (SUCCEEDED(
            CoCreateInstance(CLSID_TaskbarList, nullptr, CLSCTX_INPROC_SERVER, IID_ITaskbarList3, &found))) {
      m_taskbar = static_cast<ITaskbarList3*>(found);
      if (FAILED(m_taskbar->HrInit())) {
        m_taskbar->Release();
        m_taskbar = nullptr;
      }
    }
  }
  if (m_taskbar == nullptr) return;
  if (!progress.shown) {
    m_taskbar->SetProgressState(window, TBPF_NOPROGRESS);
  } else if (progress.share < 0) {
    m_taskbar->SetProgressState(window, TBPF_INDETERMINATE);
  } else {
    m_taskbar->SetProgressState(window, TBPF_NORMAL);
    m_taskbar->SetProgressValue(window, static_cast<ULONGLONG>(std::lround(progress.share * kSteps)), kSteps);
  }
}

}  // namespace kxrestore::win32
