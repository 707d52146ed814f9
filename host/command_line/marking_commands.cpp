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

// The marks of one command, their outcome, and their errors, each reported once. A mark counts once its group
// is committed; a failed commit fails every mark in the group.
class Marker {
 public:
  explicit Marker(Session& session)
      : m_session(session),
        m_marks(*session.workspace, session.connection, m_run,
                [this](const Error& error, const std::string& routine) { Report(error, routine); }),
        m_commits(session.workspace->Commits()) {
    session.onCommitError = [this](const Error& error) { Report(error, "commit"); };
  }
  ~Marker() { m_session.onCommitError = nullptr; }
  Marker(const Marker&) = delete;
  Marker& operator=(const Marker&) = delete;

  catalog::RestoreMarks& Marks() { return m_marks; }
  // The run that the next marks apply to.
  void Use(std::int32_t setId, std::string extension) { m_run = {setId, std::move(extension)}; }
  // The catalog cannot be reached, so every further mark would fail too.
  bool IsHopeless() const { return m_hopeless; }

  void Count(catalog::MarkResult result, const std::optional<std::int64_t>& size) {
    if (result == catalog::MarkResult::kDone) {
      m_waiting.Add(size);
    } else {
      ++m_failed;
    }
    TakeCommits();
  }
  void Finish() {
    try {
      m_session.workspace->Flush();
    } catch (const Error& error) {
      Report(error, "commit");
    }
    TakeCommits();
    m_done += std::exchange(m_waiting, {});
  }
  const Sum& Done() const { return m_done; }
  std::int64_t Failed() const { return m_failed; }

 private:
  void TakeCommits() {
    const engine::CommitCounts now = m_session.workspace->Commits();
    if (now.lost != m_commits.lost) {
      m_failed += std::exchange(m_waiting, {}).files;
    } else if (now.committed != m_commits.committed) {
      m_done += std::exchange(m_waiting, {});
    }
    m_commits = now;
  }
  void Report(const Error& error, const std::string& routine) {
    namespace engine_error = engine::error_number;
    constexpr int kUnreachable[] = {engine_error::kFileNotFound,       engine_error::kCannotOpen,
                                    engine_error::kFileInUse,          engine_error::kUnrecognizedFormat,
                                    engine_error::kCannotCreateObject, engine_error::kOdbcConnectionFailed};
    for (const int number : kUnreachable) m_hopeless = m_hopeless || error.Number() == number;
    if (!m_said.emplace(error.Number(), error.Description()).second) return;
    m_session.Say("kxrestore: " + routine + ": (" + std::to_string(error.Number()) + ") " +
                  error.Description());
  }

  Session& m_session;
  catalog::CurrentRun m_run;
  catalog::RestoreMarks m_marks;
  engine::CommitCounts m_commits;
  Sum m_waiting, m_done;
  std::int64_t m_failed = 0;
  std::set<std::pair<int, std::string>> m_said;
  bool m_hopeless = false;
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
  // Types are marked row by row, everything else by name, as on the dialog's two panels.
  const bool byId = value && !options.criteria.types.empty();
  Selection selection(session, options.criteria);
  Marker marker(session);
  std::optional<FileWriter> writer;
  if (options.dryRun) writer.emplace(session, options);

  bool found = false;
  selection.Walk([&](const Row& row) {
    if (!value && !row.Marked()) return true;
    found = true;
    if (writer) {
      writer->Add(row);
      return true;
    }
    const auto size = row.Size();
    if (byId) {
      marker.Count(marker.Marks().UpdateByID(row.Id()), size);
    } else {
      const std::string name = row.ShownName();
      const std::string stored = row.StoredName(name);
      marker.Use(row.SetId(), row.Extension());
      marker.Count(catalog::MarkEntry(marker.Marks(), name, stored, value), size);
    }
    return !marker.IsHopeless();
  });
  marker.Finish();
  if (!writer) SayResult(session, options, marker.Done(), marker.Failed());
  const int end = EndOf(session, &selection, found);
  return marker.Failed() > 0 ? ExitCode::kFailed : end;
}

int Clear(Session& session, const Options& options) {
  if (options.dryRun) return ListMarked(session, options);
  const Sum sum = WalkMarked(session, {});
  if (session.Stopped()) return EndOf(session, nullptr, true);
  Marker marker(session);
  if (marker.Marks().ClearSelections() == catalog::MarkResult::kFailed) return ExitCode::kFailed;
  SayResult(session, options, sum, 0);
  return ExitCode::kDone;
}

}  // namespace kxrestore::cli
