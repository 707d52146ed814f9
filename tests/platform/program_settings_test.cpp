#include "platform/program_settings.h"

#include <gtest/gtest.h>

#include <new>

#include "base/error.h"
#include "platform/headless/headless_desktop.h"
#include "platform/headless/headless_registry.h"

namespace kxrestore::platform {
namespace {

class ProgramSettingsTest : public ::testing::Test {
 protected:
  ProgramSettingsTest() {
    settings.SetRegBase("Brellick Labs, Inc.");
    settings.SetProgram("Tarvane");
  }
  void TearDown() override { EXPECT_EQ(0u, registry.OpenKeys()); }
  std::string Read() const { return settings.ReadEntry("ClientDB", "default"); }

  static constexpr const char* kPath = "Software\\Brellick Labs, Inc.\\Tarvane\\Settings";
  HeadlessRegistry registry;
  HeadlessDesktop desktop;
  CProgramSettings settings{registry, desktop};
};

TEST_F(ProgramSettingsTest, ReadsTextsNumbersAndNothingElse) {
  EXPECT_EQ("default", Read());
  registry.Put(kHkeyLocalMachine, kPath, "Other", "x");
  EXPECT_EQ("default", Read());
  const struct {
    std::uint32_t type;
    std::vector<std::uint8_t> data;
    std::string read;
  } cases[] = {{1, {'C', ':', 0}, "C:"},
               {1, {'a', 'b'}, "ab"},
               {1, {'a', 'b', 0, 0}, std::string("ab\0", 3)},  // only the last NUL is dropped
               {1, {0}, "default"},
               {1, {}, "default"},
               {4, {0xFE, 0xFF, 0xFF, 0xFF}, "-2"},
               {4, {1, 2}, "default"},
               {0, {'C', ':', 0}, "default"},
               {2, {'C', ':', 0}, "default"},
               {3, {'C', ':', 0}, "default"},
               {7, {'C', ':', 0}, "default"},
               {11, {'C', ':', 0}, "default"}};
  for (const auto& [type, data, read] : cases) {
    registry.Put(kHkeyLocalMachine, kPath, "ClientDB", {type, data});
    EXPECT_EQ(read, Read()) << type << ", " << data.size() << " bytes";
  }
  EXPECT_TRUE(desktop.messages.empty());
}

TEST_F(ProgramSettingsTest, ThePathIsJoinedUnchanged) {
  const CProgramSettings fresh(registry, desktop);
  EXPECT_EQ(0x80000002u, fresh.RootKey());
  EXPECT_EQ("SOFTWARE|||Settings",
            fresh.MainBranch() + "|" + fresh.RegBase() + "|" + fresh.Program() + "|" + fresh.Section());
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

TEST_F(ProgramSettingsTest, WritesTextsWithTheirNul) {
  for (const std::string text : {"C:\\Client", ""}) {
    settings.WriteEntry("ClientDB", text);
    const auto* const value = registry.Get(kHkeyLocalMachine, kPath, "ClientDB");
    ASSERT_NE(nullptr, value);
    EXPECT_EQ(1u, value->type);
    EXPECT_EQ(text + '\0', std::string(value->data.begin(), value->data.end()));
  }
}

TEST_F(ProgramSettingsTest, ARefusedCallIsSilent) {
  registry.Put(kHkeyLocalMachine, kPath, "ClientDB", "C:\\Client");
  for (const std::string_view failing : {"OpenKey", "QueryValue", "ReadValue", "CreateKey", "SetValue"}) {
    registry.fault = [&](std::string_view operation) { return operation == failing ? 1450 : 0; };
    EXPECT_EQ(failing == "CreateKey" || failing == "SetValue" ? "C:\\Client" : "default", Read()) << failing;
    settings.WriteEntry("ClientDB", "C:\\Client");
  }
  registry.fault = nullptr;
  registry.Grant(kHkeyLocalMachine, kPath, 0x19);  // read only; all rights are requested
  EXPECT_EQ("default", Read());
  for (const std::uint32_t rights : {0x19u, 0x20006u}) {
    registry.Grant(kHkeyLocalMachine, kPath, rights);
    settings.WriteEntry("ClientDB", "lost");
  }
  registry.Grant(kHkeyLocalMachine, kPath, 0x3F);
  EXPECT_EQ("C:\\Client", Read());
  EXPECT_TRUE(desktop.messages.empty());
}

TEST_F(ProgramSettingsTest, ARaisedErrorShowsOneBox) {
  registry.Put(kHkeyLocalMachine, kPath, "ClientDB", "C:\\Client");
  registry.fault = [](std::string_view) -> long { throw Error(70, "Permission denied"); };
  EXPECT_EQ("default", Read());
  settings.WriteEntry("ClientDB", "x");
  registry.fault = [](std::string_view operation) -> long {
    return operation == "ReadValue" ? throw std::bad_alloc() : 0;
  };
  EXPECT_EQ("default", Read());
  std::vector<std::string> told;
  for (const auto& box : desktop.messages) {
    told.push_back(box.title + ", " + std::to_string(static_cast<int>(box.style)) + ": " + box.text);
  }
  EXPECT_EQ(std::vector<std::string>({"GetKeyValue, 0: Error: 70. Permission denied",
                                      "SetKeyValue, 0: Error: 70. Permission denied",
                                      "GetKeyValue, 0: Error: 7. Out of memory"}),
            told);
}

}  // namespace
}  // namespace kxrestore::platform
