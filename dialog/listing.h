// What auto-select and search share: where they look, and the listing they walk over.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "dialog/form_context.h"
#include "dialog/set_tree.h"

namespace kxrestore::dialog {

// Where to look: in one set, restricted to the runs that the chosen run covers if one is chosen, or in all
// sets.
struct LookIn {
  std::int32_t setId = 0;  // 0: all sets
  std::string runs;        // the filter on Extension, as catalog::BuildRestoreQuery takes it
  bool operator==(const LookIn&) const = default;
};
LookIn ReadLookIn(FormContext& context, SetTree& setTree, const controls::OptionButton& thisSet);

// Opens the listing, showing the wait pointer meanwhile. `read`: the columns that the caller will read.
std::unique_ptr<engine::Recordset> OpenListing(FormContext& context, engine::Database& database,
                                               const LookIn& lookIn, bool latest, std::string_view mask,
                                               const engine::ColumnNames& read);

// Converts to 32 bits; error 6 beyond that.
std::int32_t ToLong(std::int64_t number);

}  // namespace kxrestore::dialog
