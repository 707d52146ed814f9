#include "dialog/restore_list.h"

#include <string>

#include "catalog/listings.h"
#include "dialog/catalog_entries.h"
#include "platform/desktop.h"

namespace kxrestore::dialog {

namespace {

constexpr const char* kClick = "cmdRestore.Click";

}  // namespace

RestoreList::RestoreList(FormContext& context, Events events)
    : m_context(context), m_events(std::move(events)) {
  FormControls& ui = m_context.ui;
  for (int index : {0, 2, 3, 4}) {
    ui.cmdRestore[index].Click = [this, index] {
      m_context.Command(kClick, [&] { cmdRestore_Click(index); });
    };
  }

  // Cancel and the close box end a running walk first and then take their own steps.
  const auto cancel = [this] {
    m_context.StopThen([this] { m_context.Command(kClick, [this] { cmdRestore_Click(1); }); });
  };
  ui.cmdRestore[1].Click = cancel;
  ui.form.CloseRequest = [this] {
    m_context.StopThen([this] { m_context.Command("Form.Unload", [this] { m_context.ui.form.Unload(); }); });
  };
  ui.form.OnUnload = [this](bool& refuse) { Form_Unload(refuse); };
  ui.form.KeyPress = [this, cancel](controls::Key key) {
    if (key == controls::Key::kF5) {
      m_context.Command(kClick, [this] { cmdRestore_Click(2); });
    } else if (!m_context.Stop()) {
      cancel();
    }
  };
}

void RestoreList::ListCurrentSelections() {
  m_context.Reporting("ListCurrentSelections", [this] {
    controls::AutoSelect& list = m_context.ui.asRestoreList;
    FormContext::Walk walk(m_context);
    const auto database = m_context.OpenCatalog();
    const auto rows = catalog::OpenSelections(*database, CatalogEntries::Columns("RestoreFile", "Name"));
    const controls::RedrawFreeze freeze(list);
    list.Clear();
    CatalogEntries entries(*rows, "RestoreFile", "Name");
    for (; !rows->Eof(); rows->MoveNext()) {
      if (!walk.Next()) return;
      entries.AddCurrentRow(list, true);
    }
    UpdateCounts();
    rows->Close();
    database->Close();
  });
}

void RestoreList::UpdateCounts() {
  FormControls& ui = m_context.ui;
  m_context.Skipping([&] {
    const std::size_t selected = ui.asRestoreList.Count();
    ui.lblCounts[0].SetCaption(std::to_string(selected) + " file(s) selected");
    ui.cmdRestore[0].SetEnabled(selected >= 1);
  });
  m_context.Skipping([&] { ui.lblSearchCount.SetCaption(std::to_string(ui.asSearch.Count()) + " File(s)"); });
}

bool RestoreList::ApplyListChanges() {
  controls::AutoSelect& list = m_context.ui.asRestoreList;
  FormContext::Walk walk(m_context);
  const std::size_t count = list.Count();
  for (std::size_t number = 1; number <= count; ++number) {
    if (!walk.Next()) return false;
    if (list.TickedAt(number)) continue;
    const controls::AutoSelect::Entry entry = list.At(number);
    const bool written = catalog::MarkEntry(m_context.marks, entry.name, entry.storedName, false, entry.setId,
                                            entry.extension);
    if (!written) break;  // reported; the rest would fail alike
  }
  return true;
}

void RestoreList::cmdRestore_Click(int index) {
  switch (index) {
    case 0:
      RestoreNow();
      break;
    case 1:
      Cancel();
      break;
    case 2:
      ListCurrentSelections();
      break;
    case 3:
      // What was stopped half-way is not listed anew, so that the user's other changes stay in the list.
      if (ApplyListChanges()) ListCurrentSelections();
      break;
    case 4:
      Clear();
      break;
    default:
      break;
  }
}

void RestoreList::RestoreNow() {
  m_context.RaiseToHost(kClick, m_events.CommenceRestore);
  UnloadByCommand();
}

void RestoreList::Cancel() {
  if (m_context.ui.asRestoreList.Count() == 0) {
    m_context.RaiseToHost(kClick, m_events.CancelRestore);
  } else if (ConfirmCancel()) {
    CancelSelections();
  } else {
    return;
  }
  UnloadByCommand();
}

void RestoreList::Clear() {
  if (m_context.MessageBox("Clear All Selected Files? ", platform::kYesNo | platform::kQuestion,
                           "Clear Selection? ") != platform::kAnswerYes) {
    return;
  }
  m_context.ui.asRestoreList.Clear();
  const FormContext::Walk walk(m_context);
  m_context.marks.ClearSelections();
  UpdateCounts();
}

bool RestoreList::ConfirmCancel() {
  return m_context.MessageBox("You have selected files to " + m_context.parameters.Action() +
                                  ", Cancel will clear your selections, Cancel?",
                              platform::kYesNo | platform::kQuestion,
                              "Clear Selection?") == platform::kAnswerYes;
}

void RestoreList::CancelSelections() {
  {
    const FormContext::Walk walk(m_context);
    m_context.marks.CancelAll();
  }
  UpdateCounts();
  m_context.RaiseToHost(kClick, m_events.CancelRestore);
}

void RestoreList::UnloadByCommand() {
  m_closingByCommand = true;
  m_context.ui.form.Unload();
}

// Answering No to the question lets the form close all the same, with the marks kept; unlike the Cancel
// button, whose No keeps the form.
void RestoreList::Form_Unload(bool& refuse) {
  refuse = false;
  if (m_closingByCommand) return;
  m_context.Skipping([this] {
    if (m_context.ui.asRestoreList.Count() > 0 && ConfirmCancel()) CancelSelections();
  });
}

}  // namespace kxrestore::dialog
