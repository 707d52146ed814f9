#include "component/com/shared_form.h"

namespace kxrestore::component::com {

dialog::frmRestore& SharedForm::Form() {
  if (!m_form) m_form = m_make();
  return m_form->Form();
}

void SharedForm::ApplySetting(const std::function<void()>& change) {
  const std::lock_guard lock(m_mutex);
  if (m_running && m_owner != std::this_thread::get_id()) {
    m_waiting.push_back(change);
  } else {
    change();
  }
}

std::int16_t SharedForm::Run(const std::function<std::int16_t()>& dialog) {
  {
    const std::lock_guard lock(m_mutex);
    if (m_running) return 0;
    m_running = true;
    m_owner = std::this_thread::get_id();
  }
  struct Ending {
    SharedForm& form;
    ~Ending() { form.Finish(); }
  } ending{*this};
  return dialog();
}

void SharedForm::Finish() noexcept {
  std::vector<std::function<void()>> waiting;
  {
    const std::lock_guard lock(m_mutex);
    waiting.swap(m_waiting);
    for (const auto& change : waiting) {
      try {
        change();
      } catch (...) {  // skipped, as every failing step of the component's interface
      }
    }
    m_running = false;
  }
}

}  // namespace kxrestore::component::com
