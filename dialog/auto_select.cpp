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
  m_context.Reporting("ApplyAutoSelect", [this] {
    if (MarkTypes(m_context.ui.asFiles.TickedTypes()) != Outcome::kStopped)
      m_restoreList.ListCurrentSelections();
  });
}

AutoSelectPanel::Outcome AutoSelectPanel::MarkTypes(std::string_view types) {
  FormContext::Walk walk(m_context);
  // Each type ends in ";"; text behind the last one is no type.
  for (auto end = types.find(';'); end != std::string_view::npos; end = types.find(';')) {
    if (m_context.parameters.StopRequested) return Outcome::kStopped;
    const Outcome outcome = MarkType(walk, std::string("*").append(types.substr(0, end)));
    if (outcome != Outcome::kDone) return outcome;
    types.remove_prefix(end + 1);
  }
  return Outcome::kDone;
}

AutoSelectPanel::Outcome AutoSelectPanel::MarkType(FormContext::Walk& walk, std::string_view pattern) {
  FormControls& ui = m_context.ui;
  const bool latest = ui.chk2.Value() == 1;
  m_context.choice.m_strExtension = pattern;
  const LookIn lookIn = ReadLookIn(m_context, m_setTree, ui.optLookIn[2]);
  const auto database = m_context.OpenCatalog();
  const auto rows = OpenListing(m_context, *database, lookIn, latest, pattern, {"ID"});
  const engine::Field id = rows->Fields("ID");
  for (; !rows->Eof(); rows->MoveNext()) {
    if (!walk.Next()) return Outcome::kStopped;
    if (!m_context.marks.UpdateByID(Long(id))) return Outcome::kFailed;
  }
  rows->Close();
  database->Close();
  return Outcome::kDone;
}

}  // namespace kxrestore::dialog
