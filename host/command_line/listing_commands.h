// The commands that read the catalog. Each returns an ExitCode and raises the engine's errors.
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

#include "host/command_line/output.h"
#include "host/command_line/selection.h"
#include "host/command_line/session.h"

namespace kxrestore::cli {

int ListSets(Session& session, const Options& options);
int ListRuns(Session& session, const Options& options);
int ListTypes(Session& session, const Options& options);
int Find(Session& session, const Options& options);
int ListVersions(Session& session, const Options& options);
int ListMarked(Session& session, const Options& options);
int Count(Session& session, const Options& options);

// Rows of files as a table or as JSON.
class FileWriter {
 public:
  FileWriter(Session& session, const Options& options);
  void Add(const Row& row);

 private:
  RowWriter m_writer;
};

// Number of files and bytes; unknown sizes count as zero.
struct Sum {
  std::int64_t files = 0, bytes = 0;

  void Add(const std::optional<std::int64_t>& size) {
    ++files;
    bytes += size.value_or(0);
  }
  Sum& operator+=(const Sum& other) {
    files += other.files;
    bytes += other.bytes;
    return *this;
  }
};

// Calls `visit` for each marked row and its size until Ctrl+C is pressed. An empty `visit` only adds them up.
Sum WalkMarked(Session& session, const std::function<void(engine::Recordset& rows)>& visit);

// The exit code of a walk: stopped; or a given name was not found, which is printed; or success.
int EndOf(Session& session, const Selection* selection, bool found);

}  // namespace kxrestore::cli
