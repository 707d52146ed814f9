#include "dialog/restore_list.h"

#include <string>
#include <utility>

#include "base/phrases.h"
#include "catalog/listings.h"
#include "dialog/catalog_entries.h"
#include "dialog/hints.h"
#include "dialog/marking_walk.h"
#include "dialog/settling.h"
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
      m_context.Command(kClick, [this, index] { cmdRestore_Click(index); });
    };
  }

  // Cancel and the close box first end a running walk.
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
      if (!m_context.AnythingPending || !m_context.AnythingPending()) return cancel();
      m_context.Command(kClick, [this] {
        if (ConfirmLosingTicks()) cmdRestore_Click(1);
      });
    }
  };
  m_context.ListMarksAnew = [this] { ListCurrentSelections(); };
}

// Lists committed marks only: a later commit could fail and leave marks in the list that do not exist.
RestoreList::Listing RestoreList::List() {
  m_context.Commit("ListCurrentSelections");
  m_context.ListingMarks();
  m_incomplete = true;
  m_context.Skipping([this] { hints::UnlistedMarks(m_context.ui); });
  const auto keptUnticked = std::exchange(m_keptUnticked, {});
  m_context.Reporting("ListCurrentSelections", [&] {
    controls::AutoSelect& list = m_context.ui.asRestoreList;
    FormContext::Walk walk(m_context, Work::kListing);
    const auto database = m_context.OpenCatalog();
    const auto rows = catalog::OpenSelections(*database, CatalogEntries::Columns("RestoreFile", "Name"));
    const controls::RedrawFreeze freeze(list);
    list.Clear();
    CatalogEntries entries(*rows, "RestoreFile", "Name");
    auto unticked = keptUnticked;
    for (; !rows->Eof(); rows->MoveNext()) {
      if (!walk.Next()) return;
      const std::size_t number = entries.AddCurrentRow(list, true);
      if (unticked.empty()) continue;
      const auto kept = unticked.find(IdentityOf(list.At(number)));
      if (kept == unticked.end() || kept->second == 0) continue;
      --kept->second;
      list.SetTicked(number, false);
    }
    m_incomplete = m_context.unlistedMarks = false;
    hints::NothingMarked(m_context.ui);
    m_hadSelections = list.Count() > 0;
    UpdateCounts();
    rows->Close();
    database->Close();
    SettleListed(m_context);
  });
  if (!m_incomplete) return Listing::kComplete;
  return m_context.Stopped() ? Listing::kStopped : Listing::kFailed;
}

// When the dialog opens the list is empty until the user asks for it, whatever is marked.
void RestoreList::TellEarlierMarks() {
  m_context.InBackground("Form.Shown", [this] {
    const auto database = m_context.OpenCatalog();
    const auto rows = catalog::CountSelections(*database);
    const std::int64_t marked = rows->Fields("Files").Integer();
    if (marked > 0 && m_context.ui.asRestoreList.Count() == 0) hints::EarlierMarks(m_context, marked);
  });
}

void RestoreList::UpdateCounts() {
  FormControls& ui = m_context.ui;
  if (m_context.onMarksListed) m_context.onMarksListed();
  m_context.Skipping([&] {
    const std::size_t selected = ui.asRestoreList.Count();
    ui.lblCounts[0].SetCaption(std::to_string(selected) + " file(s) selected");
    ui.cmdRestore[0].SetEnabled(selected >= 1);
    if (m_context.ShowSums) m_context.ShowSums();
  });
  m_context.Skipping([&] { ui.lblSearchCount.SetCaption(std::to_string(ui.asSearch.Count()) + " File(s)"); });
}

void RestoreList::Update() {
  // After a stop the list is not refilled, so that the user's other changes stay.
  if (ApplyListChanges()) ListCurrentSelections();
}

