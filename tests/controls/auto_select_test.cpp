#include "controls/auto_select.h"

#include <gtest/gtest.h>

#include "controls/form.h"
#include "platform/headless/recording_peer.h"
#include "tests/raises.h"

namespace kxrestore::controls {
namespace {

AutoSelect::Entry Named(std::string_view name, std::string_view stored = {}) {
  AutoSelect::Entry entry;
  entry.name = name;
  entry.storedName = stored;
  return entry;
}

AutoSelect::Entry Grouped(std::string_view name, std::int32_t group, bool isGroup = false,
                          std::string_view stored = {}) {
  AutoSelect::Entry entry = Named(name, stored);
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
      {"C:\\Data\\a.doc", 123456789012, true, "F01", 32767, "Daily", 20240102, "1/2/2024", "C:\\Data\\a.doc",
       false},
      {"a.doc", 0, false, "F01", -3, "Daily", 20240102, "1/2/2024", "C:\\Data\\a.doc", false},
      {"C:\\long\\path\\b.doc", 1, true, "D02", 32768, "Weekly", 0, "", "b.doc", false},
      {"item.kxexag", 2, true, "", 0, "", -5, "1/3/2024", "STORE\\item", false},
      {"", 0, true, "", 0, "", 0, "", "", false},
      {"Documents", 12, true, "Word processing", 0, "", 0, "", "", true}};
  EXPECT_RAISES(9, list.FileName());
  std::size_t number = 0;
  for (const auto& entry : all) {
    ++number;
    EXPECT_EQ(number, list.Add(entry, number % 2 == 0));
  }
  const auto fields = [](const AutoSelect::Entry& entry) {
    return std::tuple(entry.name, entry.size, entry.sizeKnown, entry.extension, entry.setId, entry.setName,
                      entry.date, entry.time, entry.storedName, entry.isGroup);
  };
  for (std::size_t i = 0; i < std::size(all); ++i) EXPECT_TRUE(fields(all[i]) == fields(list.At(i + 1))) << i;
  EXPECT_EQ("-x-x-x", Ticks());

  list.SetCurrent(1);
  EXPECT_EQ(32767, list.SetId());
  EXPECT_FALSE(list.Ticked());
  list.SetCurrent(3);
  EXPECT_EQ("C:\\long\\path\\b.doc D02 b.doc", std::string(list.FileName()) + ' ' +
                                                   std::string(list.Extension()) + ' ' +
                                                   std::string(list.StoredName()));
  EXPECT_RAISES(6, list.SetId());
  for (const std::size_t outside : {0, 7}) EXPECT_RAISES(9, list.SetCurrent(outside));
  EXPECT_RAISES(9, list.SetTicked(7, true));
  EXPECT_EQ(3u, list.Current());
  list.Clear();
  list.Add(all[0]);
  EXPECT_RAISES(9, list.Ticked());
}

TEST_F(AutoSelectTest, AGroupAndItsMembersFollowEachOther) {
  const AutoSelect::Entry all[] = {
      Grouped("Documents", 1, true),        Grouped("Pictures", 2, true), Grouped(".doc", 1),
      Grouped("Bitmaps", 2, false, ".bmp"), Grouped(".alone", 0),         Grouped(".xls", 1)};
  for (const auto& entry : all) list.Add(entry);
  const struct {
    std::size_t number;
    bool ticked;
    const char *ticks, *types;
  } steps[] = {{1, true, "x-x--x", ".doc;.xls;"},
               {3, false, "-----x", ".xls;"},
               {3, true, "x-x--x", ".doc;.xls;"},
               {5, true, "x-x-xx", ".doc;.alone;.xls;"},
               {4, true, "xxxxxx", ".doc;.bmp;.alone;.xls;"},
               {1, false, "-x-xx-", ".bmp;.alone;"}};
  for (const auto& [number, ticked, ticks, types] : steps) {
    list.UserTick(number, ticked);
    EXPECT_EQ(ticks, Ticks());
    EXPECT_EQ(types, list.TickedTypes());
  }
  list.TickAll(true);
  list.UserTick(6, false);
  EXPECT_EQ("-xxxx-", Ticks());
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
