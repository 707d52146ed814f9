// The one form of the process, and who may touch it when.
//
// The form belongs to no thread. Between dialogs it is plain state that every apartment may set, one at a
// time. While a dialog is running it belongs to the thread that shows it: settings made on that thread (in
// the event, say) apply at once, settings from other apartments wait without blocking until the dialog is
// over, and a second dialog, from whichever thread, is refused.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "component/restore_dlg.h"

namespace kxrestore::component::com {

class SharedForm final : public FormProvider {
 public:
  // `make` is called when the form is first needed.
  explicit SharedForm(std::function<std::unique_ptr<FormProvider>()> make) : m_make(std::move(make)) {}

  dialog::frmRestore& Form() override;

  // Carries out a change, now or after the running dialog. It must not run a dialog.
  void ApplySetting(std::function<void()> change) override;

  // Runs a dialog and returns its result; 0 at once when one is running.
  [[nodiscard]] std::int16_t Run(const std::function<std::int16_t()>& dialog);

 private:
  void Finish() noexcept;

  std::function<std::unique_ptr<FormProvider>()> m_make;
  std::mutex m_mutex;
  bool m_running = false;
  std::thread::id m_owner;  // while a dialog is running
  std::vector<std::function<void()>> m_waiting;
  std::unique_ptr<FormProvider> m_form;
};

}  // namespace kxrestore::component::com
