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

  // Where errors of marks go: ReportError, or the marking walk that is under way.
  using ErrorReport = catalog::RestoreMarks::Report;
  ErrorReport onMarkError;

  // Whether there are marks that the restore list has not shown: some were written since it was last filled
  // to the end, or filling it failed or was stopped.
  bool unlistedMarks = false;
  // Fills the restore list. Called after an event in which a commit has failed, so that the list shows no
  // mark that is not there; but not when the event has done so itself, see ListingMarks.
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

  // Shows an error: "(number) description" under the routine's name. The interruption by which the user's
  // stop ends a statement is no error and is not shown.
  void ReportError(const Error& error, std::string_view routine);
  // The same without committing what was written so far before it waits for the user.
  void ShowError(const Error& error, std::string_view routine);
  bool IsStop(const Error& error) const;
  // Shows a question or a message once everything written so far is committed. Returns the answer.
  platform::Answer MessageBox(const std::string& text, platform::MessageStyle style,
                              const std::string& title);
  // Commits everything written so far. A failure is shown under the routine's name, and the restore list is
  // filled anew when the event ends. Whether it is committed.
  bool Commit(const char* routine);

  // Runs `body` up to its first error, which is shown under the routine's name. Whether there was none.
  template <std::invocable Body>
  bool Reporting(const char* routine, Body&& body) {
    const std::optional<Error> error = Trap(body);
    if (error) ReportError(*error, routine);
    return !error;
  }
  // The same with a step of its own, which is given the error, before that is shown.
  template <std::invocable Body, std::invocable<const Error&> Before>
  bool Reporting(const char* routine, Body&& body, Before&& before) {
    const std::optional<Error> error = Trap(body);
    if (error) {
      Skipping([&] { before(*error); });
      ReportError(*error, routine);
    }
    return !error;
  }
  // Runs `body` up to its first error, which nobody hears of. Whether there was none.
  template <std::invocable Body>
  bool Skipping(Body&& body) {
    return !Trap(body);
  }
  // The same where there is no form yet.
  template <std::invocable Body>
  static bool Skip(Body&& body) {
    return !Trap(body);
  }

  // Runs the handler of an event as one user action. An error is skipped, except that memory ran out; that
  // and a failed commit are shown under the routine's name. From the first event to the end of the last one
  // that came in while it ran, the form is busy: the engine lets pending messages run while it works or
  // waits, and the user can stop it.
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

  // The same for what is looked up on the side, a tip say: what was last said about progress stays.
  template <class Body>
  void Aside(const char* routine, Body&& body) {
    const bool before = std::exchange(m_aside, true);
    Event(routine, [&] { Skipping(body); });
    m_aside = before;
  }
  // The same for work that nobody asked for. A command that comes in meanwhile stops it and runs at once.
  // False when that has happened.
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
  // Called whenever the form has become idle; what they do makes it idle again, and they are not called for
  // that.
  std::vector<std::function<void()>> whenIdle;
  // The restore list was filled anew, or cleared.
  std::function<void()> onMarksListed;

  // Raises an event to the form's owner. The user action ends first, so that the host finds everything
  // committed and nothing open; whatever the user does until the host returns is ignored. A commit that fails
  // is shown. Then the event is not raised, unless `evenThen`. Whether it was raised.
  bool RaiseToHost(const char* routine, const std::function<void()>& event, bool evenThen);

  // A walk over rows, nodes or entries. Next is called before every item: it lets pending messages run and
  // says whether to go on. A statement that the user stops ends with an error for which IsStop holds.
  class Walk {
   public:
    // `total`: the number of items, 0 where nobody knows it.
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
  // Whether the user has asked to end what is going on. Holds until the outermost event ends.
  bool Stopped() const { return parameters.StopRequested; }

  // One more item of the walk is done.
  void StepProgress() {
    Skipping([this] { progress.Step(); });
  }

  // Lets pending messages run, and pending commits have their chance.
  void DoEvents();

  // Stops what is going on and forgets what was put off. Whether anything was going on that the user can
  // stop.
  bool Stop();
  // Stops what is going on and runs `step` once everything has unwound; runs it at once when nothing is going
  // on.
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
