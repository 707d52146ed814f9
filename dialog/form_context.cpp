#include "dialog/form_context.h"

#include "base/phrases.h"
#include "dialog/advice.h"
#include "engine/error_numbers.h"
#include "platform/desktop.h"

namespace kxrestore::dialog {

FormContext::FormContext(Parameters& parametersOfRun, FormControls& controlsOfForm,
                         platform::Platform& platformOfHost, engine::Workspace& workspaceOfHost)
    : parameters(parametersOfRun),
      ui(controlsOfForm),
      platform(platformOfHost),
      workspace(workspaceOfHost),
      progress(controlsOfForm, platformOfHost),
      marks(workspace, connection, shownRun,
            [this](const Error& error, const std::string& routine) { onMarkError(error, routine); }),
      onMarkError([this](const Error& error, const std::string& routine) { ReportError(error, routine); }) {}

bool FormContext::IsStop(const Error& error) const {
  return error.Number() == engine::error_number::kCanceled && Stopped();
}

void FormContext::ReportError(const Error& error, std::string_view routine) {
  if (IsStop(error)) return;
  const auto commit = [this] { workspace.Flush(); };
  const std::optional<Error> second = Trap(commit);
  ShowError(error, routine);
  if (!second) return;
  // The failed commit lost marks, which is reported separately.
  m_commitLost = true;
  if (second->Number() != error.Number()) ShowError(*second, routine);
}

void FormContext::ShowError(const Error& error, std::string_view routine) {
  Skipping([&] {
    std::string text("(");
    text.append(std::to_string(error.Number())).append(") ").append(error.Description());
    text.append("\n\n").append(Say(AdviceFor(error.Number())));
    const std::int64_t before = progress.Now();
    platform.desktop.MessageBox(text, platform::MessageStyle::kWarning, std::string(routine));
    progress.LeaveOut(progress.Now() - before);
  });
}

platform::Answer FormContext::MessageBox(const std::string& text, platform::MessageStyle style,
                                         const std::string& title) {
  Commit(m_routine);
  const std::int64_t before = progress.Now();
  const platform::Answer answer = platform.desktop.MessageBox(text, style, title);
  progress.LeaveOut(progress.Now() - before);
  return answer;
}

bool FormContext::Commit(const char* routine) {
  const bool committed = Reporting(routine, [this] { workspace.Flush(); });
  if (!committed) m_commitLost = true;
  return committed;
}

void FormContext::DoEvents() {
  platform.desktop.DoEvents();
  // Writes commit by themselves when due; this is for walks that have stopped writing.
  constexpr unsigned kItemsBetweenCommits = 16;
  if (++m_itemsWalked % kItemsBetweenCommits == 0) workspace.Idle();
}

void FormContext::EnterEvent(const char* routine) {
  if (m_events++ > 0) return;
  m_routine = routine;
  if (!m_aside) Skipping([this] { progress.BeginAction(); });
  Skipping([this] { workspace.BeginAction(); });
  workspace.SetWaiting([this] {
    Skipping([this] { progress.Wait(); });
    platform.desktop.DoEventsWhileWaiting();
    return !Stopped();
  });
}

void FormContext::LeaveEvent() {
  if (m_events == 1) {
    if (!Reporting(m_routine, [this] { workspace.EndAction(); })) m_commitLost = true;
    workspace.SetWaiting({});
    parameters.StopRequested = false;
    if (!m_aside) Skipping([this] { progress.EndAction(); });
  }
  if (--m_events > 0 || m_runningPutOff) return;
  RunWhatWasPutOff();
}

// Also runs steps that arrive meanwhile, in order.
void FormContext::RunWhatWasPutOff() {
  m_runningPutOff = true;
  bool aside = std::exchange(m_aside, false);
  if (std::exchange(m_commitLost, false) && ListMarksAnew) Event(m_routine, [this] { ListMarksAnew(); });
  while (m_putOff && ui.form.IsOpen()) {
    const auto step = std::exchange(m_putOff, nullptr);
    aside = false;
    Skipping(step);
    if (std::exchange(m_commitLost, false) && ListMarksAnew) Event(m_routine, [this] { ListMarksAnew(); });
  }
  m_putOff = nullptr;
  m_runningPutOff = false;
  if (aside || m_idling) return;
  m_idling = true;
  for (const auto& call : whenIdle) {
    if (ui.form.IsOpen()) Skipping(call);
  }
  m_idling = false;
}

bool FormContext::RaiseToHost(const char* routine, const std::function<void()>& event, bool evenThen) {
  const bool committed = Reporting(routine, [this] { workspace.EndAction(); });
  if (!committed) m_commitLost = true;
  const bool raised = committed || evenThen;
  if (raised) {
    m_hostHasControl = true;
    Skipping(event);
    m_hostHasControl = false;
  }
  Skipping([this] { workspace.BeginAction(); });
  return raised;
}

bool FormContext::Stop() {
  if (!Busy() || m_hostHasControl) return false;
  parameters.StopRequested = true;
  m_putOff = nullptr;
  return true;
}

void FormContext::StopThen(std::function<void()> step) {
  if (m_hostHasControl) return;
  if (Stop()) {
    PutOff(std::move(step));
  } else {
    step();
  }
}

}  // namespace kxrestore::dialog
