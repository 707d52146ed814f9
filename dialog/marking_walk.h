// A walk that marks or unmarks files one by one. A mark that fails does not end it: the error is shown under
// the name of the operation, the same error once a walk, and the next file gets its turn. The end of the walk
// commits, and one message tells how many files could not be marked.
//
// Only the user's stop and a database that cannot be reached end the walk early. A commit that fails is the
// failure of every mark in its group.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "dialog/form_context.h"

namespace kxrestore::dialog {

class MarkingWalk {
 public:
  enum class End { kDone, kStopped };

  // `routine`: the name under which the walk itself reports. `work`: kMarking or kUnmarking. `total`: the
  // number of items that it walks over, 0 where nobody knows it. There is one marking walk at a time.
  MarkingWalk(FormContext& context, const char* routine, Work work, std::size_t total = 0);
  ~MarkingWalk();
  MarkingWalk(const MarkingWalk&) = delete;
  MarkingWalk& operator=(const MarkingWalk&) = delete;

  // Runs `body`, which walks and marks, up to its first error, then ends the walk. A stop is answered by
  // kStopped, with the marks made so far committed.
  template <std::invocable Body>
  End Run(Body&& body) {
    try {
      body();
    } catch (...) {
      Report(CurrentError(), m_routine);
    }
    return Finish();
  }

  // Processes pending messages. False after a stop.
  bool Next();
  bool Stopped() const { return m_context.Stopped(); }
  // The database cannot be reached: nothing more is tried, and what is left counts as not marked.
  bool IsHopeless() const { return m_hopeless; }

  // Marks one item by `operation`, which may throw. `item` is the caller's own number for it.
  template <class Operation>
  requires std::is_invocable_r_v<catalog::MarkResult, Operation&>
  void Mark(std::size_t item, Operation&& operation) {
    if (m_hopeless) return CannotMark(item);
    catalog::MarkResult result = catalog::MarkResult::kFailed;
    try {
      result = operation();
    } catch (...) {
      Report(CurrentError(), m_routine);
    }
    Marked(item, result);
  }
  // An item that nothing in the catalog can be marked for.
  void CannotMark(std::size_t item) { m_notMarked.push_back(item); }

  // The items that could not be marked; final after Run.
  const std::vector<std::size_t>& NotMarked() const { return m_notMarked; }

 private:
  void Marked(std::size_t item, catalog::MarkResult result);
  void TakeCommits();
  void Report(const Error& error, const std::string& routine);
  void Commit();
  End Finish();

  FormContext& m_context;
  const char* m_routine;
  Work m_work;
  Progress::Walk m_progress;
  FormContext::ErrorReport m_reportBefore;
  engine::CommitCounts m_commits;
  std::int64_t m_made = 0;             // marks, without those that were lost
  std::vector<std::size_t> m_waiting;  // marked, but not committed yet
  std::vector<std::size_t> m_notMarked;
  std::set<std::pair<int, std::string>> m_shown;  // errors of this walk
  bool m_hopeless = false;
  bool m_interrupted = false;  // the mark being made was ended by the user's stop
};

// While it lives, marks that name no set and no extension go to the run given last, instead of the one that
// the detail tree shows. The lists mark their entries through it, whose set may be 0 and whose extension may
// be empty.
class RunOfEntries {
 public:
  explicit RunOfEntries(FormContext& context) : m_context(context), m_shown(context.shownRun) {}
  ~RunOfEntries() { m_context.shownRun = std::move(m_shown); }
  RunOfEntries(const RunOfEntries&) = delete;
  RunOfEntries& operator=(const RunOfEntries&) = delete;

  void Use(std::int32_t setId, std::string_view extension) const {
    m_context.shownRun.setId = setId;
    m_context.shownRun.extension = extension;
  }

 private:
  FormContext& m_context;
  catalog::CurrentRun m_shown;
};

}  // namespace kxrestore::dialog
