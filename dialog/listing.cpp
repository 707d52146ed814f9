#include "dialog/listing.h"

#include <limits>

#include "catalog/listings.h"
#include "catalog/restore_query.h"

namespace kxrestore::dialog {

namespace {

class Hourglass {
 public:
  explicit Hourglass(controls::Form& form) : m_form(form) {
    m_form.SetMousePointer(controls::MousePointer::kHourglass);
  }
  ~Hourglass() { m_form.SetMousePointer(controls::MousePointer::kDefault); }
  Hourglass(const Hourglass&) = delete;
  Hourglass& operator=(const Hourglass&) = delete;

 private:
  controls::Form& m_form;
};

}  // namespace

LookIn ReadLookIn(FormContext& context, SetTree& setTree, const controls::OptionButton& thisSet) {
  LookIn lookIn;
  if (!thisSet.Value()) return lookIn;
  const controls::Node node = context.choice.m_nodCurrent;
  if (node) static_cast<void>(SetTree::SetOf(node));  // raises an error for a set number beyond 32 bits
  lookIn.setId = context.choice.m_lngSetID;
  if (node && !node.Tag().empty()) lookIn.runs = catalog::RunFilter(setTree.ListRunExtensions(node));
  return lookIn;
}

std::unique_ptr<engine::Recordset> OpenListing(FormContext& context, engine::Database& database,
                                               const LookIn& lookIn, bool latest, std::string_view mask,
                                               const engine::ColumnNames& read) {
  const Hourglass hourglass(context.ui.form);
  return catalog::BuildRestoreQuery(database, lookIn.setId, latest, mask, lookIn.runs, read);
}

std::int32_t ToLong(std::int64_t number) {
  if (number < std::numeric_limits<std::int32_t>::min() ||
      number > std::numeric_limits<std::int32_t>::max()) {
    throw Error(error_number::kOverflow, "Overflow", "KXRestore");
  }
  return static_cast<std::int32_t>(number);
}

}  // namespace kxrestore::dialog
