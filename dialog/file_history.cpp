#include "dialog/file_history.h"

#include <memory>
#include <utility>

#include "base/phrases.h"
#include "catalog/listings.h"
#include "controls/list_menu.h"
#include "dialog/catalog_entries.h"
#include "platform/desktop.h"

namespace kxrestore::dialog {

using controls::AutoSelect;
using controls::Menu;
using controls::Node;

namespace {

constexpr const char* kVersions = "AllVersions";
constexpr const char* kInBackup = "ShowInBackup";
constexpr const char* kListMenu = "List.Menu";
constexpr const char* kTreeMenu = "tvwDetails.Menu";

}  // namespace

FileHistory::FileHistory(FormContext& context, SetTree& setTree, RestoreList& restoreList)
    : m_context(context), m_setTree(setTree), m_restoreList(restoreList) {
  FormControls& ui = m_context.ui;
  for (AutoSelect* const list : {&ui.asRestoreList, &ui.asSearch}) {
    list->FillMenu = [this, list](Menu& menu) {
      m_context.Reporting(kListMenu, [&] {
        controls::AddTickItems(menu, *list);
        if (menu.Subject() != 0 && menu.Subject() <= list->Count()) {
          AddFileItems(menu, FileOf(list->At(menu.Subject())), true);
        }
      });
    };
  }
  ui.asFiles.FillMenu = [this](Menu& menu) {
    m_context.Reporting(kListMenu, [&] { controls::AddTickItems(menu, m_context.ui.asFiles); });
  };
  ui.tvwDetails.FillMenu = [this, before = ui.tvwDetails.FillMenu](Menu& menu) {
    if (before) before(menu);
    m_context.Reporting(kTreeMenu, [&] {
      if (menu.Subject() == 0) return;
      const Node node = m_context.ui.tvwDetails.Item(static_cast<std::uint32_t>(menu.Subject()));
      if (node.Tag().empty()) return;
      menu.AddLine();
      AddFileItems(menu, FileOf(node), false);
    });
  };
}

// The items share the file: copying it on choice could run out of memory outside the command's error
// handling.
void FileHistory::AddFileItems(Menu& menu, File file, bool inItsBackup) {
  const auto shared = std::make_shared<const File>(std::move(file));
  menu.Add(Say(Phrase::kMenuAllVersions),
           [this, shared] { m_context.Command(kVersions, [this, shared] { ShowAllVersions(*shared); }); });
  if (!inItsBackup) return;
  menu.Add(Say(Phrase::kMenuShowInBackup),
           [this, shared] { m_context.Command(kInBackup, [this, shared] { ShowInBackup(*shared); }); });
}

FileHistory::File FileHistory::FileOf(const AutoSelect::Entry& entry) {
  return {entry.setId, std::string(entry.extension), std::string(entry.storedName),
          IsAggregateName(entry.name), std::string(entry.name)};
}

FileHistory::File FileHistory::FileOf(Node node) const {
  const catalog::CurrentRun& run = m_context.shownRun;
  return {run.setId, run.extension, std::string(node.Tag()), node.Text() == kMailServer,
          std::string(node.Tag())};
}

void FileHistory::ShowAllVersions(const File& file) {
  m_context.Reporting(kVersions, [&] { ListVersions(file); });
  m_restoreList.UpdateCounts();
}

// Sets the search tab as if the user had searched for these hits.
void FileHistory::ListVersions(const File& file) {
  FormControls& ui = m_context.ui;
  ui.tbsOptions.SetSelectedIndex(2);
  ui.optLookIn[1].SetValue(true);
  ui.chk1.SetValue(0);
  ui.cboMask.SetText(catalog::NameAsMask(file.shownName));

  FormContext::Walk walk(m_context, Work::kSearching);
  const auto database = m_context.OpenCatalog();
  const auto rows = catalog::OpenVersions(*database, file.setId, file.extension, file.storedName,
                                          file.aggregate, CatalogEntries::Columns("OrigName", "SetName"));
  ui.asSearch.Clear();
  ui.asSearch.ShowFilter(false);
  ui.asSearch.SetFilter({});
  ui.asSearch.Unsort();
  CatalogEntries entries(*rows, "OrigName", "SetName");
  for (; !rows->Eof() && walk.Next(); rows->MoveNext()) entries.AddCurrentRow(ui.asSearch, false);
  rows->Close();
  database->Close();
  ui.asSearch.FindVersions();
  ui.asSearch.SetFocus();
}

void FileHistory::ShowInBackup(const File& file) {
  m_context.Reporting(kInBackup, [&] {
    FormControls& ui = m_context.ui;
    const Node run = RunNode(file);
    if (!run) {
      m_context.MessageBox(Say(Phrase::kBackupNotListed), platform::MessageStyle::kWarning, "");
      return;
    }
    if (!ChooseRun(run)) return;
    ui.tbsOptions.SetSelectedIndex(1);
    const Node node = FileNode(file);
    if (!node) {
      if (!m_context.Stopped()) {
        m_context.MessageBox(Say(Phrase::kNotInBackup), platform::MessageStyle::kWarning, "");
      }
      return;
    }
    for (Node above = node.Parent(); above; above = above.Parent()) above.SetExpanded(true);
    ui.tvwDetails.SetSelectedItem(node);
    ui.tvwDetails.SetFocus();
  });
}

Node FileHistory::RunNode(const File& file) const {
  const std::string tag = std::to_string(file.setId) + " " + file.extension;
  for (Node root = m_context.ui.tvwSets.FirstRoot(); root; root = root.Next()) {
    for (Node set = root.Child(); set; set = set.Next()) {
      for (Node run = set.Child(); run; run = run.Next()) {
        if (run.Tag() == tag) return run;
      }
    }
  }
  return {};
}

// Returns whether the detail tree shows the run.
bool FileHistory::ChooseRun(Node run) {
  FormControls& ui = m_context.ui;
  const catalog::CurrentRun& shown = m_context.shownRun;
  const bool isShown = m_context.choice.m_nodCurrent == run && ui.tvwDetails.Count() != 0 &&
                       std::to_string(shown.setId) == TagSetID(run.Tag()) &&
                       shown.extension == TagExtension(run.Tag());
  if (isShown) return true;
  if (ui.tvwDetails.Files().pending != 0 &&
      m_context.MessageBox(Say(Phrase::kLosingTreeTicks), platform::MessageStyle::kQuestion,
                           Say(Phrase::kLosingTicksTitle)) != platform::Answer::kYes) {
    return false;
  }
  run.Parent().SetExpanded(true);
  ui.tvwSets.SetSelectedItem(run);
  m_setTree.tvwSets_NodeClick(run);
  return true;
}

Node FileHistory::FileNode(const File& file) const {
  controls::TreeView& tree = m_context.ui.tvwDetails;
  const std::size_t count = tree.Count();
  for (std::size_t index = 1; index <= count; ++index) {
    const Node node = tree.Item(static_cast<std::uint32_t>(index));
    const std::string_view tag = node.Tag();
    if (!tag.empty() && (tag == file.storedName || (file.aggregate && node.Text() == file.storedName))) {
      return node;
    }
  }
  return {};
}

}  // namespace kxrestore::dialog
