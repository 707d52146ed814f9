// The user's steps on a catalog of seven files, for sweeps that make each call fail, or interrupt it, in
// turn. The conditions that hold after every step: the list shows the marks of the catalog, or a report says
// that it cannot; every ticked file is marked or counted in a report; no other file is marked.
#pragma once

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/headless/headless_menu.h"
#include "tests/dialog/dialog_fixture.h"

namespace kxrestore::dialog_test {

enum class Step {
  kLoad,
  kChoose,
  kSearch,
  kLatest,
  kApply,
  kSearchApply,
  kTickShown,
  kAutoSelect,
  kVersions,
  kUpdate,
  kClear,
  kCancel,
  kRestoreNow
};
inline constexpr const char* kStepNames[] = {
    "load",          "choose",         "search",      "search the latest", "Apply",
    "search, Apply", "Tick all shown", "auto-select", "All versions",      "Update",
    "Clear",         "Cancel",         "Restore Now"};
inline constexpr std::size_t kSteps = std::size(kStepNames);
inline const Ids kAllFiles{1, 2, 3, 4, 5, 6, 7}, kTicked{2, 3, 4, 5, 6};

inline std::string FileOf(std::int64_t id) {
  return std::to_string(id) + ".doc";
}
inline std::vector<sample::FileRow> SweepRows() {
  std::vector<sample::FileRow> rows;
  for (const std::int64_t id : kAllFiles) rows.push_back(Row(id, 1, "003", "C:\\Data\\" + FileOf(id)));
  return rows;
}
// SQL that sets the marks in the catalog before a step.
inline const char* MarksBefore(Step step) {
  return step >= Step::kUpdate ? "UPDATE Catalog SET Restore = TRUE" : "UPDATE Catalog SET Restore = FALSE";
}

// The files in a list: all, or only the ticked or unticked ones.
inline Ids FilesIn(const AutoSelect& list, std::optional<bool> ticked = {}) {
  Ids ids;
  for (std::size_t i = 1; i <= list.Count(); ++i) {
    if (!ticked || list.TickedAt(i) == *ticked) ids.insert(list.At(i).name[8] - '0');
  }
  return ids;
}

// Prepares the dialog for a step: ticks files 2 to 6, or unticks them in the restore list.
inline void Prepare(Step step, FormControls& ui) {
  const auto tick = [](AutoSelect& list, bool ticked) {
    for (std::size_t i = 1; i <= list.Count(); ++i) {
      if (kTicked.contains(list.At(i).name[8] - '0')) list.UserTick(i, ticked);
    }
  };
  switch (step) {
    case Step::kLoad:
    case Step::kChoose:
      break;
    case Step::kApply:
      ui.tvwSets.UserClickNode(NodeFrom(ui.tvwSets.FirstRoot(), "1 003"));
      // Even numbers by their check boxes, odd ones by the menu.
      for (const std::int64_t id : kTicked) {
        const controls::Node file = NodeFrom(ui.tvwDetails.FirstRoot(), FileOf(id));
        if (id % 2 == 0) {
          ui.tvwDetails.UserCheck(file, true);
        } else {
          platform::HeadlessMenu(ui.tvwDetails, file.Index()).Choose("Tick");
        }
      }
      break;
    case Step::kSearch:
    case Step::kLatest:
    case Step::kSearchApply:
    case Step::kTickShown:
    case Step::kVersions:
      ui.tbsOptions.UserSelect(2);
      ui.cboMask.UserType(".doc");
      ui.chk1.SetValue(step == Step::kLatest ? 1 : 0);
      if (step == Step::kSearch || step == Step::kLatest) break;
      ui.cmdSearch[kFind].UserClick();
      if (step == Step::kTickShown) {
        controls::ListFilter sizesOfTicked;
        sizesOfTicked.minSize = 102;
        sizesOfTicked.maxSize = 106;
        ui.asSearch.UserFilter(sizesOfTicked);
        platform::HeadlessMenu(ui.asSearch).Choose("Tick all shown");
      } else {
        tick(ui.asSearch, true);
      }
      break;
    case Step::kAutoSelect:
      ui.tbsOptions.UserSelect(3);
      ui.chk2.SetValue(0);
      for (std::size_t i = 1; i <= ui.asFiles.Count(); ++i) ui.asFiles.UserTick(i, true);
      break;
    default:
      ui.cmdRestore[kRefresh].UserClick();
      if (step == Step::kUpdate) tick(ui.asRestoreList, false);
  }
}

// Presses the step's button.
inline void Start(Step step, FormControls& ui) {
  switch (step) {
    case Step::kLoad:
      return;
    case Step::kChoose:
      return ui.tvwSets.UserClickNode(NodeFrom(ui.tvwSets.FirstRoot(), "1 003"));
    case Step::kSearch:
    case Step::kLatest:
      return ui.cmdSearch[kFind].UserClick();
    case Step::kApply:
      return ui.cmdAction[kApply].UserClick();
    case Step::kSearchApply:
    case Step::kTickShown:
      return ui.cmdSearch[kApplyFound].UserClick();
    case Step::kVersions:
      platform::HeadlessMenu(ui.asSearch, 3).Choose("All versions of this file");
      return;
    case Step::kAutoSelect:
      return ui.cmdAuto[kApplyTypes].UserClick();
    default:
      constexpr RestoreButton kButtons[] = {kUpdate, kClearList, kCancel, kRestoreNow};
      return ui.cmdRestore[kButtons[static_cast<int>(step) - static_cast<int>(Step::kUpdate)]].UserClick();
  }
}

// How precise the reports of a fault must be.
enum class Told {
  kExactly,   // titled by the routine, with the exact number of files
  kAtLeast,   // the number may include files whose commit succeeded although its reply was lost
  kSomehow,   // any report
  kNoMemory,  // no report, because a message box needs memory
};

// The state after a step.
struct Ending {
  Ids marked;  // in the catalog
  std::size_t commenced = 0;
  const std::vector<platform::HeadlessDesktop::Message>& messages;
  Told told = Told::kExactly;
  bool stopped = false;  // by the user

