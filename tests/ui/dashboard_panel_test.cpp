// SPDX-License-Identifier: MIT
#include "ui/dashboard_panel.h"

#include <gtest/gtest.h>

#include "support/fake_clock.h"
#include "support/fake_main_loop.h"
#include "support/fake_status_bar.h"
#include "support/fake_user_interface.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;

const Rect kMemoryPlace{1000, 0, 24, 24};
const Rect kAwakePlace{1100, 0, 24, 24};
const Rect kMemoryFrame{1000, 28, 340, 496};
const Rect kAwakeFrame{1100, 28, 340, 496};

class DashboardPanelTest : public testing::Test {
 protected:
  DashboardPanelTest() {
    panel_->statusButtons = [] { return std::vector{kMemoryPlace, kAwakePlace}; };
  }

  bool highlighted(const std::string& identifier) const {
    const auto item = bar_.item(identifier);
    return item && item->highlighted;
  }

  FakeMainLoop loop_;
  FakeClock clock_;
  FakeStatusBar bar_;
  FakeUserInterface interface_;
  FakeDashboardWindow window_;
  std::shared_ptr<StatusItem> memory_ = bar_.makeItem("memory", {}, {});
  std::shared_ptr<StatusItem> awake_ = bar_.makeItem("awake", {}, {});
  std::unique_ptr<DashboardPanel> panel_ = std::make_unique<DashboardPanel>(window_, interface_, loop_, clock_);
};

TEST_F(DashboardPanelTest, ShowOpensUnderTheItemAndHighlightsIt) {
  panel_->show(memory_, kMemoryPlace);
  EXPECT_TRUE(panel_->visible());
  EXPECT_EQ(window_.frame(), kMemoryFrame);
  EXPECT_TRUE(highlighted("memory"));
  EXPECT_FALSE(highlighted("awake"));
}

TEST_F(DashboardPanelTest, FrameIsSetBeforeTheWindowAppears) {
  panel_->show(memory_, kMemoryPlace);
  ASSERT_EQ(window_.frames().size(), 1U);
  EXPECT_EQ(window_.shows(), 1);
}

TEST_F(DashboardPanelTest, HighlightIsSetOnceMoreOnTheNextTurn) {
  panel_->show(memory_, kMemoryPlace);
  memory_->setHighlighted(false);
  loop_.runPosted();
  EXPECT_TRUE(highlighted("memory"));
}

TEST_F(DashboardPanelTest, ClosedBeforeTheNextTurnLeavesTheItemUnhighlighted) {
  panel_->show(memory_, kMemoryPlace);
  panel_->close();
  loop_.runPosted();
  EXPECT_FALSE(highlighted("memory"));
}

TEST_F(DashboardPanelTest, DestroyedBeforeTheNextTurnRunsNothing) {
  panel_->show(memory_, kMemoryPlace);
  panel_.reset();
  memory_->setHighlighted(false);
  EXPECT_EQ(loop_.runPosted(), 1U);
  EXPECT_FALSE(highlighted("memory"));
  EXPECT_FALSE(window_.hasListeners());
}

TEST_F(DashboardPanelTest, WindowThatCannotBeShownHighlightsNothing) {
  window_.canBeShown = false;
  panel_->show(memory_, kMemoryPlace);
  loop_.runPosted();
  EXPECT_FALSE(panel_->visible());
  EXPECT_EQ(bar_.item("memory")->highlightCalls, 0);
}

TEST_F(DashboardPanelTest, ShowWithoutAScreenDoesNothing) {
  interface_.setScreens({});
  panel_->show(memory_, kMemoryPlace);
  EXPECT_EQ(window_.shows(), 0);
  EXPECT_TRUE(window_.frames().empty());
  EXPECT_FALSE(highlighted("memory"));
  EXPECT_EQ(loop_.postedCount(), 0U);
}

TEST_F(DashboardPanelTest, UnbelievableReportOpensAtTheEndOfThePanel) {
  panel_->show(memory_, Rect{600, 400, 24, 24});
  EXPECT_EQ(window_.frame(), (Rect{1100, 28, 340, 496}));
}

