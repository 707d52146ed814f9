#include "component/com/shared_form.h"

#include <utility>

namespace kxrestore::component::com {

dialog::frmRestore& SharedForm::Form() {
  if (!m_form) m_form = m_make();
  return m_form->Form();
}

void SharedForm::Apply(std::function<void()> setting) {
  const std::lock_guard lock(m_mutex);
  if (m_running && m_owner != std::this_thread::get_id()) {
    m_waiting.push_back(std::move(setting));
  } else {
    setting();
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
    for (const auto& setting : waiting) {
      try {
        setting();
      } catch (...) {  // a setting that fails is skipped, like everywhere on this surface
      }
    }
    m_running = false;
  }
}

}  // namespace kxrestore::component::com
