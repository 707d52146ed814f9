// The commands that write marks. Each returns an ExitCode and raises the engine's errors.
#pragma once

#include "host/command_line/session.h"

namespace kxrestore::cli {

// mark and unmark
int Mark(Session& session, const Options& options);
int Clear(Session& session, const Options& options);

}  // namespace kxrestore::cli
