// The back end for files of the desktop engine without that engine: it reads the files itself and modifies
// only the marks of existing rows.
#pragma once

#include <chrono>
#include <memory>

#include "engine/database.h"

namespace kxrestore::engine::jet_file {

// `lockTimeout`: how long to wait for another program that is writing.
std::unique_ptr<Backend> MakeJetFileBackend(std::chrono::milliseconds lockTimeout = std::chrono::seconds(3));

}  // namespace kxrestore::engine::jet_file
