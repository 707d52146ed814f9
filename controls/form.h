// The window. It has an outer size (Width, Height) and an inner size (ScaleWidth, ScaleHeight) without title
// bar and borders, whose sizes the front end supplies.
#pragma once

#include "controls/control.h"

namespace kxrestore::controls {

enum class WindowState { kNormal = 0, kMinimized = 1, kMaximized = 2 };
enum class MousePointer { kDefault = 0, kSizeNS = 7, kSizeWE = 9, kHourglass = 11 };
enum class Key { kEscape, kF5 };

class Form : public Container {
 public:
  explicit Form(std::string name);

  const std::string& Caption() const { return m_caption; }
  void SetCaption(std::string caption);

  int ScaleWidth() const;
  int ScaleHeight() const;
  // What the window's frame adds to the inner size, in twips.
  void SetFrame(int width, int height);

  // The smallest outer size while the user drags the window. The form's own resize rule has the last word.
  int MinimumWidth() const { return m_minimumWidth; }
  int MinimumHeight() const { return m_minimumHeight; }
  void SetMinimumSize(int width, int height) {
    m_minimumWidth = width;
    m_minimumHeight = height;
  }

  controls::WindowState WindowState() const { return m_windowState; }
  void SetWindowState(controls::WindowState state);
  controls::MousePointer MousePointer() const { return m_mousePointer; }
  void SetMousePointer(controls::MousePointer pointer);

  // The progress on the task bar's button: none, a share from 0 to 1, or activity without a share (negative).
  struct TaskProgress {
    bool shown = false;
    double share = 0;
    bool operator==(const TaskProgress&) const = default;
  };
  const TaskProgress& GetTaskProgress() const { return m_taskProgress; }
  void SetTaskProgress(const TaskProgress& progress);

  // Path of an icon file that replaces the designed icon; empty for the designed one.
  const std::string& IconPath() const { return m_iconPath; }
  void SetIconPath(std::string path);

  // Open from creation until it is unloaded. Unload first calls OnUnload, which may refuse, then notifies the
  // peer of kVisible, so that a modal loop wakes up.
  bool IsOpen() const { return m_open; }
  void Unload();
  std::function<void(bool& cancel)> OnUnload;

  // Keys handled by the form. UserClose: the close box, Alt+F4 and the system menu.
  std::function<void(Key)> KeyPress;
  std::function<void()> CloseRequest;  // when set, UserClose raises it instead of unloading at once
  void UserKey(Key key);
  void UserClose();
  // The window was shown.
  std::function<void()> Shown;
  void UserShown();
  bool HasBeenShown() const { return m_hasBeenShown; }
  // The new outer size; for a minimized window the size that it will be restored to. Raises Resize when the
  // size or the state changed. Accepted even while the form ignores other input.
  void UserResize(int width, int height, controls::WindowState state);

  // The outer size of the window when it is neither maximized nor minimized.
  int NormalWidth() const {
    return m_windowState == controls::WindowState::kNormal ? Width() : m_normalWidth;
  }
  int NormalHeight() const {
    return m_windowState == controls::WindowState::kNormal ? Height() : m_normalHeight;
  }

  // The stored position of the window in twips on the screen; centred without one.
  struct Placement {
    bool known = false;
    int left = 0, top = 0;
  };
  Placement placement;

 private:
  void KeepNormalSize();

  std::string m_caption;
  std::string m_iconPath;
  int m_minimumWidth = 0, m_minimumHeight = 0;
  int m_normalWidth = 0, m_normalHeight = 0;
  int m_frameWidth = 240, m_frameHeight = 510;
  controls::WindowState m_windowState = controls::WindowState::kNormal;
  controls::MousePointer m_mousePointer = controls::MousePointer::kDefault;
  TaskProgress m_taskProgress;
  bool m_open = true;
  bool m_hasBeenShown = false;
  bool m_unloading = false;
};

}  // namespace kxrestore::controls
