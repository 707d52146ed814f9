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
  // All objects of the process share the form, so only one dialog can run.
  const dialog::frmRestore::Run run(*form);
  if (!run) return 0;

  std::int16_t result = 0;
  Skipping([&] {
    form->CommenceRestore = [this, &result] {
      result = 1;
      if (CommenceRestore) Skipping([this] { CommenceRestore(); });
    };
    form->CancelRestore = [&result] { result = 0; };
  });
  if (!frmCaption.empty()) Skipping([&] { form->setWindowCaption(frmCaption); });
  if (!btnCaption.empty()) Skipping([&] { form->setButtonCaption(btnCaption); });
  if (!lblCaption.empty()) Skipping([&] { form->setLabelCaption(lblCaption); });
  Skipping([&] { form->setLabelInVisible(lblInVisible); });
  form->parameters.StopRequested = false;
  Skipping([&] { form->ShowModal(); });
  form->CommenceRestore = nullptr;
  form->CancelRestore = nullptr;
  return result;
}

void RestoreDlg::Change(std::function<void(dialog::Parameters&)> change) {
  Skipping([&] {
    m_forms.ApplySetting([&forms = m_forms, change = std::move(change)] { change(forms.Form().parameters); });
  });
}

}  // namespace kxrestore::component
