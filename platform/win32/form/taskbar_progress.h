// The progress on a window's button in the task bar. Does nothing on systems without it.
#pragma once

#include "controls/form.h"
#include "platform/win32/win32.h"

struct ITaskbarList3;

namespace kxrestore::win32 {

class TaskbarProgress {
 public:
  TaskbarProgress() = default;
  ~TaskbarProgress();
  TaskbarProgress(const TaskbarProgress&) = delete;
  TaskbarProgress& operator=(const TaskbarProgress&) = delete;

  void Show(HWND window, const controls::Form::TaskProgress& progress);

 private:
  ITaskbarList3* m_taskbar = nullptr;
  bool m_sought = false;
};

}  // namespace kxrestore::win32
