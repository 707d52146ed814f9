#include "engine/dao/dao_backend.h"

#include "engine/error_numbers.h"

namespace kxrestore::engine::dao {

void RaiseNotInstalled(const std::string& file, std::string_view reason) {
  constexpr const char* kBits = sizeof(void*) == 8 ? "64-bit" : "32-bit";
  std::string text = "ActiveX component can't create object: '" + file +
                     "' is a file of the desktop database engine, which is not installed for " + kBits +
                     " programs. Install the " + kBits +
                     " Microsoft Access Database Engine (DAO) for Windows, or use the x86 version of this "
                     "component: Windows has the older engine for x86 programs built in.";
  if (!reason.empty()) text.append(" (").append(reason).append(")");
  Raise(error_number::kCannotCreateObject, std::move(text));
}

}  // namespace kxrestore::engine::dao
