#include "host/command_line/listing_commands.h"

#include <algorithm>
#include <map>
#include <ostream>

#include "base/text.h"
#include "catalog/entry_names.h"
#include "catalog/listings.h"
#include "catalog/text_routines.h"
#include "catalog/type_census.h"

namespace kxrestore::cli {

namespace {

constexpr std::size_t kMissingShown = 20;  // names

Cell DateCell(const std::optional<engine::DateTime>& date, std::string& text) {
  if (!date) return {};
  text = engine::ToText(*date);
  return std::string_view(text);
}

Cell SizeCell(const std::optional<std::int64_t>& size) {
  return size ? Cell(*size) : Cell();
}

const std::vector<Column> kFileColumns = {
    {"id", "ID", -9},        {"size", "SIZE", -12}, {"date", "DATE", 19},  {"setId", "SET", -4},
    {"set", "SET NAME", 24}, {"run", "RUN", 5},     {"marked", "MARK", 4}, {"name", "NAME"}};

// A name as a mask that matches only itself.
std::string MaskOf(std::string_view name) {
  std::string mask;
  for (const char character : name) {
    if (std::string_view("*?#[").find(character) != std::string_view::npos) {
      mask.append("[").append(1, character).append("]");
    } else {
      mask += character;
    }
  }
  return mask;
}

}  // namespace

int EndOf(Session& session, const Selection* selection, bool found) {
  if (session.Stopped()) {
    session.Say("kxrestore: stopped");
    return ExitCode::kStopped;
  }
  const auto missing = selection ? selection->MissingNames() : std::vector<std::string>();
  for (std::size_t i = 0; i < std::min(missing.size(), kMissingShown); ++i)
    session.Say("kxrestore: not found: " + missing[i]);
  if (missing.size() > kMissingShown)
    session.Say("kxrestore: not found: " + std::to_string(missing.size() - kMissingShown) + " more");
  return found && missing.empty() ? ExitCode::kDone : ExitCode::kNotFound;
}

int ListSets(Session& session, const Options& options) {
  struct Set {
    std::string name;
    std::int64_t runs = 0;
    std::optional<engine::DateTime> newest;
  };
  std::vector<std::int32_t> order;
  std::map<std::int32_t, Set> sets;
  for (const BackupRun& run : ReadRuns(session)) {
    Set& set = sets[run.setId];
    if (set.runs++ == 0) order.push_back(run.setId);
    set.name = run.setName;
    set.newest = std::max(set.newest, run.date);
  }
  RowWriter writer(session.host.out, options.json,
                   {{"id", "ID", -5}, {"runs", "RUNS", -5}, {"newest", "NEWEST RUN", 19}, {"name", "NAME"}});
  std::string date;
  for (const std::int32_t id : order) {
    const Set& set = sets[id];
    writer.Row({std::int64_t{id}, set.runs, DateCell(set.newest, date), std::string_view(set.name)});
  }
  return EndOf(session, nullptr, !order.empty());
}

int ListRuns(Session& session, const Options& options) {
  RowWriter writer(session.host.out, options.json,
                   {{"setId", "SET", -5}, {"run", "RUN", 8}, {"permanent", "PERM", 4}, {"date", "DATE"}});
  std::string date;
  for (const BackupRun& run : RunsOfSet(ReadRuns(session), options.argument))
    writer.Row(
        {std::int64_t{run.setId}, std::string_view(run.extension), run.permanent, DateCell(run.date, date)});
  return EndOf(session, nullptr, true);
}

int ListTypes(Session& session, const Options& options) {
  catalog::TypeCensus census;
  {
    const auto database = session.OpenCatalog();
    const auto rows = catalog::OpenTypes(*database);
    const engine::Field type = rows->Fields("FileType"), files = rows->Fields("Files");
    for (; !rows->Eof() && session.Next(); rows->MoveNext()) census.Count(type.Text(), files.Integer());
  }
  if (session.Stopped()) return EndOf(session, nullptr, false);
  RowWriter writer(
      session.host.out, options.json,
      {{"type", "TYPE", 10}, {"files", "FILES", -10}, {"kind", "KIND", 10}, {"description", "DESCRIPTION"}});
  const auto types = census.Types();
  for (const auto& [type, files] : types)
    writer.Row({type.extension, files, catalog::KindName(type.kind), type.description});
  return EndOf(session, nullptr, !types.empty());
}

FileWriter::FileWriter(Session& session, const Options& options)
    : m_writer(session.host.out, options.json, kFileColumns) {}

void FileWriter::Add(const Row& row) {
  std::string date;
  const std::string setName = row.SetName(), extension = row.Extension(), name = row.ShownName();
  m_writer.Row({std::int64_t{row.Id()}, SizeCell(row.Size()), DateCell(row.Date(), date),
                std::int64_t{row.SetId()}, std::string_view(setName), std::string_view(extension),
                row.Marked(), std::string_view(name)});
}

int Find(Session& session, const Options& options) {
  Selection selection(session, options.criteria);
  FileWriter writer(session, options);
  bool found = false;
  selection.Walk([&](const Row& row) {
    writer.Add(row);
    return found = true;
  });
  return EndOf(session, &selection, found);
}

int ListVersions(Session& session, const Options& options) {
  struct Version {
    std::int32_t id, setId;
    std::optional<std::int64_t> size;
    std::optional<engine::DateTime> date;
    std::string setName, extension, name;
    bool marked;
  };
  const bool isPath = options.argument.find('\\') != std::string::npos;
  Criteria criteria = options.criteria;
  criteria.mask = MaskOf(options.argument);
  std::vector<Version> versions;
  Selection selection(session, criteria);
  selection.Walk([&](const Row& row) {
    const std::string name = row.OriginalName(), shown = row.ShownName();
    const std::string_view compared = isPath ? std::string_view(name) : catalog::LastPathComponent(name);
    if (EqualIgnoringCase(compared, options.argument) || EqualIgnoringCase(shown, options.argument))
      versions.push_back({row.Id(), row.SetId(), row.Size(), row.Date(), row.SetName(), row.Extension(),
                          shown, row.Marked()});
    return true;
  });
  std::stable_sort(versions.begin(), versions.end(), [](const Version& left, const Version& right) {
    return left.date != right.date ? left.date > right.date : left.id > right.id;
  });
  RowWriter writer(session.host.out, options.json, kFileColumns);
  std::string date;
  for (const Version& version : versions)
    writer.Row({std::int64_t{version.id}, SizeCell(version.size), DateCell(version.date, date),
                std::int64_t{version.setId}, std::string_view(version.setName),
                std::string_view(version.extension), version.marked, std::string_view(version.name)});
  return EndOf(session, nullptr, !versions.empty());
}

Sum WalkMarked(Session& session, const std::function<void(engine::Recordset& rows)>& visit) {
  Sum sum;
  const auto database = session.OpenCatalog();
  engine::ColumnNames columns{"OrigSize"};
  if (visit)
    columns = {"OrigSize", "DateStamp", "SetNameID", "Name", "Extension", "RestoreFile", "File", "Plugin"};
  const auto rows = catalog::OpenSelections(*database, columns);
  const engine::Field size = rows->Fields("OrigSize");
  for (; !rows->Eof() && session.Next(); rows->MoveNext()) {
    sum.Add(size.IsNull() ? std::nullopt : std::optional(size.Integer()));
    if (visit) visit(*rows);
  }
  return sum;
}

int ListMarked(Session& session, const Options& options) {
  RowWriter writer(session.host.out, options.json,
                   {{"size", "SIZE", -12},
                    {"date", "DATE", 19},
                    {"setId", "SET", -4},
                    {"set", "SET NAME", 24},
                    {"run", "RUN", 5},
                    {"name", "NAME"}});
  std::string text;
  const Sum sum = WalkMarked(session, [&](engine::Recordset& rows) {
    const engine::Field size = rows.Fields("OrigSize");
    const std::string setName = rows.Fields("Name").Text(), extension = rows.Fields("Extension").Text();
    const auto aggregate = catalog::AggregateName(rows.Fields("Plugin").Text(), rows.Fields("File").Text());
    const std::string name = aggregate ? *aggregate : rows.Fields("RestoreFile").Text();
    writer.Row({size.IsNull() ? Cell() : Cell(size.Integer()),
                DateCell(engine::ToDateTime(rows.Fields("DateStamp").Value()), text),
                rows.Fields("SetNameID").Integer(), std::string_view(setName), std::string_view(extension),
                std::string_view(name)});
  });
  return EndOf(session, nullptr, sum.files > 0);
}

int Count(Session& session, const Options& options) {
  Sum sum;
  std::optional<Selection> selection;
  if (options.criteria.Empty()) {
    sum = WalkMarked(session, {});
  } else {
    selection.emplace(session, options.criteria);
    selection->Walk([&](const Row& row) {
      sum.Add(row.Size());
      return true;
    });
  }
  const int end = EndOf(session, selection ? &*selection : nullptr, true);
  if (end == ExitCode::kStopped) return end;
  if (options.json) {
    RowWriter(session.host.out, true, {{"files", ""}, {"bytes", ""}}).Row({sum.files, sum.bytes});
  } else {
    session.host.out << Grouped(sum.files) << " file(s), " << Grouped(sum.bytes) << " bytes\n";
  }
  return end;
}

}  // namespace kxrestore::cli
