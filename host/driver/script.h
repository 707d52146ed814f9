// Scripts for the dialog driver: one command a line, "#" starts a comment. The last argument of a command is
// the rest of the line; quotes around it are removed and preserve blanks.
//
//   wait-form | wait-closed | close | dump | key ESC | tab 2 | answer YES | expect-message TEXT
//   select-run 1 | select-run TEXT | select-set NAME | select-node TEXT\TEXT
//   tick C:\Folder\File | tick-entry LIST NUMBER-OR-TEXT | select-entry LIST NUMBER-OR-TEXT
//   menu TREE-OR-LIST ITEM | filter LIST WORDS
//   click cmdAction(0) | check chk(1) | option optLookIn(1) | type cboMask TEXT
//   expect-settled CONTROL ENDING | expect-caption CONTROL TEXT | expect-enabled CONTROL YES
//   expect-visible CONTROL NO | expect-count LIST 3 | shot NAME
//
// `shot` prints "shot: NAME" and waits up to 5 seconds for NAME.png or NAME.done.
#pragma once

#include <filesystem>
#include <iosfwd>

#include "host/driver/dialog_driver.h"

namespace kxrestore::driver {

// Runs the commands of `script`. A failure raises a DriverError that names the line. `folder` is where the
// files of `shot` are expected.
void RunScript(const DialogDriver& driver, std::istream& script, std::ostream& out,
               const std::filesystem::path& folder);

}  // namespace kxrestore::driver
