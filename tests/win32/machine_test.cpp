// The services of the machine: phrases, the registry, regional settings, drives and files.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "base/phrases.h"
#include "platform/win32/services/language.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/win32_platform.h"

namespace kxrestore::win32::test {

namespace {

constexpr char kPath[] = "Software\\KXRestore Test";

class MachineTest : public testing::Test {
 protected:
  MachineTest() : m_platform(GetModuleHandleW(nullptr)) {}
  ~MachineTest() override { RegDeleteKeyA(HKEY_CURRENT_USER, kPath); }

  platform::Platform& Machine() { return m_platform.Get(); }

  Win32Platform m_platform;
};

std::vector<std::uint8_t> Bytes(const std::string& text) {
  return {text.begin(), text.end()};
}

// A file of phrases beside this program, named after it.
struct PhrasesFile {
  explicit PhrasesFile(const wchar_t* ending) {
    wchar_t program[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    path = std::filesystem::path(program).replace_extension(ending);
    std::ofstream(path) << "ThisFolder = " << path.filename().string() << "\n";
  }
  ~PhrasesFile() { std::filesystem::remove(path); }
  std::filesystem::path path;
};

}  // namespace

TEST_F(MachineTest, PhrasesComeFromTheMostSpecificFile) {
  const auto said = [] {
    UsePhrasesBeside(nullptr, {"de", "de-AT"});
    return Say(Phrase::kThisFolder);
  };
  EXPECT_EQ(said(), "(this folder)");
  const PhrasesFile other(L".fr.txt"), language(L".de.txt");
  EXPECT_EQ(said(), "win32_tests.de.txt");
  {
    const PhrasesFile region(L".de-AT.txt");
    EXPECT_EQ(said(), "win32_tests.de-AT.txt");
    const PhrasesFile host(L".txt");
    EXPECT_EQ(said(), "win32_tests.txt");
  }
  EXPECT_EQ(said(), "win32_tests.de.txt");
  UsePhrases({});
  const UserLanguage user = LanguageOfUser();
  EXPECT_EQ(user.language.size(), 2U) << user.language;
  EXPECT_TRUE(user.languageAndRegion.starts_with(user.language + "-")) << user.languageAndRegion;
}

TEST_F(MachineTest, RegistryKeepsTextAndNumbers) {
  platform::Registry& registry = Machine().registry;
  platform::Registry::Key key = 0;
  EXPECT_NE(registry.OpenKey(platform::kHkeyCurrentUser, kPath, platform::kKeyAllAccess, key), 0);
  ASSERT_EQ(registry.CreateKey(platform::kHkeyCurrentUser, kPath, platform::kKeyAllAccess, key), 0);
  // \xC3\xBC is one byte in the ANSI code page of western Europe.
  const std::string text("C:\\Gr\xC3\xBCn\0", 8 + 1);
  EXPECT_EQ(registry.SetValue(key, "ClientDB", platform::kRegSz, Bytes(text)), 0);
  // Stored without a NUL. RegSetValueExA would include one that directly follows the data.
  RegSetValueExA(reinterpret_cast<HKEY>(key), "Bare", 0, REG_SZ, reinterpret_cast<const BYTE*>("abcX"), 3);
  EXPECT_EQ(registry.SetValue(key, "Number", platform::kRegDword, {1, 2, 0xFF, 0}), 0);
  std::uint32_t type = 0, size = 0;
  EXPECT_EQ(registry.QueryValue(key, "ClientDB", type, size), 0);
  EXPECT_EQ(type, platform::kRegSz);
  EXPECT_EQ(size, ToAnsi(text).size());
  const std::pair<const char*, std::vector<std::uint8_t>> values[] = {
      {"ClientDB", Bytes(FromAnsi(ToAnsi(text)))}, {"Bare", Bytes("abc")}, {"Number", {1, 2, 0xFF, 0}}};
  std::vector<std::uint8_t> data;
  for (const auto& [name, value] : values) {
    EXPECT_EQ(registry.ReadValue(key, name, data), 0);
    EXPECT_EQ(data, value) << name;
  }
  EXPECT_NE(registry.ReadValue(key, "Missing", data), 0);
  registry.CloseKey(key);
}

TEST_F(MachineTest, DatesTimesAndNumbersFollowTheUser) {
  const platform::Regional& regional = Machine().regional;
  // Wine's defaults under LANG=C or en_US.
  EXPECT_EQ(regional.ShortDate({2026, 11, 16}), "11/16/2026");
  EXPECT_EQ(regional.LongTime({2026, 11, 16, 2, 25, 30}), "2:25:30 AM");
  EXPECT_EQ(regional.LongTime({0, 0, 0, 14, 5, 0}), "2:05:00 PM");
  EXPECT_EQ(regional.ShortDate({2026, 13, 40}), platform::FixedRegional().ShortDate({2026, 13, 40}));
  EXPECT_EQ(regional.Grouped(0), "0");
  EXPECT_EQ(regional.Grouped(1234567), "1,234,567");
  EXPECT_EQ(regional.Grouped(-9007199254740993), "-9,007,199,254,740,993");
  EXPECT_GE(regional.Now().year, 2024);
}

TEST_F(MachineTest, TextsSortInTheUsersLanguage) {
  const auto key = [this](std::string_view text) {
    std::string made = "before ";
    Machine().regional.AppendSortKey(made, text);
    return made;
  };
  const std::string longer(600, 'b');
  const std::vector<std::string> inOrder = {"",   "Archive 2",  "Archive 10", "\xC3\x84rzte",
                                            "Az", longer + "a", longer + "B", "\xD0\x95"};
  for (std::size_t i = 0; i + 1 < inOrder.size(); ++i) {
    EXPECT_LT(key(inOrder[i]), key(inOrder[i + 1])) << inOrder[i];
  }
  EXPECT_EQ(key("ARCHIVE"), key("archive"));
}

TEST_F(MachineTest, DrivesAndFilesAreFound) {
  platform::Drives& drives = Machine().drives;
  const std::string roots = drives.LogicalDriveStrings(64);
  EXPECT_NE(roots.find(std::string("C:\\\0", 4)), std::string::npos);
  EXPECT_EQ(drives.LogicalDriveStrings(3), "");
  EXPECT_EQ(drives.DriveType("C:\\"), static_cast<unsigned>(DRIVE_FIXED));
  EXPECT_FALSE(drives.VolumeLabel("Q:\\", 14).has_value());
  drives.MciCommand("Set CDAudio Door Close Wait");  // no error without the device

  wchar_t folder[MAX_PATH];
  GetTempPathW(MAX_PATH, folder);
  const std::string base = Narrow(folder) + "kxrestore-", file = base + "archive \xC3\xBC.mdb";
  std::ofstream(Wide(file).c_str()).put('x');
  CreateDirectoryW(Wide(base + "folder.dir").c_str(), nullptr);
  EXPECT_EQ(file, drives.FirstFile(base + "arch*.mdb"));
  EXPECT_TRUE(drives.FileMatches(file));
  for (const std::string& none : {base + "none*.mdb", base + "*.dir", std::string("Q:\\*.mdb")}) {
    EXPECT_FALSE(drives.FileMatches(none)) << none;
  }
  DeleteFileW(Wide(file).c_str());
  RemoveDirectoryW(Wide(base + "folder.dir").c_str());
}

}  // namespace kxrestore::win32::test
