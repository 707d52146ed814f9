// The shared form of the process, with windows.
#pragma once

#include "component/com/shared_form.h"

namespace kxrestore::component::com {

// Created at the first call; the form itself when it is first needed. Kept until the DLL is unloaded. At the
// end of the process it is left to the system, because threads may have been stopped while using it.
SharedForm& TheForm();

// Destroys the form when the DLL is unloaded.
void DropTheForm();

// Creates a form that uses this machine's desktop, registry, regional settings and drives.
[[nodiscard]] std::unique_ptr<FormProvider> MakeWindowsForm();

}  // namespace kxrestore::component::com
