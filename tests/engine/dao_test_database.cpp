#include "tests/engine/dao_test_database.h"

#include <fstream>

namespace kxrestore::engine::testing {
DaoTestDatabase::DaoTestDatabase(const std::vector<dao_server::Installation>& installations)
    : m_sqlite(MakeSqliteFile()), m_server(MakeImpatientWorkspace(), installations) {
  const std::string name = Request().name;
  std::ofstream(std::filesystem::path(std::u8string(name.begin(), name.end())), std::ios::binary)
      << std::string_view("\0\1\0\0Standard Jet DB\0", 20) << "and more";
}

OpenRequest DaoTestDatabase::Request() const {
  OpenRequest request = m_sqlite->Request();
  request.name.replace(request.name.rfind('.'), std::string::npos, ".mdb");
  return request;
}

}  // namespace kxrestore::engine::testing
