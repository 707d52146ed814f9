// The back end for files of the desktop engine where that engine is not installed: it reads the files itself
// and changes one thing only, the marks of rows that are there.
#pragma once

#include <chrono>
#include <memory>

#include "engine/database.h"

namespace kxrestore::engine::jet_file {

// `patience`: how long another program that is writing is waited for before that is an error.
std::unique_ptr<Backend> MakeJetFileBackend(std::chrono::milliseconds patience = std::chrono::seconds(3));

}  // namespace kxrestore::engine::jet_file
