#include "controls/form.h"

#include <algorithm>

namespace kxrestore::controls {

Form::Form(std::string name) : Container(Kind::kForm, std::move(name), nullptr) {}

void Form::SetCaption(std::string caption) {
  if (m_caption == caption) return;
  m_caption = std::move(caption);
  Notify(Property::kCaption);
}

int Form::ScaleWidth() const {
  return std::max(0, Width() - m_frameWidth);
}
int Form::ScaleHeight() const {
  return std::max(0, Height() - m_frameHeight);
}

void Form::SetFrame(int width, int height) {
  if (m_frameWidth == width && m_frameHeight == height) return;
  m_frameWidth = width;
  m_frameHeight = height;
  SizeChanged();
}

void Form::SetWindowState(controls::WindowState state) {
  if (m_windowState == state) return;
  KeepNormalSize();
  m_windowState = state;
  Notify(Property::kWindowState);
  SizeChanged();
}

void Form::KeepNormalSize() {
  if (m_windowState != controls::WindowState::kNormal) return;
  m_normalWidth = Width();
  m_normalHeight = Height();
}

void Form::SetMousePointer(controls::MousePointer pointer) {
  if (m_mousePointer == pointer) return;
  m_mousePointer = pointer;
  Notify(Property::kAppearance);
}

void Form::SetTaskProgress(const TaskProgress& progress) {
  if (m_taskProgress == progress) return;
  m_taskProgress = progress;
  Notify(Property::kTaskProgress);
}

void Form::SetIconPath(std::string path) {
  if (m_iconPath == path) return;
  m_iconPath = std::move(path);
  Notify(Property::kAppearance);
}

void Form::Unload() {
  if (!m_open || m_unloading) return;
  struct Guard {
    bool& flag;
    ~Guard() { flag = false; }
  } guard{m_unloading};
  m_unloading = true;
  bool cancel = false;
  if (OnUnload) OnUnload(cancel);
  if (cancel) return;
  m_open = false;
  Notify(Property::kVisible);
}

void Form::UserKey(Key key) {
  if (m_open && KeyPress && AcceptsUser()) KeyPress(key);
}

void Form::UserClose() {
  if (!m_open || !AcceptsUser()) return;
  if (CloseRequest) {
    CloseRequest();
  } else {
    Unload();
  }
}

void Form::UserShown() {
  m_hasBeenShown = true;
  if (m_open && Shown && AcceptsUser()) Shown();
}

void Form::UserResize(int width, int height, controls::WindowState state) {
  const bool stateChanged = state != m_windowState;
  KeepNormalSize();
  m_windowState = state;
  const bool sizeChanged = state != controls::WindowState::kMinimized && AdoptSize(width, height);
  if (stateChanged || sizeChanged) SizeChanged();
}

}  // namespace kxrestore::controls
