#include "dialog/auto_select.h"

#include "base/phrases.h"
#include "catalog/restore_query.h"
#include "catalog/type_counts.h"
#include "dialog/catalog_entries.h"
#include "dialog/listing.h"
#include "dialog/type_list.h"

namespace kxrestore::dialog {

AutoSelectPanel::AutoSelectPanel(FormContext& context, SetTree& setTree, RestoreList& restoreList)
    : m_context(context), m_setTree(setTree), m_restoreList(restoreList) {
  auto& buttons = m_context.ui.cmdAuto;
  for (int index = 0; index < static_cast<int>(buttons.size()); ++index) {
    buttons[index].Click = [this, index] {
      m_context.Command("cmdAuto.Click", [this, index] { cmdAuto_Click(index); });
    };
  }
  // The counts follow once the form is idle.
  const auto chosen = [this] { m_context.Event("optLookIn.Click", [] {}); };
  m_context.ui.chk2.Click = m_context.ui.optLookIn[2].Click = m_context.ui.optLookIn[3].Click = chosen;
  m_context.whenIdle.emplace_back([this] { CountWhereDue(); });
}

bool AutoSelectPanel::LoadTypes() {
  m_context.ui.asFiles.Clear();
  m_context.ui.asFiles.SetEmptyText({});
  catalog::TypeCensus census;
  FormContext::Walk walk(m_context, Work::kCounting);
  const auto database = m_context.OpenCatalog();
  const auto rows = catalog::OpenTypes(*database);
  const engine::Field fileType = rows->Fields("FileType"), files = rows->Fields("Files");
  for (; !rows->Eof(); rows->MoveNext()) {
    if (!walk.Next()) return false;
    census.Count(fileType.TextView(), files.Integer());
  }
  rows->Close();
  database->Close();
  ListTypes(census, m_context.ui.asFiles);
  m_context.ui.asFiles.SetEmptyText(Say(Phrase::kHintNoTypes));
  ForgetCounts();
  return true;
}

void AutoSelectPanel::cmdAuto_Click(int index) {
  switch (index) {
    case 0:
      ApplyAutoSelect();
      break;
    case 1:
      m_context.ui.asFiles.TickAll(true);
      break;
    case 2:
      m_context.ui.asFiles.TickAll(false);
      break;
    default:
      break;
  }
}

// No numbers are shown until the files are counted.
void AutoSelectPanel::ForgetCounts() {
  controls::AutoSelect& list = m_context.ui.asFiles;
  m_counted.reset();
  for (std::size_t number = 1; number <= list.Count(); ++number) list.SetSize(number, 0, false);
}

void AutoSelectPanel::CountWhereDue() {
  FormControls& ui = m_context.ui;
  if (!ui.panel[2].Visible() || ui.asFiles.Count() == 0) return;
  const Counted what{ReadLookIn(m_context, m_setTree, ui.optLookIn[2]), ui.chk2.Value() == 1};
  if (m_counted == what || m_stopped == what) return;
  m_stopped.reset();
  if (m_counted) ForgetCounts();
  bool complete = false;
  const bool cutOff = !m_context.InBackground("CountTypes", [&] { complete = CountTypes(what); });
  if (complete) {
    m_counted = what;
  } else if (cutOff) {
    CountWhereDue();  // the command that cut it off has run
  } else {
    m_stopped = what;  // by the user or an error
  }
}

// Returns whether it finished. Throws the engine's errors.
bool AutoSelectPanel::CountTypes(const Counted& what) {
  controls::AutoSelect& list = m_context.ui.asFiles;
  catalog::TypeCounts counts;
  std::vector<std::size_t> types;  // their numbers in the list
  for (std::size_t number = 1; number <= list.Count(); ++number) {
    const controls::AutoSelect::Entry entry = list.At(number);
    if (entry.isGroup) continue;
    counts.AddType(entry.name.substr(1), catalog::FindFileType(entry.name.substr(1)).kind);
    types.push_back(number);
  }
  FormContext::Walk walk(m_context, Work::kCounting);
  const auto database = m_context.OpenCatalog();
  const auto rows = catalog::OpenNames(*database, what.lookIn.setId, what.latest, what.lookIn.runs);
  const engine::Field name = rows->Fields("OrigName");
  std::string buffer;
  for (; !rows->Eof(); rows->MoveNext()) {
    if (!walk.Next()) return false;
    counts.Count(TextOf(name, buffer));
  }
  rows->Close();
  database->Close();
  for (std::size_t type = 0; type < types.size(); ++type)
    list.SetSize(types[type], counts.OfType(type), true);
  for (std::size_t number = 1; number <= list.Count(); ++number) {
    const controls::AutoSelect::Entry entry = list.At(number);
    if (entry.isGroup)
      list.SetSize(number, counts.OfKind(static_cast<catalog::FileKind>(entry.setId - 1)), true);
  }
  return true;
}

// Of the ticked types; 0 where it is not known.
std::size_t AutoSelectPanel::FilesToMark() const {
  const controls::AutoSelect& list = m_context.ui.asFiles;
  std::int64_t files = 0;
  for (std::size_t number = 1; number <= list.Count() && m_counted; ++number) {
    const controls::AutoSelect::Entry entry = list.At(number);
    if (!entry.isGroup && list.TickedAt(number)) files += entry.size;
  }
  return static_cast<std::size_t>(files);
}

void AutoSelectPanel::ApplyAutoSelect() {
  MarkingWalk walk(m_context, "ApplyAutoSelect", Work::kMarking, FilesToMark());
  const auto markTypes = [&] { MarkTypes(walk, m_context.ui.asFiles.TickedTypes()); };
  const MarkingWalk::End end = walk.Run(markTypes);
  controls::AutoSelect& types = m_context.ui.asFiles;
  if (end == MarkingWalk::End::kDone && walk.NotMarked().empty()) {
    for (std::size_t number = 1; number <= types.Count(); ++number) {
      if (types.TickedAt(number)) types.Settle(number, true);
    }
  }
  if (end == MarkingWalk::End::kDone) m_restoreList.ListCurrentSelections();
}

void AutoSelectPanel::MarkTypes(MarkingWalk& walk, std::string_view types) {
  const LookIn lookIn = ReadLookIn(m_context, m_setTree, m_context.ui.optLookIn[2]);
  for (const std::string& pattern : catalog::PatternsOf(types)) {
    if (walk.Stopped() || walk.IsHopeless()) return;
    MarkType(walk, lookIn, pattern);
  }
}

void AutoSelectPanel::MarkType(MarkingWalk& walk, const LookIn& lookIn, std::string_view pattern) {
  const bool latest = m_context.ui.chk2.Value() == 1;
  m_context.choice.m_strExtension = pattern;
  const auto database = m_context.OpenCatalog();
  const auto rows = OpenListing(m_context, *database, lookIn, latest, pattern, {"ID"});
  const engine::Field id = rows->Fields("ID");
  while (!rows->Eof() && !walk.Stopped()) {
    walk.Mark(0, [&] { return m_context.marks.UpdateByID(ToLong(id.Integer())); });
    rows->MoveNext();
    walk.Next();
  }
  rows->Close();
  database->Close();
}

}  // namespace kxrestore::dialog
