// Marks rows as the dialog does: each one found in the catalog and written, all within one user action.
#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "base/error.h"
#include "bench/bare_sqlite.h"
#include "catalog/connection.h"
#include "catalog/restore_marks.h"
#include "engine/database.h"

namespace kxrestore::bench {

class Marker {
 public:
  explicit Marker(catalog::ConnectionSettings settings) : m_settings(std::move(settings)) {}

  void ByName(const std::vector<std::string>& names) {
    m_workspace->BeginAction();
    for (const std::string& name : names) Check(m_marks.UpdateSelectionByFileName(name, true, 0, ""));
    m_workspace->EndAction();
  }

  void ById(const std::vector<std::int32_t>& ids) {
    m_workspace->BeginAction();
    for (const std::int32_t id : ids) Check(m_marks.UpdateByID(id));
    m_workspace->EndAction();
  }

 private:
  // The report throws errors.
  static void Check(catalog::MarkResult result) {
    if (result != catalog::MarkResult::kDone) throw std::runtime_error("a row to mark is not there");
  }

  catalog::ConnectionSettings m_settings;
  catalog::CurrentRun m_current{kBenchSet, kBenchExtension};
  std::unique_ptr<engine::Workspace> m_workspace = engine::MakeDefaultWorkspace();
  catalog::RestoreMarks m_marks{*m_workspace, m_settings, m_current,
                                [](const Error& error, const std::string&) { throw error; }};
};

}  // namespace kxrestore::bench
