// The restore form: the parameters of a run, loading and showing the dialog, and its two events. There is one
// form a process; it outlives the dialogs that it shows. Each load makes the controls anew, as designed; when
// the dialog has closed they are gone, while the parameters stay.
//
// One thread. What touches the form or a control loads the form first. An error of a member is skipped; only
// Controls() may throw.
#pragma once

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

  Parameters parameters;  // what a host sets counts from the next load on

  void setWindowCaption(const std::string& sCaption);
  void setButtonCaption(const std::string& sCaption);
  void setLabelCaption(const std::string& sCaption);
  void setLabelInVisible(bool bVisible);

  // Appends one line to the log: date, time, " R ", version, a blank and the record. Nothing where there is
  // no log.
  void SessionLogEntry(const std::string& sRecord);
  static std::string StripNulls(const std::string& text);

  // Raised to the form's owner.
  std::function<void()> CommenceRestore;
  std::function<void()> CancelRestore;

  void Load();       // nothing when it is loaded
  void ShowModal();  // returns when the dialog has closed

  // Held by whoever runs a dialog; only one can.
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
  template <class Body>
  void Skipping(Body&& body);

  platform::Platform m_platform;
  engine::Workspace& m_workspace;
  std::unique_ptr<Loaded> m_loaded;
  bool m_running = false;
};

}  // namespace kxrestore::dialog
