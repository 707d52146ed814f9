#include "dialog/hints.h"

#include "base/phrases.h"
#include "platform/regional.h"

namespace kxrestore::dialog::hints {

void BeforeAnything(FormControls& ui) {
  ui.tvwSets.SetEmptyText(Say(Phrase::kHintNoCatalog));
  ui.tvwDetails.SetEmptyText(Say(Phrase::kHintChooseBackup));
  BeforeSearch(ui);
  NothingMarked(ui);
}

void AfterLoad(FormControls& ui, Loaded loaded) {
  switch (loaded) {
    case Loaded::kWhole:
      return ui.tvwDetails.SetEmptyText(Say(Phrase::kHintEmptyBackup));
    case Loaded::kStopped:
      return ui.tvwDetails.SetEmptyText(Say(Phrase::kHintLoadStopped));
    case Loaded::kFailed:
      return ui.tvwDetails.SetEmptyText(Say(Phrase::kHintLoadFailed));
  }
}

void BeforeSearch(FormControls& ui) {
  ui.asSearch.SetEmptyText(Say(Phrase::kHintSearch));
}

void NothingFound(FormControls& ui, const std::string& mask, bool inThisSet) {
  ui.asSearch.SetEmptyText(
      Say(inThisSet ? Phrase::kHintNotFoundInSet : Phrase::kHintNotFoundAnywhere, {mask}));
}

void EarlierMarks(FormContext& context, std::int64_t marked) {
  const Phrase phrase = OneOrMore(marked, Phrase::kHintEarlierMark, Phrase::kHintEarlierMarks);
  context.ui.asRestoreList.SetEmptyText(Say(phrase, {context.platform.regional.Grouped(marked)}));
}

void UnlistedMarks(FormControls& ui) {
  ui.asRestoreList.SetEmptyText(Say(Phrase::kHintUnlistedMarks));
}

void NothingMarked(FormControls& ui) {
  ui.asRestoreList.SetEmptyText(Say(Phrase::kHintNothingMarked));
}

}  // namespace kxrestore::dialog::hints
