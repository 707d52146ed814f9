// What a host sets for the form of its process, and what is set for a run.
#pragma once

#include <cstdint>
#include <string>

namespace kxrestore::dialog {

// Outlives the dialogs; closing one resets nothing.
struct Parameters {
  std::string DBName;       // path of the catalog file, for DBType 0
  std::string RestorePath;  // destination, shown to the user; empty: the original path
  std::int16_t DBType = 0;  // catalog::kFileCatalog or kServerCatalog; any other opens nothing
  std::string DBDatabase;   // the server's, for DBType 1, like the following three
  std::string DBServer;
  std::string DBUser;  // empty: a trusted connection
  std::string DBPass;
  std::string curAction;    // see Action
  std::string LogFilename;  // gets a line at each load; empty: none
  bool DebugFlag = false;   // kept, has no effect

  std::string ClientPath;      // the client's folder, read from the registry at each load
  bool StopRequested = false;  // by the user, while work is going on

  // The word for what is done with the selection.
  std::string Action() const { return curAction.empty() ? "restore" : curAction; }
};

}  // namespace kxrestore::dialog
