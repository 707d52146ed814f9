#include "component/com/the_form.h"

#include <memory>

namespace kxrestore::component::com {
namespace {

// A member of a union is not destroyed automatically.
union Lasting {
  std::unique_ptr<SharedForm> form;
  Lasting() : form() {}
  ~Lasting() {}
};

Lasting g_lasting;
std::once_flag g_once;

}  // namespace

SharedForm& TheForm() {
  std::call_once(g_once, [] { g_lasting.form = std::make_unique<SharedForm>(MakeWindowsForm); });
  return *g_lasting.form;
}

void DropTheForm() {
  g_lasting.form.reset();
}

}  // namespace kxrestore::component::com
