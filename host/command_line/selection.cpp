#include "host/command_line/selection.h"

#include <charconv>
#include <istream>
#include <limits>
#include <optional>

#include "base/text.h"
#include "catalog/entry_names.h"
#include "catalog/listings.h"
#include "catalog/restore_query.h"
#include "catalog/type_census.h"
#include "host/command_line/files.h"

namespace kxrestore::cli {

namespace {

std::int32_t Long(const engine::Field& field) {
  const std::int64_t value = field.Integer();
  if (value < std::numeric_limits<std::int32_t>::min() || value > std::numeric_limits<std::int32_t>::max())
    throw Error(error_number::kOverflow, "Overflow", "KXRestore");
  return static_cast<std::int32_t>(value);
}

std::optional<std::int32_t> NumberOf(std::string_view text) {
  std::int32_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

std::string RunKey(std::int32_t setId, std::string_view extension) {
  return std::to_string(setId).append(" ").append(extension);
}

// The mask that the auto-select panel uses for a type.
std::string TypeMask(std::string_view type) {
  if (type.starts_with('.')) type.remove_prefix(1);
  return "*" + catalog::TypePattern(FoldCase(type));
}

}  // namespace

std::vector<BackupRun> ReadRuns(Session& session) {
  std::vector<BackupRun> runs;
  const auto database = session.OpenCatalog();
  const auto rows = catalog::OpenRuns(*database);
  const engine::Field name = rows->Fields("Name"), date = rows->Fields("DateStamp"),
                      setId = rows->Fields("SetNameID"), extension = rows->Fields("Extension"),
                      permanent = rows->Fields("Permanent");
  for (; !rows->Eof(); rows->MoveNext()) {
    if (extension.Text() == catalog::kHiddenExtension) continue;
    runs.push_back(
        {name.Text(), Long(setId), extension.Text(), engine::ToDateTime(date.Value()), permanent.Boolean()});
  }
  return runs;
}

std::vector<BackupRun> RunsOfSet(const std::vector<BackupRun>& runs, const std::string& set) {
  const auto number = NumberOf(set);
  std::vector<BackupRun> found;
  for (const BackupRun& run : runs)
    if (run.setName == set) found.push_back(run);
  if (found.empty()) {
    for (const BackupRun& run : runs)
      if (number == run.setId || (!number && EqualIgnoringCase(run.setName, set))) found.push_back(run);
  }
  if (found.empty()) throw UsageError("there is no set " + set + " with a completed run");
  for (const BackupRun& run : found)
    if (run.setId != found[0].setId)
      throw UsageError("there are several sets named " + set + "; use the number");
  return found;
}

Row::Row(engine::Recordset& rows)
    : m_id(rows.Fields("ID")),
      m_setId(rows.Fields("SetNameID")),
      m_size(rows.Fields("OrigSize")),
      m_extension(rows.Fields("Extension")),
      m_setName(rows.Fields("SetName")),
      m_name(rows.Fields("OrigName")),
      m_date(rows.Fields("DateStamp")),
      m_marked(rows.Fields("Restore")),
      m_filename(rows.Fields("Filename")),
      m_file(rows.Fields("File")),
      m_plugin(rows.Fields("Plugin")) {}

engine::ColumnNames Row::Columns() {
  return {"ID",        "SetNameID", "OrigSize", "Extension", "SetName", "OrigName",
          "DateStamp", "Restore",   "Filename", "File",      "Plugin"};
}

std::int32_t Row::Id() const {
  return Long(m_id);
}

std::int32_t Row::SetId() const {
  return Long(m_setId);
}

std::optional<std::int64_t> Row::Size() const {
  if (m_size.IsNull()) return std::nullopt;
  return m_size.Integer();
}

std::string Row::ShownName() const {
  if (!m_plugin.IsNull()) {
    if (auto aggregate = catalog::AggregateName(m_plugin.Text(), m_file.Text())) return *std::move(aggregate);
  }
  std::string name = m_name.Text();
  return name.empty() ? m_filename.Text() : name;
}

std::string Row::StoredName(std::string_view shownName) const {
  return std::string(catalog::StoredName(shownName, m_file.Text(), m_filename.Text()));
}

Selection::Selection(Session& session, const Criteria& criteria) : m_session(session), m_criteria(criteria) {
  if (!criteria.set.empty() || criteria.asOf) {
    const std::vector<BackupRun> all = ReadRuns(session);
    for (const BackupRun& run : all)
      if (run.date) m_runDates.emplace(RunKey(run.setId, run.extension), *run.date);
    if (!criteria.set.empty()) {
      const std::vector<BackupRun> runs = RunsOfSet(all, criteria.set);
      m_setId = runs[0].setId;
      const std::string& wanted = criteria.run.empty() ? criteria.upTo : criteria.run;
      std::string list;
      for (const BackupRun& run : runs) {
        if (wanted.empty() || (list.empty() && run.extension != wanted)) continue;
        catalog::AppendRun(list, run.extension);
        if (!criteria.run.empty()) break;
      }
      if (!wanted.empty() && list.empty()) throw UsageError("the set has no completed run " + wanted);
      if (!list.empty()) m_runs = catalog::RunFilter(list);
    }
  }
  if (!criteria.under.empty()) {
    m_under = FoldCase(criteria.under);
    while (m_under.ends_with('\\')) m_under.pop_back();
  }
  if (!criteria.names.empty()) ReadNames(criteria.names);
}

void Selection::ReadNames(const std::string& file) {
  std::optional<std::ifstream> opened;
  if (file != "-") {
    opened.emplace(OpenFile(file));
    if (!*opened) throw UsageError("cannot read " + file);
  }
  std::istream& in = opened ? *opened : m_session.host.in;
  for (std::string line; std::getline(in, line);) {
    if (line.ends_with('\r')) line.pop_back();
    if (!line.empty() && m_wanted.emplace(FoldCase(line), false).second) m_names.push_back(line);
  }
  if (m_names.empty()) throw UsageError("no names in " + (file == "-" ? "the standard input" : file));
}

const std::string& Selection::Folded(std::string_view name) {
  m_folded.clear();
  AppendFolded(m_folded, name);
  return m_folded;
}

bool Selection::IsMeant(const Row& row) {
  if (m_criteria.asOf && !m_findingDate && m_onDate.count(row.Id()) == 0) return false;
  if (m_under.empty() && m_wanted.empty()) return true;
  const std::string_view name = Folded(row.OriginalName());
  if (!m_under.empty() &&
      !(name.starts_with(m_under) && (name.size() == m_under.size() || name[m_under.size()] == '\\')))
    return false;
  if (m_wanted.empty()) return true;
  const auto wanted = m_wanted.find(m_folded);
  if (wanted == m_wanted.end()) return false;
  wanted->second = true;
  return true;
}

// A version exists from its run on; if its run is not listed, from its own date on.
bool Selection::WasThere(const Row& row) const {
  const auto run = m_runDates.find(RunKey(row.SetId(), row.Extension()));
  if (run != m_runDates.end()) return run->second <= *m_criteria.asOf;
  const auto date = row.Date();
  return date && *date <= *m_criteria.asOf;
}

// The newest version has the highest number, as in the catalog's own queries; names that differ only in case
// are one file.
void Selection::FindStateOnDate() {
  std::unordered_map<std::string, std::int32_t> newest;
  m_findingDate = true;
  const auto take = [&](const Row& row) {
    if (!WasThere(row)) return true;
    const auto [entry, isNew] = newest.emplace(Folded(row.OriginalName()), row.Id());
    if (!isNew && entry->second < row.Id()) entry->second = row.Id();
    return true;
  };
  bool goOn = true;
  if (m_criteria.types.empty()) WalkMask(m_criteria.mask, take, goOn);
  for (const std::string& type : m_criteria.types) WalkMask(TypeMask(type), take, goOn);
  m_findingDate = false;
  for (const auto& [name, id] : newest) m_onDate.insert(id);
}

void Selection::Walk(const std::function<bool(const Row&)>& visit) {
  if (m_criteria.asOf) FindStateOnDate();
  bool goOn = true;
  if (m_criteria.types.empty()) WalkMask(m_criteria.mask, visit, goOn);
  for (const std::string& type : m_criteria.types) WalkMask(TypeMask(type), visit, goOn);
}

void Selection::WalkMask(const std::string& mask, const std::function<bool(const Row&)>& visit, bool& goOn) {
  if (!goOn || m_session.Stopped()) return;
  const auto database = m_session.OpenCatalog();
  // A listing of all sets requires a mask; this one matches every name.
  const std::string_view ofAll =
      m_setId == 0 && mask.empty() ? std::string_view("*") : std::string_view(mask);
  const bool latest = m_criteria.newest && !m_criteria.asOf;
  const auto rows = catalog::BuildRestoreQuery(*database, m_setId, latest, ofAll, m_runs, Row::Columns());
  const Row row(*rows);
  for (; !rows->Eof() && m_session.Next(); rows->MoveNext()) {
    if (!IsMeant(row)) continue;
    if (!(goOn = visit(row))) return;
  }
}

std::vector<std::string> Selection::MissingNames() const {
  std::vector<std::string> missing;
  for (const std::string& name : m_names)
    if (!m_wanted.at(FoldCase(name))) missing.push_back(name);
  return missing;
}

}  // namespace kxrestore::cli
