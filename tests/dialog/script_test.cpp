// Registers the cases of most scripts, each as a test.
#include <fstream>
#include <sstream>

#include "engine/sqlite/sqlite_backend.h"
#include "tests/dialog/form_text.h"
#include "tests/dialog/journal.h"
#include "tests/dialog/script.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::dialog_test {

std::vector<std::pair<std::string, std::string>> CasesOf(const std::string& name) {
  std::ifstream file(KX_SCRIPTS "/" + name + ".txt", std::ios::binary);
  if (!file) throw std::runtime_error("no script " + name);
  std::vector<std::pair<std::string, std::string>> cases;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("== ")) {
      cases.emplace_back(line.substr(3), "");
    } else if (!cases.empty()) {
      cases.back().second.append(line).append("\n");
    }
  }
  return cases;
}

namespace {

class Case : public ScriptTest {
 public:
  explicit Case(std::string script,
                std::unique_ptr<engine::Workspace> databases = engine::MakeDefaultWorkspace())
      : ScriptTest(std::move(script), std::move(databases)) {
    form.CommenceRestore = [this] { events.push_back("CommenceRestore"); };
    form.CancelRestore = [this] { events.push_back("CancelRestore"); };
    commands["design"] = [this](const std::string&) {
      events.push_back("design" + DesignOf(FormControls().form));
    };
    looks["help"] = [](FormControls& shown) { return "help" + HelpOf(shown.form, shown.lblHelp); };
    looks["places"] = [](FormControls& shown) { return "places" + PlacesIn(shown); };
  }
};

// The beginnings of statements and their names in the scripts.
constexpr std::pair<std::string_view, std::string_view> kStatements[] = {
    {"SELECT SetNames.Name, BackupAudit.DateStamp, BackupAudit.SetNameID, BackupAudit.Extension, "
     "BackupAudit.Permanent, BackupAudit.Status FROM SetNames INNER JOIN BackupAudit ON SetNames.ID = "
     "BackupAudit.SetNameID Where (((BackupAudit.Status) = 6)) ORDER BY SetNames.Name, BackupAudit.DateStamp "
     "DESC; ",
     "of the sets"},
    {"SELECT Catalog.ID, Catalog.DateStamp, Catalog.SetNameID, Catalog.Extension, Catalog.Filename, "
     "Catalog.File, Catalog.LongPathID, LongPaths.LongPath, Catalog.StoreName, Catalog.StoreMethod, "
     "Catalog.Plugin, IIf(IsNull([LongPath]),[filename],[longpath]) AS RestoreFile FROM LongPaths RIGHT JOIN "
     "[Catalog] ON LongPaths.PathID = Catalog.LongPathID WHERE (((Catalog.SetNameID)=",
     "of files where "},
    {"SELECT Catalog.SetNameID, Catalog.Extension, Catalog.Filename, Catalog.Restore, LongPaths.LongPath "
     "FROM "
     "LongPaths RIGHT JOIN [Catalog] ON LongPaths.PathID = Catalog.LongPathID WHERE (((Catalog.SetNameID)=",
     "of a name where "},
    {"SELECT Catalog.SetNameID, Catalog.OrigSize, Catalog.DateStamp, Catalog.Extension, Catalog.Filename, "
     "Catalog.File, Catalog.Restore, Catalog.StoreMethod, Catalog.Plugin, Catalog.StoreName, "
     "IIf(IsNull([LongPath]),[filename],[longpath]) AS RestoreFile, SetNames.Name FROM SetNames RIGHT JOIN "
     "(LongPaths RIGHT JOIN [Catalog] ON LongPaths.PathID = Catalog.LongPathID) ON SetNames.ID = "
     "Catalog.SetNameID WHERE (((Catalog.Restore)=True));",
     "of the marked"},
    {"UPDATE [Catalog] SET [Catalog].Restore = False WHERE (((Catalog.Restore)=True));", "clear all"},
    // Sequences of lines and their names.
    {"open catalog\nsnapshot of the marked\nasRestoreList frozen\nasRestoreList cleared\n", "LIST\n"},
    {"close rows\nclose catalog\nasRestoreList thawed\n", "LISTED\n"},
    {"tbsOptions value\ntbsOptions frozen\npicTabs frozen\n", "TAB\n"},
    {"picTabs thawed\ntbsOptions thawed\ncommit\n", ""},
    {"lblMask to front\ncboMask to front\nchk(1) to front\n", "SEARCH to front\n"},
    {"lblRestorePath to front\npicCounts to front\n", "LOWER to front\n"},
    {"flush\nbox question \"Clear Selection?\" \"You have selected files to restore, Cancel will clear your "
     "selections, "
     "Cancel?\"\n",
     "QUESTION\n"},
};

// A base class, so that the journal is constructed before the form that writes to it.
struct JournalHolder {
  Journal journal;
  EngineHooks hooks = journal.Hooks();
};

// A case that compares all events after the command "journal", in order.
class JournalCase : public JournalHolder, public Case {
 public:
  explicit JournalCase(const std::string& script)
      : Case(script, MakeHookedWorkspace(hooks, engine::sqlite::MakeSqliteBackend())) {
    desktop.onMessage = [this](const auto& box) {
      std::string text = box.text;
      if (const auto path = text.find(catalog->Path()); path != std::string::npos) {
        text.replace(path, catalog->Path().size(), "the catalog");
      }
      constexpr const char* kStyles[] = {"plain", "warning", "question"};
      journal.Note("box " + std::string(kStyles[static_cast<int>(box.style)]) + " \"" + box.title + "\" \"" +
                   text + "\"");
    };
    form.CommenceRestore = [this] { journal.Note("CommenceRestore"); };
    form.CancelRestore = [this] { journal.Note("CancelRestore"); };
    onTurn = [this] {
      if (!desktop.engineWorks) journal.Note("events");
    };
    commands["journal"] = [this](const std::string&) {
      journal.Watch(ui());
      journal.Take();
      m_begun = true;
    };
    asides.insert("load");
    commands["load"] = [this](const std::string&) { Load(); };
    commands["minimize"] = [this](const std::string&) {
      ui().form.UserResize(160, 30, controls::WindowState::kMinimized);
    };
  }

