// Setting and clearing restore marks. The catalog's Restore column is the only record of what the user wants
// restored; every way of choosing files ends here.
//
// Each operation opens the catalog, does its work and closes the catalog. Any error abandons the operation,
// is passed to the report under the operation's tag, and makes the result kFailed. Marks written before the
// error stay. Nothing is thrown but what the report throws.
#pragma once

#include <concepts>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "base/error.h"
#include "catalog/connection.h"
#include "engine/database.h"

namespace kxrestore::catalog {

// The set and extension that a mark applies to when it names none.
struct CurrentRun {
  std::int32_t setId = 0;
  std::string extension;
};

enum class [[nodiscard]] MarkResult{
    kDone,
    kNoRow,   // no row matched and nothing was changed; not an error
    kFailed,  // reported
};

class RestoreMarks {
 public:
  // Receives an error and the tag of the operation that it ended.
  using Report = std::function<void(const Error& error, const std::string& routine)>;

  // Reads settings and current run at each operation; both must outlive this object.
  RestoreMarks(engine::Workspace& workspace, const ConnectionSettings& settings, const CurrentRun& current,
               Report report);

  // Marks one version.
  MarkResult UpdateByID(std::int32_t id);

  // Marks or unmarks every version of a file: all rows of the set and extension whose File is exactly
  // `fileName`. Reads every row of that set and extension.
  MarkResult UpdateSelectionByFile(std::string_view fileName, bool restoreValue, std::int32_t setNameId,
                                   std::string_view extension);

  // Marks or unmarks the first row of the set and extension whose Filename is `fileName`, and no other.
  //
  // Set 0 means the current set, an empty extension the current one. The extension is inserted into the
  // statement verbatim: an apostrophe in it makes the statement fail.
  MarkResult UpdateSelectionByFileName(std::string_view fileName, bool restoreValue, std::int32_t setNameId,
                                       std::string_view extension);

  // Both clear every mark of every set, and commit that.
  MarkResult CancelAll();
  MarkResult ClearSelections();

 private:
  template <std::predicate Operation, std::invocable Tag>
  MarkResult Run(Operation operation, Tag tag);
  MarkResult ClearAll(const char* tag);
  void BeginSelect(std::string_view columns, std::int32_t setNameId, std::string_view extension);

  engine::Workspace& m_workspace;
  const ConnectionSettings& m_settings;
  const CurrentRun& m_current;
  Report m_report;
  engine::Sql m_sql;  // kept, so that marking 100,000 files does not allocate 100,000 statements
};

}  // namespace kxrestore::catalog
