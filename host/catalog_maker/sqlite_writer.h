// Stores a sample catalog in a catalog file of the embedded database, with its tables, its index and the
// saved query that a catalog must have.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "host/catalog_maker/model.h"

namespace kxrestore::sample {

class SqliteWriter : public CatalogSink {
 public:
  // Makes the file anew; what was there before is replaced. Failures are kxrestore::Error.
  explicit SqliteWriter(const std::string& path);
  ~SqliteWriter() override;

  void AddSet(const SetRow& row) override;
  void AddRun(const RunRow& row) override;
  void AddLongPath(const LongPathRow& row) override;
  void AddFile(const FileRow& row) override;

  // Writes what is left: without it the file is not a catalog.
  void Finish();

 private:
  struct Connection;
  std::unique_ptr<Connection> m_connection;
};

}  // namespace kxrestore::sample
