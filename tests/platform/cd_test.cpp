#include "platform/cd.h"

#include <gtest/gtest.h>

#include "platform/headless/headless_desktop.h"
#include "platform/headless/headless_drives.h"

namespace kxrestore::platform {
namespace {

constexpr unsigned kCd = kDriveCdRom;

class CdTest : public ::testing::Test {
 protected:
  void ExpectNone(cCD& cd) {
    EXPECT_FALSE(cd.CDExists());
    EXPECT_EQ("", cd.CDDriveLetter());
    EXPECT_EQ("", cd.CDVolumeLabel());
    EXPECT_EQ(0, cd.CDCount());
  }

  HeadlessDrives drives;
  HeadlessDesktop desktop;
};

TEST_F(CdTest, ThePropertiesSearchAgainButTheCountDoesNot) {
  drives.drives = {{"c:\\", 3, "SYSTEM"}};
  cCD cd(drives, desktop);
  ExpectNone(cd);
  EXPECT_EQ(0u, desktop.doEventsCount);
  drives.drives = {
      {"c:\\", 3, "SYSTEM"}, {"d:\\", kCd, "FIRST"}, {"e:\\", kCd, "SECOND"}, {"z:\\", 4, "NET"}};
  EXPECT_EQ(0, cd.CDCount());
  desktop.onDoEvents = [&] { EXPECT_EQ("SECOND", cd.CDVolumeLabel()); };  // asked during the search
  EXPECT_EQ("Z:\\", cd.CDDriveLetter()) << "the letter of the last drive, the label of the last CD";
  EXPECT_EQ(2, cd.CDCount());
  EXPECT_EQ(6u, desktop.doEventsCount) << "messages run once for each CD drive and search";
  EXPECT_TRUE(cd.CDExists());
  drives.drives = {{"c:\\", 3, "SYSTEM"}};
  ExpectNone(cd);
}

TEST_F(CdTest, Labels) {
  const std::pair<std::optional<std::string>, const char*> cases[] = {{"A LABEL", "A LABEL"},
                                                                      {"   ", "(no label)"},
                                                                      {"", "(no label)"},
                                                                      {std::nullopt, ""},
                                                                      {std::string("CUT\0HERE", 8), "CUT"},
                                                                      {"THIRTEEN CHRS", "THIRTEEN CHRS"},
                                                                      {" BLANKS ", " BLANKS "},
                                                                      {"FOURTEEN CHARS", ""}};
  cCD cd(drives, desktop);
  for (const auto& [label, expected] : cases) {
    drives.drives = {{"d:\\", kCd, label}};
    EXPECT_EQ(expected, cd.GetVolumeLabel("D:\\"));
  }
  EXPECT_EQ("", cd.GetVolumeLabel("q:\\"));
}

TEST_F(CdTest, MoreDrivesThanTheBufferHoldsGiveNone) {
  for (char letter = 'a'; letter < 'a' + 15; ++letter)
    drives.drives.push_back({letter + std::string(":\\"), kCd, "X"});
  cCD cd(drives, desktop);
  EXPECT_EQ(15, cd.CDCount());
  drives.drives.push_back({"p:\\", kCd, "X"});
  ExpectNone(cd);
}

TEST_F(CdTest, MovesTheTray) {
  cCD cd(drives, desktop);
  cd.EjectCD();
  cd.CloseCD();
  EXPECT_EQ(std::vector<std::string>({"Set CDAudio Door Open Wait", "Set CDAudio Door Close Wait"}),
            drives.mciCommands);
}

}  // namespace
}  // namespace kxrestore::platform
