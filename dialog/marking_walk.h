// A walk that marks or unmarks files one by one. A failed mark does not end it: the error is shown under the
// name of the operation, once per walk and error, and the walk continues. The walk ends with a commit and one
// message that says how many files could not be marked.
//
// Only the user's stop and an unreachable database end the walk early. A failed commit counts as a failure of
// every mark in its group.
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
  // number of items that it walks over, 0 if unknown. There is one marking walk at a time.
  MarkingWalk(FormContext& context, const char* routine, Work work, std::size_t total = 0);
  ~MarkingWalk();
  MarkingWalk(const MarkingWalk&) = delete;
  MarkingWalk& operator=(const MarkingWalk&) = delete;

  // Runs `body`, which iterates and marks, up to its first error, then ends the walk. Returns kStopped after
  // a stop; the marks made so far are committed.
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
  // The database is unreachable: the walk ends and the remaining items count as not marked.
  bool IsHopeless() const { return m_hopeless; }

  // Marks one item by `operation`, which may throw. `item`: the caller's number for it.
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
  // Counts an item as not marked that has no row in the catalog.
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

// During its lifetime, marks without a set and extension go to the run given last instead of the one in the
// detail tree. The lists mark their entries through it: an entry's set may be 0 and its extension empty.
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
