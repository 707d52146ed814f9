// The rows of a catalog as the sample generator produces them, one at a time. Texts are UTF-8, dates
// 'YYYY-MM-DD HH:MM:SS'; a missing value is a NULL.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kxrestore::sample {

struct SetRow {
  std::int64_t id = 0;
  std::string name;
};

struct RunRow {
  std::int64_t setId = 0;
  std::string dateStamp;
  std::string extension;
  std::optional<bool> permanent;
  std::optional<int> status;
};

struct LongPathRow {
  std::int64_t id = 0;
  std::optional<std::string> path;
};

struct FileRow {
  std::int64_t id = 0;
  std::optional<std::string> dateStamp;
  std::int64_t setId = 0;
  std::string extension;  // the run's, not the file's
  std::string filename;
  std::optional<std::string> file;
  std::optional<std::int64_t> longPathId;
  std::string storeName;
  int storeMethod = 0;
  std::optional<std::string> plugin;
  bool restore = false;
  std::optional<std::int64_t> origSize;
  std::optional<int> status;
  int attributes = 0;
  std::string subFolder;
  int encryptMethod = 0;
  std::string origName;
};

class CatalogSink {
 public:
  virtual ~CatalogSink() = default;
  virtual void AddSet(const SetRow& row) = 0;
  virtual void AddRun(const RunRow& row) = 0;
  virtual void AddLongPath(const LongPathRow& row) = 0;
  virtual void AddFile(const FileRow& row) = 0;
};

}  // namespace kxrestore::sample
