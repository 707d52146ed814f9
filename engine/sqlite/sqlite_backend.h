// The embedded back end for catalog files.
#pragma once

#include <chrono>
#include <memory>

#include "engine/database.h"

namespace kxrestore::engine::sqlite {

// `lockTimeout`: how long to wait for a locked file before raising an error.
std::unique_ptr<Backend> MakeSqliteBackend(std::chrono::milliseconds lockTimeout = std::chrono::seconds(3));

}  // namespace kxrestore::engine::sqlite
