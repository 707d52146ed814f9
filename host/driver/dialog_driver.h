// Works the restore dialog as a user does, from another thread than the one that shows it. Controls go by
// their names ("cmdAction(0)"). Every member waits, with a limit, until what it needs is there, showing and
// enabled, and throws a DriverError when that does not come about.
#pragma once

#include <windows.h>

#include <string>

#include "host/driver/list_driver.h"
#include "host/driver/native_windows.h"
#include "host/driver/tree_driver.h"

namespace kxrestore::driver {

class DialogDriver {
 public:
  // In another process the trees and lists are out of reach; everything else works.
  explicit DialogDriver(Patience patience = std::chrono::seconds(20), DWORD process = GetCurrentProcessId())
      : m_patience(patience), m_process(process) {}

  HWND WaitForForm() const;
  void WaitUntilClosed() const;
  HWND Control(const std::string& name) const;

  // A run of the set tree by its text, or by its number counted through all sets from 1. Returns when the
  // files of the run are shown.
  void SelectRun(const std::string& which) const;
  void SelectSet(const std::string& name) const;
  void SelectNode(const std::string& path) const;  // of the set tree, from its top, "\" between the texts

  // The check box of a node of the detail tree.
  void Tick(const std::string& path) const;
  bool NodeTicked(const std::string& path) const;
  // The tick box of a list entry, by its text or its number from 1.
  void TickEntry(const std::string& list, const std::string& which) const;

  void Click(const std::string& button) const;                         // also check boxes and option buttons
  void Tab(int number) const;                                          // from 1
  void Type(const std::string& field, const std::string& text) const;  // in place of what stands there
  void Choose(const std::string& box, const std::string& item) const;  // of a drop-down list, by keys
  void Key(const std::string& name)
      const;           // ESC, ENTER, SPACE, TAB, DELETE or F1 to F12, for whoever has the focus
  void Close() const;  // by the close box

  // Presses a button of the message box: YES, NO or OK. Returns when the box is gone.
  void Answer(const std::string& button) const;
  std::string MessageTitle() const;
  std::string MessageText() const;

  std::string Text(const std::string& control) const;
  bool Enabled(const std::string& control) const;
  bool Visible(const std::string& control) const;
  ListDriver List(const std::string& name) const { return {Control(name), m_patience}; }
  TreeDriver Tree(const std::string& name) const { return {Control(name), m_patience}; }

  // Wait for a state.
  void ExpectText(const std::string& control, const std::string& text) const;
  void ExpectEnabled(const std::string& control, bool enabled) const;
  // Its text ends so and does not change for a while: the work that counts there is done.
  void ExpectSettled(const std::string& control, const std::string& ending) const;
  void ExpectVisible(const std::string& control, bool visible) const;
  void ExpectCount(const std::string& list, int count) const;
  void ExpectMessage(const std::string& text) const;

  // Every control: name, class, place within the form in pixels, hidden or disabled, text. One a line.
  std::string Dump() const;

 private:
  HWND Usable(const std::string& name) const;
  HWND Message() const;

  Patience m_patience;
  DWORD m_process;
};

}  // namespace kxrestore::driver