TEST_F(DashboardPanelTest, WithoutAnItemItStillOpens) {
  panel_->show(nullptr, std::nullopt);
  loop_.runPosted();
  EXPECT_TRUE(panel_->visible());
  panel_->close();
  EXPECT_FALSE(panel_->visible());
}

TEST_F(DashboardPanelTest, EscapeCloses) {
  panel_->show(memory_, kMemoryPlace);
  window_.pressEscape();
  EXPECT_FALSE(panel_->visible());
  EXPECT_FALSE(highlighted("memory"));
  EXPECT_FALSE(panel_->visible());
}

TEST_F(DashboardPanelTest, ClickElsewhereCloses) {
  panel_->show(memory_, kMemoryPlace);
  window_.clickOutside(Point{10, 500});
  EXPECT_FALSE(panel_->visible());
}

TEST_F(DashboardPanelTest, ClickAtAnUnknownPlaceCloses) {
  panel_->show(memory_, kMemoryPlace);
  window_.clickOutside(std::nullopt);
  EXPECT_FALSE(panel_->visible());
}

TEST_F(DashboardPanelTest, ClickWithoutKnownOwnItemsCloses) {
  panel_->statusButtons = nullptr;
  panel_->show(memory_, kMemoryPlace);
  window_.clickOutside(Point{1010, 10});
  EXPECT_FALSE(panel_->visible());
}

TEST_F(DashboardPanelTest, ClickOnTheSameItemPassesThroughAndItsOwnerDecides) {
  panel_->show(memory_, kMemoryPlace);
  window_.clickOutside(Point{1010, 10});
  EXPECT_TRUE(panel_->visible());
  EXPECT_FALSE(panel_->justClosedBy(*memory_));
}

TEST_F(DashboardPanelTest, ClickOnAnotherOwnItemPassesThroughAndShowMovesThePanelThere) {
  panel_->show(memory_, kMemoryPlace);
  window_.clickOutside(Point{1110, 10});
  EXPECT_TRUE(panel_->visible());
  panel_->show(awake_, kAwakePlace);
  loop_.runPosted();
  EXPECT_EQ(window_.frame(), kAwakeFrame);
  EXPECT_FALSE(highlighted("memory"));
  EXPECT_TRUE(highlighted("awake"));
  EXPECT_TRUE(panel_->visible());
}

TEST_F(DashboardPanelTest, ClickOnAnItemThatTheWindowKeepsFromItCloses) {
  window_.pointerGrabbed = true;
  panel_->show(memory_, kMemoryPlace);
  window_.clickOutside(Point{1010, 10});
  EXPECT_FALSE(panel_->visible());
  EXPECT_TRUE(panel_->justClosedBy(*memory_));
}

TEST_F(DashboardPanelTest, OtherApplicationInFrontCloses) {
  panel_->show(memory_, kMemoryPlace);
  window_.activateOtherApplication();
  EXPECT_FALSE(panel_->visible());
}

TEST_F(DashboardPanelTest, CloseRequestCloses) {
  panel_->show(memory_, kMemoryPlace);
  window_.requestClose();
  EXPECT_FALSE(panel_->visible());
}

TEST_F(DashboardPanelTest, ClickReportedAfterItClosedThePanelIsRecognised) {
  panel_->show(memory_, kMemoryPlace);
  window_.clickOutside(std::nullopt);
  clock_.advance(299ms);
  EXPECT_TRUE(panel_->justClosedBy(*memory_));
  EXPECT_FALSE(panel_->justClosedBy(*awake_));
  clock_.advance(2ms);
  EXPECT_FALSE(panel_->justClosedBy(*memory_));
}

TEST_F(DashboardPanelTest, ClickThatTookTheFocusAwayIsRecognised) {
  panel_->show(memory_, kMemoryPlace);
  window_.activateOtherApplication();
  EXPECT_TRUE(panel_->justClosedBy(*memory_));
}

