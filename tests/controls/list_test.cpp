// The list model: entries, ticks, order, filter and selection, and the sums and pending ticks derived from
// them.
#include <gtest/gtest.h>

#include <random>

#include "controls/auto_select.h"
#include "controls/form.h"
#include "controls/list_rows.h"
#include "platform/headless/recording_peer.h"
#include "tests/raises.h"

namespace kxrestore::controls {
namespace {

using Column = ListColumn;

AutoSelect::Entry File(std::string_view name, std::int64_t size, std::int64_t time = 1,
                       std::int64_t setId = 1, std::string_view setName = "One") {
  AutoSelect::Entry entry;
  entry.name = entry.storedName = name;
  entry.size = size;
  entry.sizeKnown = size >= 0;
  entry.time = time;
  entry.setId = setId;
  entry.setName = setName;
  return entry;
}

AutoSelect::Entry Type(std::string_view name, std::int32_t group, bool isGroup = false,
                       std::string_view pattern = {}) {
  AutoSelect::Entry entry = File(name, 1, AutoSelect::kNoTime, group);
  entry.storedName = pattern;
  entry.isGroup = isGroup;
  return entry;
}

ListFilter Words(std::string words) {
  return {.words = std::move(words)};
}

class ListTest : public ::testing::Test {
 protected:
  std::string Shown() const {
    std::string names;
    for (std::size_t row = 0; row < list.Rows().Count(); ++row) {
      names.append(names.empty() ? "" : " ").append(list.At(list.Rows().Entry(row)).name);
    }
    EXPECT_EQ(list.Rows().Entry(list.Rows().Count()), 0u);
    return names;
  }
  using Ask = bool (AutoSelect::*)(std::size_t) const;
  static std::string Marks(const AutoSelect& of, Ask ask = &AutoSelect::TickedAt) {
    std::string marks;
    for (std::size_t number = 1; number <= of.Count(); ++number) marks += (of.*ask)(number) ? 'x' : '-';
    return marks;
  }
  std::string Marks(Ask ask = &AutoSelect::TickedAt) const { return Marks(list, ask); }
  static std::string Text(const AutoSelect::Sum& sum) {
    return std::to_string(sum.entries) + " " + std::to_string(sum.size) + " " + std::to_string(sum.sets);
  }

