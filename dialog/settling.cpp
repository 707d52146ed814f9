#include "dialog/settling.h"

#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "dialog/catalog_entries.h"

namespace kxrestore::dialog {

namespace {

std::unordered_set<std::size_t> NotMarked(const MarkingWalk& walk) {
  return {walk.NotMarked().begin(), walk.NotMarked().end()};
}

// Entries of the restore list, and how to find them in the search list and in the tree.
struct Files {
  std::unordered_set<std::string> identities;
  std::unordered_set<std::string_view> storedNames;  // of those of the run that the tree shows
};

void AddStoredName(const FormContext& context, const controls::AutoSelect::Entry& entry, Files& files) {
  if (entry.setId == context.shownRun.setId && entry.extension == context.shownRun.extension) {
    files.storedNames.insert(entry.storedName);
  }
}

// Their ticks elsewhere are for files that are marked or not.
void SettleTicks(FormControls& ui, const Files& files, bool marked) {
  controls::AutoSelect& found = ui.asSearch;
  const std::size_t hits = files.identities.empty() ? 0 : found.Count();
  for (std::size_t number = 1; number <= hits; ++number) {
    if (found.TickedAt(number) && files.identities.contains(IdentityOf(found.At(number)))) {
      found.Settle(number, marked);
    }
  }
  controls::TreeView& tree = ui.tvwDetails;
  const std::size_t nodes = files.storedNames.empty() || tree.Files().checked == 0 ? 0 : tree.Count();
  for (std::size_t index = 1; index <= nodes; ++index) {
    controls::Node node = tree.Item(static_cast<std::uint32_t>(index));
    if (node.Checked() && files.storedNames.contains(node.Tag())) node.Settle(marked);
  }
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
  Files unmarked;
  for (std::size_t number = 1; number <= reached && number <= list.Count(); ++number) {
    if (list.TickedAt(number) || failed.contains(number)) continue;
    const auto entry = list.At(number);
    unmarked.identities.insert(IdentityOf(entry));
    AddStoredName(context, entry, unmarked);
  }
  SettleTicks(context.ui, unmarked, false);
}

void SettleListed(FormContext& context) {
  const controls::AutoSelect& list = context.ui.asRestoreList;
  const controls::AutoSelect& found = context.ui.asSearch;
  const bool inTree = context.ui.tvwDetails.Files().pending != 0;
  std::unordered_set<std::string> pending;
  const std::size_t hits = found.PendingCount() == 0 ? 0 : found.Count();
  for (std::size_t number = 1; number <= hits; ++number) {
    if (found.PendingAt(number)) pending.insert(IdentityOf(found.At(number)));
  }
  if (pending.empty() && !inTree) return;
  Files marked;
  for (std::size_t number = 1; number <= list.Count(); ++number) {
    const auto entry = list.At(number);
    if (inTree) AddStoredName(context, entry, marked);
    if (pending.empty()) continue;
    std::string identity = IdentityOf(entry);
    if (pending.contains(identity)) marked.identities.insert(std::move(identity));
  }
  SettleTicks(context.ui, marked, true);
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
