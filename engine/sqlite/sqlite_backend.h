// The embedded back end for catalog files.
#pragma once

#include <memory>

#include "engine/database.h"

namespace kxrestore::engine::sqlite {

std::unique_ptr<Backend> MakeSqliteBackend();

}  // namespace kxrestore::engine::sqlite
