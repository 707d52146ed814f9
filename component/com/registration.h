// Self-registration: the class, its ProgID, the type library and the two interfaces, per machine or per user.
#pragma once

#include <windows.h>

namespace kxrestore::component::com {

enum class Scope { kMachine, kUser };

// Writes every entry or, on failure, removes those already written.
HRESULT Register(Scope scope);

// Removes every entry. Missing entries are not an error.
HRESULT Unregister(Scope scope);

// The scope that `regsvr32 /i:user` names; an empty or missing command line means the machine.
HRESULT Install(bool install, const wchar_t* commandLine);

}  // namespace kxrestore::component::com
