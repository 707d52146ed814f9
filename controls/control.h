// A control: a plain object with properties and events. A front end displays it through a peer
// (controls/peer.h). It works the same without one, in tests and in hosts without a desktop.
//
// Positions and sizes are twips, relative to the container. A size that would be negative is refused (error
// 380), like any other invalid property value; the old size stays.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "controls/menu.h"
#include "controls/peer.h"

namespace kxrestore::controls {

enum class Kind {
  kForm,
  kPictureBox,
  kFrame,
  kLabel,
  kCommandButton,
  kCheckBox,
  kOptionButton,
  kComboBox,
  kTextBox,
  kTabStrip,
  kTreeView,
  kAutoSelect,
  kDriveListBox,
  kProgressBar,
  kSplitBar,
};

class Container;

class Control {
 public:
  // `name` is the control's name, with its index for a member of an array: "cmdAction(0)". A control is shown
  // inside `container`, which must outlive it; the order of creation is the tab order.
  Control(Kind kind, std::string name, Container* container);
  virtual ~Control();
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  Kind GetKind() const { return m_kind; }
  const std::string& Name() const { return m_name; }
  Container* GetContainer() const { return m_container; }

  int Left() const { return m_left; }
  int Top() const { return m_top; }
  int Width() const { return m_width; }
  int Height() const { return m_height; }
  void SetLeft(int left) { Move(left, m_top, m_width, m_height); }
  void SetTop(int top) { Move(m_left, top, m_width, m_height); }
  void SetWidth(int width) { Move(m_left, m_top, width, m_height); }
  void SetHeight(int height) { Move(m_left, m_top, m_width, height); }
  void Move(int left, int top, int width, int height);

  bool Visible() const { return m_visible; }  // its own wish; it is seen when its containers are visible too
  void SetVisible(bool visible);
  bool IsShown() const;  // visible with all its containers
  bool Enabled() const { return m_enabled; }
  void SetEnabled(bool enabled);
  const std::string& Tag() const { return m_tag; }
  void SetTag(std::string tag) { m_tag = std::move(tag); }
  const std::string& ToolTipText() const { return m_toolTipText; }
  void SetToolTipText(std::string text);
  // The name for screen readers when the control has no caption.
  const std::string& AccessibleName() const { return m_accessibleName; }
  void SetAccessibleName(std::string name) { m_accessibleName = std::move(name); }

  // The text shown in an empty list or tree.
  const std::string& EmptyText() const { return m_emptyText; }
  void SetEmptyText(std::string text);

  void BringToFront();
  void SetFocus();
  void Refresh();

  // The pointer moved over the control. A front end calls the members that begin with User for user input.
  // They do nothing while the control or one of its containers is disabled or hidden.
  std::function<void()> MouseMove;
  void UserMouseMove();

  // The control got the keyboard focus.
  std::function<void()> KeyboardEnter;
  void UserKeyboardEnter();

  // Fills the menu of the control, or of the menu's subject. The front end shows it, unless it stays empty,
  // and calls Menu::UserChoose.
  std::function<void(Menu&)> FillMenu;
  void UserMenu(Menu& menu);

  // For the front end. The control owns its peer until it is replaced, or removed with nullptr.
  void AttachPeer(std::unique_ptr<Peer> peer);
  Peer* GetPeer() const { return m_peer.get(); }

 protected:
  void Notify(Property property) const {
    if (m_peer) m_peer->Changed(property);
  }
  virtual void SizeChanged() {}
  bool AcceptsUser() const;
  // Adopts a size that the front end already shows.
  bool AdoptSize(int width, int height);

 private:
  friend class RedrawFreeze;
  void Freeze(bool frozen);

  Kind m_kind;
  std::string m_name;
  Container* m_container;
  int m_left = 0, m_top = 0, m_width = 0, m_height = 0;
  bool m_visible = true;
  bool m_enabled = true;
  std::string m_tag;
  std::string m_toolTipText;
  std::string m_accessibleName;
  std::string m_emptyText;
  int m_freezes = 0;
  std::unique_ptr<Peer> m_peer;
};

// Freezes the painting of a control and its children during its own lifetime.
class RedrawFreeze {
 public:
  explicit RedrawFreeze(Control& control);
  ~RedrawFreeze();
  RedrawFreeze(const RedrawFreeze&) = delete;
  RedrawFreeze& operator=(const RedrawFreeze&) = delete;

 private:
  Control& m_control;
};

// A control that holds others. Children are listed back to front: BringToFront moves a child to the end of
// `ZOrder()`; `Children()` keeps the order of creation.
class Container : public Control {
 public:
  using Control::Control;
  std::function<void()> Resize;  // the size changed
  const std::vector<Control*>& Children() const { return m_children; }
  const std::vector<Control*>& ZOrder() const { return m_zOrder; }

 protected:
  void SizeChanged() override {
    if (Resize) Resize();
  }

 private:
  friend class Control;
  std::vector<Control*> m_children;
  std::vector<Control*> m_zOrder;
};

}  // namespace kxrestore::controls