  bool Reported(std::string_view title = {}) const {
    if (told == Told::kNoMemory) return true;
    return std::any_of(messages.begin(), messages.end(), [&](const auto& message) {
      return message.style == platform::MessageStyle::kWarning &&
             (told == Told::kSomehow || message.title.starts_with(title));
    });
  }
  std::size_t Counted() const {
    std::size_t count = 0;
    for (const auto& message : messages) {
      if (message.text.ends_with(" file(s) could not be marked.")) count += std::stoul(message.text);
    }
    return count;
  }
};

// The conditions that do not hold after a step; empty when all hold.
inline std::string Wrong(Step step, FormControls& ui, const Ending& end) {
  std::string wrong;
  const auto hold = [&](bool holds, const char* what) {
    if (!holds) wrong.append(wrong.empty() ? "" : "; ").append(what);
  };
  for (const auto& message : end.messages) {
    hold(message.text.find("PWD") == std::string::npos, "a report shows the password");
    hold(message.text.find("Internal error") == std::string::npos, "an unforeseen error");
  }
  hold(end.commenced == 0 || end.marked == kAllFiles, "the host was called with wrong marks");
  if (!ui.form.IsOpen()) {
    if (step == Step::kRestoreNow && !end.stopped) {
      hold(end.commenced == 1, "closed without having restored");
    } else if (end.commenced == 0) {
      hold(end.stopped || step == Step::kCancel, "closed without Cancel");
      hold(end.marked.empty() || end.Reported("CancelAll"), "closed with marks left and no report");
    }
    return wrong;
  }
  hold(end.commenced == 0, "the host was called, but the dialog is open");
  const bool listFailed = end.Reported("ListCurrentSelections");
  hold(listFailed || FilesIn(ui.asRestoreList) == end.marked, "the list differs from the marks");

  Ids wanted, missed;  // missed: wanted, but not marked
  const bool strict = end.told <= Told::kAtLeast;
  switch (step) {
    case Step::kLoad:
      hold(!strict || end.Reported() || NodeFrom(ui.tvwSets.FirstRoot(), "1 003"), "runs are missing");
      break;
    case Step::kChoose:
      hold(!strict || end.Reported() || ui.tvwDetails.Count() == 2 + kAllFiles.size(), "files are missing");
      break;
    case Step::kSearch:
    case Step::kLatest:
      hold(end.Reported() || ui.asSearch.Count() == kAllFiles.size(), "hits are missing");
      break;
    case Step::kUpdate:
      hold(end.marked.contains(1) && end.marked.contains(7), "ticked files have lost their marks");
      std::set_intersection(kTicked.begin(), kTicked.end(), end.marked.begin(), end.marked.end(),
                            std::inserter(missed, missed.end()));
      hold(end.told != Told::kExactly || end.stopped || listFailed ||
               FilesIn(ui.asRestoreList, false) == missed,
           "a file that could not be unmarked is ticked again");
      break;
    case Step::kVersions:
      hold(end.marked.empty(), "a file is marked without Apply");
      // A search that fails before its first hit keeps the previous hits and their ticks.
      hold(ui.asSearch.Count() == 1 || end.stopped ||
               (end.Reported() && (ui.asSearch.Count() == 0 || ui.asSearch.PendingCount() == kTicked.size())),
           "versions are missing, or ticks lost");
      return wrong;
    case Step::kApply:
    case Step::kSearchApply:
    case Step::kTickShown:
    case Step::kAutoSelect:
      wanted = step == Step::kAutoSelect ? kAllFiles : kTicked;
      std::set_difference(wanted.begin(), wanted.end(), end.marked.begin(), end.marked.end(),
                          std::inserter(missed, missed.end()));
      break;
    case Step::kRestoreNow:
      hold(end.marked == kAllFiles || end.Reported(), "marks are lost without a report");
      return wrong;
    default:
      hold(end.marked.empty() || end.stopped || end.Reported(), "marks are left without a report");
      return wrong;
  }
  hold(step == Step::kUpdate ||
           std::includes(wanted.begin(), wanted.end(), end.marked.begin(), end.marked.end()),
       "a file is marked that was not ticked");
  if (end.stopped) return wrong;
  // A listing that fails midway has its own report. The rows that it did not return cannot be counted.
  const bool cutShort = step == Step::kAutoSelect && end.Reported("ApplyAutoSelect");
  const std::size_t counted = end.Counted();
  hold(missed.empty() || end.Reported(), "files are not marked, without a report");
  hold(!strict || cutShort || counted >= missed.size(), "too few files are counted");
  hold(end.told != Told::kExactly || counted <= missed.size(), "too many files are counted");
  hold(end.told != Told::kExactly || listFailed || wanted.empty() ||
           ui.cmdRestore[kRestoreNow].Enabled() == !end.marked.empty(),
       "Restore Now is enabled wrongly");
  return wrong;
}

}  // namespace kxrestore::dialog_test
