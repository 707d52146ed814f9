// The line below a list or tree. The front end asks for it when it is about to show it, so that it costs
// nothing while entries are added.
#pragma once

#include <string>

namespace kxrestore::controls {

struct FooterText {
  std::string pending;   // what waits to be applied; stands out
  std::string sums;      // of everything that is shown
  std::string selected;  // of the selected rows
};

}  // namespace kxrestore::controls
