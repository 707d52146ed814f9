#include "dialog/detail_actions.h"

#include <charconv>
#include <string>

#include "controls/check_propagation.h"
#include "dialog/catalog_entries.h"
#include "dialog/settling.h"

namespace kxrestore::dialog {

DetailActions::DetailActions(FormContext& context) : m_context(context) {
  auto& buttons = m_context.ui.cmdAction;
  for (int index = 0; index < static_cast<int>(buttons.size()); ++index) {
    buttons[static_cast<std::size_t>(index)].Click = [this, index] {
      m_context.Command("cmdAction.Click", [this, index] { cmdAction_Click(index); });
    };
  }
}

void DetailActions::cmdAction_Click(int index) {
  switch (index) {
    case 0:
      AddToSetSelections();
      break;
    case 1:
      ClearAll();
      break;
    case 2:
      ExpandAllDetails(true);
      break;
    case 3:
      ExpandAllDetails(false);
      break;
    default:
      break;
  }
}

void DetailActions::AddToSetSelections() {
  controls::Label& lblTreeCount = m_context.ui.lblTreeCount;
  lblTreeCount.SetVisible(true);
  MarkingWalk walk(m_context, "AddToSetSelections", Work::kMarking, m_context.ui.tvwDetails.Count());
  m_reached = 0;
  const MarkingWalk::End end = walk.Run([&] { MarkTicked(walk); });
  SettleMarked(m_context.ui.tvwDetails, walk, m_reached);
  if (end == MarkingWalk::End::kStopped) return;
  ListCurrentSelections();
  lblTreeCount.SetVisible(false);
}

void DetailActions::MarkTicked(MarkingWalk& walk) {
  FormControls& ui = m_context.ui;
  catalog::RestoreMarks& marks = m_context.marks;
  std::string caption;
  // Wider than 16 bits: a run may have a million files.
  std::int64_t scanned = 0;
  const int count = static_cast<int>(ui.tvwDetails.Count());
  for (int index = 1; index <= count; ++index) {
    m_reached = static_cast<std::size_t>(index) - 1;
    if (!walk.IsHopeless() && !walk.Next()) return;
    const controls::Node node = ui.tvwDetails.Item(index);
    const std::string_view tag = node.Tag();
    if (tag.empty()) {
      // A leaf without a tag is a file that the catalog stores without a name.
      if (node.Checked() && !node.HasChildren()) walk.CannotMark(static_cast<std::size_t>(index));
      continue;
    }
    char digits[24];
    caption.assign("Scanning ");
    caption.append(digits, std::to_chars(digits, digits + sizeof digits, ++scanned).ptr);
    ui.lblTreeCount.SetCaption(caption);
    if (!node.Checked()) continue;
    walk.Mark(static_cast<std::size_t>(index), [&] {
      return node.Text() == kMailServer ? marks.UpdateSelectionByFile(tag, true, 0, "")
                                        : marks.UpdateSelectionByFileName(tag, true, 0, "");
    });
  }
  m_reached = static_cast<std::size_t>(count);
}

// A run has a top node for each drive and each plug-in.
void DetailActions::ClearAll() {
  for (controls::Node root = m_context.ui.tvwDetails.FirstRoot(); root; root = root.Next()) {
    m_context.Skipping([&] {
      root.SetChecked(false);
      controls::CheckParents(root);
      controls::CheckChildren(root);
    });
  }
}

void DetailActions::ExpandAllDetails(bool expand) {
  controls::TreeView& tree = m_context.ui.tvwDetails;
  FormContext::Walk walk(m_context, Work::kExpanding, static_cast<std::int64_t>(tree.Count()));
  const int count = static_cast<int>(tree.Count());
  for (int index = 1; index <= count && walk.Next(); ++index) {
    m_context.Skipping([&] {
      controls::Node node = tree.Item(index);
      if (node.HasChildren() && node.Expanded() != expand) node.SetExpanded(expand);
    });
  }
}

}  // namespace kxrestore::dialog
