// The sample hosts, as programs of their own with the registered component.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/catalog_maker/sample_archive.h"
#include "tests/e2e/dialog_fixture.h"
#include "tests/e2e/program.h"
#include "tests/e2e/registry_keys.h"

namespace kxrestore::e2e {
namespace {

class HostTest : public testing::Test {
 protected:
  std::wstring Script(const std::string& lines) {
    const std::wstring path = m_catalog.Folder() + L"steps.txt";
    std::ofstream(path.c_str()) << lines;
    return path;
  }
  int Run(const std::wstring& arguments) {
    Program program(L'"' + HostFolder() + L"restore_host.exe\" --catalog \"" + m_catalog.Path() + L"\" " +
                    arguments);
    const int code = program.Wait();
    m_output = program.Output();
    return code;
  }

  const Registered m_registered;
  TestCatalog m_catalog;
  std::string m_output;
};

TEST_F(HostTest, RestoresWhatWasTicked) {
  const std::wstring script = Script(
      "# the newest run\n"
      "wait-form\n"
      "select-run 1\n"
      "tick C:\\Data\n"
      "click cmdAction(0)\n"
      "expect-caption lblCounts(0) \"3 file(s) selected\"\n"
      "click cmdRestore(0)\n"
      "wait-closed\n");
  EXPECT_EQ(0, Run(L"--window --script \"" + script + L'"'));
  EXPECT_EQ(
      "CommenceRestore\n"
      "restore: C:\\Data\\a.txt\n"
      "restore: C:\\Data\\Reports\\b.doc\n"
      "restore: C:\\Data\\Reports\\a very long name.xls\n"
      "DefineRestoreSet = 1\n",
      m_output);
}

// Needs the CD-ROM drive that the test's machine has: Z:, the last one, with a folder as its disc.
class CdHostTest : public HostTest {
 protected:
  void SetUp() override {
    ASSERT_EQ(UINT{DRIVE_CDROM}, GetDriveTypeW(L"Z:\\"));
    sample::MakeArchive(kArchive);
    sample::MakeDisc("Z:\\");
  }
  void TearDown() override {
    for (const char* file : {kArchive, "Z:\\backup!mdb"}) std::filesystem::remove(file);
  }
};

TEST_F(CdHostTest, ADiscIsAddedToTheArchive) {
  const std::wstring script = Script(
      "wait-form\n"
      "select-run 1\n"
      "select-node Archive Sets\n"
      "expect-caption lblSetName \"Archive Sets\"\n"
      "select-node Archive Sets\\Volume VOL002\\Backups for 2025\\Backups for 2025-12\n"
      "expect-caption lblSetName \"Backups for 2025-12\"\n"
      "# no set is chosen now, so that all are searched\n"
      "tab 2\n"
      "type cboMask box\n"
      "click cmdSearch(2)\n"
      "expect-count asSearch 1\n"
      "select-node Archive Sets\\Append new Archive CD ...\n"
      "expect-visible frLoadCD YES\n"
      "expect-enabled cmdAction(0) NO\n"
      "expect-enabled cmdCD NO\n"
      "choose DriveCD Z:\n"
      "expect-caption txtVL VOL003\n"
      "expect-visible lblCD(2) NO\n"
      "click cmdCD\n"
      "expect-message \"9 archived backup(s) added.\"\n"
      "answer OK\n"
      "select-node Archive Sets\\Volume VOL003\\Backups for 2026\\Backups for 2026-09\n"
      "expect-visible frLoadCD NO\n"
      "expect-enabled cmdAction(0) YES\n"
      "select-node Archive Sets\\Append new Archive CD ...\n"
      "click cmdCD\n"
      "expect-message \"0 archived backup(s) added.\"\n"
      "answer OK\n"
      "close\n");
  EXPECT_EQ(0, Run(L"--script \"" + script + L'"'));
  EXPECT_EQ("DefineRestoreSet = 0\n", m_output);
}

TEST_F(HostTest, VBScriptRunsTheDialogToo) {
  m_catalog.Mark(kBox);
  Program host(L"cscript //nologo \"" + HostFolder() + L"restore_host.vbs\" --catalog \"" + m_catalog.Path() +
               L"\" --restore-path D:\\out --caption Script --hide-label");
  const driver::DialogDriver dialog(std::chrono::seconds(15), host.Id());
  ASSERT_NO_THROW({
    dialog.ExpectText("frmRestore", "Script");
    dialog.ExpectText("lblRestorePath", "Restore To: D:\\out");
    dialog.ExpectVisible("lblRestorePath", false);
    dialog.Click("cmdRestore(2)");
    dialog.ExpectText("lblCounts(0)", SelectedText(1));
    dialog.Click("cmdRestore(0)");
  });
  EXPECT_EQ(0, host.Wait());
  EXPECT_EQ("DefineRestoreSet = 1\n", host.Output());
  EXPECT_EQ(Ids{kBox}, m_catalog.Marked());
}

// The examples of the package, each up to Restore Now; they look for kxrestore.exe on the path.
TEST_F(HostTest, ExamplesReadTheMarksAndSomeTakeThemAway) {
  wchar_t path[8192] = L"";
  GetEnvironmentVariableW(L"PATH", path, 8192);
  SetEnvironmentVariableW(L"PATH", (HostFolder() + L";" + path).c_str());
  const struct {
    std::wstring command;
    const char *says, *saysToo;
    bool clears;
  } cases[] = {
      {L'"' + HostFolder() + L"restore_example.exe\"",
       "CommenceRestore\n{\"size\":", "DefineRestoreSet = 1\n", false},
      {L'"' + HostFolder() + L"restore_import_example.exe\"", "DefineRestoreSet = 1\n", "", false},
      {L"cscript //nologo \"" + HostFolder() + L"restore.vbs\"", "SET NAME", "C:\\Mail\\box.pst", true},
      {L"cscript //nologo \"" + HostFolder() + L"restore.js\"", "DefineRestoreSet = 1\n", "", false},
  };
  for (const auto& [command, says, saysToo, clears] : cases) {
    m_catalog.Mark(kBox);
    Program host(command + L" \"" + m_catalog.Path() + L"\" D:\\out");
    const driver::DialogDriver dialog(std::chrono::seconds(60), host.Id());
    ASSERT_NO_THROW({
      dialog.ExpectText("lblRestorePath", "Restore To: D:\\out");
      dialog.Click("cmdRestore(2)");
      dialog.ExpectText("lblCounts(0)", SelectedText(1));
      dialog.Click("cmdRestore(0)");
    }) << testing::PrintToString(command);
    EXPECT_EQ(0, host.Wait());
    EXPECT_NE(std::string::npos, host.Output().find(says)) << host.Output();
    EXPECT_NE(std::string::npos, host.Output().find(saysToo)) << host.Output();
    EXPECT_EQ(clears ? Ids{} : Ids{kBox}, m_catalog.Marked()) << testing::PrintToString(command);
  }
  SetEnvironmentVariableW(L"PATH", path);
}

TEST_F(HostTest, WhatItIsToldIsChecked) {
  EXPECT_EQ(1, Run(L"--nonsense"));
  EXPECT_NE(std::string::npos, m_output.find("unknown argument --nonsense")) << m_output;
  EXPECT_EQ(3, Run(L"--script \"" + Script("wait-form\nexpect-enabled cmdRestore(0) MAYBE\n") + L'"'));
  EXPECT_NE(std::string::npos, m_output.find("script: line 2, expect-enabled cmdRestore(0) MAYBE: "))
      << m_output;
}

}  // namespace
}  // namespace kxrestore::e2e
