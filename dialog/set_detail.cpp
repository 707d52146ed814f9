#include "dialog/set_detail.h"

#include <charconv>

#include "base/phrases.h"
#include "base/text.h"
#include "controls/check_propagation.h"
#include "dialog/catalog_entries.h"
#include "dialog/hints.h"
#include "dialog/set_tree.h"

namespace kxrestore::dialog {

namespace {

constexpr std::string_view kPublicFolders = "Public Folders";
constexpr std::string_view kAddressLists = "Address Lists";
constexpr std::string_view kMailBoxes = "MailBoxes";

// The images of the other plug-ins' headings and entries.
struct PluginKind {
  std::string_view name;
  const char* headingImage;
  const char* entryImage;
};
constexpr PluginKind kPlugins[] = {
    {"System State", "systemstate", "systemstate"},
    {"Active Directory", "activedirectory", "activedirectory"},
    {"SQL Server", "sqlserver", "file"},
};

// The tag of an entry's node, which marking compares with the catalog: File for a node whose text is the mail
// server's name, because such a node is marked by File; else Filename.
std::string_view MarkedBy(std::string_view text, std::string_view file, std::string_view filename) {
  return text == kMailServer ? file : filename;
}

// The mail server's branch in a path, empty without one.
std::string_view MailServerBranch(std::string_view path) {
  for (const std::string_view branch : {kPublicFolders, kAddressLists, kMailBoxes}) {
    if (ContainsIgnoringCase(path, branch)) return branch;
  }
  return {};
}

}  // namespace

int PluginImage(std::string_view text, std::string_view path) {
  if (text == kMailServer) return 7;
  if (text == kPublicFolders) return 8;
  if (text == kAddressLists) return 10;
  if (text == kMailBoxes) return 11;
  const std::string_view branch = MailServerBranch(path);
  if (branch == kPublicFolders) return 9;
  if (branch == kAddressLists) return 10;
  if (branch == kMailBoxes) return 12;
  return 2;
}

SetDetail::SetDetail(FormContext& context) : m_context(context) {
  controls::TreeView& tree = m_context.ui.tvwDetails;
  tree.SetSortKey(platform::SortKeyOf(context.platform.regional));
  const controls::ImageList& images = m_context.ui.imlRestore;
  // Not bracketed as events: expanding everything raises hundreds of thousands, and nothing in them can fail.
  tree.Expand = [open = images.Index("ofolder")](controls::Node node) { node.SetImage(open); };
  tree.Collapse = [closed = images.Index("cfolder")](controls::Node node) { node.SetImage(closed); };
  tree.NodeCheck = [this](controls::Node node) {
    m_context.Event("tvwDetails.NodeCheck", [&] {
      m_context.Skipping([&] { controls::CheckParents(node); });
      m_context.Skipping([&] { controls::CheckChildren(node); });
      m_context.Skipping([&] { controls::ShowMixed(node); });
    });
  };
}

void SetDetail::LoadBackupSetDetail(controls::Node run) {
  FormControls& ui = m_context.ui;
  m_count = 0;
  bool complete = false;
  m_context.Reporting("LoadBackupSetDetail", [&] {
    ui.lblTreeCount.SetVisible(true);
    ui.lblTreeCount.SetCaption("Loading Please Wait ...");
    controls::RedrawFreeze freeze(ui.tvwDetails);
    ui.tvwDetails.Clear();
    ui.tvwDetails.SetEmptyText({});
    m_context.shownRun = {};
    const std::string extension(TagExtension(run.Tag()));
    m_context.shownRun = {TagSetNumber(run.Tag()), extension};
    const std::string setID(TagSetID(run.Tag()));

    const std::string sql =
        "SELECT Catalog.ID, Catalog.DateStamp, Catalog.SetNameID, Catalog.Extension, Catalog.Filename, "
        "Catalog.File, Catalog.LongPathID, LongPaths.LongPath, Catalog.StoreName, Catalog.StoreMethod, "
        "Catalog.Plugin, IIf(IsNull([LongPath]),[filename],[longpath]) AS RestoreFile "
        "FROM LongPaths RIGHT JOIN [Catalog] ON LongPaths.PathID = Catalog.LongPathID "
        "WHERE (((Catalog.SetNameID)=" +
        setID + ") AND ((Catalog.Extension)='" + extension + "') AND ((Catalog.Status)=2));";
    FormContext::Walk walk(m_context, Work::kLoading);
    const auto database = m_context.OpenCatalog();
    const auto rows = database->OpenRecordset(sql, engine::RecordsetType::kSnapshot,
                                              {"RestoreFile", "Plugin", "File", "Filename"});
    complete = Fill(*rows, walk);
    rows->Close();
    database->Close();
  });
  m_context.Skipping([&] {
    hints::AfterLoad(ui, complete              ? hints::Loaded::kWhole
                         : m_context.Stopped() ? hints::Loaded::kStopped
                                               : hints::Loaded::kFailed);
  });
  if (RunChanged) RunChanged();
  // Tells the user that the run is incomplete.
  ui.lblTreeCount.SetCaption(complete              ? std::to_string(m_count) + " file(s)."
                             : m_context.Stopped() ? "Stopped after " + std::to_string(m_count) + " file(s)"
                                                   : Say(Phrase::kFailedAfter, {std::to_string(m_count)}));
}

bool SetDetail::Fill(engine::Recordset& rows, FormContext::Walk& walk) {
  FormControls& ui = m_context.ui;
  const engine::Field restoreFile = rows.Fields("RestoreFile");
  const engine::Field plugin = rows.Fields("Plugin");
  const engine::Field file = rows.Fields("File");
  const engine::Field filename = rows.Fields("Filename");
  const controls::ImageList& images = ui.imlRestore;
  PathNodes paths(ui.tvwDetails, {images.Index("drive"), images.Index("cfolder"), images.Index("file")});

  std::string buffers[4];
  for (; !rows.Eof(); rows.MoveNext()) {
    if (!walk.Next()) return false;
    const std::string_view storedName = TextOf(filename, buffers[0]);
    std::string_view path = TextOf(restoreFile, buffers[1]);
    if (path.empty()) path = storedName;
    const std::string_view pluginName = TextOf(plugin, buffers[2]);
    const std::string_view fileName = TextOf(file, buffers[3]);
    if (pluginName.empty()) {
      paths.AddPathNodes(path, MarkedBy(EntryText(path), fileName, storedName));
    } else {
      AddPluginEntry(pluginName, path, fileName, storedName);
    }
    ShowProgress(++m_count);
  }
  return true;
}

void SetDetail::ShowProgress(std::size_t count) {
  char digits[24];
  m_caption.assign("Loading Please Wait ... (");
  m_caption.append(digits, std::to_chars(digits, digits + sizeof digits, count).ptr).push_back(')');
  m_context.ui.lblTreeCount.SetCaption(m_caption);
}

controls::Node SetDetail::Heading(controls::Node parent, std::string_view key, std::string_view text,
                                  int image) {
  controls::TreeView& tree = m_context.ui.tvwDetails;
  const controls::Node node = tree.Find(key);
  return node ? node : tree.Add(parent, key, text, image);
}

// Entries have no key.
void SetDetail::AddPluginEntry(std::string_view plugin, std::string_view path, std::string_view file,
                               std::string_view filename) {
  if (IsMailServer(plugin)) {
    AddMailServerEntry(path, file, filename);
    return;
  }
  const controls::ImageList& images = m_context.ui.imlRestore;
  const std::string_view name = path.empty() ? file : LastComponent(path);
  const std::string_view tag = MarkedBy(name, file, filename);
  for (const PluginKind& kind : kPlugins) {
    if (plugin != kind.name) continue;
    const controls::Node heading = Heading({}, plugin, plugin, images.Index(kind.headingImage));
    m_context.ui.tvwDetails.Add(heading, {}, name, images.Index(kind.entryImage), tag);
    return;
  }
  // Entries of an unknown plug-in are listed under its name.
  m_context.ui.tvwDetails.Add(Heading({}, plugin, plugin, images.Index("cfolder")), {}, name,
                              images.Index("file"), tag);
}

void SetDetail::AddMailServerEntry(std::string_view path, std::string_view file, std::string_view filename) {
  controls::Node parent = Heading({}, kMailServer, kMailServer, PluginImage(kMailServer, path));
  if (const std::string_view branch = MailServerBranch(path); !branch.empty()) {
    parent = Heading(parent, std::string(kMailServer).append("\\").append(branch), branch,
                     PluginImage(branch, path));
  }
  const std::string_view text = file.empty() ? LastComponent(path) : file;
  m_context.ui.tvwDetails.Add(parent, {}, text, PluginImage(text, path), MarkedBy(text, file, filename));
}

}  // namespace kxrestore::dialog
