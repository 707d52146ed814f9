#include "controls/control.h"

#include <algorithm>

#include "controls/errors.h"

namespace kxrestore::controls {

Control::Control(Kind kind, std::string name, Container* container)
    : m_kind(kind), m_name(std::move(name)), m_container(container) {
  if (m_container == nullptr) return;
  m_container->m_children.push_back(this);
  m_container->m_zOrder.push_back(this);
}

Control::~Control() {
  m_peer.reset();
  if (m_container == nullptr) return;
  std::erase(m_container->m_children, this);
  std::erase(m_container->m_zOrder, this);
}

void Control::Move(int left, int top, int width, int height) {
  if (width < 0 || height < 0) ThrowInvalidPropertyValue();
  const bool sizeChanged = width != m_width || height != m_height;
  if (!sizeChanged && left == m_left && top == m_top) return;
  m_left = left;
  m_top = top;
  m_width = width;
  m_height = height;
  Notify(Property::kGeometry);
  if (sizeChanged) SizeChanged();
}

bool Control::AdoptSize(int width, int height) {
  width = std::max(width, 0);
  height = std::max(height, 0);
  const bool changed = width != m_width || height != m_height;
  m_width = width;
  m_height = height;
  return changed;
}

void Control::SetVisible(bool visible) {
  if (m_visible == visible) return;
  m_visible = visible;
  Notify(Property::kVisible);
}

bool Control::IsShown() const {
  for (const Control* control = this; control != nullptr; control = control->m_container) {
    if (!control->m_visible) return false;
  }
  return true;
}

void Control::SetEnabled(bool enabled) {
  if (m_enabled == enabled) return;
  m_enabled = enabled;
  Notify(Property::kEnabled);
}

bool Control::AcceptsUser() const {
  for (const Control* control = this; control != nullptr; control = control->m_container) {
    if (!control->m_visible || !control->m_enabled) return false;
  }
  return true;
}

void Control::SetToolTipText(std::string text) {
  if (m_toolTipText == text) return;
  m_toolTipText = std::move(text);
  Notify(Property::kToolTipText);
}

void Control::BringToFront() {
  if (m_container != nullptr) {
    auto& order = m_container->m_zOrder;
    const auto place = std::find(order.begin(), order.end(), this);
    if (place != order.end()) std::rotate(place, place + 1, order.end());
  }
  if (m_peer) m_peer->BringToFront();
}

void Control::SetFocus() {
  if (m_peer && AcceptsUser()) m_peer->SetFocus();
}

void Control::Refresh() {
  if (m_peer) m_peer->Refresh();
}

void Control::UserMouseMove() {
  if (MouseMove && AcceptsUser()) MouseMove();
}

void Control::UserKeyboardEnter() {
  if (KeyboardEnter && AcceptsUser()) KeyboardEnter();
}

void Control::SetEmptyText(std::string text) {
  if (m_emptyText == text) return;
  m_emptyText = std::move(text);
  Notify(Property::kEmptyText);
}

void Control::UserMenu(Menu& menu) {
  if (FillMenu && AcceptsUser()) FillMenu(menu);
}

void Control::AttachPeer(std::unique_ptr<Peer> peer) {
  m_peer = std::move(peer);
  if (m_peer) {
    for (int freeze = 0; freeze < m_freezes; ++freeze) m_peer->FreezeRedraw(true);
  }
}

void Control::Freeze(bool frozen) {
  m_freezes += frozen ? 1 : -1;
  if (m_peer) m_peer->FreezeRedraw(frozen);
}

RedrawFreeze::RedrawFreeze(Control& control) : m_control(control) {
  m_control.Freeze(true);
}
RedrawFreeze::~RedrawFreeze() {
  m_control.Freeze(false);
}

}  // namespace kxrestore::controls
