// SPDX-License-Identifier: MIT
#include "app/tray/status_items.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "support/fake_main_loop.h"
#include "support/fake_status_bar.h"
#include "support/fake_user_defaults.h"

namespace nimbo {
namespace {

using std::chrono::seconds;
using Names = std::vector<std::string>;

class StatusItemsTest : public ::testing::Test {
 protected:
  void rotateThroughAll() {
    settings.setMenuAwake(true);
    settings.setMenuRotation(true);
    items.configure();
  }

  FakeUserDefaultsDomains domains;
  FakeUserDefaults defaults{domains, "test"};
  Settings settings{defaults};
  FakeStatusBar bar;
  FakeMainLoop loop;
  bool paused = false;
  int menusOpened = 0;
  std::string toolTip = "first";
  std::vector<StatusItemTab> clicks;
  std::vector<StatusItemTab> moves;
  StatusItems items{
      bar,
      loop,
      settings,
      {[this](StatusItemTab tab) {
         return StatusItemContent{{}, {}, toolTip, std::string(tab ? rawValue(*tab) : "all")};
       },
       [this](StatusItemTab tab, const StatusClick&) { clicks.push_back(tab); },
       [] {
         return StatusMenu{"Nimbo", {}};
       },
       [this] { ++menusOpened; }, [this](StatusItemTab tab) { moves.push_back(tab); }, [this] { return paused; }}};
};

TEST_F(StatusItemsTest, ConfigureMakesTheItemsInTabOrder) {
  settings.setMenuAwake(true);
  items.configure();
  EXPECT_EQ(bar.identifiers(), (Names{"nimbo-ai", "nimbo-memory", "nimbo-awake"}));
}

TEST_F(StatusItemsTest, ConfigureAgainKeepsTheItemsThatStay) {
  items.configure();
  const auto memory = bar.item("nimbo-memory");
  settings.setMenuAi(false);
  items.configure();
  EXPECT_EQ(bar.identifiers(), Names{"nimbo-memory"});
  EXPECT_EQ(bar.item("nimbo-memory"), memory);
}

TEST_F(StatusItemsTest, ItemsThatFollowANewcomerAreMadeAfterIt) {
  settings.setMenuAi(false);
  settings.setMenuAwake(true);
  items.configure();
  const auto memory = bar.item("nimbo-memory");
  settings.setMenuAi(true);
  items.configure();
  EXPECT_EQ(bar.identifiers(), (Names{"nimbo-ai", "nimbo-memory", "nimbo-awake"}));
  EXPECT_FALSE(memory->alive);
}

TEST_F(StatusItemsTest, BarThatPutsNewItemsFirstGetsTheLastOneFirst) {
  bar.setItemOrder(ItemOrder::newestFirst);
  EXPECT_EQ(bar.identifiers(), Names{}) << "before anything was asked for";
  items.configure();
  EXPECT_EQ(bar.identifiers(), (Names{"nimbo-memory", "nimbo-ai"}));
  const auto memory = bar.item("nimbo-memory");
  settings.setMenuAwake(true);
  items.configure();
  EXPECT_EQ(bar.identifiers(), (Names{"nimbo-awake", "nimbo-memory", "nimbo-ai"}));
  EXPECT_FALSE(memory->alive);
}

TEST_F(StatusItemsTest, AnotherBarGetsTheItemsInItsOrder) {
  items.configure();
  bar.setItemOrder(ItemOrder::newestFirst);
  EXPECT_EQ(bar.identifiers(), (Names{"nimbo-memory", "nimbo-ai"}));
}

TEST_F(StatusItemsTest, ItemsAreMadeAnewWhenTheirOrderChanges) {
  settings.setMenuAwake(true);
  items.configure();
  EXPECT_EQ(bar.item("nimbo-ai")->name.arrangement, "");
  settings.setTabOrder(std::array{DashboardTab::ai, DashboardTab::awake, DashboardTab::memory});
  items.configure();
  EXPECT_EQ(bar.identifiers(), (Names{"nimbo-ai", "nimbo-awake", "nimbo-memory"}));
  EXPECT_EQ(bar.item("nimbo-ai")->name.arrangement, "-ai-awake-memory");
  EXPECT_EQ(bar.all().size(), 6U) << "one that stayed would be where it was on bars that remember";
}

TEST_F(StatusItemsTest, BarsThatSortAreToldEachItemsPlaceAmongAllTabs) {
  settings.setTabOrder(std::array{DashboardTab::awake, DashboardTab::memory, DashboardTab::ai});
  items.configure();
  const auto ai = bar.item("nimbo-ai");
  EXPECT_EQ(bar.item("nimbo-memory")->name.place, 1);
  EXPECT_EQ(ai->name.place, 2);
  settings.setMenuMemory(false);
  items.configure();
  EXPECT_TRUE(ai->alive) << "it keeps its place when another goes";
  settings.setTabOrder(std::array{DashboardTab::memory, DashboardTab::ai, DashboardTab::awake});
  items.configure();
  EXPECT_EQ(bar.item("nimbo-ai")->name.place, 1);
  settings.setCompactMenuBar(true);
  items.configure();
  EXPECT_EQ(bar.item("nimbo")->name.place, std::nullopt);
}

TEST_F(StatusItemsTest, ConfigureBringsNewContentToTheItemsThatStay) {
  items.configure();
  toolTip = "second";
  items.configure();
  EXPECT_EQ(bar.item("nimbo-ai")->content.toolTip, "second");
  EXPECT_EQ(bar.all().size(), 2U);
}

TEST_F(StatusItemsTest, SwitchingEverythingOffReplacesAllByTheCompactItem) {
  items.configure();
  settings.setMenuAi(false);
  settings.setMenuMemory(false);
  items.configure();
  EXPECT_EQ(bar.identifiers(), Names{"nimbo"});
}

TEST_F(StatusItemsTest, RefreshBringsNewContent) {
  items.configure();
  toolTip = "second";
  items.refresh();
  EXPECT_EQ(bar.item("nimbo-memory")->content.toolTip, "second");
  EXPECT_EQ(bar.item("nimbo-memory")->contentChanges, 1);
  items.refresh();
  EXPECT_EQ(bar.item("nimbo-memory")->contentChanges, 1);
}

TEST_F(StatusItemsTest, ClickIsReportedWithItsItemAndItsPlaceIsKept) {
  items.configure();
  const Rect frame{100, 0, 24, 24};
  bar.click("nimbo-memory", {false, frame});
  EXPECT_EQ(clicks, std::vector<StatusItemTab>{DashboardTab::memory});
  EXPECT_EQ(items.knownFrame(DashboardTab::memory), frame);
  EXPECT_EQ(items.knownFrames(), std::vector{frame});
  EXPECT_EQ(items.knownFrame(DashboardTab::ai), std::nullopt);
}

TEST_F(StatusItemsTest, PlaceThatTheBarTellsIsKeptAndReported) {
  items.configure();
  for (const Rect frame : {Rect{100, 0, 24, 24}, Rect{80, 0, 24, 24}}) {
    bar.item("nimbo-memory")->handlers.moved(frame);
    EXPECT_EQ(items.knownFrame(DashboardTab::memory), frame);
  }
  EXPECT_EQ(moves, (std::vector<StatusItemTab>{DashboardTab::memory, DashboardTab::memory}));
  EXPECT_TRUE(clicks.empty());
}

TEST_F(StatusItemsTest, ClickWithoutAPlaceKeepsTheOldOne) {
  items.configure();
  bar.click("nimbo-memory", {false, Rect{100, 0, 24, 24}});
  bar.click("nimbo-memory", {});
  EXPECT_TRUE(items.knownFrame(DashboardTab::memory));
}

TEST_F(StatusItemsTest, CompactItemStandsForTheProgramElseAiElseMemoryElseAwake) {
  settings.setMenuAwake(true);
  items.configure();
  EXPECT_EQ(items.firstItem(), DashboardTab::ai);
  settings.setMenuAi(false);
  items.configure();
  EXPECT_EQ(items.firstItem(), DashboardTab::memory);
  settings.setMenuMemory(false);
  items.configure();
  EXPECT_EQ(items.firstItem(), DashboardTab::awake);
  settings.setCompactMenuBar(true);
  items.configure();
  EXPECT_EQ(items.firstItem(), std::nullopt);
}

TEST_F(StatusItemsTest, RotationExchangesTheContentOfOneItemAndWraps) {
  rotateThroughAll();
  const auto only = bar.item("nimbo-rotation");
  Names seen;
  for (int step = 0; step < 4; ++step) {
    seen.push_back(only->content.accessibleName);
    bar.click("nimbo-rotation");
    loop.advance(seconds(10));
  }
  EXPECT_EQ(seen, (Names{"ai", "memory", "awake", "ai"}));
  EXPECT_EQ(clicks, (std::vector<StatusItemTab>{DashboardTab::ai, DashboardTab::memory, DashboardTab::awake,
                                                DashboardTab::ai}));
  EXPECT_EQ(bar.all().size(), 1U);
  EXPECT_EQ(only->content.title, "") << "so that a bar makes room for the titles of other tabs";
}

TEST_F(StatusItemsTest, RotatingItemKeepsItsPlaceUnderEveryTab) {
  rotateThroughAll();
  bar.click("nimbo-rotation", {false, Rect{100, 0, 24, 24}});
  loop.advance(seconds(10));
  EXPECT_EQ(items.knownFrame(DashboardTab::memory), (Rect{100, 0, 24, 24}));
  EXPECT_NE(items.item(DashboardTab::memory), nullptr);
  EXPECT_EQ(items.item(DashboardTab::ai), nullptr);
}

TEST_F(StatusItemsTest, RotationUsesItsInterval) {
  settings.setMenuRotationInterval(seconds(30));
  rotateThroughAll();
  loop.advance(seconds(29));
  EXPECT_EQ(items.rotationTab(), DashboardTab::ai);
  loop.advance(seconds(1));
  EXPECT_EQ(items.rotationTab(), DashboardTab::memory);
}

TEST_F(StatusItemsTest, RotationWithOneTabStartsNoTimer) {
  settings.setMenuAi(false);
  settings.setMenuRotation(true);
  items.configure();
  EXPECT_TRUE(loop.repeatingTimers().empty());
  EXPECT_EQ(items.rotationTab(), DashboardTab::memory);
}

TEST_F(StatusItemsTest, RotationTogetherWithCompactModeShowsOnlyTheCompactItem) {
  settings.setCompactMenuBar(true);
  settings.setMenuRotation(true);
  items.configure();
  EXPECT_TRUE(loop.repeatingTimers().empty());
  EXPECT_EQ(bar.identifiers(), Names{"nimbo"});
}

TEST_F(StatusItemsTest, RotationWaitsWhileThePanelIsOpenAndGoesOnAtTheNextBeat) {
  rotateThroughAll();
  paused = true;
  loop.advance(seconds(35));
  EXPECT_EQ(items.rotationTab(), DashboardTab::ai);
  paused = false;
  loop.advance(seconds(4));
  EXPECT_EQ(items.rotationTab(), DashboardTab::ai) << "the beat itself was not moved";
  loop.advance(seconds(1));
  EXPECT_EQ(items.rotationTab(), DashboardTab::memory);
}

TEST_F(StatusItemsTest, RotationWaitsWhileAMenuIsOpen) {
  rotateThroughAll();
  bar.openMenu("nimbo-rotation");
  loop.advance(seconds(10));
  EXPECT_EQ(items.rotationTab(), DashboardTab::ai);
  bar.closeMenu("nimbo-rotation");
  loop.advance(seconds(10));
  EXPECT_EQ(items.rotationTab(), DashboardTab::memory);
}

TEST_F(StatusItemsTest, MenuReadAheadOfTimeDoesNotCountAsOpen) {
  rotateThroughAll();
  EXPECT_EQ(bar.item("nimbo-rotation")->handlers.menuPreview().title, "Nimbo");
  EXPECT_EQ(menusOpened, 0);
  loop.advance(seconds(10));
  EXPECT_EQ(items.rotationTab(), DashboardTab::memory);
}

TEST_F(StatusItemsTest, MenuOfARemovedItemDoesNotHoldTheRotationUp) {
  items.configure();
  bar.openMenu("nimbo-ai");
  rotateThroughAll();
  loop.advance(seconds(10));
  EXPECT_EQ(items.rotationTab(), DashboardTab::memory);
}

TEST_F(StatusItemsTest, RotationSwitchedOffInTheSettingsStopsAtTheNextBeat) {
  rotateThroughAll();
  settings.setMenuRotation(false);
  loop.advance(seconds(10));
  EXPECT_EQ(items.rotationTab(), DashboardTab::ai);
}

TEST_F(StatusItemsTest, TurningRotationOffForgetsTheTab) {
  rotateThroughAll();
  loop.advance(seconds(10));
  settings.setMenuRotation(false);
  items.configure();
  EXPECT_EQ(items.rotationTab(), std::nullopt);
  EXPECT_EQ(bar.identifiers().size(), 3U);
}

TEST_F(StatusItemsTest, StoppedRotationStaysStoppedUntilRestarted) {
  rotateThroughAll();
  items.stopRotation();
  loop.advance(seconds(100));
  EXPECT_EQ(items.rotationTab(), DashboardTab::ai);
  items.restartRotation();
  loop.advance(seconds(10));
  EXPECT_EQ(items.rotationTab(), DashboardTab::memory);
}

TEST_F(StatusItemsTest, RestartingTheRotationBeginsTheIntervalAnew) {
  rotateThroughAll();
  loop.advance(seconds(9));
  items.restartRotation();
  loop.advance(seconds(9));
  EXPECT_EQ(items.rotationTab(), DashboardTab::ai);
  EXPECT_EQ(loop.repeatingTimers().size(), 1U);
}

}  // namespace
}  // namespace nimbo
