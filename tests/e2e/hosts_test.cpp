// The sample hosts as separate processes with the registered component, on every kind of catalog.
#include <algorithm>
#include <filesystem>
#include <fstream>

#include "host/catalog_maker/sample_archive.h"
#include "tests/catalog/server_catalog.h"
#include "tests/e2e/dialog_fixture.h"
#include "tests/e2e/program.h"
#include "tests/engine/desktop_samples.h"

namespace kxrestore::e2e {
namespace {

using catalog_test::ServerCatalog;
using engine::testing::SampleCopy;

class HostTest : public testing::Test {
 protected:
  // Runs the sample host on a catalog with a script of dialog steps. Returns the exit code.
  int RunScript(const std::wstring& catalog, const std::string& lines) {
    const std::wstring path = m_catalog.Folder() + L"steps.txt";
    std::ofstream(path.c_str()) << lines;
    return Run(catalog + L" --script \"" + path + L'"');
  }
  int Run(const std::wstring& arguments) {
    Program program(L'"' + HostFolder() + L"restore_host.exe\" " + arguments);
    const int code = program.Wait();
    m_output = program.Output();
    return code;
  }
  static std::wstring File(const std::wstring& path) { return L"--catalog \"" + path + L'"'; }

  const Registered m_registered;
  TestCatalog m_catalog;
  std::string m_output;
};

std::string Restoring(const std::string& node) {
  return "# the newest run\nwait-form\nselect-run 1\ntick " + node +
         "\nclick cmdAction(0)\nexpect-enabled cmdRestore(0) YES\nclick cmdRestore(0)\nwait-closed\n";
}
const char kRestored[] =
    "CommenceRestore\n"
    "restore: C:\\Data\\a.txt\n"
    "restore: C:\\Data\\Reports\\b.doc\n"
    "restore: C:\\Data\\Reports\\a very long name.xls\n"
    "DefineRestoreSet = 1\n";

TEST_F(HostTest, RestoresFromAFile) {
  EXPECT_EQ(0, RunScript(L"--window " + File(m_catalog.Path()), Restoring("C:\\Data")));
  EXPECT_EQ(kRestored, m_output);
}

TEST_F(HostTest, RestoresFromAServer) {
  if (!ServerCatalog::HasServer()) GTEST_SKIP() << "no server";
  ServerCatalog server(TestCatalog::AddRows);
  EXPECT_EQ(0, RunScript(L"--db-type 1 --server " + ToWide(ServerCatalog::Server()) + L" --database " +
                             ToWide(server.Database()) + L" --user " + ToWide(ServerCatalog::User()) +
                             L" --password " + ToWide(ServerCatalog::Password()),
                         Restoring("C:\\Data")));
  EXPECT_EQ(kRestored, m_output);
  EXPECT_EQ((Ids{kNewA, kNewB, kNewLong}), server.Marked());
}

// Without the desktop engine, its files give the same rows as the SQLite catalog with the same content.
TEST_F(HostTest, RestoresFromDesktopFiles) {
  const auto workspace = engine::testing::MakeReaderWorkspace();
  for (const char* name : {"telling-2003.mdb", "telling-2019.accdb"}) {
    SCOPED_TRACE(name);
    const SampleCopy copy(name), twin("telling.db");
    const auto restored = [&](const SampleCopy& catalog) {
      EXPECT_EQ(0, RunScript(File(ToWide(catalog.Path())), Restoring("C:\\Data")));
      const auto marked = engine::testing::Rows(*workspace->OpenDatabase(catalog.Request()),
                                                "SELECT ID FROM Catalog WHERE Restore = True ORDER BY ID");
      return std::pair(m_output, marked);
    };
    EXPECT_EQ(restored(twin), restored(copy));
    EXPECT_TRUE(m_output.starts_with("CommenceRestore\nrestore: ")) << m_output;
    EXPECT_TRUE(m_output.ends_with("\nDefineRestoreSet = 1\n")) << m_output;
    const auto lines = static_cast<std::size_t>(std::count(m_output.begin(), m_output.end(), '\n'));
    EXPECT_EQ(copy.Changed().size(), lines - 2) << "one byte for each mark";
  }
}

// Needs drive Z: to be a CD-ROM drive with a folder as its disc, as the test environment sets it up.
TEST_F(HostTest, ADiscIsAddedToTheArchive) {
  ASSERT_EQ(UINT{DRIVE_CDROM}, GetDriveTypeW(L"Z:\\"));
  sample::MakeArchive(kArchive);
  sample::MakeDisc("Z:\\");
  EXPECT_EQ(0, RunScript(File(m_catalog.Path()), R"(wait-form
select-run 1
select-node Archive Sets
expect-caption lblSetName "Archive Sets"
select-node Archive Sets\Volume VOL002\Backups for 2025\Backups for 2025-12
expect-caption lblSetName "Backups for 2025-12"
# no set is chosen, so all sets are searched
tab 2
type cboMask box
click cmdSearch(2)
expect-count asSearch 1
select-node Archive Sets\Append new Archive CD ...
expect-visible frLoadCD YES
expect-enabled cmdAction(0) NO
expect-enabled cmdCD NO
choose DriveCD Z:
expect-caption txtVL VOL003
expect-visible lblCD(2) NO
click cmdCD
expect-message "9 archived backup(s) added."
answer OK
select-node Archive Sets\Volume VOL003\Backups for 2026\Backups for 2026-09
expect-visible frLoadCD NO
expect-enabled cmdAction(0) YES
select-node Archive Sets\Append new Archive CD ...
click cmdCD
expect-message "0 archived backup(s) added."
answer OK
close
)"));
  EXPECT_EQ("DefineRestoreSet = 0\n", m_output);
  for (const char* file : {kArchive, "Z:\\backup!mdb"}) std::filesystem::remove(file);
}

// Runs each of the other hosts up to Restore Now. The examples find kxrestore.exe on the path.
TEST_F(HostTest, HostsInOtherLanguagesReadTheMarksAndSomeClearThem) {
  wchar_t path[8192] = L"";
  GetEnvironmentVariableW(L"PATH", path, 8192);
  SetEnvironmentVariableW(L"PATH", (HostFolder() + L";" + path).c_str());
  const std::wstring script = L"cscript //nologo \"" + HostFolder(), file = L" \"" + m_catalog.Path() + L"\"",
                     plain = file + L" D:\\out";
  const struct {
    std::wstring command;
    const char *says, *saysToo, *caption;
    bool clears;
  } cases[] = {
      {script + L"restore_host.vbs\" --catalog" + file +
           L" --restore-path D:\\out --caption Script --hide-label",
       "DefineRestoreSet = 1\n", "", "Script", false},
      {L'"' + HostFolder() + L"restore_example.exe\"" + plain,
       "CommenceRestore\n{\"size\":", "DefineRestoreSet = 1\n", nullptr, false},
      {L'"' + HostFolder() + L"restore_import_example.exe\"" + plain, "DefineRestoreSet = 1\n", "", nullptr,
       false},
      {script + L"restore.vbs\"" + plain, "SET NAME", "C:\\Mail\\box.pst", nullptr, true},
      {script + L"restore.js\"" + plain, "DefineRestoreSet = 1\n", "", nullptr, false},
  };
  for (const auto& [command, says, saysToo, caption, clears] : cases) {
    SCOPED_TRACE(FromWide(command));
    m_catalog.Mark(kBox);
    Program host(command);
    const DialogDriver dialog(std::chrono::seconds(60), host.Id());
    ASSERT_NO_THROW({
      dialog.ExpectText("lblRestorePath", "Restore To: D:\\out");
      dialog.ExpectVisible("lblRestorePath", caption == nullptr);
      if (caption) dialog.ExpectText("frmRestore", caption);
      dialog.Click("cmdRestore(2)");
      dialog.ExpectText("lblCounts(0)", SelectedText(1));
      dialog.Click("cmdRestore(0)");
    });
    EXPECT_EQ(0, host.Wait());
    EXPECT_NE(std::string::npos, host.Output().find(says)) << host.Output();
    EXPECT_NE(std::string::npos, host.Output().find(saysToo)) << host.Output();
    EXPECT_EQ(clears ? Ids{} : Ids{kBox}, m_catalog.Marked());
  }
  SetEnvironmentVariableW(L"PATH", path);
}

TEST_F(HostTest, ArgumentsAndScriptsAreChecked) {
  EXPECT_EQ(1, Run(L"--nonsense"));
  EXPECT_NE(std::string::npos, m_output.find("unknown argument --nonsense")) << m_output;
  EXPECT_EQ(3, RunScript(File(m_catalog.Path()), "wait-form\nexpect-enabled cmdRestore(0) MAYBE\n"));
  EXPECT_NE(std::string::npos, m_output.find("script: line 2, expect-enabled cmdRestore(0) MAYBE: "))
      << m_output;
}

}  // namespace
}  // namespace kxrestore::e2e
