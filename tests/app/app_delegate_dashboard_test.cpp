// SPDX-License-Identifier: MIT
// How often the dashboard's window is rendered.
#include "app/app_delegate_fixture.h"

namespace nimbo {
namespace {

using std::chrono::seconds;

class DashboardRenders : public AppDelegateTest {
 protected:
  /// With every monitor on, so that a tick brings all that it can.
  void launchAndOpen(const std::string& item) {
    settings.setMonitorCpu(true);
    settings.setMonitorTemperature(true);
    launch();
    clickItem(item);
    finishScans();
  }
  void finishScans() {
    while (platform.utilities.runOne()) platform.loop.runPosted();
  }
  /// The renders that `act` costs.
  template <class Act>
  [[nodiscard]] int rendersOf(Act act) {
    const int before = window()->renders();
    act();
    return window()->renders() - before;
  }
};

TEST_F(DashboardRenders, MovingWithItsItemCostsNone) {
  launch();
  platform.bar.item("nimbo-ai")->handlers.moved({900, 0, 24, 24});
  delegate->open({"nimbo://usage"});
  EXPECT_EQ(window()->frame().x, 900);
  EXPECT_EQ(rendersOf([&] { platform.bar.item("nimbo-ai")->handlers.moved({600, 0, 24, 24}); }), 0);
  EXPECT_EQ(window()->frame().x, 600);
}

TEST_F(DashboardRenders, OpeningCostsOne) {
  launch();
  clickItem("nimbo-ai");
  EXPECT_EQ(window()->renders(), 1);
}

TEST_F(DashboardRenders, OpeningOnAnotherTabCostsOne) {
  settings.setLastDashboardTab(DashboardTab::awake);
  launch();
  clickItem("nimbo-ai");
  EXPECT_EQ(window()->renders(), 1);
  clickItem("nimbo-ai");
  EXPECT_EQ(rendersOf([&] { clickItem("nimbo-memory"); }), 1);
}

TEST_F(DashboardRenders, OpeningWhatHasNotChangedCostsNone) {
  launch();
  clickItem("nimbo-ai");
  clickItem("nimbo-ai");
  EXPECT_EQ(rendersOf([&] { clickItem("nimbo-ai"); }), 0);
}

TEST_F(DashboardRenders, TickCostsOneWhereItShowsAndNoneElsewhere) {
  launchAndOpen("nimbo-memory");
  std::uint64_t megabytes = 0;
  for (const std::size_t tab : {0U, 1U, 2U}) {
    window()->act(chosen("tabs", tab));
    finishScans();
    for (int tick = 0; tick < 4; ++tick) {
      platform.host->counts = MemoryCounts{.wired = ++megabytes << 20};
      EXPECT_EQ(rendersOf([&] { platform.loop.advance(seconds(5)); }), tab == 1 ? 1 : 0) << tab << ' ' << tick;
      finishScans();
    }
  }
}

TEST_F(DashboardRenders, TickThatAlsoStartsAReadCostsOne) {
  settings.setUsageEnabled(UsageProvider::codex, true);
  launchAndOpen("nimbo-ai");
  ASSERT_TRUE(platform.background.runOne());  // no sign-in is found
  platform.loop.runPosted();
  ASSERT_EQ(std::get<UsageContent>(content().page).progress.text, "");
  platform.loop.advance(seconds(295));
  ASSERT_EQ(std::get<UsageContent>(content().page).progress.text, "");
  platform.host->counts = MemoryCounts{.wired = kGibibyte};
  EXPECT_EQ(rendersOf([&] { platform.loop.advance(seconds(5)); }), 1);
  EXPECT_EQ(std::get<UsageContent>(content().page).progress.text, "Refreshing…");
}

TEST_F(DashboardRenders, ProcessScanCostsOne) {
  launchAndOpen("nimbo-memory");
  platform.processes->add(11, 100 << 20, "more");
  platform.loop.advance(seconds(5));
  EXPECT_EQ(rendersOf([this] { finishScans(); }), 1);
}

TEST_F(DashboardRenders, ClosedDashboardCostsNone) {
  launchAndOpen("nimbo-memory");
  clickItem("nimbo-memory");
  platform.host->counts = MemoryCounts{.wired = kGibibyte};
  EXPECT_EQ(rendersOf([&] {
              platform.loop.advance(seconds(60));
              finishScans();
              toggleAwake();
            }),
            0);
}

TEST_F(DashboardRenders, EachClickOnThePageCostsOne) {
  settings.setMenuAwake(true);
  launchAndOpen("nimbo-awake");
  EXPECT_EQ(rendersOf([&] { window()->act(chosen("duration", 1)); }), 1);
  EXPECT_EQ(rendersOf([&] { window()->act(switched("plugged", true)); }), 1);
  EXPECT_EQ(rendersOf([&] { window()->act(pressed("start")); }), 1);
  EXPECT_EQ(rendersOf([&] { window()->act(pressed("extend")); }), 1);
  EXPECT_EQ(rendersOf([&] { window()->act(chosen("tabs", 1)); }), 1);
}

}  // namespace
}  // namespace nimbo
