// Selects rows by criteria, with the dialog's queries: a set, a run with or without the older ones, a mask,
// each type and "newest" are one BuildRestoreQuery each, as on its search and auto-select panels. Folders,
// lists of names and the state on a date filter the rows of that query.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "host/command_line/session.h"

namespace kxrestore::cli {

// A completed run, in the order of catalog::OpenRuns.
struct BackupRun {
  std::string setName;
  std::int32_t setId = 0;
  std::string extension;
  std::optional<engine::DateTime> date;
  bool permanent = false;
};
std::vector<BackupRun> ReadRuns(Session& session);

// The runs of the set given by number or name. Raises UsageError when there is none.
std::vector<BackupRun> RunsOfSet(const std::vector<BackupRun>& runs, const std::string& set);

// One row of a listing.
class Row {
 public:
  explicit Row(engine::Recordset& rows);

  std::int32_t Id() const;
  std::int32_t SetId() const;
  std::optional<std::int64_t> Size() const;
  std::string Extension() const { return m_extension.Text(); }
  std::string SetName() const { return m_setName.Text(); }
  std::string OriginalName() const { return m_name.Text(); }
  std::optional<engine::DateTime> Date() const { return engine::ToDateTime(m_date.Value()); }
  bool Marked() const { return m_marked.Boolean(); }

  // The name that the dialog's lists show.
  std::string ShownName() const;
  std::string StoredName(std::string_view shownName) const;

  // The columns that this class reads.
  static engine::ColumnNames Columns();

 private:
  engine::Field m_id, m_setId, m_size, m_extension, m_setName, m_name, m_date, m_marked, m_filename, m_file,
      m_plugin;
};

class Selection {
 public:
  // Resolves the criteria: reads the set's runs and the list of names. Raises UsageError.
  Selection(Session& session, const Criteria& criteria);

  // Calls `visit` for each row until it returns false or Ctrl+C is pressed. Raises the engine's errors.
  void Walk(const std::function<bool(const Row&)>& visit);

  // The names of the list that no row had, in its order. Call it after Walk.
  std::vector<std::string> MissingNames() const;

 private:
  void WalkMask(const std::string& mask, const std::function<bool(const Row&)>& visit, bool& goOn);
  bool IsMeant(const Row& row);
  bool WasThere(const Row& row) const;
  void ReadNames(const std::string& file);
  void FindStateOnDate();
  const std::string& Folded(std::string_view name);

  Session& m_session;
  const Criteria m_criteria;
  std::int32_t m_setId = 0;
  std::string m_runs;  // the extension filter of the query
  std::string m_under;
  std::vector<std::string> m_names;                              // as they were given
  std::unordered_map<std::string, bool> m_wanted;                // case-folded name; whether it was found
  std::unordered_map<std::string, engine::DateTime> m_runDates;  // by "SET EXTENSION"
  std::unordered_set<std::int32_t> m_onDate;                     // the newest versions on the date
  bool m_findingDate = false;
  std::string m_folded;
};

}  // namespace kxrestore::cli
