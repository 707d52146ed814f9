#include "dialog/cd_archive.h"

#include <algorithm>
#include <unordered_map>
#include <vector>

#include "base/phrases.h"
#include "catalog/text_routines.h"
#include "dialog/archive_headers.h"
#include "engine/error_numbers.h"
#include "platform/cd.h"
#include "platform/desktop.h"
#include "platform/drives.h"

namespace kxrestore::dialog {

namespace {

constexpr const char* kArchivePath = "C:\\dev\\wrk\\qvs\\tarvane source\\client\\CDArchive.mdb";
constexpr const char* kHeaders = "SELECT * FROM ArchiveHeader";
constexpr const char* kDiscFiles = "\\backup!mdb*";
constexpr std::string_view kAddKey = "ArchAdd";
constexpr const char* kNoArchive = "Requires CD Archives Database";
constexpr const char* kNoBackupData = "disc Contains no backup data.";

// The CD-ROM drives as the drive list writes them: "d:".
std::vector<std::string> DiscDrives(platform::Drives& drives) {
  constexpr std::uint32_t kCapacity = 256;  // room for every letter
  std::vector<std::string> found;
  const std::string roots = drives.LogicalDriveStrings(kCapacity);
  for (std::size_t start = 0; start < roots.size();) {
    const std::string root = roots.substr(start, roots.find('\0', start) - start);
    start += root.size() + 1;
    if (drives.DriveType(root) == platform::kDriveCdRom) found.push_back(root.substr(0, root.find('\\')));
  }
  return found;
}

double CountHeaders(engine::Database& database) {
  const auto rows = database.OpenRecordset("SELECT Count(*) AS Headers FROM ArchiveHeader",
                                           engine::RecordsetType::kSnapshot);
  return static_cast<double>(rows->Fields("Headers").Integer());
}

}  // namespace

CdArchive::CdArchive(FormContext& context) : m_context(context) {
  m_context.ui.DriveCD.Change = [this] { m_context.Command("DriveCD.Change", [this] { DriveCD_Change(); }); };
  m_context.ui.cmdCD.Click = [this] { m_context.Command("cmdCD.Click", [this] { cmdCD_Click(); }); };
}

void CdArchive::AddBranch() {
  platform::Drives& drives = m_context.platform.drives;
  const auto discDrives = DiscDrives(drives);
  if (discDrives.empty() && !drives.FileMatches(kArchivePath)) return;
  controls::TreeView& tree = m_context.ui.tvwSets;
  m_branch = tree.Add({}, "", "Archive Sets");
  tree.Add(m_branch, kAddKey, "Append new Archive CD ...");
  m_context.ui.DriveCD.SetDrives(discDrives);
}

void CdArchive::OpenBranch(controls::Node node) {
  if (!m_current) LoadUpArchives(node);
}

void CdArchive::LoadUpArchives(controls::Node node) {
  m_current = node;
  m_context.Reporting(
      "LoadUpArchives", [&] { ReadBranch(node); },
      [this](const Error& error) {
        if (error.Number() == engine::error_number::kCanceled) {
          m_current = {};
        } else {
          m_context.MessageBox(kNoArchive, platform::MessageStyle::kPlain, "");
        }
      });
}

void CdArchive::ReadBranch(controls::Node branch) {
  FormContext::Walk walk(m_context, Work::kListing);
  const auto database = m_context.workspace.OpenDatabase({.name = kArchivePath});
  const auto rows = database->OpenRecordset(kHeaders, engine::RecordsetType::kSnapshot);
  const engine::Field volumes = rows->Fields("Volume"), years = rows->Fields("YYYY"),
                      months = rows->Fields("MM"), setNames = rows->Fields("SetName");
  for (; !rows->Eof(); rows->MoveNext()) {
    if (!walk.Next()) {
      m_current = {};  // opening the branch again reads the rest
      return;
    }
    const std::string volume = volumes.Text(), year = years.Text(), month = months.Text(),
                      setName = setNames.Text();
    std::string key = "CD" + volume;
    controls::Node node = NodeUnder(branch, key, "Volume " + volume);
    node = NodeUnder(node, key.append("\\").append(year), "Backups for " + year);
    node = NodeUnder(node, key.append("\\").append(month), "Backups for " + year + "-" + month);
    NodeUnder(node, key.append("\\").append(setName), setName);
  }
  rows->Close();
}

// Keys include the keys of all ancestors, so the rows may come in any order.
controls::Node CdArchive::NodeUnder(controls::Node parent, const std::string& key, const std::string& text) {
  controls::TreeView& tree = m_context.ui.tvwSets;
  const controls::Node node = tree.Find(key);
  return node ? node : m_current = tree.Add(parent, key, text);
}

void CdArchive::DriveCD_Change() {
  FormControls& ui = m_context.ui;
  platform::cCD discs(m_context.platform.drives, m_context.platform.desktop);
  ui.txtVL.SetText(discs.GetVolumeLabel(catalog::AddBackslash(ui.DriveCD.Drive())));
  // The system's last drive, not the one chosen.
  if (IsArchiveDisc(discs.CDDriveLetter())) {
    ui.cmdCD.SetEnabled(true);
    ui.lblCD[2].SetVisible(false);
  } else {
    ShowMessage(kNoBackupData);
  }
}

bool CdArchive::IsArchiveDisc(const std::string& drive) {
  bool found = false;
  m_context.Skipping([&] { found = m_context.platform.drives.FileMatches(drive + kDiscFiles); });
  return found;
}

void CdArchive::ShowMessage(const std::string& message) {
  controls::Label& label = m_context.ui.lblCD[2];
  label.SetCaption(message);
  label.SetVisible(true);
}

void CdArchive::cmdCD_Click() {
  m_context.ui.lblCD[2].SetVisible(false);
  m_context.ui.ProgressBar1.SetValue(0);
  const std::string disc = m_context.platform.drives.FirstFile(m_context.ui.DriveCD.Drive() + kDiscFiles);
  if (disc.empty()) return ShowMessage(kNoBackupData);

  const auto nothingAdded = [this](const std::string& message) {
    m_context.ui.ProgressBar1.SetValue(0);
    ShowMessage(message);
  };
  std::size_t added = 0;
  bool complete = false, stopped = true;
  m_context.Reporting(
      "cmdCD.Click", [&] { complete = Append(disc, added); },
      [&](const Error& error) {
        stopped = error.Number() == engine::error_number::kCanceled;
        if (!stopped) nothingAdded(Say(Phrase::kArchiveNothingAdded));
      });
  if (!complete) {
    if (stopped) nothingAdded(Say(Phrase::kArchiveStopped));
    return;
  }
  const std::string result = Say(Phrase::kArchiveAdded, {std::to_string(added)});
  ShowMessage(result);
  m_context.MessageBox(result, platform::MessageStyle::kPlain, "");
  if (added > 0) ShowBranchAnew();
}

// Returns false when the user stopped it. Reads the disc before locking the archive, because discs are slow.
bool CdArchive::Append(const std::string& disc, std::size_t& added) {
  const auto archive = m_context.workspace.OpenDatabase({.name = kArchivePath});
  const auto source = m_context.workspace.OpenDatabase({.name = disc, .readOnly = true});
  const auto columns = HeaderColumns(*archive->OpenRecordset(kHeaders, engine::RecordsetType::kSnapshot));

  controls::ProgressBar& progress = m_context.ui.ProgressBar1;
  progress.SetMax(std::max(1.0, 2 * CountHeaders(*source) + CountHeaders(*archive)));
  FormContext::Walk walk(m_context, Work::kAdding, static_cast<std::int64_t>(progress.Max()));
  // The tables may have grown since.
  const auto advance = [&] { progress.SetValue(std::min(progress.Value() + 1, progress.Max())); };

  std::vector<std::string> headers;  // in the disc's order; emptied when the archive has them
  std::unordered_map<std::string, std::size_t> places;
  const auto rows = source->OpenRecordset(kHeaders, engine::RecordsetType::kSnapshot);
  const HeaderValues values(*rows, columns);
  for (; !rows->Eof(); rows->MoveNext(), advance()) {
    if (!walk.Next()) return false;
    if (places.try_emplace(values.Key(), headers.size()).second) headers.push_back(values.Literals());
  }

  archive->BeginTrans();  // rolled back unless committed
  const auto held = archive->OpenRecordset(kHeaders, engine::RecordsetType::kSnapshot);
  const HeaderValues heldValues(*held, columns);
  for (; !held->Eof(); held->MoveNext(), advance()) {
    if (!walk.Next()) return false;
    const auto known = places.find(heldValues.Key());
    if (known != places.end()) headers[known->second].clear();
  }
  held->Close();

  for (const std::string& header : headers) {
    if (!walk.Next()) return false;
    if (!header.empty()) {
      archive->Execute(InsertHeader(columns, header), engine::kFailOnError);
      ++added;
    }
    advance();
  }
  archive->CommitTrans();
  progress.SetValue(progress.Max());
  return true;
}

void CdArchive::ShowBranchAnew() {
  Choice& choice = m_context.choice;
  if (choice.m_nodCurrent && choice.m_nodCurrent.Parent() && choice.m_nodCurrent.Root() == m_branch &&
      choice.m_nodCurrent.Key() != kAddKey) {
    choice.m_nodCurrent = {};
  }
  for (controls::Node node = m_branch.Child(); node;) {
    const controls::Node next = node.Next();
    if (node.Key() != kAddKey) m_context.ui.tvwSets.Remove(node);
    node = next;
  }
  LoadUpArchives(m_branch);
  m_branch.SetExpanded(true);
}

}  // namespace kxrestore::dialog