 private:
  // Loads a form that has a log, an icon and a destination. The journal starts when the load first reads the
  // registry.
  void Load() {
    m_begun = true;
    form.parameters.LogFilename = m_folder.File("log");
    form.parameters.RestorePath = "D:\\Back";
    PutSetting(platform::kHkeyLocalMachine, "ClientDB", "C:\\Client\\");
    platform.drives.files = {"C:\\Client\\kxicon.ico"};
    platform.drives.drives = {{"E:\\", 5, "DISC"}};
    platform.registry.fault = [this](std::string_view operation) {
      if (operation == "OpenKey" && journal.Empty()) {
        std::ifstream log(m_folder.File("log"));
        journal.Note("log " + std::string(std::istreambuf_iterator<char>(log), {}));
        journal.Watch(form.Controls());
      }
      journal.Note(std::string(operation));
      return 0;
    };
    EXPECT_EQ(ui().form.IconPath(), "C:\\Client\\kxicon.ico");
  }

  Strings Changed() override {
    desktop.messages.clear();  // the journal has them
    std::string text = m_begun ? Text(journal.Take()) : "";
    std::erase(text, '\r');
    const auto replace = [&](std::string_view old, std::string_view with) {
      for (auto at = text.find(old); at != text.npos; at = text.find(old)) text.replace(at, old.size(), with);
    };
    replace(" \n", " $\n");  // makes a blank at the end of a line visible
    for (const auto& [statement, name] : kStatements) replace(statement, name);
    std::istringstream happened(text);
    Strings steps = std::exchange(events, {});
    for (std::string step; std::getline(happened, step);) steps.push_back(step);
    std::erase(steps, "");
    return steps;
  }

  engine::testing::TemporaryFolder m_folder;
  bool m_begun = false;
};

const bool registered = [] {
  for (const char* name : {"form", "set_tree", "set_detail", "tree_guide", "search", "auto_select",
                           "restore_list", "file_history", "footers", "guidance"}) {
    RegisterCases<Case>(name);
  }
  return RegisterCases<JournalCase>("order");
}();

}  // namespace
}  // namespace kxrestore::dialog_test
