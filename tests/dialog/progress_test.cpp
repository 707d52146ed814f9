// The progress display during long work and after a stop.
#include "dialog/progress.h"

#include "tests/dialog/dialog_fixture.h"

namespace kxrestore::dialog_test {
namespace {

class ProgressTest : public DialogTest {
 protected:
  void SetUp() override {
    std::vector<sample::FileRow> rows;
    for (int i = 0; i < kFiles; ++i)
      rows.push_back(Row(i + 1, 1, "003", "C:\\" + std::to_string(i) + ".doc"));
    MakeCatalog(rows);
    ChooseRun();
  }

  // Runs `action`. For each item the clock advances by `milliseconds`, then `look` is called. Returns the
  // different texts that were shown.
  Strings Said(
      std::int64_t milliseconds, const std::function<void()>& action,
      const std::function<void()>& look = [] {}) {
    Strings said;
    desktop.walkItems = 0;
    desktop.onDoEvents = [&] {
      desktop.milliseconds += milliseconds;
      look();
      if (!ui().picProgress.IsShown()) return;
      std::string text = ui().lblProgress.Caption();
      std::erase(text, '\r');
      if (said.empty() || said.back() != text) said.push_back(text);
    };
    action();
    desktop.onDoEvents = nullptr;
    return said;
  }

  static constexpr int kFiles = 1200;
};

TEST_F(ProgressTest, ShowsTheCountTheTotalAndTheTimeLeft) {
  TickAll();
  // 1,201 nodes take 10 ms each. The display appears after a second and changes every tenth of a second.
  const Strings said = Said(10, [this] { Apply(); });
  ASSERT_GT(said.size(), 100U);
  EXPECT_TRUE(said.front().starts_with("Marking\n10")) << said.front();
  EXPECT_NE(said.front().find(" of 1,201\n0:01, about 0:1"), std::string::npos) << said.front();
  EXPECT_TRUE(said.front().ends_with(" left\nEsc stops"));
  EXPECT_NE(said[50].find(" of 1,201\n0:06, about 0:0"), std::string::npos) << said[50];
  EXPECT_EQ(said.back().substr(0, 8), "Listing\n") << said.back();
  EXPECT_FALSE(ui().picProgress.IsShown());
  EXPECT_FALSE(ui().form.GetTaskProgress().shown);
  EXPECT_TRUE(ui().lblHelp.IsShown());
}

TEST_F(ProgressTest, BarAndTaskBarShowTheShare) {
  TickAll();
  double half = 0, unknown = 0;  // shares in the task bar
  Said(
      10, [this] { Apply(); },
      [&] {
        if (desktop.walkItems != 601) return;
        EXPECT_FALSE(ui().barProgress.Indeterminate());
        EXPECT_EQ(ui().barProgress.Max(), kFiles + 1);
        EXPECT_NEAR(ui().barProgress.Value(), 601, 10);
        half = ui().form.GetTaskProgress().share;
      });
  EXPECT_NEAR(half, 0.5, 0.01);
  // The number of files of a run is not known in advance.
  Said(
      10, [this] { ChooseRun(); },
      [&] {
        if (desktop.walkItems != 300) return;
        EXPECT_TRUE(ui().barProgress.Indeterminate());
        unknown = ui().form.GetTaskProgress().share;
      });
  EXPECT_LT(unknown, 0);
}

TEST_F(ProgressTest, EveryLongWalkHasItsTitleAndAShortOneShowsNothing) {
  const auto first = [this](auto action) {
    const Strings said = Said(10, action);
    return said.empty() ? std::string() : said.front().substr(0, said.front().find('\n'));
  };
  EXPECT_EQ(first([this] { ChooseRun(); }), "Loading files");
  TickAll();
  EXPECT_EQ(first([this] { Apply(); }), "Marking");
  EXPECT_EQ(first([this] { Click(kRefresh); }), "Listing");
  EXPECT_EQ(first([this] { ui().cmdAction[kExpandAll].UserClick(); }), "Opening and closing");
  ui().asRestoreList.TickAll(false);
  EXPECT_EQ(first([this] { Click(kUpdate); }), "Unmarking");
  ShowTab(2);
  EXPECT_EQ(first([this] { Find("*.doc"); }), "Searching");
  ui().asSearch.TickAll(true);
  EXPECT_EQ(first([this] { ui().cmdSearch[kApplyFound].UserClick(); }), "Marking");
  ShowTab(3);
  ui().asFiles.TickAll(true);
  EXPECT_EQ(first([this] { ui().cmdAuto[kApplyTypes].UserClick(); }), "Marking");
  EXPECT_EQ(Said(0, [this] { Click(kRefresh); }), Strings());
}

TEST_F(ProgressTest, AStopShowsWhatWasDoneUntilTheNextAction) {
  TickAll();
  EscapeAt(701);
  Apply();
  EXPECT_TRUE(ui().picProgress.IsShown());
  EXPECT_FALSE(ui().barProgress.Visible());
  EXPECT_EQ(ui().lblProgress.Caption(), "Stopped: " + std::to_string(catalog->Marked().size()) + " marked.");
  EXPECT_FALSE(ui().form.GetTaskProgress().shown);
  Click(kRefresh);
  EXPECT_FALSE(ui().picProgress.IsShown());

  ui().asRestoreList.TickAll(false);
  EscapeAt(301);
  Click(kUpdate);
  EXPECT_EQ(ui().lblProgress.Caption(), "Stopped: 300 unmarked.");
}

// The list of runs is endless, and the form has no window yet.
TEST_F(ProgressTest, ALongLoadOffersAStopBeforeTheFormHasAWindow) {
  catalog->Execute(
      "ALTER TABLE SetNames RENAME TO Sets; CREATE VIEW SetNames AS WITH RECURSIVE n(i) AS "
      "(SELECT 1 UNION ALL SELECT i + 1 FROM n) SELECT 1 AS ID, 'set ' || i AS Name FROM n");
  form.ShowModal();
  desktop.onDoEvents = [this] { desktop.milliseconds += 100; };
  Strings busy;
  desktop.onBusy = [&](controls::Form& loading) {
    if (busy.empty()) {
      EXPECT_LT(std::abs(desktop.milliseconds - 2000), 300);
    }
    busy.push_back(desktop.busy);
    if (busy.size() == 3) loading.UserKey(controls::Key::kEscape);
  };
  std::string shown = "never";
  desktop.user = [&](controls::Form&) { shown = desktop.busy; };
  form.ShowModal();
  ASSERT_EQ(busy.size(), 3U);
  EXPECT_TRUE(busy.front().ends_with("0:02\r\nEsc stops")) << busy.front();
  EXPECT_EQ(shown, "") << "hidden once the form has its window";
}

TEST_F(ProgressTest, TimeDuringAQuestionIsNotCounted) {
  Tick("0.doc");
  Apply();
  desktop.onMessage = [this](const auto&) { desktop.milliseconds += 3'600'000; };
  desktop.answers = {platform::Answer::kYes};
  EXPECT_EQ(Said(0, [this] { Click(kClearList); }), Strings());
  desktop.messages.clear();
  EXPECT_EQ(dialog::Duration(59), "0:59");
  EXPECT_EQ(dialog::Duration(3723), "1:02:03");
}

}  // namespace
}  // namespace kxrestore::dialog_test
