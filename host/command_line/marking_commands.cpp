#include "host/command_line/marking_commands.h"

#include <ostream>
#include <set>
#include <utility>

#include "catalog/entry_names.h"
#include "catalog/restore_marks.h"
#include "engine/error_numbers.h"
#include "host/command_line/listing_commands.h"

namespace kxrestore::cli {

namespace {

// The marks of one command, and what went wrong with them: each error is said once.
class Marker {
 public:
  explicit Marker(Session& session)
      : m_session(session),
        m_marks(*session.workspace, session.connection, m_noRun,
                [this](const Error& error, const std::string& routine) { Report(error, routine); }) {}

  catalog::RestoreMarks& Marks() { return m_marks; }
  // Without its catalog every further mark would fail.
  bool LostCatalog() const { return m_lost; }

 private:
  void Report(const Error& error, const std::string& routine) {
    m_lost = m_lost || error.Number() == engine::error_number::kOdbcConnectionFailed;
    if (!m_said.emplace(error.Number(), error.Description()).second) return;
    m_session.Say("kxrestore: " + routine + ": (" + std::to_string(error.Number()) + ") " +
                  error.Description());
  }

  Session& m_session;
  const catalog::CurrentRun m_noRun;  // every entry names its own
  catalog::RestoreMarks m_marks;
  std::set<std::pair<int, std::string>> m_said;
  bool m_lost = false;
};

void SayResult(Session& session, const Options& options, const Sum& sum, std::int64_t failed) {
  const char* const verb = options.command == Command::kMark ? "marked" : "unmarked";
  if (options.json) {
    RowWriter(session.host.out, true, {{verb, ""}, {"bytes", ""}, {"failed", ""}})
        .Row({sum.files, sum.bytes, failed});
    return;
  }
  session.host.out << Grouped(sum.files) << " file(s) " << verb << ", " << Grouped(sum.bytes) << " bytes\n";
  if (failed > 0) session.Say("kxrestore: " + Grouped(failed) + " file(s) could not be " + verb + ".");
}

}  // namespace

int Mark(Session& session, const Options& options) {
  const bool value = options.command == Command::kMark;
  // Types are marked row by row, everything else by name, as the dialog's two panels do.
  const bool byId = value && !options.criteria.types.empty();
  Selection selection(session, options.criteria);
  Marker marker(session);
  std::optional<FileWriter> writer;
  if (options.dryRun) writer.emplace(session, options);

  Sum sum;
  std::int64_t failed = 0;
  bool found = false;
  selection.Walk([&](const Row& row) {
    if (!value && !row.Marked()) return true;
    found = true;
    if (writer) {
      writer->Add(row);
      return true;
    }
    const auto size = row.Size();
    const std::string name = row.ShownName();
    const catalog::MarkResult result = byId ? marker.Marks().UpdateByID(row.Id())
                              : catalog::MarkEntry(marker.Marks(), name, row.StoredName(name), value,
                                                   row.SetId(), row.Extension());
    if (result == catalog::MarkResult::kDone) {
      sum.Add(size);
    } else {
      ++failed;
    }
    return !marker.LostCatalog();
  });
  session.Finish();
  if (!writer) SayResult(session, options, sum, failed);
  const int end = EndOf(session, &selection, found);
  return failed > 0 ? ExitCode::kFailed : end;
}

int Clear(Session& session, const Options& options) {
  if (options.dryRun) return ListMarked(session, options);
  const Sum sum = WalkMarked(session, {});
  if (session.Stopped()) return EndOf(session, nullptr, true);
  Marker marker(session);
  const catalog::MarkResult cleared = marker.Marks().ClearSelections();
  session.Finish();
  if (cleared == catalog::MarkResult::kFailed) return ExitCode::kFailed;
  SayResult(session, options, sum, 0);
  return ExitCode::kDone;
}

}  // namespace kxrestore::cli
