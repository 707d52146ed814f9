#include "dialog/search.h"

#include <algorithm>

#include "dialog/catalog_entries.h"
#include "dialog/hints.h"
#include "dialog/listing.h"
#include "dialog/settling.h"
#include "platform/desktop.h"

namespace kxrestore::dialog {

namespace {

constexpr std::size_t kCaptionEvery = 64;  // rows; the count need not be painted for each

}  // namespace

Search::Search(FormContext& context, SetTree& setTree, RestoreList& restoreList)
    : m_context(context), m_setTree(setTree), m_restoreList(restoreList) {
  FormControls& ui = m_context.ui;
  ui.cboMask.Enter = [this] { m_context.Command("cmdSearch.Click", [this] { cmdSearch_Click(2); }); };
  ui.cboMask.Down = [&ui] {
    if (ui.asSearch.Count() == 0) return false;
    ui.asSearch.SetFocus();
    return true;
  };
  ui.tbsOptions.GoIn = [&ui] {
    if (ui.tbsOptions.SelectedIndex() == 2) ui.cboMask.SetFocus();
    if (ui.tbsOptions.SelectedIndex() == 3) ui.asFiles.SetFocus();
  };
  auto& buttons = ui.cmdSearch;
  for (int index = 0; index < static_cast<int>(buttons.size()); ++index) {
    buttons[index].Click = [this, index] {
      m_context.Command("cmdSearch.Click", [this, index] { cmdSearch_Click(index); });
    };
  }
}

void Search::cmdSearch_Click(int index) {
  switch (index) {
    case 0:
      AddToSearchSelections();
      break;
    case 1:
      m_context.ui.asSearch.Clear();
      hints::BeforeSearch(m_context.ui);
      m_restoreList.UpdateCounts();
      break;
    case 2:
      AdvancedSearch();
      m_restoreList.UpdateCounts();
      break;
    default:  // "Select All" does nothing here
      break;
  }
}

void Search::AdvancedSearch() {
  m_context.Reporting("AdvancedSearch", [this] {
    controls::ComboBox& cboMask = m_context.ui.cboMask;
    const std::string mask = cboMask.Text();
    if (mask.empty()) {
      m_context.MessageBox("No Search String Defined.", platform::MessageStyle::kPlain, "");
      cboMask.SetFocus();
      return;
    }
    RememberMask(mask);
    List(mask);
  });
}

void Search::RememberMask(const std::string& mask) {
  controls::ComboBox& cboMask = m_context.ui.cboMask;
  const auto& masks = cboMask.Items();
  if (std::find(masks.begin(), masks.end(), mask) == masks.end()) cboMask.AddItem(mask);
}

void Search::List(const std::string& mask) {
  FormControls& ui = m_context.ui;
  FormContext::Walk walk(m_context, Work::kSearching);
  const bool latest = ui.chk1.Value() == 1;
  const LookIn lookIn = ReadLookIn(m_context, m_setTree, ui.optLookIn[0]);
  const auto database = m_context.OpenCatalog();
  const auto rows =
      OpenListing(m_context, *database, lookIn, latest, mask, CatalogEntries::Columns("OrigName", "SetName"));

  ui.asSearch.Clear();
  CatalogEntries entries(*rows, "OrigName", "SetName");
  for (std::size_t count = 0; !rows->Eof() && walk.Next(); rows->MoveNext()) {
    entries.AddCurrentRow(ui.asSearch, false);
    if (++count % kCaptionEvery == 0) ui.lblSearchCount.SetCaption(std::to_string(count) + " File(s)");
  }
  if (rows->Eof()) hints::NothingFound(ui, mask, lookIn.setId != 0);
  rows->Close();
  database->Close();
}

void Search::AddToSearchSelections() {
  // Marking makes each entry's run the current one; afterwards the run chosen in the set tree is current
  // again.
  const Choice before = m_context.choice;
  MarkingWalk walk(m_context, "AddToSearchSelections", Work::kMarking, m_context.ui.asSearch.Count());
  const RunOfEntries run(m_context);
  m_reached = 0;
  const MarkingWalk::End end = walk.Run([&] { MarkTicked(walk, run); });
  SettleMarked(m_context.ui.asSearch, walk, m_reached);
  Choice& now = m_context.choice;
  if (now.m_nodCurrent == before.m_nodCurrent) {
    now.m_lngSetID = before.m_lngSetID;
    now.m_strExtension = before.m_strExtension;
  }
  if (end == MarkingWalk::End::kDone) m_restoreList.ListCurrentSelections();
}

void Search::MarkTicked(MarkingWalk& walk, const RunOfEntries& run) {
  FormControls& ui = m_context.ui;
  const std::size_t count = ui.asSearch.Count();
  for (std::size_t number = 1; number <= count; ++number) {
    m_reached = number - 1;
    if (!walk.IsHopeless() && !walk.Next()) return;
    ui.asSearch.SetCurrent(number);
    ui.lblSearchCount.SetCaption("Scanning " + std::to_string(number));
    if (!ui.asSearch.Ticked()) continue;
    walk.Mark(number, [&] { return MarkCurrent(run); });
    m_restoreList.UpdateCounts();
  }
  m_reached = count;
}

catalog::MarkResult Search::MarkCurrent(const RunOfEntries& run) {
  const controls::AutoSelect& asSearch = m_context.ui.asSearch;
  Choice& choice = m_context.choice;
  choice.m_lngSetID = asSearch.SetId();
  choice.m_strExtension = asSearch.Extension();
  run.Use(choice.m_lngSetID, choice.m_strExtension);
  return catalog::MarkEntry(m_context.marks, asSearch.FileName(), asSearch.StoredName(), true);
}

}  // namespace kxrestore::dialog
