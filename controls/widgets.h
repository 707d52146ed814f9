// The simple controls: containers, labels, buttons, boxes, tab strip, progress bar.
//
// A front end calls the members that begin with User for user input. They do nothing on a control that is
// disabled or not shown.
#pragma once

#include <cstdint>
#include <string_view>

#include "controls/control.h"

namespace kxrestore::controls {

class PictureBox : public Container {
 public:
  PictureBox(std::string name, Container* container)
      : Container(Kind::kPictureBox, std::move(name), container) {}
};

// A control with a caption. "&" marks the accelerator as usual.
class Captioned : public Control {
 public:
  Captioned(Kind kind, std::string name, Container* container, std::string caption)
      : Control(kind, std::move(name), container), m_caption(std::move(caption)) {}
  const std::string& Caption() const { return m_caption; }
  void SetCaption(std::string_view caption);

 private:
  std::string m_caption;
};

class Frame : public Container {
 public:
  Frame(std::string name, Container* container, std::string caption)
      : Container(Kind::kFrame, std::move(name), container), m_caption(std::move(caption)) {}
  const std::string& Caption() const { return m_caption; }
  void SetCaption(std::string_view caption);

 private:
  std::string m_caption;
};

class Label : public Captioned {
 public:
  Label(std::string name, Container* container, std::string caption)
      : Captioned(Kind::kLabel, std::move(name), container, std::move(caption)) {}
  const std::string& FontName() const { return m_fontName; }  // empty: the form's font
  void SetFontName(std::string name);
  bool Bold() const { return m_bold; }
  void SetBold(bool bold);
  bool RightAligned() const { return m_rightAligned; }
  void SetRightAligned(bool rightAligned);
  // Whether "&" marks the accelerator; off for labels that show names and paths.
  bool UseMnemonic() const { return m_useMnemonic; }
  void SetUseMnemonic(bool useMnemonic);

 private:
  std::string m_fontName;
  bool m_bold = false;
  bool m_rightAligned = false;
  bool m_useMnemonic = true;
};

class CommandButton : public Captioned {
 public:
  CommandButton(std::string name, Container* container, std::string caption)
      : Captioned(Kind::kCommandButton, std::move(name), container, std::move(caption)) {}
  std::function<void()> Click;
  void UserClick();
};

class CheckBox : public Captioned {
 public:
  CheckBox(std::string name, Container* container, std::string caption)
      : Captioned(Kind::kCheckBox, std::move(name), container, std::move(caption)) {}
  int Value() const { return m_value; }  // 0 clear, 1 ticked
  void SetValue(int value);              // raises Click when it changes
  std::function<void()> Click;
  void UserClick();

 private:
  int m_value = 0;
};

// Option buttons of one container exclude each other.
class OptionButton : public Captioned {
 public:
  OptionButton(std::string name, Container* container, std::string caption)
      : Captioned(Kind::kOptionButton, std::move(name), container, std::move(caption)) {}
  bool Value() const { return m_value; }
  void SetValue(bool value);  // raises Click when it becomes true
  std::function<void()> Click;
  void UserClick();

 private:
  bool m_value = false;
};

class TextBox : public Control {
 public:
  TextBox(std::string name, Container* container) : Control(Kind::kTextBox, std::move(name), container) {}
  const std::string& Text() const { return m_text; }
  void SetText(std::string text);
  bool Locked() const { return m_locked; }  // shown, not typed into
  void SetLocked(bool locked) { m_locked = locked; }
  void UserType(std::string text);

 private:
  std::string m_text;
  bool m_locked = false;
};

// A box to type into with a list to pick from.
class ComboBox : public Control {
 public:
  ComboBox(std::string name, Container* container) : Control(Kind::kComboBox, std::move(name), container) {}
  const std::string& Text() const { return m_text; }
  void SetText(std::string text);
  const std::vector<std::string>& Items() const { return m_items; }
  void AddItem(std::string item);
  void UserType(std::string text);
  // Keys in the closed box: Enter, and Down. Down returns whether form code handled it; otherwise it moves in
  // the box's list.
  std::function<void()> Enter;
  std::function<bool()> Down;
  void UserEnter();
  bool UserDown();

 private:
  std::string m_text;
  std::vector<std::string> m_items;
};

class TabStrip : public Control {
 public:
  struct Tab {
    std::string caption;
    std::string key;
  };
  TabStrip(std::string name, Container* container, std::vector<Tab> tabs)
      : Control(Kind::kTabStrip, std::move(name), container), m_tabs(std::move(tabs)) {}
  const std::vector<Tab>& Tabs() const { return m_tabs; }
  int SelectedIndex() const { return m_selected; }  // from 1
  void SetSelectedIndex(int index);                 // raises Click when it changes; error 35600 outside
  std::function<void()> Click;
  // The user opened the tab to work there, rather than passing it with the arrow keys.
  std::function<void()> GoIn;
  void UserSelect(int index, bool goIn = true);

 private:
  std::vector<Tab> m_tabs;
  int m_selected = 1;
};

// Lists drives by their root letter, "d:".
class DriveListBox : public Control {
 public:
  DriveListBox(std::string name, Container* container)
      : Control(Kind::kDriveListBox, std::move(name), container) {}
  const std::vector<std::string>& Drives() const { return m_drives; }
  void SetDrives(std::vector<std::string> drives);
  const std::string& Drive() const { return m_drive; }
  void SetDrive(std::string drive);  // raises Change
  std::function<void()> Change;
  void UserSelect(std::string drive);

 private:
  std::vector<std::string> m_drives;
  std::string m_drive;
};

class ProgressBar : public Control {
 public:
  ProgressBar(std::string name, Container* container)
      : Control(Kind::kProgressBar, std::move(name), container) {}
  double Max() const { return m_max; }  // the least is 0
  void SetMax(double max);
  double Value() const { return m_value; }
  void SetValue(double value);  // error 380 outside 0..Max
  // Whether it shows activity without a share.
  bool Indeterminate() const { return m_indeterminate; }
  void SetIndeterminate(bool indeterminate);

 private:
  bool m_indeterminate = false;
  double m_max = 100;
  double m_value = 0;
};

// Images named by key; the order of the keys gives the image index, from 1. The front end supplies the
// pictures.
class ImageList {
 public:
  explicit ImageList(std::vector<std::string> keys) : m_keys(std::move(keys)) {}
  const std::vector<std::string>& Keys() const { return m_keys; }
  int Index(std::string_view key) const;  // error 35601 when there is none

 private:
  std::vector<std::string> m_keys;
};

}  // namespace kxrestore::controls
