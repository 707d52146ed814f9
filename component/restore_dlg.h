// The restore dialog as a host drives it: set properties, call DefineRestoreSet, answer CommenceRestore. The
// COM class is a thin shell around this one; a C++ host on any platform can use it directly.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace kxrestore::dialog {
class frmRestore;
}

namespace kxrestore::component {

// Where the one form of the process lives. Every RestoreDlg of a process is given the same provider, so all
// of them speak to the same form and share the settings forwarded to it.
class FormProvider {
 public:
  virtual ~FormProvider() = default;
  // The form, created at the first call; creating does not load it.
  virtual dialog::frmRestore& Form() = 0;
};

// One thread. No member ever throws: a failing step is skipped and the next one runs.
class RestoreDlg {
 public:
  explicit RestoreDlg(FormProvider& forms);
  RestoreDlg(const RestoreDlg&) = delete;
  RestoreDlg& operator=(const RestoreDlg&) = delete;
  ~RestoreDlg();

  // Raised while the dialog is still showing, after the user chose to restore. The marks are in the catalog
  // by then.
  std::function<void()> CommenceRestore;

  // Runs the dialog. 1 when it ended in a commit, 0 otherwise; 0 at once while a dialog of this process is
  // running.
  std::int16_t DefineRestoreSet();

  // Forwarded to the form at once.
  void DB(const std::string& name);
  void RestorePath(const std::string& path);
  void SessionLogName(const std::string& filename);
  void DebugFlag(bool flag);
  void setAction(const std::string& action);
  void DBType(std::int16_t type);
  void DBDatabase(const std::string& database);
  void DBServer(const std::string& server);
  void DBUser(const std::string& user);
  void DBPass(const std::string& password);

  // Kept here until DefineRestoreSet; an empty caption leaves the form's own.
  void frmCaption(const std::string& caption) { m_frmCaption = caption; }
  void btnCaption(const std::string& caption) { m_btnCaption = caption; }
  void lblCaption(const std::string& caption) { m_lblCaption = caption; }
  void lblInVisible(bool inVisible) { m_lblInVisible = inVisible; }

 private:
  void frm_CommenceRestore();
  void frm_CancelRestore();

  FormProvider& m_forms;
  std::int16_t m_result = 0;
  std::string m_frmCaption;
  std::string m_btnCaption;
  std::string m_lblCaption;
  bool m_lblInVisible = false;
};

}  // namespace kxrestore::component
