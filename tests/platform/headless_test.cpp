#include <gtest/gtest.h>

#include <stdexcept>

#include "controls/form.h"
#include "platform/headless/headless_platform.h"

namespace kxrestore::platform {
namespace {

TEST(HeadlessDesktop, QuestionsTakeTheirAnswersInOrder) {
  HeadlessDesktop desktop;
  desktop.answers = {kAnswerNo, kAnswerYes};
  EXPECT_EQ(kAnswerNo, desktop.MessageBox("first?", kYesNo | kQuestion, "Title"));
  EXPECT_EQ(kAnswerOk, desktop.MessageBox("told", kOkOnly | kExclamation, ""));
  EXPECT_EQ(kAnswerYes, desktop.MessageBox("second?", kYesNo, ""));
  EXPECT_THROW(desktop.MessageBox("third?", kYesNo, ""), std::logic_error);
  desktop.defaultAnswer = kAnswerNo;
  EXPECT_EQ(kAnswerNo, desktop.MessageBox("fourth?", kYesNo, ""));
  ASSERT_EQ(5u, desktop.messages.size());
  EXPECT_EQ("first?", desktop.messages[0].text);
  EXPECT_EQ(36, desktop.messages[0].style);
  EXPECT_EQ("Title", desktop.messages[0].title);
  EXPECT_EQ(kAnswerNo, desktop.messages[0].answer);
}

TEST(HeadlessDesktop, AFormIsClosedWhenItsUserHasGone) {
  HeadlessDesktop desktop;
  controls::Form form("form");
  bool used = false;
  desktop.user = [&](controls::Form& shown) {
    EXPECT_TRUE(shown.IsOpen());
    used = true;
  };
  desktop.ShowModal(form);
  EXPECT_TRUE(used);
  EXPECT_FALSE(form.IsOpen());

  controls::Form stubborn("stubborn");
  stubborn.OnUnload = [](bool& cancel) { cancel = true; };
  EXPECT_THROW(desktop.ShowModal(stubborn), std::logic_error);
}

TEST(HeadlessDesktop, PendingMessagesDoNotRunInsideThemselves) {
  HeadlessDesktop desktop;
  int runs = 0;
  desktop.onDoEvents = [&] {
    ++runs;
    desktop.DoEvents();
    if (runs == 2) throw std::runtime_error("a handler failed");
  };
  desktop.DoEvents();
  EXPECT_THROW(desktop.DoEvents(), std::runtime_error);
  desktop.DoEvents();
  EXPECT_EQ(3, runs);
  EXPECT_EQ(6u, desktop.doEventsCount);
}

TEST(HeadlessDrives, SearchesADirectoryForAPattern) {
  HeadlessDrives drives;
  drives.files = {"E:\\backup!mdb0001", "E:\\sub\\other.txt"};
  EXPECT_TRUE(drives.FileMatches("E:\\\\backup!mdb*"));
  EXPECT_TRUE(drives.FileMatches("e:\\BACKUP!MDB*"));
  EXPECT_TRUE(drives.FileMatches("E:\\sub\\*her.t?t"));
  EXPECT_FALSE(drives.FileMatches("D:\\backup!mdb*"));
  EXPECT_FALSE(drives.FileMatches("E:\\*.txt"));
  EXPECT_FALSE(drives.FileMatches("E:\\backup!mdb"));
  EXPECT_FALSE(drives.FileMatches(""));
  EXPECT_EQ(drives.FirstFile("e:\\\\backup!mdb*"), "E:\\backup!mdb0001");
  EXPECT_EQ(drives.FirstFile("E:\\none*"), "");
}

TEST(HeadlessRegistry, NamesIgnoreCaseAndClosedKeysAreGone) {
  HeadlessRegistry registry;
  Registry::Key key = 0;
  EXPECT_EQ(HeadlessRegistry::kFileNotFound, registry.OpenKey(kHkeyCurrentUser, "Software\\X", 1, key));
  EXPECT_EQ(0, registry.CreateKey(kHkeyCurrentUser, "Software\\X", kKeyAllAccess, key));
  EXPECT_EQ(0, registry.SetValue(key, "Name", kRegDword, {1, 0, 0, 0}));
  registry.CloseKey(key);
  EXPECT_EQ(HeadlessRegistry::kInvalidHandle, registry.SetValue(key, "Name", kRegDword, {}));
  EXPECT_EQ(0, registry.OpenKey(kHkeyCurrentUser, "SOFTWARE\\x", 1, key));
  std::uint32_t type = 0, size = 0;
  EXPECT_EQ(0, registry.QueryValue(key, "NAME", type, size));
  EXPECT_EQ(kRegDword, type);
  EXPECT_EQ(4u, size);
  EXPECT_EQ(1u, registry.OpenKeys());
}

}  // namespace
}  // namespace kxrestore::platform
