// SPDX-License-Identifier: MIT
#include <QCloseEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabBar>

#include "ui/qt/qt_test.h"

namespace nimbo {
namespace {

class DashboardKeyboard : public DashboardTest {
 protected:
  void SetUp() override {
    DashboardTest::SetUp();
    window_->setEvents({.escapePressed = [this] { ++escapes_; },
                        .clickedOutside = [this](std::optional<Point> place) { outside_.push_back(place); },
                        .otherApplicationActivated = {},
                        .closeRequested =
                            [this] {
                              ++closeRequests_;
                              if (hideOnClose_) window_->hide();
                            }});
    open();
  }

  static std::string focused() {
    const QWidget* const focus = QApplication::focusWidget();
    return focus != nullptr ? focus->objectName().toStdString() : "";
  }

  int escapes_ = 0;
  std::vector<std::optional<Point>> outside_;
  int closeRequests_ = 0;
  bool hideOnClose_ = false;
};

TEST_F(DashboardKeyboard, TabVisitsControlsFromTopToBottom) {
  EXPECT_EQ(focused(), "dashboard") << "nothing is marked when the window opens";
  std::vector<std::string> visited;
  for (int step = 0; step < 7; ++step) {
    press(Qt::Key_Tab);
    visited.push_back(focused());
  }
  EXPECT_EQ(visited, (std::vector<std::string>{"tabs", "settings", "less", "more", "processes", "activity", "quit"}));
  press(Qt::Key_Backtab, Qt::ShiftModifier);
  EXPECT_EQ(focused(), "activity");
}

TEST_F(DashboardKeyboard, FocusReachedByKeyboardIsMarked) {
  const QRect frame = child("tabs").geometry();
  const QImage before = widget().grab(frame).toImage();
  press(Qt::Key_Tab);
  const QImage marked = widget().grab(frame).toImage();
  EXPECT_NE(before, marked);
  // A press with the pointer takes the mark away.
  click(QPoint(30, 130));
  EXPECT_EQ(widget().grab(frame).toImage(), before);
}

TEST_F(DashboardKeyboard, SpaceAndReturnPressTheFocusedButton) {
  child("less").setFocus(Qt::TabFocusReason);
  press(Qt::Key_Space);
  press(Qt::Key_Return);
  EXPECT_EQ(log_, (std::vector<std::string>{"less", "less"}));
}

TEST_F(DashboardKeyboard, ArrowKeysMoveBetweenTabs) {
  child("tabs").setFocus(Qt::TabFocusReason);
  press(Qt::Key_Right);
  press(Qt::Key_Left);
  press(Qt::Key_Left);
  EXPECT_EQ(log_, (std::vector<std::string>{"tabs 2", "tabs 1", "tabs 0"}));
}

TEST_F(DashboardKeyboard, ArrowKeysScrollTheProcessList) {
  auto& area = child<QScrollArea>("processes");
  area.setFocus(Qt::TabFocusReason);
  press(Qt::Key_Down);
  EXPECT_EQ(area.verticalScrollBar()->value(), 29);
  press(Qt::Key_PageDown);
  EXPECT_GT(area.verticalScrollBar()->value(), 100);
}

TEST_F(DashboardKeyboard, EscapeIsReportedAndSwallowedWhereverTheFocusIs) {
  press(Qt::Key_Escape);
  child("quit").setFocus(Qt::TabFocusReason);
  press(Qt::Key_Escape);
  child("processes").setFocus(Qt::TabFocusReason);
  press(Qt::Key_Escape);
  EXPECT_EQ(escapes_, 3);
  EXPECT_TRUE(window_->visible()) << "closing is the owner's decision";
  EXPECT_EQ(closeRequests_, 0);
}

TEST_F(DashboardKeyboard, ControlQQuitsFromAnyControl) {
  press(Qt::Key_Q, Qt::ControlModifier);
  child("processes").setFocus(Qt::TabFocusReason);
  press(Qt::Key_Q, Qt::ControlModifier);
  EXPECT_EQ(log_, (std::vector<std::string>{"quit", "quit"}));
}

TEST_F(DashboardKeyboard, PlainQAndOtherModifiersDoNotQuit) {
  press(Qt::Key_Q);
  press(Qt::Key_Q, Qt::ControlModifier | Qt::ShiftModifier);
  press(Qt::Key_Q, Qt::AltModifier);
  EXPECT_EQ(log_, std::vector<std::string>{});
}

TEST_F(DashboardKeyboard, NothingIsReportedWhileHidden) {
  auto* const handle = widget().windowHandle();
  window_->hide();
  QTest::keyClick(handle, Qt::Key_Escape);
  EXPECT_EQ(escapes_, 0);
}

TEST_F(DashboardKeyboard, OpeningAgainStartsWithoutFocusedControl) {
  press(Qt::Key_Tab);
  press(Qt::Key_Tab);
  window_->hide();
  open();
  EXPECT_EQ(focused(), "dashboard");
}

TEST_F(DashboardKeyboard, PressOutsideIsReportedWithItsPlace) {
  click(QPoint(-5, 40));
  ASSERT_EQ(outside_.size(), 1U);
  EXPECT_EQ(outside_[0], (Point{5, 60}));
  EXPECT_TRUE(window_->visible());
}

TEST_F(DashboardKeyboard, PressInsideIsNotReported) {
  click(QPoint(30, 130));
  click("hero");
  EXPECT_TRUE(outside_.empty());
}

TEST_F(DashboardKeyboard, CloseRequestIsReportedAndRefused) {
  QCloseEvent event;
  QApplication::sendEvent(&widget(), &event);
  EXPECT_EQ(closeRequests_, 1);
  EXPECT_TRUE(window_->visible());
  EXPECT_FALSE(event.isAccepted());
}

TEST_F(DashboardKeyboard, CloseRequestIsAcceptedOnceTheOwnerHidTheWindow) {
  hideOnClose_ = true;
  QCloseEvent event;
  QApplication::sendEvent(&widget(), &event);
  EXPECT_FALSE(window_->visible());
  EXPECT_TRUE(event.isAccepted());
}

TEST_F(DashboardKeyboard, HiddenWindowLetsTheSessionEnd) {
  window_->hide();
  QCloseEvent event;
  QApplication::sendEvent(&widget(), &event);
  EXPECT_TRUE(event.isAccepted());
  EXPECT_EQ(closeRequests_, 0);
}

}  // namespace
}  // namespace nimbo
