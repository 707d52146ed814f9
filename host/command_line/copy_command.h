// The command copy: a catalog file into another kind of database, see host/catalog_copier.
#pragma once

#include "host/command_line/session.h"

namespace kxrestore::cli {

// Returns an ExitCode and raises the engine's errors.
int Copy(Session& session, const Options& options);

}  // namespace kxrestore::cli