// Returns false when the user stopped it.
bool RestoreList::ApplyListChanges() {
  const controls::AutoSelect& list = m_context.ui.asRestoreList;
  catalog::RestoreMarks& marks = m_context.marks;
  MarkingWalk walk(m_context, "ApplyListChanges", Work::kUnmarking, list.Count());
  std::size_t reached = 0;
  const MarkingWalk::End end = walk.Run([&] {
    const RunOfEntries run(m_context);
    for (const std::size_t count = list.Count(); reached < count; ++reached) {
      const std::size_t number = reached + 1;
      if (!walk.IsHopeless() && !walk.Next()) return;
      if (list.TickedAt(number)) continue;
      walk.Mark(number, [&] {
        const controls::AutoSelect::Entry entry = list.At(number);
        run.Use(SetIdOf(entry), entry.extension);
        return catalog::MarkEntry(marks, entry.name, entry.storedName, false);
      });
    }
  });
  SettleUnmarked(m_context, walk, reached);
  m_keptUnticked.clear();
  for (const std::size_t number : walk.NotMarked()) ++m_keptUnticked[IdentityOf(list.At(number))];
  for (std::size_t number = reached + 1; number <= list.Count(); ++number) {
    if (!list.TickedAt(number)) ++m_keptUnticked[IdentityOf(list.At(number))];
  }
  return end == MarkingWalk::End::kDone;
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
      Update();
      break;
    case 4:
      Clear();
      break;
    default:
      break;
  }
}

void RestoreList::RestoreNow() {
  if (ListUnlistedMarks() != Listing::kComplete || !m_context.ui.cmdRestore[0].Enabled()) return;
  if (m_context.RaiseToHost(kClick, m_events.CommenceRestore, false)) UnloadByCommand();
}

void RestoreList::Cancel() {
  const Clearing clearing = ClearAfterQuestion();
  if (clearing == Clearing::kRefused || clearing == Clearing::kStopped) return;
  m_context.RaiseToHost(kClick, m_events.CancelRestore, true);
  UnloadByCommand();
}

// Refills the list if it does not show all marks.
RestoreList::Listing RestoreList::ListUnlistedMarks() {
  return m_incomplete || m_context.unlistedMarks ? List() : Listing::kComplete;
}

// Without a current list, what is known of the marks decides.
bool RestoreList::HasSelections() const {
  return m_context.ui.asRestoreList.Count() > 0 || m_context.unlistedMarks ||
         (m_incomplete && m_hadSelections);
}

RestoreList::Clearing RestoreList::ClearAfterQuestion() {
  if (ListUnlistedMarks() == Listing::kStopped) return Clearing::kStopped;
  if (!HasSelections()) return Clearing::kNothingSelected;
  if (!ConfirmCancel()) return Clearing::kRefused;
  const Progress::Walk clearing(m_context.progress, Work::kClearing);
  // A stop keeps every mark and leaves the form open. Marks that cannot be cleared are reported, and the form
  // closes anyway.
  if (m_context.marks.CancelAll() == catalog::MarkResult::kFailed && m_context.Stopped())
    return Clearing::kStopped;
  UpdateCounts();
  return Clearing::kCleared;
}

void RestoreList::Clear() {
  if (m_context.MessageBox("Clear All Selected Files? ", platform::MessageStyle::kQuestion,
                           "Clear Selection? ") != platform::Answer::kYes) {
    return;
  }
  const Progress::Walk clearing(m_context.progress, Work::kClearing);
  m_context.ui.asRestoreList.Clear();
  if (m_context.marks.ClearSelections() == catalog::MarkResult::kFailed) {
    m_context.CommitLost();  // the marks are still there
  } else {
    m_incomplete = m_context.unlistedMarks = m_hadSelections = false;
    hints::NothingMarked(m_context.ui);
    SettleNothingMarked(m_context.ui);
  }
  UpdateCounts();
}

bool RestoreList::ConfirmCancel() {
  return m_context.MessageBox("You have selected files to " + m_context.parameters.Action() +
                                  ", Cancel will clear your selections, Cancel?",
                              platform::MessageStyle::kQuestion,
                              "Clear Selection?") == platform::Answer::kYes;
}

bool RestoreList::ConfirmLosingTicks() {
  return m_context.MessageBox(Say(Phrase::kLosingTicks), platform::MessageStyle::kQuestion,
                              Say(Phrase::kLosingTicksTitle)) == platform::Answer::kYes;
}

void RestoreList::UnloadByCommand() {
  m_closingByCommand = true;
  m_context.ui.form.Unload();
}

// Here the answer No closes the form and keeps the marks, unlike for the Cancel button, where it keeps the
// form open. With nothing selected no event is raised.
void RestoreList::Form_Unload(bool& refuse) {
  refuse = false;
  if (m_closingByCommand) return;
  m_context.Skipping([&] {
    const Clearing clearing = ClearAfterQuestion();
    refuse = clearing == Clearing::kStopped;
    if (clearing == Clearing::kCleared) m_context.RaiseToHost(kClick, m_events.CancelRestore, true);
  });
}

}  // namespace kxrestore::dialog
