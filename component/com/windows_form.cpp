// Must come first: it undefines the system's macros that rename members.
#include "platform/win32/win32_platform.h"

#include "component/com/module.h"
#include "component/com/the_form.h"
#include "dialog/frm_restore.h"
#include "engine/database.h"
#include "platform/win32/services/language.h"

namespace kxrestore::component::com {
namespace {

class WindowsForm final : public FormProvider {
 public:
  WindowsForm() { win32::UsePhrasesBeside(ModuleHandle()); }
  dialog::frmRestore& Form() override { return m_form; }

 private:
  win32::Win32Platform m_platform{ModuleHandle()};
  std::unique_ptr<engine::Workspace> m_workspace = engine::MakeDefaultWorkspace();
  dialog::frmRestore m_form{m_platform.Get(), *m_workspace};
};

}  // namespace

std::unique_ptr<FormProvider> MakeWindowsForm() {
  return std::make_unique<WindowsForm>();
}

}  // namespace kxrestore::component::com
