#include "dialog/auto_select.h"

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
}

bool AutoSelectPanel::LoadTypes() {
  m_context.ui.asFiles.Clear();
  catalog::TypeCensus census;
  FormContext::Walk walk(m_context);
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

void AutoSelectPanel::ApplyAutoSelect() {
  MarkingWalk walk(m_context, "ApplyAutoSelect");
  const auto markTypes = [&] { MarkTypes(walk, m_context.ui.asFiles.TickedTypes()); };
  if (walk.Run(markTypes) == MarkingWalk::End::kDone) m_restoreList.ListCurrentSelections();
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
