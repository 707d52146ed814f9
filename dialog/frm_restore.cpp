#include "dialog/frm_restore.h"

#include <filesystem>
#include <fstream>
#include <utility>

#include "catalog/text_routines.h"
#include "dialog/auto_select.h"
#include "dialog/cd_archive.h"
#include "dialog/client_settings.h"
#include "dialog/context_help.h"
#include "dialog/detail_actions.h"
#include "dialog/file_history.h"
#include "dialog/footers.h"
#include "dialog/hints.h"
#include "dialog/layout.h"
#include "dialog/list_memory.h"
#include "dialog/node_info.h"
#include "dialog/node_menu.h"
#include "dialog/restore_list.h"
#include "dialog/search.h"
#include "dialog/set_detail.h"
#include "dialog/set_tree.h"
#include "dialog/window_placement.h"
#include "platform/desktop.h"
#include "platform/drives.h"
#include "platform/regional.h"
#include "platform/registry.h"

namespace kxrestore::dialog {

namespace {

std::filesystem::path PathOf(const std::string& name) {
  return std::filesystem::path(std::u8string(name.begin(), name.end()));
}

}  // namespace

// The form while it is loaded.
struct frmRestore::Loaded {
  explicit Loaded(frmRestore& form)
      : context(form.parameters, ui, form.m_platform, form.m_workspace),
        layout(context),
        setTree(context),
        setDetail(context),
        detailActions(context),
        nodeInfo(context),
        nodeMenu(context, nodeInfo),
        restoreList(context,
                    {[&form] { Raise(form.CommenceRestore); }, [&form] { Raise(form.CancelRestore); }}),
        search(context, setTree, restoreList),
        autoSelect(context, setTree, restoreList),
        cdArchive(context),
        help(context),
        footers(context),
        fileHistory(context, setTree, restoreList),
        placement(ui, layout, form.m_platform),
        listMemory(ui, form.m_platform) {
    for (controls::AutoSelect* const list : {&ui.asRestoreList, &ui.asSearch, &ui.asFiles}) {
      list->SetSortKey(platform::SortKeyOf(form.m_platform.regional));
    }
    setTree.LoadBackupSetDetail = [this](controls::Node run) { setDetail.LoadBackupSetDetail(run); };
    setTree.ArchiveNode = [this](controls::Node node) { cdArchive.OpenBranch(node); };
    setDetail.RunChanged = [this] { nodeInfo.RunChanged(); };
    nodeMenu.ChooseDay = [this](controls::Node node) { setTree.ChooseDay(node); };
    context.onMarksListed = [this] { nodeInfo.MarksListed(); };
    ui.form.Shown = [this] {
      if (catalogRead) restoreList.TellEarlierMarks();
    };
    detailActions.ListCurrentSelections = [this] { restoreList.ListCurrentSelections(); };
    layout.InitializeFileTypes = [this] { return autoSelect.LoadTypes(); };
  }

  static void Raise(const std::function<void()>& event) {
    if (event) event();
  }

