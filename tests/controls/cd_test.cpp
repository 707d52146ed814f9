#include "controls/cd.h"

#include <gtest/gtest.h>

#include "platform/headless/headless_desktop.h"
#include "platform/headless/headless_drives.h"

namespace kxrestore::controls {
namespace {

constexpr unsigned kCd = platform::kDriveCdRom;

class CdTest : public ::testing::Test {
 protected:
  platform::HeadlessDrives drives;
  platform::HeadlessDesktop desktop;
};

TEST_F(CdTest, NoDrive) {
  drives.drives = {{"c:\\", 3, "SYSTEM"}};
  cCD cd(drives, desktop);
  EXPECT_FALSE(cd.CDExists());
  EXPECT_EQ("", cd.CDDriveLetter());
  EXPECT_EQ("", cd.CDVolumeLabel());
  EXPECT_EQ(0, cd.CDCount());
  EXPECT_EQ(0u, desktop.doEventsCount);
}

TEST_F(CdTest, TheLetterIsThatOfTheLastDriveAndTheLabelThatOfTheLastCd) {
  drives.drives = {
      {"c:\\", 3, "SYSTEM"}, {"d:\\", kCd, "FIRST"}, {"e:\\", kCd, "SECOND"}, {"z:\\", 4, "NET"}};
  cCD cd(drives, desktop);
  EXPECT_EQ(2, cd.CDCount());
  EXPECT_EQ(2u, desktop.doEventsCount);
  EXPECT_TRUE(cd.CDExists());
  EXPECT_EQ("Z:\\", cd.CDDriveLetter());
  EXPECT_EQ("SECOND", cd.CDVolumeLabel());
  EXPECT_EQ(8u, desktop.doEventsCount);
}

TEST_F(CdTest, ThePropertiesLookAgainAndTheCountDoesNot) {
  drives.drives = {{"c:\\", 3, "SYSTEM"}};
  cCD cd(drives, desktop);
  drives.drives.push_back({"d:\\", kCd, "DISC"});
  EXPECT_EQ(0, cd.CDCount());
  EXPECT_EQ("DISC", cd.CDVolumeLabel());
  EXPECT_EQ(1, cd.CDCount());
  drives.drives[1].label = std::nullopt;
  EXPECT_EQ("", cd.CDVolumeLabel());
  drives.drives.pop_back();
  EXPECT_EQ("", cd.CDDriveLetter());
  EXPECT_EQ(0, cd.CDCount());
}

TEST_F(CdTest, Labels) {
  drives.drives = {{"d:\\", kCd, "A LABEL"},
                   {"e:\\", kCd, "   "},
                   {"f:\\", kCd, ""},
                   {"g:\\", kCd, std::nullopt},
                   {"h:\\", kCd, std::string("CUT\0HERE", 8)},
                   {"i:\\", kCd, "THIRTEEN CHRS"},
                   {"j:\\", kCd, "FOURTEEN CHARS"}};
  cCD cd(drives, desktop);
  EXPECT_EQ("A LABEL", cd.GetVolumeLabel("D:\\"));
  EXPECT_EQ("(no label)", cd.GetVolumeLabel("e:\\"));
  EXPECT_EQ("(no label)", cd.GetVolumeLabel("f:\\"));
  EXPECT_EQ("", cd.GetVolumeLabel("g:\\"));
  EXPECT_EQ("CUT", cd.GetVolumeLabel("h:\\"));
  EXPECT_EQ("THIRTEEN CHRS", cd.GetVolumeLabel("i:\\"));
  EXPECT_EQ("", cd.GetVolumeLabel("j:\\"));
  EXPECT_EQ("", cd.GetVolumeLabel("q:\\"));
}

TEST_F(CdTest, MoreDrivesThanTheBufferHoldsAreNone) {
  for (char letter = 'a'; letter < 'a' + 15; ++letter)
    drives.drives.push_back({letter + std::string(":\\"), kCd, "X"});
  cCD cd(drives, desktop);
  EXPECT_EQ(15, cd.CDCount());
  drives.drives.push_back({"p:\\", kCd, "X"});
  EXPECT_FALSE(cd.CDExists());
  EXPECT_EQ(0, cd.CDCount());
}

// The system's calls end each root with a NUL, but nothing in a list of roots may make the scan run for ever.
TEST_F(CdTest, AListWithoutItsLastNulIsReadToItsEnd) {
  struct Bare : platform::HeadlessDrives {
    std::string LogicalDriveStrings(std::uint32_t) override { return std::string("c:\\\0d:\\", 7); }
  } bare;
  bare.drives = {{"d:\\", kCd, "DISC"}};
  cCD cd(bare, desktop);
  EXPECT_EQ("D:\\", cd.CDDriveLetter());
}

TEST_F(CdTest, MayBeAskedWhileItLooks) {
  drives.drives = {{"d:\\", kCd, "FIRST"}, {"e:\\", kCd, "SECOND"}};
  cCD cd(drives, desktop);
  desktop.onDoEvents = [&] { EXPECT_EQ("SECOND", cd.CDVolumeLabel()); };
  EXPECT_EQ("E:\\", cd.CDDriveLetter());
  EXPECT_EQ(2, cd.CDCount());
}

TEST_F(CdTest, MovesTheTray) {
  cCD cd(drives, desktop);
  cd.EjectCD();
  cd.CloseCD();
  EXPECT_EQ(std::vector<std::string>({"Set CDAudio Door Open Wait", "Set CDAudio Door Close Wait"}),
            drives.mciCommands);
}

}  // namespace
}  // namespace kxrestore::controls
