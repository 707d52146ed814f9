// The one form of the process, shared by all threads.
//
// Between dialogs any apartment may change the form, one at a time. During a dialog only the thread that
// shows it changes the form, for example in the event. Changes from other apartments are queued until the
// dialog ends, without blocking. A second dialog is refused on every thread.
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
  void ApplySetting(const std::function<void()>& change) override;

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
