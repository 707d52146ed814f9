// Setting and clearing restore marks. What the user wants restored is kept nowhere but in the catalog's
// Restore column; every way of choosing files ends here.
//
// Each operation opens the catalog, does its work and lets the catalog go. It has a trap of its own: an error
// of any kind abandons the operation, is handed to the report under the operation's tag, and is answered by
// kFailed. Marks written before the error stay. Nothing is thrown but what the report throws.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "base/error.h"
#include "catalog/connection.h"
#include "engine/database.h"

namespace kxrestore::catalog {

// The set and the extension that marks without any of their own refer to.
struct CurrentRun {
  std::int32_t setId = 0;
  std::string extension;
};

enum class MarkResult {
  kDone,
  kNoRow,   // no row matched: nothing was changed, and that is no error
  kFailed,  // reported
};

class RestoreMarks {
 public:
  // Takes an error and the tag of the operation that it ended.
  using Report = std::function<void(const Error& error, const std::string& routine)>;

  // Settings and current run are looked at when an operation runs, and must outlive this object.
  RestoreMarks(engine::Workspace& workspace, const ConnectionSettings& settings, const CurrentRun& current,
               Report report);

  // Marks one version.
  [[nodiscard]] MarkResult UpdateByID(std::int32_t id);

  // Marks or unmarks every version of a file: all rows of the set and extension whose File is exactly
  // `fileName`. Reads every row of that set and extension.
  [[nodiscard]] MarkResult UpdateSelectionByFile(std::string_view fileName, bool restoreValue,
                                                 std::int32_t setNameId, std::string_view extension);

  // Marks or unmarks the first row of the set and extension whose Filename is `fileName`, and no other.
  //
  // Set 0 stands for the current set, an empty extension for the current one. An extension is put into the
  // statement as it stands; with an apostrophe in it the statement fails.
  [[nodiscard]] MarkResult UpdateSelectionByFileName(std::string_view fileName, bool restoreValue,
                                                     std::int32_t setNameId, std::string_view extension);

  // Both clear every mark of every set, and commit that.
  [[nodiscard]] MarkResult CancelAll();
  [[nodiscard]] MarkResult ClearSelections();

 private:
  template <typename Operation, typename Tag>
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
