#include "component/restore_dlg.h"

#include "dialog/frm_restore.h"

namespace kxrestore::component {

namespace {

// A failing step is skipped: the next one runs, and no error reaches the host.
template <class Step>
void Skipping(Step&& step) noexcept {
  try {
    step();
  } catch (...) {
  }
}

}  // namespace

RestoreDlg::RestoreDlg(FormProvider& forms) : m_forms(forms) {}

RestoreDlg::~RestoreDlg() = default;

std::int16_t RestoreDlg::DefineRestoreSet() {
  dialog::frmRestore* form = nullptr;
  Skipping([&] { form = &m_forms.Form(); });
  if (form == nullptr) return 0;
  // The form is the same for every object of the process; while it runs a dialog there is no room for
  // another.
  const dialog::frmRestore::Run run(*form);
  if (!run) return 0;

  m_result = 0;
  Skipping([&] {
    form->CommenceRestore = [this] { frm_CommenceRestore(); };
    form->CancelRestore = [this] { frm_CancelRestore(); };
  });
  if (!m_frmCaption.empty()) Skipping([&] { form->setWindowCaption(m_frmCaption); });
  if (!m_btnCaption.empty()) Skipping([&] { form->setButtonCaption(m_btnCaption); });
  if (!m_lblCaption.empty()) Skipping([&] { form->setLabelCaption(m_lblCaption); });
  Skipping([&] { form->setLabelInVisible(m_lblInVisible); });
  form->StopRequested = false;
  Skipping([&] { form->ShowModal(); });
  form->CommenceRestore = nullptr;
  form->CancelRestore = nullptr;
  return m_result;
}

void RestoreDlg::frm_CommenceRestore() {
  m_result = 1;
  if (CommenceRestore) Skipping([&] { CommenceRestore(); });
}

void RestoreDlg::frm_CancelRestore() {
  m_result = 0;
}

void RestoreDlg::DB(const std::string& name) {
  Skipping([&] { m_forms.Form().DBName(name); });
}
void RestoreDlg::RestorePath(const std::string& path) {
  Skipping([&] { m_forms.Form().RestorePath(path); });
}
void RestoreDlg::SessionLogName(const std::string& filename) {
  Skipping([&] { m_forms.Form().LogFilename(filename); });
}
void RestoreDlg::DebugFlag(bool flag) {
  Skipping([&] { m_forms.Form().DebugFlag(flag); });
}
void RestoreDlg::setAction(const std::string& action) {
  Skipping([&] { m_forms.Form().curAction(action); });
}
void RestoreDlg::DBType(std::int16_t type) {
  Skipping([&] { m_forms.Form().DBType(type); });
}
void RestoreDlg::DBDatabase(const std::string& database) {
  Skipping([&] { m_forms.Form().DBDatabase(database); });
}
void RestoreDlg::DBServer(const std::string& server) {
  Skipping([&] { m_forms.Form().DBServer(server); });
}
void RestoreDlg::DBUser(const std::string& user) {
  Skipping([&] { m_forms.Form().DBUser(user); });
}
void RestoreDlg::DBPass(const std::string& password) {
  Skipping([&] { m_forms.Form().DBPass(password); });
}

}  // namespace kxrestore::component
