#include "controls/auto_select.h"

#include <gtest/gtest.h>

#include "controls/form.h"
#include "platform/headless/recording_peer.h"
#include "tests/controls/raises.h"

namespace kxrestore::controls {
namespace {

AutoSelect::Entry Named(std::string_view name, std::string_view stored = {}) {
  AutoSelect::Entry entry;
  entry.name = name;
  entry.storedName = stored;
  return entry;
}

AutoSelect::Entry Grouped(std::string_view name, std::int32_t group, bool isGroup = false) {
  AutoSelect::Entry entry = Named(name);
  entry.setId = group;
  entry.isGroup = isGroup;
  return entry;
}

class AutoSelectTest : public ::testing::Test {
 protected:
  std::string Ticks() const {
    std::string ticks;
    for (std::size_t number = 1; number <= list.Count(); ++number) ticks += list.TickedAt(number) ? 'x' : '-';
    return ticks;
  }

  Form form{"form"};
  AutoSelect list{"list", &form, AutoSelect::Style::kFiles};
};

TEST_F(AutoSelectTest, GivesBackWhatItWasGiven) {
  const AutoSelect::Entry all[] = {
      {"C:\\Data\\a.doc", 123456789012, true, "F01", 7, "Daily", 20240102, "1/2/2024", "C:\\Data\\a.doc",
       false},
      {"a.doc", 0, false, "F01", -3, "Daily", 20240102, "1/2/2024", "C:\\Data\\a.doc", false},
      {"C:\\long\\path\\b.doc", 1, true, "D02", 70000, "Weekly", 0, "", "b.doc", false},
      {"item.kxexag", 2, true, "", 0, "", -5, "1/3/2024", "STORE\\item", false},
      {"", 0, true, "", 0, "", 0, "", "", false},
      {"Documents", 12, true, "Word processing", 0, "", 0, "", "", true}};
  std::size_t number = 0;
  for (const auto& entry : all) {
    ++number;
    EXPECT_EQ(number, list.Add(entry, number % 2 == 0));
  }
  ASSERT_EQ(std::size(all), list.Count());
  for (std::size_t i = 0; i < list.Count(); ++i) {
    const AutoSelect::Entry entry = list.At(i + 1);
    EXPECT_EQ(all[i].name, entry.name);
    EXPECT_EQ(all[i].size, entry.size);
    EXPECT_EQ(all[i].sizeKnown, entry.sizeKnown);
    EXPECT_EQ(all[i].extension, entry.extension);
    EXPECT_EQ(all[i].setId, entry.setId);
    EXPECT_EQ(all[i].setName, entry.setName);
    EXPECT_EQ(all[i].date, entry.date);
    EXPECT_EQ(all[i].time, entry.time);
    EXPECT_EQ(all[i].storedName, entry.storedName);
    EXPECT_EQ(all[i].isGroup, entry.isGroup);
  }
  EXPECT_EQ("-x-x-x", Ticks());
}

TEST_F(AutoSelectTest, TheReadsSpeakOfTheCurrentEntry) {
  EXPECT_RAISES(9, list.FileName());
  AutoSelect::Entry entry = Named("name", "stored");
  entry.extension = "F01";
  entry.setId = 32767;
  list.Add(entry);
  entry.setId = 32768;
  list.Add(entry, true);
  list.SetCurrent(1);
  EXPECT_EQ("name", list.FileName());
  EXPECT_EQ("stored", list.StoredName());
  EXPECT_EQ("F01", list.Extension());
  EXPECT_EQ(32767, list.SetId());
  EXPECT_FALSE(list.Ticked());
  list.SetCurrent(2);
  EXPECT_TRUE(list.Ticked());
  EXPECT_RAISES(6, list.SetId());
  EXPECT_RAISES(9, list.SetCurrent(0));
  EXPECT_RAISES(9, list.SetCurrent(3));
  EXPECT_RAISES(9, list.SetTicked(3, true));
  EXPECT_EQ(2u, list.Current());
  list.Clear();
  list.Add(entry);
  EXPECT_RAISES(9, list.Ticked());
}

TEST_F(AutoSelectTest, AGroupAndItsMembersFollowEachOther) {
  list.Add(Grouped("Documents", 1, true));
  list.Add(Grouped("Pictures", 2, true));
  list.Add(Grouped(".doc", 1));
  list.Add(Grouped(".bmp", 2));
  list.Add(Grouped(".alone", 0));
  list.Add(Grouped(".xls", 1));

  list.UserTick(1, true);
  EXPECT_EQ("x-x--x", Ticks());
  list.UserTick(3, false);
  EXPECT_EQ("-----x", Ticks());
  list.UserTick(3, true);
  EXPECT_EQ("x-x--x", Ticks());
  list.UserTick(5, true);
  EXPECT_EQ("x-x-xx", Ticks());
  list.UserTick(4, true);
  EXPECT_EQ("xxxxxx", Ticks());
  EXPECT_EQ(".doc;.bmp;.alone;.xls;", list.TickedTypes());
  list.UserTick(1, false);
  EXPECT_EQ(".bmp;.alone;", list.TickedTypes());
  list.TickAll(false);
  list.UserTick(6, true);
  EXPECT_EQ("-----x", Ticks());
  list.TickAll(true);
  list.UserTick(6, false);
  EXPECT_EQ("-xxxx-", Ticks());
  list.TickAll(false);
  AutoSelect::Entry stored = Grouped("Bitmaps", 2);
  stored.storedName = ".bmp";
  list.Add(stored, true);
  EXPECT_EQ(".bmp;", list.TickedTypes());
}

TEST_F(AutoSelectTest, TellsThePeerOfTicksAndTheFormOfTheUsers) {
  platform::PeerLog log;
  platform::Record(list, log);
  list.TickAll(true);
  EXPECT_TRUE(log.ticksChanged.empty());
  for (int i = 0; i < 3; ++i) list.Add(Named("x"));
  EXPECT_EQ(3u, log.entries);
  std::vector<std::size_t> told;
  list.TickChange = [&](std::size_t number) { told.push_back(number); };
  list.SetTicked(2, true);
  list.TickAll(true);
  list.UserTick(3, false);
  list.UserTick(4, true);
  list.UserTick(0, true);
  list.SetEnabled(false);
  list.UserTick(1, false);
  using Range = std::pair<std::size_t, std::size_t>;
  EXPECT_EQ(std::vector<Range>({{2, 2}, {1, 3}, {3, 3}}), log.ticksChanged);
  EXPECT_EQ(std::vector<std::size_t>({3}), told);
  EXPECT_EQ("xx-", Ticks());
  list.Clear();
  EXPECT_EQ(1, log.cleared);
  EXPECT_EQ(0u, list.Count());
}

TEST_F(AutoSelectTest, EqualTextsAreKeptOnce) {
  constexpr int kEntries = 100000;
  std::size_t texts = 0;
  for (int i = 0; i < kEntries; ++i) {
    const std::string name = "C:\\Data\\file" + std::to_string(i) + ".doc";
    const std::string date = i % 2 == 0 ? "no date at all" : std::to_string(i);
    AutoSelect::Entry entry =
        Named(name, i % 3 == 0 ? std::string_view(name) : std::string_view(name).substr(8));
    entry.setName = i % 5 == 0 ? "Weekly backup of everything" : "Daily backup of everything";
    entry.date = date;
    list.Add(entry);
    texts += name.size() + (i % 2 == 0 ? 0 : date.size());
  }
  EXPECT_EQ("Weekly backup of everything", list.At(kEntries - 4).setName);
  EXPECT_EQ("99999", list.At(kEntries).date);
  EXPECT_LT(list.MemoryUsed(), texts + kEntries * 80u);
}

}  // namespace
}  // namespace kxrestore::controls
