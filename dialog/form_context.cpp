#include "dialog/form_context.h"

#include <new>

#include "engine/error_numbers.h"
#include "platform/desktop.h"

namespace kxrestore::dialog {

namespace {

constexpr int kInternalError = 51;

}  // namespace

FormContext::FormContext(Parameters& parametersOfRun, FormControls& controlsOfForm,
                         platform::Platform& platformOfHost, engine::Workspace& workspaceOfHost)
    : parameters(parametersOfRun),
      ui(controlsOfForm),
      platform(platformOfHost),
      workspace(workspaceOfHost),
      marks(workspace, connection, shownRun,
            [this](const Error& error, const std::string& routine) { ReportError(error, routine); }) {}

Error FormContext::Caught() {
  try {
    throw;
  } catch (const Error& error) {
    return error;
  } catch (const std::bad_alloc&) {
    return {error_number::kOutOfMemory, "Out of memory"};
  } catch (const std::exception& exception) {
    return {kInternalError, std::string("Internal error: ") + exception.what()};
  } catch (...) {
    return {kInternalError, "Internal error"};
  }
}

void FormContext::ReportError(const Error& error, const std::string& routine) {
  if (error.Number() == engine::error_number::kCanceled) return;  // the user knows
  const auto commit = [this] { workspace.Flush(); };
  const std::optional<Error> second = Trap(commit);
  const auto show = [&](const Error& shown) {
    Skipping([&] {
      std::string text("(");
      text.append(std::to_string(shown.Number())).append(") ").append(shown.Description());
      platform.desktop.MessageBox(text, platform::kExclamation, routine);
    });
  };
  show(error);
  // Marks that could not be committed are lost; that is news of its own.
  if (second && second->Number() != error.Number()) show(*second);
}

int FormContext::MessageBox(const std::string& text, int style, const std::string& title) {
  workspace.Flush();
  return platform.desktop.MessageBox(text, style, title);
}

void FormContext::DoEvents() {
  platform.desktop.DoEvents();
  workspace.Idle();
}

void FormContext::EnterWalk() {
  if (m_walks++ > 0) return;
  workspace.SetWaiting([this] {
    platform.desktop.DoEvents();
    return !parameters.StopRequested;
  });
}

void FormContext::LeaveWalk() {
  if (--m_walks > 0) return;
  parameters.StopRequested = false;
  workspace.SetWaiting({});
}

void FormContext::EnterEvent() {
  ++m_events;
  Skipping([this] { workspace.BeginAction(); });
}

void FormContext::LeaveEvent(const std::string& routine) {
  Reporting(routine, [this] { workspace.EndAction(); });
  if (--m_events > 0 || !m_afterUnwinding) return;
  const auto step = std::exchange(m_afterUnwinding, nullptr);
  if (ui.form.IsOpen()) Skipping(step);
}

void FormContext::RaiseToHost(const std::string& routine, const std::function<void()>& event) {
  if (!event) return;
  Reporting(routine, [this] { workspace.EndAction(); });
  m_hostHasControl = true;
  Skipping(event);
  m_hostHasControl = false;
  Skipping([this] { workspace.BeginAction(); });
}

bool FormContext::Stop() {
  if (m_walks == 0) return false;
  parameters.StopRequested = true;
  return true;
}

void FormContext::StopThen(std::function<void()> step) {
  if (Stop()) {
    m_afterUnwinding = std::move(step);
  } else if (m_events == 0) {
    step();
  }
}

}  // namespace kxrestore::dialog
