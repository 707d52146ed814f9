#include "dialog/set_tree.h"

#include <algorithm>
#include <charconv>

#include "base/phrases.h"
#include "catalog/listings.h"
#include "dialog/catalog_entries.h"
#include "dialog/listing.h"
#include "platform/desktop.h"

namespace kxrestore::dialog {

namespace {

constexpr const char* kClick = "tvwSets.NodeClick";
constexpr std::string_view kRootKey = "Sets";
constexpr std::string_view kSetKeyPrefix = "Sets\\";
constexpr std::string_view kArchiveText = "Archive Sets";
constexpr std::string_view kArchiveAddKey = "ArchAdd";
constexpr std::int16_t kMaxRuns = 32767;

}  // namespace

std::string_view TagSetID(std::string_view tag) {
  return tag.substr(0, tag.find(' '));
}

std::string_view TagExtension(std::string_view tag) {
  const std::size_t blank = tag.find(' ');
  if (blank == std::string_view::npos) return {};
  const std::string_view rest = tag.substr(blank + 1);
  return rest.substr(0, rest.find(' '));
}

std::int32_t TagSetNumber(std::string_view tag) {
  const std::string_view text = TagSetID(tag);
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error == std::errc::result_out_of_range) throw Error(error_number::kOverflow, "Overflow");
  if (error != std::errc() || end != text.data() + text.size()) {
    throw Error(error_number::kTypeMismatch, "Type mismatch");
  }
  return ToLong(number);
}

std::int32_t SetTree::SetOf(controls::Node node) {
  if (!node.Tag().empty()) return TagSetNumber(node.Tag());
  const controls::Node run = node.Child();
  return run && !run.Tag().empty() ? TagSetNumber(run.Tag()) : 0;
}

SetTree::SetTree(FormContext& context) : m_context(context) {
  controls::TreeView& tree = m_context.ui.tvwSets;
  const auto openArchive = [this](controls::Node node) {
    if (!ArchiveNode || node.Text() != kArchiveText) return;
    WhenFree("tvwSets.Expand", [this, node] { ArchiveNode(node); });
  };
  tree.NodeClick = [this, openArchive](controls::Node node) {
    m_context.Event(kClick, [&] {
      tvwSets_NodeClick(node);
      openArchive(node);
    });
  };
  tree.Expand = [this, openArchive](controls::Node node) {
    m_context.Event("tvwSets.Expand", [&] { openArchive(node); });
  };
  for (controls::AutoSelect* const list : {&m_context.ui.asRestoreList, &m_context.ui.asSearch}) {
    list->RunTime = [this](const controls::AutoSelect::Entry& entry) {
      return RunTime(std::to_string(entry.setId).append(" ").append(entry.extension));
    };
  }
}

bool SetTree::LoadBackupSetTree() {
  return m_context.Reporting("LoadBackupSetTree", [this] {
    controls::TreeView& tree = m_context.ui.tvwSets;
    const auto database = m_context.OpenCatalog();
    const auto rows = catalog::OpenRuns(*database);

    Choice& choice = m_context.choice;
    choice.m_nodCurrent = {};
    choice.m_nodRoot = tree.Add({}, kRootKey, "Online Backups");
    const engine::Field name = rows->Fields("Name");
    const engine::Field dateStamp = rows->Fields("DateStamp");
    const engine::Field setNameID = rows->Fields("SetNameID");
    const engine::Field extension = rows->Fields("Extension");
    const engine::Field permanent = rows->Fields("Permanent");
    controls::Node set;
    std::string setName;
    for (; !rows->Eof(); rows->MoveNext()) {
      const std::string runExtension = extension.Text();
      if (runExtension == catalog::kHiddenExtension) continue;
      if (!set || name.Text() != setName) {
        setName = name.Text();
        set = SetNode(setName);
      }
      const auto time = CivilTimeOf(dateStamp.Value());
      const std::string date =
          time ? platform::DateAndTime(m_context.platform.regional, *time) : dateStamp.Text();
      controls::Node run = tree.Add(set, date, permanent.Boolean() ? date + " (P)" : date);
      run.SetTag(setNameID.Text() + " " + runExtension);
      if (time) m_context.runTimes.emplace(run.Tag(), platform::TimeNumber(*time));
    }
    choice.m_nodRoot.SetExpanded(true);
    tree.SetSelectedItem(choice.m_nodRoot);
    rows->Close();
    database->Close();
  });
}

// An engine that sorts names case-insensitively mixes the runs of sets that differ in case only.
controls::Node SetTree::SetNode(const std::string& name) {
  controls::TreeView& tree = m_context.ui.tvwSets;
  const std::string key = std::string(kSetKeyPrefix) + name;
  const controls::Node node = tree.Find(key);
  return node ? node : tree.Add(m_context.choice.m_nodRoot, key, name);
}

std::int64_t SetTree::RunTime(const std::string& tag) const {
  const auto known = m_context.runTimes.find(tag);
  return known == m_context.runTimes.end() ? controls::AutoSelect::kNoTime : known->second;
}

