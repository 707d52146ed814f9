// The footers of the lists and of the detail tree: ticks not yet applied, and totals of files and sizes. Also
// the total of bytes beside the restore list.
#pragma once

#include <string>

#include "base/phrases.h"
#include "dialog/form_context.h"

namespace kxrestore::dialog {

class Footers {
 public:
  explicit Footers(FormContext& context);

  // Updates the "Bytes: " label from the restore list.
  void ShowBytes();
  // Whether any tick has not been applied yet.
  bool AnythingPending() const;

 private:
  controls::FooterText OfFiles(const controls::AutoSelect& list) const;
  controls::FooterText OfTypes(const controls::AutoSelect& list) const;
  controls::FooterText OfTree() const;
  std::string Pending(const controls::AutoSelect& list, Phrase phrase) const;
  std::string Files(const controls::AutoSelect::Sum& sum) const;

  FormContext& m_context;
};

}  // namespace kxrestore::dialog
