// Operates the restore dialog as a user does, from a thread other than the dialog's. Controls are named as in
// the form's code ("cmdAction(0)"). Every member waits until what it needs exists, is visible and enabled,
// and throws a DriverError when the time is up.
#pragma once

#include <windows.h>

#include <string>

#include "host/driver/list_driver.h"
#include "host/driver/native_windows.h"
#include "host/driver/tree_driver.h"

namespace kxrestore::driver {

class DialogDriver {
 public:
  // Trees and lists can only be operated within the same process; everything else works from outside.
  explicit DialogDriver(Timeout timeout = std::chrono::seconds(20), DWORD process = GetCurrentProcessId())
      : m_timeout(timeout), m_process(process) {}

  HWND WaitForForm() const;
  void WaitUntilClosed() const;
  HWND Control(const std::string& name) const;

  // Selects a run of the set tree by its text, or by its number from 1 across all sets. Returns when its
  // files are shown.
  void SelectRun(const std::string& which) const;
  void SelectSet(const std::string& name) const;
  void SelectNode(const std::string& path) const;  // a node of the set tree; "\" separates the levels

  // Toggles the check box of a node of the detail tree.
  void Tick(const std::string& path) const;
  bool NodeTicked(const std::string& path) const;
  // Toggles the tick box of a list entry, given by its text or its number from 1.
  void TickEntry(const std::string& list, const std::string& which) const;

  // Clicks an entry of a list, which selects it and gives the list the focus.
  void SelectEntry(const std::string& list, const std::string& which) const;
  // Opens the menu of a tree or list for its selection and chooses the item with this text.
  void ChooseFromMenu(const std::string& control, const std::string& item) const;
  // Types into the words of the filter line above a list; the line must be open.
  void Filter(const std::string& list, const std::string& words) const;

  void Click(const std::string& button) const;                         // also check boxes and option buttons
  void Tab(int number) const;                                          // from 1
  void Type(const std::string& field, const std::string& text) const;  // replaces the text
  void Choose(const std::string& box,
              const std::string& item) const;  // selects in a drop-down list, by keyboard
  void Key(const std::string& name)
      const;           // ESC, ENTER, SPACE, TAB, DELETE or F1 to F12, sent to the focused window
  void Close() const;  // with the close box

  // Presses a button of the message box: YES, NO or OK. Returns when the box is gone.
  void Answer(const std::string& button) const;
  std::string MessageTitle() const;
  std::string MessageText() const;

  std::string Text(const std::string& control) const;
  bool Enabled(const std::string& control) const;
  bool Visible(const std::string& control) const;
  ListDriver List(const std::string& name) const { return {Control(name), m_timeout}; }
  TreeDriver Tree(const std::string& name) const { return {Control(name), m_timeout}; }

  // The following wait for a state.
  void ExpectText(const std::string& control, const std::string& text) const;
  void ExpectEnabled(const std::string& control, bool enabled) const;
  // The text ends in `ending` and does not change for a while: the work that it counts is done.
  void ExpectSettled(const std::string& control, const std::string& ending) const;
  void ExpectVisible(const std::string& control, bool visible) const;
  void ExpectCount(const std::string& list, int count) const;
  void ExpectMessage(const std::string& text) const;

  // All controls, one a line: name, class, position within the form in pixels, hidden or disabled, text.
  std::string Dump() const;

 private:
  HWND Usable(const std::string& name) const;
  int Row(const ListDriver& entries, const std::string& list, const std::string& which) const;
  HWND Message() const;

  Timeout m_timeout;
  DWORD m_process;
};

}  // namespace kxrestore::driver
