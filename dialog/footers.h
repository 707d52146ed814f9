// What the lines below the lists and the detail tree say: ticks that wait to be applied, and sums in people's
// units; and the sum of bytes beside the restore list. The lists learn the dates of their entries' runs, too.
#pragma once

#include <string>

#include "base/phrases.h"
#include "dialog/form_context.h"

namespace kxrestore::dialog {

class Footers {
 public:
  explicit Footers(FormContext& context);

  // Brings "Bytes: " in line with the restore list.
  void ShowBytes();
  // Whether any tick waits to be applied or updated.
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
