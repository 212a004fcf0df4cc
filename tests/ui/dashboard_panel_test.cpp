// SPDX-License-Identifier: MIT
#include "ui/dashboard_panel.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <vector>

#include "support/fake_user_interface.h"

namespace nimbo {
namespace {

const Rect kMemoryPlace{1000, 0, 24, 24};
const Rect kAwakePlace{1100, 0, 24, 24};
const Rect kMemoryFrame{1000, 28, 340, 496};
const Rect kAwakeFrame{1100, 28, 340, 496};

class DashboardPanelTest : public testing::Test {
 protected:
  DashboardPanelTest() {
    panel_->setEvents({.acted = {}, .closed = [this](ClosedBy by) { closed_.push_back(by); }});
  }

  void show(std::optional<Rect> place = kMemoryPlace) { panel_->show({place, {kMemoryPlace, kAwakePlace}}); }
  void setContentSize(Size size) {
    DashboardContent content;
    content.size = size;
    panel_->render(content);
  }

  FakeUserInterface interface_;
  std::unique_ptr<DashboardWindow> panel_ = interface_.makeDashboardWindow();
  FakeMenuWindow& window_ = *interface_.windows().back();
  std::vector<ClosedBy> closed_;
};

TEST_F(DashboardPanelTest, ShowOpensUnderTheItem) {
  show();
  EXPECT_TRUE(panel_->visible());
  EXPECT_EQ(window_.frame(), kMemoryFrame);
}

TEST_F(DashboardPanelTest, FrameIsSetBeforeTheWindowAppears) {
  show();
  ASSERT_EQ(window_.frames().size(), 1U);
  EXPECT_EQ(window_.shows(), 1);
}

TEST_F(DashboardPanelTest, ShowWithoutAScreenDoesNothing) {
  interface_.setScreens({});
  show();
  EXPECT_EQ(window_.shows(), 0);
  EXPECT_TRUE(window_.frames().empty());
}

TEST_F(DashboardPanelTest, UnbelievableReportOpensAtTheEndOfThePanel) {
  show(Rect{600, 400, 24, 24});
  EXPECT_EQ(window_.frame(), (Rect{1100, 28, 340, 496}));
}

TEST_F(DashboardPanelTest, PlaceInTheItemIsAGuessThatThePointerMakesGood) {
  interface_.setScreens({{{0, 0, 1440, 900}, {0, 0, 1440, 900}}});
  show(Rect{-4, -2, 24, 24});
  EXPECT_EQ(window_.anchor().edge, ScreenEdge::top);
  EXPECT_TRUE(window_.anchor().guessed);
  EXPECT_EQ(window_.frame().x, 1100);
  window_.findPointer({308, 890});
  EXPECT_EQ(window_.anchor().edge, ScreenEdge::bottom);
  EXPECT_FALSE(window_.anchor().guessed);
  EXPECT_EQ(window_.frame().x, 296) << "around the pointer";
  window_.findPointer({30, 10});
  EXPECT_EQ(window_.frame().x, 18) << "the corner of the screen is believed";
}

TEST_F(DashboardPanelTest, OpenedWithoutAClickItDoesNotCareForThePointer) {
  show(std::nullopt);
  const Rect frame = window_.frame();
  EXPECT_FALSE(window_.anchor().guessed);
  window_.findPointer({308, 10});
  EXPECT_EQ(window_.frame(), frame);
}

TEST_F(DashboardPanelTest, EscapeCloses) {
  show();
  window_.pressEscape();
  EXPECT_FALSE(panel_->visible());
  EXPECT_FALSE(panel_->visible());
}

TEST_F(DashboardPanelTest, ClickElsewhereCloses) {
  show();
  window_.clickOutside(Point{10, 500});
  EXPECT_FALSE(panel_->visible());
}

TEST_F(DashboardPanelTest, ClickAtAnUnknownPlaceCloses) {
  show();
  window_.clickOutside(std::nullopt);
  EXPECT_FALSE(panel_->visible());
}

TEST_F(DashboardPanelTest, ClickWithoutKnownOwnItemsCloses) {
  panel_->show({kMemoryPlace, {}});
  window_.clickOutside(Point{1010, 10});
  EXPECT_FALSE(panel_->visible());
}

TEST_F(DashboardPanelTest, ClickOnTheSameItemPassesThroughAndItsOwnerDecides) {
  show();
  window_.clickOutside(Point{1010, 10});
  EXPECT_TRUE(panel_->visible());
}

TEST_F(DashboardPanelTest, ClickOnAnotherOwnItemPassesThroughAndShowMovesThePanelThere) {
  show();
  window_.clickOutside(Point{1110, 10});
  EXPECT_TRUE(panel_->visible());
  show(kAwakePlace);
  EXPECT_EQ(window_.frame(), kAwakeFrame);
  EXPECT_TRUE(panel_->visible());
}

TEST_F(DashboardPanelTest, DoubleClickOnAnItemThatTheWindowKeepsFromItCloses) {
  window_.pointerGrabbed = true;
  show();
  window_.clickOutside(Point{1010, 10});
  EXPECT_FALSE(panel_->visible());
  EXPECT_TRUE(window_.secondClickKept);
  EXPECT_EQ(closed_, std::vector{ClosedBy::other});
}

TEST_F(DashboardPanelTest, ClickElsewhereThatTheWindowKeepsIsTheOnlyOne) {
  window_.pointerGrabbed = true;
  show();
  window_.clickOutside(Point{500, 300});
  EXPECT_FALSE(panel_->visible());
  EXPECT_FALSE(window_.secondClickKept);
}

TEST_F(DashboardPanelTest, OtherApplicationInFrontCloses) {
  show();
  window_.activateOtherApplication();
  EXPECT_FALSE(panel_->visible());
}

TEST_F(DashboardPanelTest, CloseRequestCloses) {
  show();
  window_.requestClose();
  EXPECT_FALSE(panel_->visible());
}

TEST_F(DashboardPanelTest, ClosingIsToldWithItsCause) {
  show();
  window_.pressEscape();
  show();
  window_.requestClose();
  show();
  window_.clickOutside(Point{10, 500});
  show();
  window_.activateOtherApplication();
  show();
  panel_->hide();
  using enum ClosedBy;
  EXPECT_EQ(closed_, (std::vector{other, other, clickElsewhere, clickElsewhere, other}));
}

TEST_F(DashboardPanelTest, ContentSizeMovesAnOpenPanelAtOnce) {
  show();
  setContentSize({340, 634});
  EXPECT_EQ(window_.frame(), (Rect{1000, 28, 340, 634}));
  setContentSize({340, 3000});
  EXPECT_EQ(window_.frame(), (Rect{1000, 24, 340, 876}));
}

TEST_F(DashboardPanelTest, ContentSizeOfAClosedPanelIsUsedOnShow) {
  setContentSize({340, 634});
  EXPECT_TRUE(window_.frames().empty());
  show();
  EXPECT_EQ(window_.frame(), (Rect{1000, 28, 340, 634}));
}

TEST_F(DashboardPanelTest, ScreensThatChangeMoveItWhileOpenOnly) {
  show();
  interface_.setScreens({{{0, 0, 1280, 800}, {0, 30, 1280, 770}}});
  EXPECT_EQ(window_.frame(), (Rect{940, 34, 340, 496}));
  panel_->hide();
  EXPECT_EQ(interface_.observerCount(), 0U);
  const auto frames = window_.frames().size();
  interface_.setScreens({{{0, 0, 1440, 900}, {0, 24, 1440, 876}}});
  EXPECT_EQ(window_.frames().size(), frames);
}

TEST_F(DashboardPanelTest, LastScreenGoneKeepsTheLastPlace) {
  show();
  interface_.setScreens({});
  EXPECT_EQ(window_.frame(), kMemoryFrame);
  panel_->hide();
  EXPECT_FALSE(panel_->visible());
}

TEST_F(DashboardPanelTest, ShowingAgainKeepsOneObserverOfScreens) {
  show();
  show(kAwakePlace);
  EXPECT_EQ(interface_.observerCount(), 1U);
}

TEST_F(DashboardPanelTest, DestroyingItStopsObserving) {
  show();
  panel_.reset();
  EXPECT_EQ(interface_.observerCount(), 0U);
  interface_.setScreens({});
}

TEST_F(DashboardPanelTest, StaysWhereThePointerWasWhenTheBarTellsARelativePlace) {
  interface_.pointerPlace = Point{1012, 12};
  panel_->show({Rect{12, 0, 24, 24}, {}});
  const Rect frame = window_.frame();
  EXPECT_EQ(frame, kMemoryFrame);
  interface_.pointerPlace = Point{300, 12};
  interface_.setScreens(interface_.screens());
  EXPECT_EQ(window_.frame(), frame);
}

TEST_F(DashboardPanelTest, BarsThatCountInPixelsAreUnderstood) {
  interface_.scale = 2;
  panel_->show({Rect{2000, 0, 48, 48}, {{2000, 0, 48, 48}}});
  EXPECT_EQ(window_.frame(), kMemoryFrame);
  window_.clickOutside(Point{1020, 20});
  EXPECT_TRUE(panel_->visible());
  window_.clickOutside(Point{1030, 20});
  EXPECT_FALSE(panel_->visible());
}

}  // namespace
}  // namespace nimbo
