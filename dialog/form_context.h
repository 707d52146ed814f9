// What the panels of one loaded form share: the parameters of the run, the controls, the services, the
// current choice, and the ways to run an event, trap an error and walk over many items.
//
// Every event of a control comes in through Event or Command. Both bracket one user action for the database
// engine and let no error out. Only this class, MarkingWalk and RestoreMarks catch errors.
#pragma once

#include <concepts>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/error.h"
#include "catalog/connection.h"
#include "catalog/restore_marks.h"
#include "dialog/form_controls.h"
#include "dialog/parameters.h"
#include "dialog/progress.h"
#include "engine/database.h"
#include "platform/desktop.h"
#include "platform/platform.h"

namespace kxrestore::dialog {

// The current choice, as the set tree and the panels leave it.
struct Choice {
  controls::Node m_nodRoot;
  controls::Node m_nodCurrent;  // shown in bold
  std::int32_t m_lngSetID = 0;
  std::string m_strSetID;
  std::string m_strExtension;
  std::int16_t m_intRunCount = 0;
  bool m_blnLoading = false;  // the detail tree is being filled
};

class FormContext {
 public:
  FormContext(Parameters& parametersOfRun, FormControls& controlsOfForm, platform::Platform& platformOfHost,
              engine::Workspace& workspaceOfHost);
  FormContext(const FormContext&) = delete;
  FormContext& operator=(const FormContext&) = delete;

  Parameters& parameters;
  FormControls& ui;
  platform::Platform& platform;
  engine::Workspace& workspace;

  Choice choice;
  // The run whose files the detail tree shows; the choice may have moved on since. Marks that name no set or
  // extension go to this one. The lists put an entry's own run here while they mark it.
  catalog::CurrentRun shownRun;
  Progress progress;
  catalog::ConnectionSettings connection;  // set up while the form loads
  catalog::RestoreMarks marks;             // reports through onMarkError

  // Receives errors of marks: ReportError, or the current marking walk.
  using ErrorReport = catalog::RestoreMarks::Report;
  ErrorReport onMarkError;

  // Whether there are marks that the restore list has not shown: some were written since it was last filled
  // to the end, or filling it failed or was stopped.
  bool unlistedMarks = false;
  // Refills the restore list. Called after an event in which a commit failed, so that the list shows no mark
  // that was lost, unless the event has already refilled it (ListingMarks).
  std::function<void()> ListMarksAnew;
  void ListingMarks() { m_commitLost = false; }
  void CommitLost() { m_commitLost = true; }

  // The date of each completed run as platform::TimeNumber, by the tag of its node in the set tree: the set's
  // number, a blank and the run's extension.
  std::unordered_map<std::string, std::int64_t> runTimes;
  std::function<bool()> AnythingPending;  // whether any tick has not been applied yet
  std::function<void()> ShowSums;         // updates the total of bytes from the restore list

  [[nodiscard]] std::unique_ptr<engine::Database> OpenCatalog() {
    return catalog::OpenCatalog(workspace, connection);
  }

  // Shows an error: "(number) description" under the routine's name. Not shown: the error with which a
  // statement ends that the user stopped.
  void ReportError(const Error& error, std::string_view routine);
  // The same without committing first.
  void ShowError(const Error& error, std::string_view routine);
  bool IsStop(const Error& error) const;
  // Commits, then shows a question or a message. Returns the answer.
  platform::Answer MessageBox(const std::string& text, platform::MessageStyle style,
                              const std::string& title);
  // Commits everything written so far. A failure is shown under the routine's name, and the restore list is
  // refilled when the event ends. Returns whether the commit succeeded.
  bool Commit(const char* routine);

  // Runs `body`. An error ends it and is shown under the routine's name. Returns whether there was none.
  template <std::invocable Body>
  bool Reporting(const char* routine, Body&& body) {
    const std::optional<Error> error = Trap(body);
    if (error) ReportError(*error, routine);
    return !error;
  }
  // The same, calling `before` with the error before it is shown.
  template <std::invocable Body, std::invocable<const Error&> Before>
  bool Reporting(const char* routine, Body&& body, Before&& before) {
    const std::optional<Error> error = Trap(body);
    if (error) {
      Skipping([&] { before(*error); });
      ReportError(*error, routine);
    }
    return !error;
  }
  // Runs `body`. An error ends it and is ignored. Returns whether there was none.
  template <std::invocable Body>
  bool Skipping(Body&& body) {
    return !Trap(body);
  }
  // The same before there is a form.
  template <std::invocable Body>
  static bool Skip(Body&& body) {
    return !Trap(body);
  }

