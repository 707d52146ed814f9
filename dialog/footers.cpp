#include "dialog/footers.h"

#include "controls/list_rows.h"
#include "dialog/sizes.h"
#include "platform/regional.h"

namespace kxrestore::dialog {

using controls::AutoSelect;
using controls::FooterText;

Footers::Footers(FormContext& context) : m_context(context) {
  FormControls& ui = m_context.ui;
  for (AutoSelect* const list : {&ui.asRestoreList, &ui.asSearch}) {
    list->DescribeFooter = [this, list] { return OfFiles(*list); };
  }
  // Update removes marks, Apply only sets them.
  ui.asRestoreList.SetPendingTick(false);
  ui.asSearch.SetPendingTick(true);
  ui.asFiles.SetPendingTick(true);
  ui.asFiles.DescribeFooter = [this] { return OfTypes(m_context.ui.asFiles); };
  ui.tvwDetails.DescribeFooter = [this] { return OfTree(); };
  m_context.AnythingPending = [this] { return AnythingPending(); };
  m_context.ShowSums = [this] { ShowBytes(); };
}

std::string Footers::Pending(const AutoSelect& list, Phrase phrase) const {
  const std::size_t count = list.PendingCount();
  if (count == 0) return {};
  return Say(phrase, {m_context.platform.regional.Grouped(static_cast<std::int64_t>(count))});
}

// "2,187 files, 1.4 GB"
std::string Footers::Files(const AutoSelect::Sum& sum) const {
  const platform::Regional& regional = m_context.platform.regional;
  const std::string size = SizeInPeoplesUnits(regional, sum.size);
  if (sum.entries == 1) return Say(Phrase::kSumFile, {size});
  return Say(Phrase::kSumFiles, {regional.Grouped(static_cast<std::int64_t>(sum.entries)), size});
}

// Under a filter it says how many of how many. A single set is not mentioned.
FooterText Footers::OfFiles(const AutoSelect& list) const {
  const platform::Regional& regional = m_context.platform.regional;
  const bool marked = &list == &m_context.ui.asRestoreList;
  FooterText text;
  text.pending = Pending(list, marked ? Phrase::kPendingUpdate : Phrase::kPendingApply);
  const AutoSelect::Sum shown = list.Shown();
  if (list.Count() == 0) return text;
  text.sums = Files(shown);
  if (shown.sets > 1) {
    text.sums = Say(Phrase::kSumSets, {text.sums, regional.Grouped(static_cast<std::int64_t>(shown.sets))});
  }
  if (list.Rows().Filtered()) text.sums = Say(Phrase::kSumShown, {text.sums, Files(list.All())});
  if (const AutoSelect::Sum selected = list.Selected(); selected.entries > 1) {
    text.selected = Say(Phrase::kSumSelected, {Files(selected)});
  }
  return text;
}

FooterText Footers::OfTypes(const AutoSelect& list) const {
  const platform::Regional& regional = m_context.platform.regional;
  FooterText text;
  text.pending = Pending(list, Phrase::kPendingApply);
  const AutoSelect::Sum shown = list.Shown();
  if (list.Count() == 0) return text;
  const std::string files = regional.Grouped(shown.size);
  text.sums = shown.entries == 1 ? Say(Phrase::kSumType, {files})
                                 : Say(Phrase::kSumTypes,
                                       {regional.Grouped(static_cast<std::int64_t>(shown.entries)), files});
  return text;
}

FooterText Footers::OfTree() const {
  const platform::Regional& regional = m_context.platform.regional;
  const controls::TreeView::FileCounts files = m_context.ui.tvwDetails.Files();
  const auto number = [&](std::size_t count) { return regional.Grouped(static_cast<std::int64_t>(count)); };
  FooterText text;
  if (files.pending != 0) text.pending = Say(Phrase::kPendingApply, {number(files.pending)});
  if (files.all != 0) text.sums = Say(Phrase::kSumTicked, {number(files.checked), number(files.all)});
  return text;
}

void Footers::ShowBytes() {
  m_context.Skipping([this] {
    const std::int64_t bytes = m_context.ui.asRestoreList.All().size;
    m_context.ui.lblCounts[1].SetCaption("Bytes: " + m_context.platform.regional.Grouped(bytes));
  });
}

bool Footers::AnythingPending() const {
  const FormControls& ui = m_context.ui;
  return ui.asRestoreList.PendingCount() != 0 || ui.asSearch.PendingCount() != 0 ||
         ui.asFiles.PendingCount() != 0 || ui.tvwDetails.Files().pending != 0;
}

}  // namespace kxrestore::dialog