  FormControls ui;
  bool catalogRead = false;
  FormContext context;
  Layout layout;
  SetTree setTree;
  SetDetail setDetail;
  DetailActions detailActions;
  NodeInfo nodeInfo;
  NodeMenu nodeMenu;
  RestoreList restoreList;
  Search search;
  AutoSelectPanel autoSelect;
  CdArchive cdArchive;
  ContextHelp help;
  Footers footers;
  FileHistory fileHistory;
  WindowPlacement placement;
  ListMemory listMemory;
};

frmRestore::frmRestore(const platform::Platform& platform, engine::Workspace& workspace)
    : m_platform(platform), m_workspace(workspace) {}

frmRestore::~frmRestore() = default;

// Ignores errors.
template <std::invocable Body>
void frmRestore::Skipping(Body&& body) {
  FormContext::Skip(body);
}

void frmRestore::Load() {
  if (m_loaded && m_loaded->ui.form.IsOpen()) return;
  Skipping([this] {
    m_loaded = std::make_unique<Loaded>(*this);
    parameters.StopRequested = false;  // left over from an earlier dialog
    // An error ends the whole sequence, and the form is shown as far as it was loaded.
    m_loaded->context.Event("Form.Load", [this] { LoadSequence(); });
  });
}

void frmRestore::LoadSequence() {
  FormControls& ui = m_loaded->ui;
  SessionLogEntry("Loading " + parameters.Action() + " Dialog ... ");
  hints::BeforeAnything(ui);
  m_loaded->placement.RestoreWindow();
  m_loaded->layout.PlaceInitially();
  m_loaded->placement.RestoreSplitters();
  m_loaded->listMemory.Restore();
  ReadClientPath();
  SetUpIcon();

  catalog::ConnectionSettings& connection = m_loaded->context.connection;
  connection.DBType = parameters.DBType;
  connection.DBName = parameters.DBName;
  if (parameters.DBType == catalog::kServerCatalog) {
    connection.connect = catalog::BuildConnectString(parameters.DBDatabase, parameters.DBServer,
                                                     parameters.DBUser, parameters.DBPass);
  }
  m_loaded->catalogRead = m_loaded->setTree.LoadBackupSetTree();
  m_loaded->cdArchive.AddBranch();

  if (parameters.RestorePath.empty()) {
    ui.lblRestorePath.SetCaption("Restore To: (Original Path)");
  } else {
    ui.lblRestorePath.SetCaption("Restore To: " + parameters.RestorePath);
    ui.lblRestorePath.SetToolTipText(ui.lblRestorePath.Caption());
  }
}

void frmRestore::ReadClientPath() {
  platform::CProgramSettings settings = ClientSettings(m_platform, platform::kHkeyLocalMachine);
  parameters.ClientPath = StripNulls(settings.ReadEntry("ClientDB", ""));
}

void frmRestore::SetUpIcon() {
  const std::string path = catalog::AddBackslash(parameters.ClientPath) + "kxicon.ico";
  if (m_platform.drives.FileMatches(path)) m_loaded->ui.form.SetIconPath(path);
}

void frmRestore::ShowModal() {
  Load();
  if (!m_loaded) return;
  Skipping([this] { m_platform.desktop.ShowModal(m_loaded->ui.form); });
  Skipping([this] { m_loaded->placement.Remember(); });
  Skipping([this] { m_loaded->listMemory.Remember(); });
  m_loaded.reset();
}

FormControls& frmRestore::Controls() {
  Load();
  if (!m_loaded) {
    throw Error(error_number::kObjectVariableNotSet, "Object variable or With block variable not set",
                "KXRestore");
  }
  return m_loaded->ui;
}

void frmRestore::setWindowCaption(const std::string& sCaption) {
  Skipping([&] { Controls().form.SetCaption(sCaption); });
}

void frmRestore::setButtonCaption(const std::string& sCaption) {
  Skipping([&] { Controls().cmdRestore[0].SetCaption(sCaption); });
}

void frmRestore::setLabelCaption(const std::string& sCaption) {
  Skipping([&] { Controls().lblList.SetCaption(sCaption); });
}

void frmRestore::setLabelInVisible(bool bVisible) {
  Skipping([&] { Controls().lblRestorePath.SetVisible(!bVisible); });
}

void frmRestore::SessionLogEntry(const std::string& sRecord) {
  Skipping([&] {
    if (parameters.LogFilename.empty()) return;
    std::ofstream log(PathOf(parameters.LogFilename), std::ios::binary | std::ios::app);
    const platform::CivilTime now = m_platform.regional.Now();
    log << m_platform.regional.ShortDate(now) + " " + m_platform.regional.LongTime(now) +
               " R " KX_VERSION " " + sRecord + "\r\n";
  });
}

std::string frmRestore::StripNulls(const std::string& text) {
  return std::string(catalog::StripNulls(text));
}

}  // namespace kxrestore::dialog