  // Runs the handler of an event as one user action. Errors are ignored, except running out of memory and a
  // failed commit, which are shown under the routine's name. Events may arrive while another one runs. From
  // the start of the first to the end of the last the form is busy: the engine processes pending messages
  // while it works or waits, and the user can stop it.
  template <std::invocable Body>
  void Event(const char* routine, Body&& body) {
    if (m_hostHasControl || !ui.form.IsOpen()) return;
    EnterEvent(routine);
    const std::optional<Error> error = Trap(body);
    if (error && error->Number() == error_number::kOutOfMemory) ShowError(*error, routine);
    LeaveEvent();
  }
  // The same for events that start work. While the form is busy the work is deferred until the form is idle;
  // only the last deferred command runs.
  template <std::invocable Body>
  void Command(const char* routine, Body&& body) {
    if (!Busy()) {
      Event(routine, body);
    } else if (!m_hostHasControl) {
      Skipping([&] { PutOff([this, routine, body] { Event(routine, body); }); });
      if (m_background != nullptr) *m_background = parameters.StopRequested = true;
    }
  }

  // The same for side work such as a tip: the progress display stays as it is.
  template <class Body>
  void Aside(const char* routine, Body&& body) {
    const bool before = std::exchange(m_aside, true);
    Event(routine, [&] { Skipping(body); });
    m_aside = before;
  }
  // The same for background work. A command stops it and runs at once. Returns false when that has happened.
  template <class Body>
  bool InBackground(const char* routine, Body&& body) {
    if (Busy()) return true;
    bool cutOff = false;
    Event(routine, [&] {
      m_background = &cutOff;
      Skipping(body);
      m_background = nullptr;
    });
    return !cutOff;
  }
  // Called whenever the form becomes idle, but not after their own work.
  std::vector<std::function<void()>> whenIdle;
  // Called after the restore list was refilled or cleared.
  std::function<void()> onMarksListed;

  // Raises an event to the form's owner. Ends the user action first, so that everything is committed and no
  // database is open. Input is ignored until the host returns. A failed commit is shown and prevents the
  // event, unless `evenThen`. Returns whether the event was raised.
  bool RaiseToHost(const char* routine, const std::function<void()>& event, bool evenThen);

  // A walk over rows, nodes or entries. Next is called before every item: it lets pending messages run and
  // says whether to go on. A statement that the user stops ends with an error for which IsStop holds.
  class Walk {
   public:
    // `total`: the number of items, 0 when unknown.
    Walk(FormContext& context, Work work, std::int64_t total = 0)
        : m_context(context), m_progress(context.progress, work, total) {}

    [[nodiscard]] bool Next() {
      m_context.StepProgress();
      m_context.DoEvents();
      return !m_context.Stopped();
    }

   private:
    FormContext& m_context;
    Progress::Walk m_progress;
  };

  bool Busy() const { return m_events > 0; }
  bool IsOutermostEvent() const { return m_events == 1; }
  // Whether the user has asked to stop. Holds until the outermost event ends.
  bool Stopped() const { return parameters.StopRequested; }

  // One more item of the walk is done.
  void StepProgress() {
    Skipping([this] { progress.Step(); });
  }

  // Processes pending messages and commits that are due.
  void DoEvents();

  // Stops the current work and drops deferred commands. Returns whether there was work to stop.
  bool Stop();
  // Stops the current work and runs `step` when it has ended; at once when the form is idle.
  void StopThen(std::function<void()> step);

 private:
  template <std::invocable Body>
  static std::optional<Error> Trap(Body& body) {
    try {
      body();
      return std::nullopt;
    } catch (...) {
      return CurrentError();
    }
  }
  void PutOff(std::function<void()> step) { m_putOff = std::move(step); }
  void EnterEvent(const char* routine);
  void LeaveEvent();
  void RunWhatWasPutOff();

  int m_events = 0;
  const char* m_routine = "";  // of the outermost event
  bool m_hostHasControl = false;
  bool m_commitLost = false;
  bool m_runningPutOff = false;
  bool m_aside = false;
  bool* m_background = nullptr;  // while such work is going on: whether it is cut off
  bool m_idling = false;
  unsigned m_itemsWalked = 0;
  std::function<void()> m_putOff;
};

}  // namespace kxrestore::dialog
