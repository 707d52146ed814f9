#include "engine/dao/dao_backend.h"

namespace kxrestore::engine::dao {

std::unique_ptr<Backend> MakeDaoBackend() {
  return nullptr;
}

}  // namespace kxrestore::engine::dao
