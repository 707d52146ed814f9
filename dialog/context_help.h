// The help label: explains whatever the pointer is over. The label's Tag holds the key of what is shown.
#pragma once

#include <string_view>

#include "dialog/form_context.h"

namespace kxrestore::dialog {

class ContextHelp {
 public:
  // Listens to the pointer over the form, the lists and the buttons.
  explicit ContextHelp(FormContext& context);

  // Shows the text of the key in the label's Tag; an unknown key changes nothing.
  void ShowContextHelp();

 private:
  void Explain(controls::Control& source, std::string_view key);

  FormContext& m_context;
};

}  // namespace kxrestore::dialog
