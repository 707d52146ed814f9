// On a million files, pending messages run often enough during every action to keep the window responsive,
// and Esc stops the action.
#include <cstdio>
#include <ctime>

#include "tests/dialog/dialog_fixture.h"

namespace kxrestore::dialog_test {
namespace {

constexpr int kFiles = 1'000'000;
constexpr double kLongest = 250;  // milliseconds between pending messages; 20 to 45 on an idle machine

class WaitingTest : public DialogTest {
 protected:
  void SetUp() override {
    MakeCatalog({Live(1, "C:\\first.doc")});
    catalog->Execute(
        "INSERT INTO Catalog (ID, DateStamp, SetNameID, Extension, Filename, File, OrigName, Restore, "
        "Status) "
        "WITH RECURSIVE n(i) AS (SELECT 2 UNION ALL SELECT i + 1 FROM n WHERE i < " +
        std::to_string(kFiles) +
        ") SELECT i, '2026-03-01 08:00:00', 1, '003', 'C:\\Data\\' || (i / 2000) || '\\' || (i / 2) || "
        "'.doc', "
        "(i / 2) || '.doc', 'C:\\Data\\' || (i / 2000) || '\\' || (i / 2) || '.doc', 0, 2 FROM n");
  }

  // The longest time between two runs of pending messages during `action`, in milliseconds of processor time.
  // The best of three attempts, because other load disturbs the measurement.
  template <typename Action>
  double LongestWait(Action action) {
    double best = 0;
    for (int attempt = 0; attempt < 3 && (attempt == 0 || best >= kLongest); ++attempt) {
      m_longest = 0;
      m_looks = 0;
      m_last = std::clock();
      desktop.onDoEvents = [this] {
        Look();
        if (++m_looks == m_stopAfter) Escape();
      };
      action();
      Look();
      desktop.onDoEvents = nullptr;
      std::printf("longest wait %.1f ms in %d looks\n", m_longest, m_looks);
      best = attempt == 0 ? m_longest : std::min(best, m_longest);
    }
    return best;
  }

  int m_stopAfter = 0;

 private:
  void Look() {
    const std::clock_t now = std::clock();
    m_longest = std::max(m_longest, static_cast<double>(now - m_last) * 1000 / CLOCKS_PER_SEC);
    m_last = now;
  }

  double m_longest = 0;
  int m_looks = 0;
  std::clock_t m_last = 0;
};

TEST_F(WaitingTest, NothingKeepsTheWindowWaiting) {
  ShowTab(2);
  // A search for the latest versions by a mask that few names match takes long to find its first row.
  ui().cboMask.UserType("999*99.doc");
  ui().chk1.SetValue(1);
  const auto find = [&] { ui().cmdSearch[kFind].UserClick(); };
  EXPECT_LT(LongestWait(find), kLongest) << "latest versions found";
  EXPECT_GT(ui().asSearch.Count(), 0u);
  ui().chk1.SetValue(0);
  ui().cboMask.UserType("no such file");
  m_stopAfter = 1;
  EXPECT_LT(LongestWait(find), kLongest) << "stopped before the first row";
  EXPECT_GT(ui().asSearch.Count(), 0u);
  EXPECT_EQ(ui().form.MousePointer(), controls::MousePointer::kDefault);
  m_stopAfter = 0;
  EXPECT_LT(LongestWait(find), kLongest) << "nothing found";
  EXPECT_EQ(ui().asSearch.Count(), 0u);

  const auto showTypes = [&] {
    ui().panel[2].SetTag("");
    ShowTab(1);
    ShowTab(3);
  };
  EXPECT_LT(LongestWait(showTypes), kLongest) << "file types counted";
  ASSERT_EQ(ui().asFiles.Count(), 2u);
  EXPECT_EQ(ui().asFiles.At(2).size, kFiles);

  // Marking reads the rest of the listing before the first mark. Esc stops it.
  ui().cmdAuto[1].UserClick();
  ui().chk2.SetValue(0);
  m_stopAfter = 2000;
  EXPECT_LT(LongestWait([&] { ui().cmdAuto[0].UserClick(); }), kLongest) << "files marked";
  const std::size_t marked = catalog->Marked().size();
  EXPECT_GT(marked, 100u);
  EXPECT_LT(marked, 10'000u);
  EXPECT_EQ(ui().asRestoreList.Count(), 0u) << "a stopped run lists nothing";
  m_stopAfter = 0;

  // A single statement clears all marks. Messages run until it commits.
  desktop.answers = {platform::Answer::kYes};
  catalog->Execute("UPDATE Catalog SET Restore = 1");
  desktop.doEventsCount = 0;
  Click(kClearList);
  EXPECT_GT(desktop.doEventsCount, 3u);
  EXPECT_EQ(catalog->Marked().size(), 0u);
  ExpectReports({"Clear Selection? : "});
}

}  // namespace
}  // namespace kxrestore::dialog_test
