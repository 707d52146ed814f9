#include "dialog/settling.h"

#include <string>
#include <unordered_set>

#include "dialog/catalog_entries.h"

namespace kxrestore::dialog {

namespace {

std::unordered_set<std::size_t> NotMarked(const MarkingWalk& walk) {
  return {walk.NotMarked().begin(), walk.NotMarked().end()};
}

}  // namespace

void SettleMarked(controls::AutoSelect& list, const MarkingWalk& walk, std::size_t reached) {
  const auto failed = NotMarked(walk);
  for (std::size_t number = 1; number <= reached && number <= list.Count(); ++number) {
    if (list.TickedAt(number) && !failed.contains(number)) list.Settle(number, true);
  }
}

void SettleMarked(controls::TreeView& tree, const MarkingWalk& walk, std::size_t reached) {
  const auto failed = NotMarked(walk);
  for (std::size_t index = 1; index <= reached; ++index) {
    controls::Node node = tree.Item(static_cast<std::uint32_t>(index));
    if (node.Checked() && !node.Tag().empty() && !failed.contains(index)) node.Settle(true);
  }
}

void SettleUnmarked(FormContext& context, const MarkingWalk& walk, std::size_t reached) {
  const controls::AutoSelect& list = context.ui.asRestoreList;
  const auto failed = NotMarked(walk);
  std::unordered_set<std::string> unmarked;
  std::unordered_set<std::string_view> shownInTree;  // their stored names
  for (std::size_t number = 1; number <= reached && number <= list.Count(); ++number) {
    if (list.TickedAt(number) || failed.contains(number)) continue;
    const auto entry = list.At(number);
    unmarked.insert(IdentityOf(entry));
    if (entry.setId == context.shownRun.setId && entry.extension == context.shownRun.extension)
      shownInTree.insert(entry.storedName);
  }
  if (unmarked.empty()) return;
  controls::AutoSelect& found = context.ui.asSearch;
  for (std::size_t number = 1; number <= found.Count(); ++number) {
    if (found.TickedAt(number) && unmarked.contains(IdentityOf(found.At(number)))) {
      found.Settle(number, false);
    }
  }
  if (shownInTree.empty() || context.ui.tvwDetails.Files().checked == 0) return;
  const std::size_t count = context.ui.tvwDetails.Count();
  for (std::size_t index = 1; index <= count; ++index) {
    controls::Node node = context.ui.tvwDetails.Item(static_cast<std::uint32_t>(index));
    if (node.Checked() && shownInTree.contains(node.Tag())) node.Settle(false);
  }
}

void SettleNothingMarked(FormControls& ui) {
  ui.asSearch.SettleAll(false);
  ui.asFiles.SettleAll(false);
  const std::size_t count = ui.tvwDetails.Files().checked == 0 ? 0 : ui.tvwDetails.Count();
  for (std::size_t index = 1; index <= count; ++index) {
    ui.tvwDetails.Item(static_cast<std::uint32_t>(index)).Settle(false);
  }
}

}  // namespace kxrestore::dialog
