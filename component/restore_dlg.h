// The restore dialog for hosts: set parameters, call DefineRestoreSet, handle CommenceRestore. The COM class
// is a thin wrapper; a C++ host on any platform can use this class directly.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <type_traits>
#include <utility>

#include "dialog/parameters.h"

namespace kxrestore::dialog {
class frmRestore;
}

namespace kxrestore::component {

// Owns the one form of a process. Every RestoreDlg of the process is given the same provider, so all of them
// share the form and its parameters.
class FormProvider {
 public:
  virtual ~FormProvider() = default;
  // The form, created at the first call; creating does not load it.
  virtual dialog::frmRestore& Form() = 0;
  // Carries out a change of the form's parameters; a provider that several threads use may defer it.
  virtual void ApplySetting(const std::function<void()>& change) { change(); }
};

// Single-threaded. No member throws: a failing step is skipped and the next one runs.
class RestoreDlg {
 public:
  explicit RestoreDlg(FormProvider& forms);
  RestoreDlg(const RestoreDlg&) = delete;
  RestoreDlg& operator=(const RestoreDlg&) = delete;
  ~RestoreDlg();

  // Raised while the dialog is still showing, after the user chose to restore. The marks are in the catalog
  // by then.
  std::function<void()> CommenceRestore;

  // Runs the dialog. 1 when it ended in a commit, 0 otherwise; 0 at once while a dialog of this process is
  // running.
  std::int16_t DefineRestoreSet();

  // Sets a parameter of the shared form: Set(&Parameters::DBName, path).
  template <class Value>
  void Set(Value dialog::Parameters::*member, std::type_identity_t<Value> value) {
    Change(
        [member, value = std::move(value)](dialog::Parameters& parameters) { parameters.*member = value; });
  }

  // Applied to the form by each DefineRestoreSet of this object; an empty caption leaves the form's own.
  std::string frmCaption;
  std::string btnCaption;
  std::string lblCaption;
  bool lblInVisible = false;

 private:
  void Change(std::function<void(dialog::Parameters&)> change);

  FormProvider& m_forms;
};

}  // namespace kxrestore::component
