// The help label: explains the control under the pointer. The label's Tag contains the key of the current
// text.
#pragma once

#include <string_view>

#include "dialog/form_context.h"

namespace kxrestore::dialog {

class ContextHelp {
 public:
  // Handles pointer movements over the form, the lists and the buttons.
  explicit ContextHelp(FormContext& context);

  // Shows the text for the key in the label's Tag; an unknown key changes nothing.
  void ShowContextHelp();

 private:
  void Explain(controls::Control& source, std::string_view key);

  FormContext& m_context;
};

}  // namespace kxrestore::dialog
