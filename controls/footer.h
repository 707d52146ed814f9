// The text of the line below a list or tree. The front end asks for it before drawing, so it costs nothing
// while entries are added.
#pragma once

#include <string>

namespace kxrestore::controls {

struct FooterText {
  std::string pending;   // ticks not yet applied; drawn in bold
  std::string sums;      // totals of the visible entries
  std::string selected;  // totals of the selected rows
};

}  // namespace kxrestore::controls
