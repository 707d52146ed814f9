// What the panels of one loaded form share: the parameters of the run, the controls, the services, the
// current choice, and the ways to run an event, trap an error and walk over many items.
//
// Every event of a control comes in through Event or Command. Both bracket one user action for the database
// engine and let no error out. Nothing else in the dialog catches errors.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "base/error.h"
#include "catalog/connection.h"
#include "catalog/restore_marks.h"
#include "dialog/form_controls.h"
#include "engine/database.h"
#include "platform/platform.h"

namespace kxrestore::dialog {

// What the host assigned. Outlives the loaded form; nothing is reset between runs.
struct Parameters {
  std::string DBName;
  std::string RestorePath;
  std::int16_t DBType = 0;
  std::string DBDatabase;
  std::string DBServer;
  std::string DBUser;
  std::string DBPass;
  std::string curAction;
  std::string LogFilename;
  bool DebugFlag = false;
  std::string ClientPath;  // from the registry, at every load
  bool StopRequested = false;

  // The action word: "restore" when the host gave none.
  std::string Action() const { return curAction.empty() ? "restore" : curAction; }
};

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
  // extension go to this one.
  catalog::CurrentRun shownRun;
  catalog::ConnectionSettings connection;  // set up while the form loads
  catalog::RestoreMarks marks;             // reports through ReportError

  std::unique_ptr<engine::Database> OpenCatalog() { return catalog::OpenCatalog(workspace, connection); }

  // Shows an error: "(number) description" under the routine's name.
  void ReportError(const Error& error, const std::string& routine);
  // Shows a question or a message once everything written so far is committed. Returns the answer.
  int MessageBox(const std::string& text, int style, const std::string& title);

  // Runs `body` up to its first error, which is shown under the routine's name. Whether there was none.
  template <class Body>
  bool Reporting(const std::string& routine, Body&& body) {
    const std::optional<Error> error = Trap(body);
    if (error) ReportError(*error, routine);
    return !error;
  }
  // The same with a step of its own, which is given the error, before that is shown.
  template <class Body, class Before>
  bool Reporting(const std::string& routine, Body&& body, Before&& before) {
    const std::optional<Error> error = Trap(body);
    if (error) {
      Skipping([&] { before(*error); });
      ReportError(*error, routine);
    }
    return !error;
  }
  // Runs `body` up to its first error, which nobody hears of. Whether there was none.
  template <class Body>
  bool Skipping(Body&& body) {
    return !Trap(body);
  }
  // The same where there is no form yet.
  template <class Body>
  static bool Skip(Body&& body) {
    return !Trap(body);
  }

  // Runs the handler of an event as one user action. An error is skipped; a failed commit is shown under the
  // routine's name.
  template <class Body>
  void Event(const std::string& routine, Body&& body) {
    if (m_hostHasControl || !ui.form.IsOpen()) return;
    EnterEvent();
    Skipping(body);
    LeaveEvent(routine);
  }
  // The same for events that start work: ignored while another event is being handled, so that nothing starts
  // twice.
  template <class Body>
  void Command(const std::string& routine, Body&& body) {
    if (m_events == 0) Event(routine, body);
  }

  // Raises an event to the form's owner. The user action ends first, so that the host finds everything
  // committed and nothing open; whatever the user does until the host returns is ignored.
  void RaiseToHost(const std::string& routine, const std::function<void()>& event);

  // A walk over rows, nodes or entries. Next is called before every item: it lets pending messages run and
  // says whether to go on. While the engine works on a statement they run as well, so a walk over rows begins
  // before its statement; one that the user stops there ends with an error that nobody is shown. When the
  // outermost walk ends the stop request is used up.
  class Walk {
   public:
    explicit Walk(FormContext& context) : m_context(context) { m_context.EnterWalk(); }
    ~Walk() { m_context.LeaveWalk(); }
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;

    bool Next() {
      m_context.DoEvents();
      return !m_context.parameters.StopRequested;
    }

   private:
    FormContext& m_context;
  };
  bool Walking() const { return m_walks > 0; }

  // Lets pending messages run, and pending commits have their chance.
  void DoEvents();

  // Ends a running walk and runs `step` once everything has unwound; runs it at once when nothing is going
  // on. Ignored while an event that cannot be stopped is being handled.
  void StopThen(std::function<void()> step);
  // Ends a running walk. Whether there was one.
  bool Stop();

 private:
  template <class Body>
  static std::optional<Error> Trap(Body& body) {
    try {
      body();
      return std::nullopt;
    } catch (...) {
      return Caught();
    }
  }
  static Error Caught();  // the exception being handled
  void EnterWalk();
  void LeaveWalk();
  void EnterEvent();
  void LeaveEvent(const std::string& routine);

  int m_events = 0;
  int m_walks = 0;
  bool m_hostHasControl = false;
  std::function<void()> m_afterUnwinding;
};

}  // namespace kxrestore::dialog
