// What auto-select and search share: where they look, and the listing they walk over.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "dialog/form_context.h"
#include "dialog/set_tree.h"

namespace kxrestore::dialog {

// One set, restricted to the runs that the chosen run covers when a run is chosen; or all sets, without a
// restriction.
struct LookIn {
  std::int32_t setId = 0;  // 0: all sets
  std::string runs;        // the filter on Extension, as catalog::BuildRestoreQuery takes it
  bool operator==(const LookIn&) const = default;
};
LookIn ReadLookIn(FormContext& context, SetTree& setTree, const controls::OptionButton& thisSet);

// Opens the listing, with the hourglass for a pointer until it is open. `read`: the columns that will be
// read.
std::unique_ptr<engine::Recordset> OpenListing(FormContext& context, engine::Database& database,
                                               const LookIn& lookIn, bool latest, std::string_view mask,
                                               const engine::ColumnNames& read);

// The number as a 32-bit one; error 6 where it does not fit.
std::int32_t ToLong(std::int64_t number);

}  // namespace kxrestore::dialog
