// A dialog without windows, as operated by the benchmarks.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "base/error.h"
#include "bench/bare_sqlite.h"
#include "bench/harness.h"
#include "dialog/frm_restore.h"
#include "engine/database.h"
#include "platform/headless/headless_platform.h"

namespace kxrestore::bench {

// A loaded dialog on a catalog, and the steps of its user.
class Dialog {
 public:
  explicit Dialog(const std::string& catalog) {
    m_form.parameters.DBName = catalog;
    m_form.Load();
  }
  // On a server.
  Dialog(const std::string& server, const std::string& database, const std::string& user,
         const std::string& password) {
    m_form.parameters.DBType = 1;
    m_form.parameters.DBServer = server;
    m_form.parameters.DBDatabase = database;
    m_form.parameters.DBUser = user;
    m_form.parameters.DBPass = password;
    m_form.Load();
  }
  ~Dialog() { m_form.Controls().form.Unload(); }

  dialog::FormControls& Ui() { return m_form.Controls(); }

  void ChooseRun() {
    const controls::Node set = Ui().tvwSets.FirstRoot().Child();
    Ui().tvwSets.UserClickNode(set.Child());
    Check();
  }

  void TickEverything() {
    for (controls::Node root = Ui().tvwDetails.FirstRoot(); root; root = root.Next()) {
      Ui().tvwDetails.UserCheck(root, true);
    }
  }

  // Shows the file type panel, which fills the chooser the first time.
  void ShowTypes() {
    Ui().tbsOptions.UserSelect(3);
    Check();
  }

  void Press(controls::CommandButton& button) {
    button.UserClick();
    Check();
  }

 private:
  // A message to the user means that the run was not valid.
  void Check() {
    if (!m_platform.desktop.messages.empty()) throw Error(1, m_platform.desktop.messages.front().text);
  }

  platform::HeadlessPlatform m_platform;
  std::unique_ptr<engine::Workspace> m_workspace = engine::MakeDefaultWorkspace();
  dialog::frmRestore m_form{m_platform.Get(), *m_workspace};
};

inline void Expect(bool holds, const std::string& what) {
  if (!holds) throw Error(1, what);
}

// Reads the texts of a query's first columns and counts the rows.
inline std::int64_t ReadAll(BareStatement& rows, int columns) {
  std::uint64_t bytes = 0;
  std::int64_t count = 0;
  for (; rows.Step(); ++count) {
    for (int column = 0; column < columns; ++column) bytes += rows.Text(column).size();
  }
  Use(bytes);
  return count;
}

}  // namespace kxrestore::bench
