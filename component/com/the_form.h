// The process's shared form, on real windows.
#pragma once

#include "component/com/shared_form.h"

namespace kxrestore::component::com {

// Made when first asked for, the form itself when first needed. It stays until the DLL is unloaded; when the
// process ends it is left to the system, because threads may have been stopped in the middle of using it.
SharedForm& TheForm();

// For the unloading of the DLL: nobody uses the form any more.
void DropTheForm();

// A form on the desktop, the registry, the regional settings and the drives of this machine.
std::unique_ptr<FormProvider> MakeWindowsForm();

}  // namespace kxrestore::component::com