  Form form{"form"};
  AutoSelect list{"list", &form, AutoSelect::Style::kFiles};
};

TEST_F(ListTest, KeepsItsEntries) {
  const AutoSelect::Entry all[] = {
      {"C:\\Data\\a.doc", 123456789012, true, "F01", 32767, "Daily", 20240102, "1/2/2024", "C:\\Data\\a.doc",
       false},
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
  EXPECT_EQ("-x-x-", Marks());

  list.SetCurrent(1);
  EXPECT_EQ(32767, list.SetId());
  EXPECT_FALSE(list.Ticked());
  list.SetCurrent(2);
  EXPECT_EQ("C:\\long\\path\\b.doc D02 b.doc", std::string(list.FileName()) + ' ' +
                                                   std::string(list.Extension()) + ' ' +
                                                   std::string(list.StoredName()));
  EXPECT_RAISES(6, list.SetId());
  for (const std::size_t outside : {0, 6}) EXPECT_RAISES(9, list.SetCurrent(outside));
  EXPECT_RAISES(9, list.SetTicked(6, true));
  EXPECT_EQ(2u, list.Current());
  list.Clear();
  list.Add(all[0]);
  EXPECT_RAISES(9, list.Ticked());
}

TEST_F(ListTest, AGroupAndItsMembersAreTickedTogether) {
  const AutoSelect::Entry all[] = {
      Type("Documents", 1, true),        Type("Pictures", 2, true), Type(".doc", 1),
      Type("Bitmaps", 2, false, ".bmp"), Type(".alone", 0),         Type(".xls", 1)};
  AutoSelect types("types", &form, AutoSelect::Style::kTypes);
  for (const auto& entry : all) types.Add(entry);
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
  for (const auto& [number, ticked, ticks, patterns] : steps) {
    types.UserTick(number, ticked);
    EXPECT_EQ(ticks, Marks(types));
    EXPECT_EQ(patterns, types.TickedTypes());
  }
  types.TickAll(true);
  types.UserTick(6, false);
  EXPECT_EQ("-xxxx-", Marks(types));

  // Ticking everything shown leaves hidden entries alone. Groups do not count in sums.
  types.TickAll(false);
  types.SettleAll(false);
  types.SetFilter(Words("doc"));
  EXPECT_EQ(types.Rows().Count(), 3u) << "with both groups";
  types.UserTickShown(true);
  EXPECT_EQ("--x---", Marks(types));
  EXPECT_EQ(types.PendingCount(), 1u);
  EXPECT_EQ(Text(types.Shown()), "1 1 1");
  types.SetFilter({});
  types.UserTickShown(true);
  EXPECT_EQ("xxxxxx", Marks(types));
}

TEST_F(ListTest, NotifiesThePeerOfAllTicksAndTheFormOfTheUsers) {
  platform::PeerLog log;
  platform::Record(list, log);
  list.TickAll(true);
  EXPECT_TRUE(log.ticksChanged.empty());
  for (int i = 0; i < 3; ++i) list.Add(File("x", 1));
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
  EXPECT_EQ("xx-", Marks());
  list.Clear();
  EXPECT_EQ(1, log.cleared);
  EXPECT_EQ(0u, list.Count());
}

TEST_F(ListTest, EqualTextsAreStoredOnce) {
  constexpr int kEntries = 100000;
  std::size_t texts = 0;
  for (int i = 0; i < kEntries; ++i) {
    const std::string name = "C:\\Data\\file" + std::to_string(i) + ".doc";
    const std::string date = i % 2 == 0 ? "no date at all" : std::to_string(i);
    AutoSelect::Entry entry = File(name, 0);
    if (i % 3 != 0) entry.storedName = entry.name.substr(8);
    entry.setName = i % 5 == 0 ? "Weekly backup of everything" : "Daily backup of everything";
    entry.date = date;
    list.Add(entry);
    texts += name.size() + (i % 2 == 0 ? 0 : date.size());
  }
  EXPECT_EQ("Weekly backup of everything", list.At(kEntries - 4).setName);
  EXPECT_EQ("99999", list.At(kEntries).date);
  EXPECT_LT(list.MemoryUsed(), texts + kEntries * 80u);
}

TEST_F(ListTest, NamesSortByTheirLastComponentThenByCaseThenByFolder) {
  for (const char* name : {"C:\\b\\Beta", "D:\\alpha", "C:\\z\\beta", "C:\\a\\beta", "C:\\Data\\Sub\\"}) {
    list.Add(File(name, 1));
  }
  list.SortBy(Column::kName, false);
  EXPECT_EQ(Shown(), "D:\\alpha C:\\b\\Beta C:\\a\\beta C:\\z\\beta C:\\Data\\Sub\\");
  list.UserSort(Column::kName);
  EXPECT_EQ(Shown(), "C:\\Data\\Sub\\ C:\\z\\beta C:\\a\\beta C:\\b\\Beta D:\\alpha");
  list.UserSort(Column::kFolder);
  EXPECT_EQ(Shown(), "C:\\a\\beta C:\\b\\Beta C:\\Data\\Sub\\ C:\\z\\beta D:\\alpha");
  list.Add(File("A", 1));
  EXPECT_TRUE(Shown().ends_with(" A")) << "last until it is sorted in";
  list.SortAddedIn();
  EXPECT_TRUE(Shown().starts_with("A "));
  list.SetFilter(Words("10"));
  list.Add(File("C:\\a\\Report 10", 1));
  list.Add(File("C:\\a\\report 9.10", 1));
  list.SortBy(Column::kName, false);
  EXPECT_EQ(Shown(), "C:\\a\\report 9.10 C:\\a\\Report 10") << "numbers by their value";
  list.SetSortKey([](std::string& key, std::string_view text) { key.append(text.rbegin(), text.rend()); });
  list.SortBy(Column::kName, true);
  EXPECT_EQ(Shown(), "C:\\a\\report 9.10 C:\\a\\Report 10") << "in the order of the keys";
  list.SetFilter({});
  list.Unsort();
  EXPECT_TRUE(Shown().starts_with("C:\\b\\Beta D:\\alpha"));
}

TEST_F(ListTest, SortsByTheRunsDateThatTheFormProvides) {
  list.RunTime = [](const AutoSelect::Entry& entry) { return entry.name == "b" ? 5 : entry.size; };
  for (const char* name : {"a", "b", "c"}) list.Add(File(name, name[0] == 'a' ? 7 : 1));
  list.SortBy(Column::kBackup, true);
  EXPECT_EQ(Shown(), "a b c");
  list.SortBy(Column::kSize, false);
  EXPECT_EQ(Shown(), "b c a");
}

TEST_F(ListTest, AFilterCombinesItsConditions) {
  list.Add(File("C:\\Data\\Report March.doc", 100, 10));
  list.Add(File("C:\\data\\report april.doc", 200, 20, 2, "Two"));
  list.Add(File("C:\\Other\\\xC3\x84rger.xls", -1, AutoSelect::kNoTime, 2, "Two"));
  const struct {
    ListFilter filter;
    const char *shown, *sum;
  } cases[] = {{{}, "xxx", "3 300 2"},
               {{.words = "  * "}, "xxx", "3 300 2"},
               {{.words = "REPORT"}, "xx-", "2 300 2"},
               {{.words = "REPORT doc MAR"}, "x--", "1 100 1"},
               {{.words = "da*.DOC"}, "xx-", "2 300 2"},
               {{.words = "doc*data"}, "---", "0 0 0"},  // the pieces of a word must follow in order
               {{.words = "\xC3\xA4rg"}, "--x", "1 0 1"},
               {{.words = "RGER"}, "--x", "1 0 1"},
               {{.from = 10, .to = 10}, "x--", "1 100 1"},
               {{.minSize = 101}, "-x-", "1 200 1"},  // an unknown size does not pass
               {{.setId = 2}, "-xx", "2 200 1"},
               {{.words = "april", .setId = 2}, "-x-", "1 200 1"},
               {{}, "xxx", "3 300 2"}};
  for (const auto& [filter, shown, sum] : cases) {
    list.SetFilter(filter);
    std::string passing;
    for (std::size_t number = 1; number <= 3; ++number) passing += list.Rows().Shows(number) ? 'x' : '-';
    EXPECT_EQ(passing, shown) << filter.words;
    EXPECT_EQ(Text(list.Shown()), sum) << filter.words;
  }
}

// After each random step the rows and sums equal those computed from scratch.
TEST_F(ListTest, RowsAndSumsAreRightAfterAnySequenceOfSteps) {
  std::mt19937 random(7);
  const auto pick = [&](std::uint32_t most) { return random() % most; };
  const char* const words[] = {"", "a", "ab", "ab c", "b*a", "c"};
  for (int step = 0; step < 3000; ++step) {
    switch (pick(9)) {
      case 0:
      case 1:
      case 2: {
        std::string name;
        for (int i = 0; i < 5; ++i) name += "abC\\"[pick(4)];
        list.Add(File(name, static_cast<int>(pick(50)) - 1, pick(9), pick(3)), pick(2) == 0);
        break;
      }
      case 3:
        list.UserSort(static_cast<Column>(pick(kListColumns)));
        break;
      case 4: {
        ListFilter filter = Words(words[pick(6)]);
        if (pick(3) == 0) filter.setId = pick(3);
        list.UserFilter(filter);
        break;
      }
      case 5:
        list.UserSelect(pick(20), pick(40), pick(3) != 0);
        break;
      case 6:
        pick(2) == 0 ? list.UserTickSelected(pick(2) == 0) : list.UserTickShown(pick(2) == 0);
        break;
      case 7:
        if (list.Count() > 0) list.Settle(pick(static_cast<std::uint32_t>(list.Count())) + 1, pick(2) == 0);
        break;
      default:
        if (pick(40) == 0) list.Clear();
        if (pick(4) == 0) list.Unsort();
        if (pick(4) == 0) list.SortAddedIn();
    }
    const ListMatcher matcher(list.Rows().Filter());
    AutoSelect::Sum shown, selected;
    std::size_t pending = 0;
    std::vector<bool> sets(3);
    for (std::size_t number = 1; number <= list.Count(); ++number) {
      const auto entry = list.At(number);
      const auto count = [&](AutoSelect::Sum& sum) {
        ++sum.entries;
        if (entry.sizeKnown) sum.size += entry.size;
      };
      const bool passes = matcher.MatchesName(entry.name, true) &&
                          matcher.MatchesNumbers(entry.time, true, entry.size, entry.sizeKnown, entry.setId);
      EXPECT_EQ(list.Rows().Shows(number), passes);
      if (passes) {
        count(shown);
        sets[static_cast<std::size_t>(entry.setId)] = true;
      }
      if (list.SelectedAt(number)) {
        EXPECT_TRUE(passes) << "selected, but hidden";
        count(selected);
      }
      pending += list.PendingAt(number) ? 1 : 0;
    }
    shown.sets = static_cast<std::size_t>(std::count(sets.begin(), sets.end(), true));
    ASSERT_EQ(Text(list.Shown()), Text(shown)) << step;
    ASSERT_EQ(Text(list.Selected()), Text(selected)) << step;
    ASSERT_EQ(list.PendingCount(), pending) << step;
    ASSERT_EQ(list.Rows().Count(), shown.entries) << step;
    std::vector<bool> seen(list.Count() + 1);
    for (std::size_t row = 0; row < list.Rows().Count(); ++row) {
      const std::size_t number = list.Rows().Entry(row);
      ASSERT_TRUE(list.Rows().Shows(number) && !seen[number]) << step;
      seen[number] = true;
    }
  }
}

TEST_F(ListTest, ADisabledFormIgnoresTicksAndSelections) {
  for (const char* name : {"a", "b"}) list.Add(File(name, 1));
  list.UserSelect(0, 0, true);
  form.SetEnabled(false);
  list.UserSelect(1, 1, true);
  list.UserTickSelected(true);
  list.UserTickShown(true);
  EXPECT_EQ(Marks(&AutoSelect::TickedAt) + " " + Marks(&AutoSelect::SelectedAt), "-- x-");
}

TEST_F(ListTest, TheNewestOfSeveralVersionsIsKnown) {
  const std::pair<const char*, int> files[] = {{"C:\\a", 3}, {"C:\\b", 9},        {"c:\\A", 5},
                                               {"C:\\a", 4}, {"C:\\\xC3\xA4", 1}, {"C:\\\xC3\x84", 1}};
  for (const auto& [name, time] : files) list.Add(File(name, 1, time));
  EXPECT_FALSE(list.VersionsFound());
  list.FindVersions();
  std::string versions;
  for (std::size_t number = 1; number <= list.Count(); ++number) {
    versions += " on"[static_cast<int>(list.VersionAt(number))];
  }
  EXPECT_EQ(versions, "o nono") << "of equal ones the first";
  list.Add(File("C:\\b", 10));
  EXPECT_EQ(list.VersionAt(3), AutoSelect::Version::kOnly) << "unknown after an addition";
}

TEST_F(ListTest, TheLookOutlivesTheEntriesAndThePeerIsNotifiedOfRows) {
  struct Peer : platform::RecordingListPeer {
    using RecordingListPeer::RecordingListPeer;
    void RowsChanged() override { ++rows; }
    void SelectionChanged() override { ++selections; }
    int rows = 0, selections = 0;
  };
  platform::PeerLog log;
  auto made = std::make_unique<Peer>(log);
  Peer& peer = *made;
  list.AttachPeer(std::move(made));
  const ListLook look{{{Column::kFolder, 700}, {Column::kName, 900}}, true, true, Column::kSize};
  list.SetLook(look);
  list.SetFilter(Words("a"));
  list.SetFilter(Words("a"));
  list.Add(File("a", 1));
  list.Add(File("aa", 2));
  list.UserSelect(0, 0, true);
  list.Clear();
  EXPECT_EQ(list.Look(), look);
  EXPECT_EQ(peer.rows, 2);
  EXPECT_EQ(peer.selections, 1);
  list.Add(File("b", 3));
  EXPECT_EQ(Shown(), "");
  EXPECT_EQ(Text(list.All()), "1 3 1");
  list.UserShowFilter(true);
  list.SetFilter(Words("x"));
  list.UserShowFilter(false);
  EXPECT_EQ(Shown(), "b") << "hiding the filter line removes the filter";
  EXPECT_EQ(log.Count(Property::kValue), 2u);
}

}  // namespace
}  // namespace kxrestore::controls
