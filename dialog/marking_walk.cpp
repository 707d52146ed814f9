#include "dialog/marking_walk.h"

#include "base/phrases.h"
#include "dialog/hints.h"
#include "engine/error_numbers.h"
#include "platform/desktop.h"
#include "platform/regional.h"

namespace kxrestore::dialog {

namespace {

// Errors after which every further mark would fail as well, each after a timeout.
bool IsUnreachable(int number) {
  namespace engine_error = engine::error_number;
  switch (number) {
    case engine_error::kFileNotFound:
    case engine_error::kCannotOpen:
    case engine_error::kFileInUse:
    case engine_error::kUnrecognizedFormat:
    case engine_error::kCannotCreateObject:
    case engine_error::kOdbcConnectionFailed:
    case error_number::kObjectVariableNotSet:
      return true;
    default:
      return false;
  }
}

}  // namespace

MarkingWalk::MarkingWalk(FormContext& context, const char* routine, Work work, std::size_t total)
    : m_context(context),
      m_routine(routine),
      m_work(work),
      m_progress(context.progress, work, static_cast<std::int64_t>(total)),
      m_commits(context.workspace.Commits()) {
  m_reportBefore = std::exchange(
      m_context.onMarkError, [this](const Error& error, const std::string& name) { Report(error, name); });
}

MarkingWalk::~MarkingWalk() {
  m_context.onMarkError = std::move(m_reportBefore);
}

bool MarkingWalk::Next() {
  m_context.StepProgress();
  try {
    m_context.DoEvents();
  } catch (...) {
    Report(CurrentError(), m_routine);
  }
  TakeCommits();
  return !Stopped();
}

void MarkingWalk::Marked(std::size_t item, catalog::MarkResult result) {
  using catalog::MarkResult;
  if (result == MarkResult::kDone) {
    m_waiting.push_back(item);
    ++m_made;
    if (!std::exchange(m_context.unlistedMarks, true)) {
      m_context.Skipping([this] { hints::UnlistedMarks(m_context.ui); });
    }
  } else if (!std::exchange(m_interrupted, false)) {
    CannotMark(item);
  }
  TakeCommits();
}

// Collects the results of marks that waited for a commit.
void MarkingWalk::TakeCommits() {
  const engine::CommitCounts now = m_context.workspace.Commits();
  if (now.lost != m_commits.lost) {
    m_made -= static_cast<std::int64_t>(m_waiting.size());
    m_notMarked.insert(m_notMarked.end(), m_waiting.begin(), m_waiting.end());
    m_waiting.clear();
    m_context.CommitLost();
  } else if (now.committed != m_commits.committed) {
    m_waiting.clear();
  }
  m_commits = now;
}

void MarkingWalk::Report(const Error& error, const std::string& routine) {
  if (m_context.IsStop(error)) {
    m_interrupted = true;
    return;
  }
  if (IsUnreachable(error.Number())) m_hopeless = true;
  if (!m_shown.emplace(error.Number(), error.Description()).second) return;
  Commit();  // the user may take long to answer
  m_context.ShowError(error, routine);
}

void MarkingWalk::Commit() {
  try {
    m_context.workspace.Flush();
  } catch (...) {
    Report(CurrentError(), m_routine);
  }
}

MarkingWalk::End MarkingWalk::Finish() {
  Commit();
  TakeCommits();
  if (!m_notMarked.empty()) {
    m_context.MessageBox(Say(Phrase::kCouldNotBeMarked, {std::to_string(m_notMarked.size())}),
                         platform::MessageStyle::kWarning, m_routine);
  }
  if (!Stopped()) return End::kDone;
  const Phrase phrase = m_work == Work::kUnmarking ? Phrase::kStoppedUnmarked : Phrase::kStoppedMarked;
  m_context.Skipping(
      [&] { m_context.progress.SayAtEnd(Say(phrase, {m_context.platform.regional.Grouped(m_made)})); });
  return End::kStopped;
}

}  // namespace kxrestore::dialog
