// Fills a catalog on a server, whose tables host/sql/ makes, over any ODBC driver. All rows come in one
// transaction.
#pragma once

#include <memory>
#include <string>

#include "host/catalog_maker/generator.h"

namespace kxrestore::sample {

class ServerWriter : public CatalogSink {
 public:
  // `connect`: a connect string, with or without "ODBC;" before it. Failures are kxrestore::Error.
  explicit ServerWriter(const std::string& connect);
  ~ServerWriter() override;

  void AddSet(const SetRow& row) override;
  void AddRun(const RunRow& row) override;
  void AddLongPath(const LongPathRow& row) override;
  void AddFile(const FileRow& row) override;

  // Commits: without it nothing has been written.
  void Finish();

 private:
  struct Connection;
  std::unique_ptr<Connection> m_connection;
};

void FillServerCatalog(const std::string& connect, const SampleOptions& options = {});

}  // namespace kxrestore::sample
