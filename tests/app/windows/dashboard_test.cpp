// SPDX-License-Identifier: MIT
#include "app/windows/dashboard.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>

#include "support/fake_status_bar.h"
#include "support/fake_user_interface.h"
#include "support/fake_workspace.h"
#include "ui/dashboard/dashboard_world.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;

class DashboardTest : public testing::Test {
 protected:
  void open(const std::shared_ptr<StatusItem>& item) { dashboard->open(item, Rect{1000, 0, 24, 24}, std::nullopt); }
  bool highlighted(const std::string& identifier) const {
    const auto item = bar.item(identifier);
    return item && item->highlighted;
  }
  FakeMenuWindow& window() { return *interface.windows().back(); }

  DashboardWorld world;
  FakeWorkspace workspace;
  FakeUserInterface interface;
  FakeStatusBar bar;
  std::shared_ptr<StatusItem> memory = bar.makeItem({"memory"}, {}, {});
  std::shared_ptr<StatusItem> awake = bar.makeItem({"awake"}, {}, {});
  std::unique_ptr<Dashboard> dashboard =
      std::make_unique<Dashboard>(Dashboard::Services{interface, world.loop, workspace}, world.sources(),
                                  Dashboard::Callbacks{.tabShown = [](DashboardTab /*tab*/) {},
                                                       .openSettings = {},
                                                       .configureUsage = {},
                                                       .quit = {},
                                                       .statusItemFrames = [] { return std::vector<Rect>(); },
                                                       .settingsChanged = {},
                                                       .refreshUsage = {}});
};

TEST_F(DashboardTest, ItemIsHighlightedWhileItIsOpen) {
  open(memory);
  EXPECT_TRUE(highlighted("memory"));
  dashboard->close();
  EXPECT_FALSE(highlighted("memory"));
  open(memory);
  window().pressEscape();
  EXPECT_FALSE(highlighted("memory"));
}

TEST_F(DashboardTest, HighlightIsSetOnceMoreOnTheNextTurn) {
  open(memory);
  memory->setHighlighted(false);
  world.loop.runPosted();
  EXPECT_TRUE(highlighted("memory"));
}

TEST_F(DashboardTest, ClosedBeforeTheNextTurnLeavesTheItemUnhighlighted) {
  open(memory);
  dashboard->close();
  world.loop.runPosted();
  EXPECT_FALSE(highlighted("memory"));
}

TEST_F(DashboardTest, DestroyedBeforeTheNextTurnRunsNothing) {
  open(memory);
  dashboard.reset();
  memory->setHighlighted(false);
  EXPECT_EQ(world.loop.runPosted(), 1U);
  EXPECT_FALSE(highlighted("memory"));
}

TEST_F(DashboardTest, WindowThatCannotBeShownHighlightsNothing) {
  interface.setScreens({});
  open(memory);
  world.loop.runPosted();
  EXPECT_FALSE(dashboard->visible());
  EXPECT_EQ(bar.item("memory")->highlightCalls, 0);
}

TEST_F(DashboardTest, AnotherItemTakesTheHighlightOver) {
  open(memory);
  open(awake);
  EXPECT_FALSE(highlighted("memory"));
  EXPECT_TRUE(highlighted("awake"));
}

TEST_F(DashboardTest, FollowsTheItemItHangsFrom) {
  dashboard->follow(memory, Rect{500, 0, 24, 24});
  EXPECT_TRUE(interface.windows().empty());
  open(memory);
  EXPECT_EQ(window().frame().x, 1000);
  dashboard->follow(awake, Rect{700, 0, 24, 24});
  EXPECT_EQ(window().frame().x, 1000);
  dashboard->follow(memory, Rect{500, 0, 24, 24});
  EXPECT_EQ(window().frame().x, 500);
  EXPECT_TRUE(highlighted("memory"));
}

TEST_F(DashboardTest, WithoutAnItemItStillOpens) {
  dashboard->open(nullptr, std::nullopt, std::nullopt);
  world.loop.runPosted();
  EXPECT_TRUE(dashboard->visible());
  dashboard->close();
  EXPECT_FALSE(dashboard->visible());
}

TEST_F(DashboardTest, ItemRemovedWhileOpenDoesNoHarm) {
  open(memory);
  memory.reset();
  world.loop.runPosted();
  dashboard->close();
  EXPECT_FALSE(dashboard->visible());
}

TEST_F(DashboardTest, ClickReportedAfterItClosedTheDashboardIsRecognised) {
  open(memory);
  window().clickOutside(std::nullopt);
  world.clock.advance(299ms);
  EXPECT_TRUE(dashboard->justClosedBy(*memory));
  EXPECT_FALSE(dashboard->justClosedBy(*awake));
  world.clock.advance(2ms);
  EXPECT_FALSE(dashboard->justClosedBy(*memory));
}

TEST_F(DashboardTest, ClickThatTookTheFocusAwayIsRecognised) {
  open(memory);
  window().activateOtherApplication();
  EXPECT_TRUE(dashboard->justClosedBy(*memory));
}

TEST_F(DashboardTest, OtherWaysToCloseLeaveTheNextClickAlone) {
  EXPECT_FALSE(dashboard->justClosedBy(*memory));
  open(memory);
  window().pressEscape();
  EXPECT_FALSE(dashboard->justClosedBy(*memory));
  open(memory);
  window().requestClose();
  EXPECT_FALSE(dashboard->justClosedBy(*memory));
  open(memory);
  dashboard->close();
  EXPECT_FALSE(dashboard->justClosedBy(*memory));
}

TEST_F(DashboardTest, ItemThatHasGoneIsNotMistakenForANewOne) {
  open(memory);
  window().clickOutside(std::nullopt);
  memory.reset();
  const auto successor = bar.makeItem({"memory"}, {}, {});
  EXPECT_FALSE(dashboard->justClosedBy(*successor));
}

}  // namespace
}  // namespace nimbo
