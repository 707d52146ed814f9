// Rows of a list: order, filter, selection, and the sums and pending ticks that are kept meanwhile.
#include "controls/list_rows.h"

#include <gtest/gtest.h>

#include <random>

#include "controls/form.h"
#include "platform/headless/recording_peer.h"

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

ListFilter Words(std::string words) {
  ListFilter filter;
  filter.words = std::move(words);
  return filter;
}

class ListRowsTest : public ::testing::Test {
 protected:
  std::string Shown() const {
    std::string names;
    for (std::size_t row = 0; row < list.Rows().Count(); ++row) {
      names.append(names.empty() ? "" : " ").append(list.At(list.Rows().Entry(row)).name);
    }
    EXPECT_EQ(list.Rows().Entry(list.Rows().Count()), 0u);
    return names;
  }
  std::string Marks(bool (AutoSelect::*ask)(std::size_t) const) const {
    std::string marks;
    for (std::size_t number = 1; number <= list.Count(); ++number) marks += (list.*ask)(number) ? 'x' : '-';
    return marks;
  }
  static std::string Text(const AutoSelect::Sum& sum) {
    return std::to_string(sum.entries) + " " + std::to_string(sum.size) + " " + std::to_string(sum.sets);
  }

  Form form{"form"};
  AutoSelect list{"list", &form, AutoSelect::Style::kFiles};
};

TEST_F(ListRowsTest, NamesSortByTheirLastComponentThenByCaseThenByFolder) {
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
  EXPECT_TRUE(Shown().ends_with(" A")) << "behind the others until it is sorted in";
  list.SortAddedIn();
  EXPECT_TRUE(Shown().starts_with("A "));
  list.SetFilter(Words("10"));
  list.Add(File("C:\\a\\Report 10", 1));
  list.Add(File("C:\\a\\report 9.10", 1));
  list.SortBy(Column::kName, false);
  EXPECT_EQ(Shown(), "C:\\a\\report 9.10 C:\\a\\Report 10") << "numbers by their value";
  list.SetSortKey([](std::string& key, std::string_view text) { key.append(text.rbegin(), text.rend()); });
  list.SortBy(Column::kName, true);
  EXPECT_EQ(Shown(), "C:\\a\\report 9.10 C:\\a\\Report 10") << "as the key says";
  list.SetFilter({});
  list.Unsort();
  EXPECT_TRUE(Shown().starts_with("C:\\b\\Beta D:\\alpha"));
}

TEST_F(ListRowsTest, SortsByTheRunsDateWhichTheFormKnows) {
  list.RunTime = [](const AutoSelect::Entry& entry) { return entry.name == "b" ? 5 : entry.size; };
  for (const char* name : {"a", "b", "c"}) list.Add(File(name, name[0] == 'a' ? 7 : 1));
  list.SortBy(Column::kBackup, true);
  EXPECT_EQ(Shown(), "a b c");
  list.SortBy(Column::kSize, false);
  EXPECT_EQ(Shown(), "b c a");
}

TEST_F(ListRowsTest, AFilterAsksForEverythingAtOnce) {
  list.Add(File("C:\\Data\\Report March.doc", 100, 10));
  list.Add(File("C:\\data\\report april.doc", 200, 20, 2, "Two"));
  list.Add(File("C:\\Other\\\xC3\x84rger.xls", -1, AutoSelect::kNoTime, 2, "Two"));
  const auto after = [&](const ListFilter& filter) {
    list.SetFilter(filter);
    return Shown() + " = " + Text(list.Shown());
  };
  const std::string march = "C:\\Data\\Report March.doc", april = "C:\\data\\report april.doc",
                    other = "C:\\Other\\\xC3\x84rger.xls";
  const std::string all = march + " " + april + " " + other + " = 3 300 2";
  EXPECT_EQ(after({}), all);
  EXPECT_EQ(after(Words("  * ")), all);
  EXPECT_EQ(after(Words("REPORT")), march + " " + april + " = 2 300 2");
  EXPECT_EQ(after(Words("REPORT doc MAR")), march + " = 1 100 1");
  EXPECT_EQ(after(Words("da*.DOC")), march + " " + april + " = 2 300 2");
  EXPECT_EQ(after(Words("doc*data")), " = 0 0 0") << "the pieces of a word in their order";
  EXPECT_EQ(after(Words("\xC3\xA4rg")), other + " = 1 0 1");
  EXPECT_EQ(after(Words("RGER")), other + " = 1 0 1");
  ListFilter filter;
  filter.from = 10;
  filter.to = 10;
  EXPECT_EQ(after(filter), march + " = 1 100 1");
  filter = {};
  filter.minSize = 101;
  EXPECT_EQ(after(filter), april + " = 1 200 1") << "a size that nobody knows is neither";
  filter = {};
  filter.setId = 2;
  EXPECT_EQ(after(filter), april + " " + other + " = 2 200 1");
  filter.words = "april";
  EXPECT_EQ(after(filter), april + " = 1 200 1");
  EXPECT_EQ(after({}), all);
}

