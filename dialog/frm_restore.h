// The restore form: its parameters, loading and showing the dialog, and its two events. There is one form in
// a process; it outlives the dialogs that it shows. Each load creates the controls as designed; closing the
// dialog destroys them, while the parameters stay.
//
// Single-threaded. Accessing the form or a control loads the form first. Members ignore errors; only
// Controls() may throw.
#pragma once

#include <concepts>
#include <functional>
#include <memory>
#include <string>

#include "dialog/form_context.h"
#include "dialog/parameters.h"

namespace kxrestore::dialog {

class frmRestore {
 public:
  // Both must outlive the form.
  frmRestore(const platform::Platform& platform, engine::Workspace& workspace);
  ~frmRestore();
  frmRestore(const frmRestore&) = delete;
  frmRestore& operator=(const frmRestore&) = delete;

  Parameters parameters;  // changes take effect at the next load

  void setWindowCaption(const std::string& sCaption);
  void setButtonCaption(const std::string& sCaption);
  void setLabelCaption(const std::string& sCaption);
  void setLabelInVisible(bool bVisible);

  // Appends one line to the log: date, time, " R ", version, a blank and the record. Does nothing without a
  // log.
  void SessionLogEntry(const std::string& sRecord);
  static std::string StripNulls(const std::string& text);

  // Raised to the form's owner.
  std::function<void()> CommenceRestore;
  std::function<void()> CancelRestore;

  void Load();       // does nothing when it is already loaded
  void ShowModal();  // returns when the dialog has closed

  // Held while a dialog runs; only one can be.
  class Run {
   public:
    explicit Run(frmRestore& form) : m_form(form.m_running ? nullptr : &form) {
      if (m_form) m_form->m_running = true;
    }
    ~Run() {
      if (m_form) m_form->m_running = false;
    }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;
    explicit operator bool() const { return m_form != nullptr; }

   private:
    frmRestore* m_form;
  };

  // The controls; loads the form.
  FormControls& Controls();

 private:
  struct Loaded;
  void LoadSequence();
  void ReadClientPath();
  void SetUpIcon();
  template <std::invocable Body>
  void Skipping(Body&& body);

  platform::Platform m_platform;
  engine::Workspace& m_workspace;
  std::unique_ptr<Loaded> m_loaded;
  bool m_running = false;
};

}  // namespace kxrestore::dialog
