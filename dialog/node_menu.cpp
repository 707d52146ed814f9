#include "dialog/node_menu.h"

#include <vector>

#include "base/phrases.h"
#include "platform/desktop.h"

namespace kxrestore::dialog {

namespace {

constexpr const char* kDetailsMenu = "tvwDetails.Menu";
constexpr const char* kSetsMenu = "tvwSets.Menu";

}  // namespace

NodeMenu::NodeMenu(FormContext& context, NodeInfo& info) : m_context(context), m_info(info) {
  m_context.ui.tvwDetails.FillMenu = [this](controls::Menu& menu) {
    m_context.Reporting(kDetailsMenu, [&] { FillDetails(menu); });
  };
  m_context.ui.tvwSets.FillMenu = [this](controls::Menu& menu) {
    m_context.Reporting(kSetsMenu, [&] { FillSets(menu); });
  };
}

void NodeMenu::FillDetails(controls::Menu& menu) {
  if (menu.Subject() == 0) return;
  controls::TreeView& tree = m_context.ui.tvwDetails;
  const controls::Node node = tree.Item(static_cast<std::uint32_t>(menu.Subject()));
  const bool branch = node.HasChildren();
  const auto tick = [&](Phrase text, bool ticked) -> controls::Menu::Item& {
    return menu.Add(Say(text), [&tree, node, ticked] { tree.UserCheck(node, ticked); });
  };
  controls::Menu::Item& ticking = tick(branch ? Phrase::kMenuTickBranch : Phrase::kMenuTickFile, true);
  ticking.enabled = !node.Checked() || node.Mixed();
  controls::Menu::Item& unticking = tick(branch ? Phrase::kMenuUntickBranch : Phrase::kMenuUntickFile, false);
  unticking.enabled = node.Checked();
  menu.AddLine();
  if (branch) {
    const auto expand = [&](Phrase text, bool expanded) {
      menu.Add(Say(text), [this, node, expanded] {
        m_context.Command(kDetailsMenu, [this, node, expanded] { Expand(node, expanded); });
      });
    };
    expand(Phrase::kMenuExpandBelow, true);
    expand(Phrase::kMenuCollapseBelow, false);
    menu.AddLine();
    menu.Add(Say(Phrase::kMenuSumUp),
             [this, node] { m_context.Command(kDetailsMenu, [this, node] { m_info.SumUp(node); }); })
        .enabled = m_info.CanSumUp(node);
  }
  menu.Add(Say(Phrase::kMenuCopyPath), [this, node] {
    m_context.Event(kDetailsMenu, [&] { m_context.platform.desktop.CopyText(PathOf(node)); });
  });
}

void NodeMenu::FillSets(controls::Menu& menu) {
  if (menu.Subject() == 0 || !ChooseDay) return;
  const controls::Node node = m_context.ui.tvwSets.Item(static_cast<std::uint32_t>(menu.Subject()));
  const controls::Node run = node.Tag().empty() ? node.Child() : node;
  if (!run || run.Tag().empty()) return;  // neither a set nor one of its runs
  menu.Add(Say(Phrase::kMenuChooseDay),
           [this, node] { m_context.Command(kSetsMenu, [this, node] { ChooseDay(node); }); });
}

// Expands the branch and all folders below it, the innermost first, because that displays faster.
void NodeMenu::Expand(controls::Node branch, bool expanded) {
  std::vector<controls::Node> folders{branch};
  for (std::size_t i = 0; i < folders.size(); ++i) {
    for (controls::Node child = folders[i].Child(); child; child = child.Next()) {
      if (child.HasChildren()) folders.push_back(child);
    }
  }
  FormContext::Walk walk(m_context, Work::kExpanding, static_cast<std::int64_t>(folders.size()));
  for (auto folder = folders.rbegin(); folder != folders.rend() && walk.Next(); ++folder) {
    folder->SetExpanded(expanded);
  }
}

}  // namespace kxrestore::dialog
