// The embedded back end for catalog files.
#pragma once

#include <chrono>
#include <memory>

#include "engine/database.h"

namespace kxrestore::engine::sqlite {

// `patience`: how long to wait for a locked file before raising an error.
std::unique_ptr<Backend> MakeSqliteBackend(std::chrono::milliseconds patience = std::chrono::seconds(3));

}  // namespace kxrestore::engine::sqlite