// Whatever is done and in whichever order: the rows are those of a fresh look, and the sums theirs.
TEST_F(ListRowsTest, RowsAndSumsHoldThroughAnyOrderOfSteps) {
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

TEST_F(ListRowsTest, TicksArePendingUntilTheyAreSettled) {
  for (const char* name : {"a", "b", "c"}) list.Add(File(name, 1), true);
  list.Add(File("d", 1));
  EXPECT_EQ(list.PendingCount(), 0u);
  list.UserSelect(0, 1, true);
  list.UserTickSelected(false);
  EXPECT_EQ(Marks(&AutoSelect::PendingAt), "xx--");
  list.SetFilter(Words("b"));
  EXPECT_EQ(Marks(&AutoSelect::SelectedAt), "-x--") << "what is hidden is no longer selected";
  list.UserTickShown(true);
  EXPECT_EQ(Marks(&AutoSelect::TickedAt), "-xx-");
  list.SetFilter({});
  list.UserTickShown(true);
  EXPECT_EQ(Marks(&AutoSelect::PendingAt), "---x");
  list.SettleAll(true);
  list.UserTick(4, false);
  EXPECT_EQ(Marks(&AutoSelect::PendingAt), "---x") << "the catalog has it ticked now";
  list.Settle(4, false);
  list.Settle(1, false);
  EXPECT_EQ(Marks(&AutoSelect::PendingAt), "x---");
  list.TickAll(false);
  EXPECT_EQ(list.PendingCount(), 2u);
  form.SetEnabled(false);
  list.UserTickShown(true);
  list.UserSelect(0, 3, true);
  EXPECT_EQ(Marks(&AutoSelect::TickedAt) + Marks(&AutoSelect::SelectedAt), "-----x--");
}

TEST_F(ListRowsTest, BulkTicksOfTypesLeaveWhatIsHiddenAlone) {
  AutoSelect types("types", &form, AutoSelect::Style::kTypes);
  auto group = File("Documents", 3, AutoSelect::kNoTime, 1);
  group.isGroup = true;
  types.Add(group);
  types.Add(File(".doc", 1, AutoSelect::kNoTime, 1));
  types.Add(File(".xls", 2, AutoSelect::kNoTime, 1));
  types.SetFilter(Words("doc"));
  EXPECT_EQ(types.Rows().Count(), 2u) << "with its group";
  types.UserTickShown(true);
  EXPECT_EQ(types.TickedTypes(), ".doc;");
  EXPECT_FALSE(types.TickedAt(1));
  EXPECT_EQ(types.PendingCount(), 1u) << "groups do not count";
  EXPECT_EQ(Text(types.Shown()), "1 1 1");
  types.SetFilter({});
  types.UserTickShown(true);
  EXPECT_EQ(types.TickedTypes(), ".doc;.xls;");
}

TEST_F(ListRowsTest, TheNewestOfSeveralVersionsIsKnown) {
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
  EXPECT_EQ(list.VersionAt(3), AutoSelect::Version::kOnly) << "not known any more";
}

TEST_F(ListRowsTest, TheLookOutlivesTheEntriesAndThePeerHearsOfRows) {
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
  EXPECT_EQ(Shown(), "b") << "a filter that nobody sees holds nothing back";
  EXPECT_EQ(log.Count(Property::kValue), 2u);
}

}  // namespace
}  // namespace kxrestore::controls