TEST_F(DashboardPanelTest, OtherWaysToCloseLeaveTheNextClickAlone) {
  EXPECT_FALSE(panel_->justClosedBy(*memory_));
  panel_->show(memory_, kMemoryPlace);
  window_.pressEscape();
  EXPECT_FALSE(panel_->justClosedBy(*memory_));
  panel_->show(memory_, kMemoryPlace);
  window_.requestClose();
  EXPECT_FALSE(panel_->justClosedBy(*memory_));
  panel_->show(memory_, kMemoryPlace);
  panel_->close();
  EXPECT_FALSE(panel_->justClosedBy(*memory_));
}

TEST_F(DashboardPanelTest, ItemThatHasGoneIsNotMistakenForANewOne) {
  panel_->show(memory_, kMemoryPlace);
  window_.clickOutside(std::nullopt);
  memory_.reset();
  const auto successor = bar_.makeItem("memory", {}, {});
  EXPECT_FALSE(panel_->justClosedBy(*successor));
}

TEST_F(DashboardPanelTest, ItemRemovedWhileOpenDoesNoHarm) {
  panel_->show(memory_, kMemoryPlace);
  memory_.reset();
  loop_.runPosted();
  panel_->setContentSize({340, 496});
  EXPECT_EQ(window_.frame(), kMemoryFrame);
  panel_->close();
  EXPECT_FALSE(panel_->visible());
}

TEST_F(DashboardPanelTest, ContentSizeMovesAnOpenPanelAtOnce) {
  panel_->show(memory_, kMemoryPlace);
  panel_->setContentSize({340, 634});
  EXPECT_EQ(window_.frame(), (Rect{1000, 28, 340, 634}));
  panel_->setContentSize({340, 3000});
  EXPECT_EQ(window_.frame(), (Rect{1000, 24, 340, 876}));
}

TEST_F(DashboardPanelTest, ContentSizeOfAClosedPanelIsUsedOnShow) {
  panel_->setContentSize({340, 634});
  EXPECT_TRUE(window_.frames().empty());
  panel_->show(memory_, kMemoryPlace);
  EXPECT_EQ(window_.frame(), (Rect{1000, 28, 340, 634}));
}

TEST_F(DashboardPanelTest, ScreensThatChangeMoveItWhileOpenOnly) {
  panel_->show(memory_, kMemoryPlace);
  interface_.setScreens({{{0, 0, 1280, 800}, {0, 30, 1280, 770}}});
  EXPECT_EQ(window_.frame(), (Rect{940, 34, 340, 496}));
  panel_->close();
  EXPECT_EQ(interface_.observerCount(), 0U);
  const auto frames = window_.frames().size();
  interface_.setScreens({{{0, 0, 1440, 900}, {0, 24, 1440, 876}}});
  EXPECT_EQ(window_.frames().size(), frames);
}

TEST_F(DashboardPanelTest, LastScreenGoneKeepsTheLastPlace) {
  panel_->show(memory_, kMemoryPlace);
  interface_.setScreens({});
  EXPECT_EQ(window_.frame(), kMemoryFrame);
  panel_->close();
  EXPECT_FALSE(panel_->visible());
}

TEST_F(DashboardPanelTest, ShowingAgainKeepsOneObserverOfScreens) {
  panel_->show(memory_, kMemoryPlace);
  panel_->show(awake_, kAwakePlace);
  EXPECT_EQ(interface_.observerCount(), 1U);
}

TEST_F(DashboardPanelTest, DestroyingItStopsObserving) {
  panel_->show(memory_, kMemoryPlace);
  panel_.reset();
  EXPECT_EQ(interface_.observerCount(), 0U);
  interface_.setScreens({});
}

TEST_F(DashboardPanelTest, BarsThatCountInPixelsAreUnderstood) {
  interface_.scale = 2;
  panel_->statusButtons = [] { return std::vector<Rect>{{2000, 0, 48, 48}}; };
  panel_->show(memory_, Rect{2000, 0, 48, 48});
  EXPECT_EQ(window_.frame(), kMemoryFrame);
  window_.clickOutside(Point{1020, 20});
  EXPECT_TRUE(panel_->visible());
  window_.clickOutside(Point{1030, 20});
  EXPECT_FALSE(panel_->visible());
}

}  // namespace
}  // namespace nimbo