void SetTree::ChooseDay(controls::Node node) {
  controls::Node set = node.Tag().empty() ? node : node.Parent();
  constexpr std::int64_t kNoTime = controls::AutoSelect::kNoTime;
  const auto timeOf = [this](controls::Node run) { return RunTime(std::string(run.Tag())); };
  std::int64_t oldest = kNoTime, newest = kNoTime;
  for (controls::Node run = set.Child(); run; run = run.Next()) {
    const std::int64_t time = timeOf(run);
    if (time == kNoTime) continue;
    if (newest == kNoTime) newest = time;
    oldest = time;
  }
  if (oldest == kNoTime) return;
  const platform::CivilTime now = m_context.platform.regional.Now();
  const auto day =
      m_context.platform.desktop.AskDay(Say(Phrase::kAskDay, {set.Text()}), platform::TimeOfNumber(oldest),
                                        platform::TimeOfNumber(std::max(newest, platform::TimeNumber(now))));
  if (!day) return;
  const std::int64_t end = platform::TimeNumber({day->year, day->month, day->day, 23, 59, 59});
  for (controls::Node run = set.Child(); run; run = run.Next()) {
    const std::int64_t time = timeOf(run);
    if (time == kNoTime || time > end) continue;
    set.SetExpanded(true);
    m_context.ui.tvwSets.SetSelectedItem(run);
    tvwSets_NodeClick(run);
    return;
  }
  const platform::CivilTime first = platform::TimeOfNumber(oldest);
  m_context.MessageBox(
      Say(Phrase::kNoBackupThen, {set.Text(), platform::DateAndTime(m_context.platform.regional, first)}),
      platform::MessageStyle::kWarning, "");
}

std::string SetTree::ListRunExtensions(controls::Node node) {
  std::string list;
  std::int16_t& count = m_context.choice.m_intRunCount;
  count = 0;
  for (; node; node = node.Next()) {
    catalog::AppendRun(list, TagExtension(node.Tag()));
    if (count == kMaxRuns) throw Error(error_number::kOverflow, "Overflow");
    ++count;
  }
  return list;
}

void SetTree::tvwSets_NodeClick(controls::Node node) {
  Choice& choice = m_context.choice;
  if (choice.m_nodCurrent && !(choice.m_nodCurrent == node)) choice.m_nodCurrent.SetBold(false);
  choice.m_nodCurrent = node;
  node.SetBold(true);
  if (node.Tag().empty()) {
    ChooseOther(node);
  } else {
    ChooseRun(node);
  }
}

void SetTree::ChooseRun(controls::Node node) {
  FormControls& ui = m_context.ui;
  Choice& choice = m_context.choice;
  HideArchiveFrame();
  ui.lblCurrSet.SetCaption("Current Set: ");
  ui.lblSetName.SetCaption(std::string(node.Parent().Text()).append("\r\n up to \r\n").append(node.Text()));
  // A set number that does not fit is reported when the run's files are listed.
  choice.m_lngSetID = 0;
  m_context.Skipping([&] { choice.m_lngSetID = SetOf(node); });
  choice.m_strSetID = TagSetID(node.Tag());
  m_context.Skipping([&] { ListRunExtensions(node); });
  choice.m_strExtension = TagExtension(node.Tag());
  ui.optLookIn[0].SetEnabled(true);
  ui.optLookIn[2].SetEnabled(true);

  // While another run's files are being listed, the choice is only recorded.
  if (choice.m_blnLoading || !LoadBackupSetDetail) return;
  WhenFree(kClick, [this, node] { LoadDetail(node); });
}

void SetTree::LoadDetail(controls::Node run) {
  bool& loading = m_context.choice.m_blnLoading;
  loading = true;
  m_context.Skipping([&] { LoadBackupSetDetail(run); });
  loading = false;
}

// Runs a step of the current event; defers it when that event interrupted another one.
void SetTree::WhenFree(const char* routine, const std::function<void()>& step) {
  if (m_context.IsOutermostEvent()) {
    step();
  } else {
    m_context.Command(routine, step);
  }
}

void SetTree::ChooseOther(controls::Node node) {
  FormControls& ui = m_context.ui;
  Choice& choice = m_context.choice;
  choice.m_lngSetID = 0;
  choice.m_intRunCount = 0;
  choice.m_strSetID.clear();
  if (node.Index() >= 2) {
    ui.optLookIn[0].SetEnabled(true);
    m_context.Reporting(kClick, [&] { choice.m_lngSetID = SetOf(node); });
    ui.optLookIn[0].SetValue(true);
    ui.lblSetName.SetCaption(std::string(node.Text()));
  } else {
    // Only the first option goes; the one on the auto-select panel stays as it is.
    ui.lblSetName.SetCaption("(All)");
    ui.optLookIn[1].SetValue(true);
    ui.optLookIn[0].SetEnabled(false);
    choice.m_strExtension.clear();
  }

  if (node.Key() == kArchiveAddKey) {
    EnableActions(false);
    ui.frLoadCD.SetVisible(true);
    ui.frLoadCD.BringToFront();
    ui.tbsOptions.SetSelectedIndex(1);
  } else {
    HideArchiveFrame();
  }
}

void SetTree::HideArchiveFrame() {
  if (!m_context.ui.frLoadCD.Visible()) return;
  EnableActions(true);
  m_context.ui.frLoadCD.SetVisible(false);
}

void SetTree::EnableActions(bool enabled) {
  for (auto& button : m_context.ui.cmdAction) button.SetEnabled(enabled);
}

}  // namespace kxrestore::dialog
