#include "dialog/node_info.h"

#include <algorithm>
#include <vector>

#include "base/phrases.h"
#include "dialog/catalog_entries.h"
#include "dialog/path_nodes.h"
#include "dialog/sizes.h"
#include "platform/regional.h"

namespace kxrestore::dialog {

namespace {

// Calls `visit` for every node below one.
template <class Visit>
void ForEachBelow(controls::Node top, Visit&& visit) {
  controls::Node node = top.Child();
  while (node) {
    visit(node);
    if (const controls::Node child = node.Child()) {
      node = child;
      continue;
    }
    while (!(node == top) && !node.Next()) node = node.Parent();
    if (node == top) return;
    node = node.Next();
  }
}

std::uint64_t HashOf(std::string_view text) {
  std::uint64_t hash = 0xCBF29CE484222325;  // FNV-1a
  for (const char byte : text) hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3;
  return hash;
}

}  // namespace

std::string PathOf(controls::Node node) {
  std::vector<std::string_view> parts;
  for (controls::Node part = node; part; part = part.Parent()) parts.push_back(part.Text());
  if (!node.HasChildren() && parts.size() > 1 && node.Text() == Say(Phrase::kThisFolder))
    parts.erase(parts.begin());
  std::reverse(parts.begin(), parts.end());
  std::string path;
  for (const std::string_view part : parts) {
    if (!path.empty() && !path.ends_with('\\')) path += '\\';
    path += part;
  }
  return path;
}

NodeInfo::NodeInfo(FormContext& context) : m_context(context) {
  controls::TreeView& tree = m_context.ui.tvwDetails;
  tree.Tip = [this](controls::Node node) {
    std::string tip;
    m_context.Aside("tvwDetails.Tip", [&] { tip = Tip(node); });
    return tip;
  };
  tree.Badge = [this](controls::Node node) { return IsMarked(node); };
}

void NodeInfo::RunChanged() {
  m_askCatalog = true;
  m_sums.clear();
  MarksListed();
}

void NodeInfo::MarksListed() {
  m_markedKnown = false;
  m_context.ui.tvwDetails.BadgesChanged();
}

bool NodeInfo::IsMarked(controls::Node node) {
  if (!m_markedKnown) ReadMarked();
  return !m_marked.empty() && !node.HasChildren() && !node.Tag().empty() &&
         std::binary_search(m_marked.begin(), m_marked.end(), HashOf(node.Tag()));
}

void NodeInfo::ReadMarked() {
  const controls::AutoSelect& list = m_context.ui.asRestoreList;
  const catalog::CurrentRun& run = m_context.shownRun;
  m_marked.clear();
  for (std::size_t number = 1; number <= list.Count(); ++number) {
    const controls::AutoSelect::Entry entry = list.At(number);
    if (entry.setId == run.setId && entry.extension == run.extension)
      m_marked.push_back(HashOf(entry.storedName));
  }
  std::sort(m_marked.begin(), m_marked.end());
  m_markedKnown = true;
}

bool NodeInfo::CanSumUp(controls::Node branch) const {
  return branch.HasChildren() && (!branch.Parent() || IsFolder(branch));
}

bool NodeInfo::IsFolder(controls::Node branch) const {
  return branch.Root().Image() == m_context.ui.imlRestore.Index("drive");
}

std::string NodeInfo::Tip(controls::Node node) {
  std::string tip = PathOf(node);
  std::string lines;
  m_context.Skipping([&] { lines = node.HasChildren() ? FolderLine(node) : FileLines(node); });
  if (!lines.empty()) tip.append("\n").append(lines);
  return tip;
}

std::string NodeInfo::FileLines(controls::Node file) {
  const std::string_view tag = file.Tag();
  // No query during a walk.
  if (tag.empty() || file.Text() == kMailServer || !m_askCatalog || !m_context.IsOutermostEvent()) return {};
  m_askCatalog = false;  // unless the query succeeds
  engine::Sql sql(
      "SELECT Catalog.OrigSize, Catalog.DateStamp, Catalog.Restore FROM [Catalog] WHERE "
      "(((Catalog.SetNameID)=");
  sql.AddNumber(m_context.shownRun.setId)
      .Add(") AND ((Catalog.Extension)=")
      .AddText(m_context.shownRun.extension);
  sql.Add(") AND ((Catalog.Filename)=").AddText(tag).Add("));");
  const auto database = m_context.OpenCatalog();
  const auto rows =
      database->OpenRecordset(sql, engine::RecordsetType::kSnapshot, {"OrigSize", "DateStamp", "Restore"});
  std::string lines;
  if (!rows->Eof()) {
    const platform::Regional& regional = m_context.platform.regional;
    const auto time = CivilTimeOf(rows->Fields("DateStamp").Value());
    lines = SizeInPeoplesUnits(regional, rows->Fields("OrigSize").Integer());
    if (time) lines.append("\n").append(platform::DateAndTime(regional, *time));
    if (rows->Fields("Restore").Boolean()) lines.append("\n").append(Say(Phrase::kMarkedAlready));
  }
  m_askCatalog = true;
  return lines;
}

std::string NodeInfo::FolderLine(controls::Node folder) const {
  const platform::Regional& regional = m_context.platform.regional;
  std::int64_t files = 0, ticked = 0;
  ForEachBelow(folder, [&](controls::Node node) {
    if (node.HasChildren()) return;
    ++files;
    if (node.Checked()) ++ticked;
  });
  std::string line = Say(OneOrMore(files, Phrase::kOneFile, Phrase::kManyFiles), {regional.Grouped(files)});
  if (ticked > 0) line = Say(Phrase::kOfThemTicked, {line, regional.Grouped(ticked)});
  const auto sum = m_sums.find(folder.Index());
  if (sum == m_sums.end()) return CanSumUp(folder) ? line.append("\n").append(Say(Phrase::kSumUpHint)) : line;
  return line.append("\n").append(SizeInPeoplesUnits(regional, sum->second.bytes));
}

void NodeInfo::SumUp(controls::Node branch) {
  Sum sum;
  bool complete = false;
  if (!m_context.Reporting("SumUp", [&] { complete = Add(branch, sum); }) || !complete) return;
  m_sums[branch.Index()] = sum;
  const platform::Regional& regional = m_context.platform.regional;
  const std::string files =
      Say(OneOrMore(sum.files, Phrase::kOneFile, Phrase::kManyFiles), {regional.Grouped(sum.files)});
  m_context.progress.SayAtEnd(
      Say(Phrase::kSumOfBranch, {branch.Text(), files, SizeInPeoplesUnits(regional, sum.bytes)}));
}

// Returns false when the user stopped it. Rows are identified by their paths, as when the tree was built.
bool NodeInfo::Add(controls::Node branch, Sum& sum) {
  const std::string_view plugin = IsFolder(branch) ? std::string_view() : branch.Text();
  const std::string key = branch.Key();
  FormContext::Walk walk(m_context, Work::kCounting);
  engine::Sql sql(
      "SELECT Catalog.OrigSize, Catalog.Filename, Catalog.Plugin, "
      "IIf(IsNull([LongPath]),[filename],[longpath]) AS RestoreFile "
      "FROM LongPaths RIGHT JOIN [Catalog] ON LongPaths.PathID = Catalog.LongPathID "
      "WHERE (((Catalog.SetNameID)=");
  sql.AddNumber(m_context.shownRun.setId)
      .Add(") AND ((Catalog.Extension)=")
      .AddText(m_context.shownRun.extension);
  sql.Add(") AND ((Catalog.Status)=2));");
  const auto database = m_context.OpenCatalog();
  const auto rows = database->OpenRecordset(sql, engine::RecordsetType::kSnapshot,
                                            {"OrigSize", "Filename", "Plugin", "RestoreFile"});
  const engine::Field size = rows->Fields("OrigSize"), filename = rows->Fields("Filename"),
                      rowPlugin = rows->Fields("Plugin"), restoreFile = rows->Fields("RestoreFile");
  std::string buffers[3];
  for (; !rows->Eof(); rows->MoveNext()) {
    if (!walk.Next()) return false;
    const std::string_view ofPlugin = TextOf(rowPlugin, buffers[0]);
    if (ofPlugin.empty() != plugin.empty()) continue;
    if (plugin.empty()) {
      std::string_view path = TextOf(restoreFile, buffers[1]);
      if (path.empty()) path = TextOf(filename, buffers[2]);
      if (!path.starts_with(key)) continue;
    } else if (!ofPlugin.starts_with(plugin)) {
      continue;
    }
    ++sum.files;
    m_context.Skipping([&] { sum.bytes += size.Integer(); });
  }
  rows->Close();
  database->Close();
  return true;
}

}  // namespace kxrestore::dialog
