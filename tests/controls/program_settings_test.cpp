#include "controls/program_settings.h"

#include <gtest/gtest.h>

#include <new>

#include "base/error.h"
#include "platform/headless/headless_desktop.h"
#include "platform/headless/headless_registry.h"

namespace kxrestore::controls {
namespace {

using platform::kHkeyCurrentUser;
using platform::kHkeyLocalMachine;

class ProgramSettingsTest : public ::testing::Test {
 protected:
  ProgramSettingsTest() {
    settings.SetRegBase("Brellick Labs, Inc.");
    settings.SetProgram("Tarvane");
  }
  void TearDown() override { EXPECT_EQ(0u, registry.OpenKeys()); }
  std::string Read(const std::string& name = "ClientDB") const { return settings.ReadEntry(name, "default"); }
  void Put(std::uint32_t type, std::vector<std::uint8_t> data) {
    registry.Put(kHkeyLocalMachine, kPath, "ClientDB", {type, std::move(data)});
  }

  static constexpr const char* kPath = "Software\\Brellick Labs, Inc.\\Tarvane\\Settings";
  platform::HeadlessRegistry registry;
  platform::HeadlessDesktop desktop;
  CProgramSettings settings{registry, desktop};
};

TEST_F(ProgramSettingsTest, ReadsTextsNumbersAndNothingElse) {
  EXPECT_EQ("default", Read());
  registry.Put(kHkeyLocalMachine, kPath, "Other", "x");
  EXPECT_EQ("default", Read());
  registry.Put(kHkeyLocalMachine, kPath, "ClientDB", "C:\\Client");
  EXPECT_EQ("C:\\Client", Read());
  registry.Put(kHkeyLocalMachine, kPath, "ClientDB", "");
  EXPECT_EQ("default", Read());
  Put(4, {0xFE, 0xFF, 0xFF, 0xFF});
  EXPECT_EQ("-2", Read());
  Put(4, {1, 2});
  EXPECT_EQ("default", Read());
  for (const std::uint32_t type : {0u, 2u, 3u, 7u, 11u}) {
    Put(type, {'C', ':', 0});
    EXPECT_EQ("default", Read()) << type;
  }
  EXPECT_TRUE(desktop.messages.empty());
}

TEST_F(ProgramSettingsTest, OneTrailingNulIsNoPartOfTheText) {
  Put(1, {'a', 'b'});
  EXPECT_EQ("ab", Read());
  Put(1, {'a', 'b', 0, 0});
  EXPECT_EQ(std::string("ab\0", 3), Read());
  Put(1, {});
  EXPECT_EQ("default", Read());
  Put(1, {0});
  EXPECT_EQ("default", Read());
}

TEST_F(ProgramSettingsTest, ThePathIsJoinedAsItStands) {
  registry.Put(kHkeyLocalMachine, "SOFTWARE\\Brellick Labs, Inc.\\Tarvane", "ClientDB", "no section");
  registry.Put(kHkeyLocalMachine, "SOFTWARE\\\\Tarvane\\Settings", "ClientDB", "no company");
  registry.Put(kHkeyCurrentUser, "Branch\\\\\\", "ClientDB", "nothing but a branch and separators");
  settings.SetSection("");
  EXPECT_EQ("no section", Read());
  settings.SetSection("Settings");
  settings.SetRegBase("");
  EXPECT_EQ("no company", Read());
  settings.SetRootKey(kHkeyCurrentUser);
  EXPECT_EQ("default", Read());
  settings.SetMainBranch("Branch");
  settings.SetProgram("");
  settings.SetSection("\\");
  EXPECT_EQ("nothing but a branch and separators", Read());
}

TEST_F(ProgramSettingsTest, ReadingAsksForAllRights) {
  registry.Put(kHkeyLocalMachine, kPath, "ClientDB", "C:\\Client");
  registry.Grant(kHkeyLocalMachine, kPath, 0x19);  // to read only
  EXPECT_EQ("default", Read());
  settings.WriteEntry("ClientDB", "lost");
  registry.Grant(kHkeyLocalMachine, kPath, 0x3F);
  EXPECT_EQ("C:\\Client", Read());
  EXPECT_TRUE(desktop.messages.empty());
}

TEST_F(ProgramSettingsTest, WritesTextsWithTheirNul) {
  settings.WriteEntry("ClientDB", "C:\\Client");
  const auto* const value = registry.Get(kHkeyLocalMachine, kPath, "ClientDB");
  ASSERT_NE(nullptr, value);
  EXPECT_EQ(1u, value->type);
  EXPECT_EQ(std::string("C:\\Client\0", 10), std::string(value->data.begin(), value->data.end()));
  settings.WriteEntry("ClientDB", "");
  EXPECT_EQ(std::vector<std::uint8_t>({0}), registry.Get(kHkeyLocalMachine, kPath, "ClientDB")->data);
  EXPECT_EQ("default", Read());
}

TEST_F(ProgramSettingsTest, ARefusedCallIsSilent) {
  registry.Put(kHkeyLocalMachine, kPath, "ClientDB", "C:\\Client");
  for (const std::string_view failing : {"OpenKey", "QueryValue", "ReadValue", "CreateKey", "SetValue"}) {
    registry.fault = [&](std::string_view operation) { return operation == failing ? 1450 : 0; };
    EXPECT_EQ(failing == "CreateKey" || failing == "SetValue" ? "C:\\Client" : "default", Read()) << failing;
    settings.WriteEntry("ClientDB", "C:\\Client");
  }
  EXPECT_TRUE(desktop.messages.empty());
}

TEST_F(ProgramSettingsTest, ARaisedErrorShowsOneBox) {
  registry.Put(kHkeyLocalMachine, kPath, "ClientDB", "C:\\Client");
  registry.fault = [](std::string_view) -> long { throw Error(70, "Permission denied"); };
  EXPECT_EQ("default", Read());
  settings.WriteEntry("ClientDB", "x");
  ASSERT_EQ(2u, desktop.messages.size());
  EXPECT_EQ("Error: 70. Permission denied", desktop.messages[0].text);
  EXPECT_EQ(0, desktop.messages[0].style);
  EXPECT_EQ("GetKeyValue", desktop.messages[0].title);
  EXPECT_EQ("SetKeyValue", desktop.messages[1].title);

  registry.fault = [](std::string_view operation) -> long {
    if (operation == "ReadValue") throw std::bad_alloc();
    return 0;
  };
  EXPECT_EQ("default", Read());
  EXPECT_EQ("Error: 7. Out of memory", desktop.messages.back().text);
}

}  // namespace
}  // namespace kxrestore::controls
