// Self-registration: the class, its ProgID, the type library and the two interfaces, for the whole machine or
// for the current user alone. Everything else about the registry is the host's.
#pragma once

#include <windows.h>

namespace kxrestore::component::com {

enum class Scope { kMachine, kUser };

// Writes every entry, or none: what a failure left is taken away again.
HRESULT Register(Scope scope);

// Takes every entry away. Entries that are missing are no error.
HRESULT Unregister(Scope scope);

// `regsvr32 /i:user`: the scope that the command line names; nothing or an empty one means the machine.
HRESULT Install(bool install, const wchar_t* commandLine);

}  // namespace kxrestore::component::com
