// SPDX-License-Identifier: MIT
#include <QAbstractItemView>

#include "settings_window_fixture.h"
#include "ui/controls/palette.h"
#include "ui/qt/controls/paint_counter.h"

namespace nimbo {
namespace {

using Log = std::vector<std::string>;

class SettingsWindowOnScreen : public SettingsWindowTest {
 protected:
  void SetUp() override {
    SettingsWindowTest::SetUp();
    open();
  }
  static QImage picture() { return widget().grab().toImage(); }
};

TEST_F(SettingsWindowOnScreen, CanBeClosedAndMinimisedButNotResized) {
  EXPECT_EQ(widget().windowTitle(), "Nimbo Settings");
  EXPECT_EQ(widget().windowType(), Qt::Window);
  const auto flags = widget().windowFlags();
  for (const auto wanted : {Qt::WindowTitleHint, Qt::WindowCloseButtonHint, Qt::WindowMinimizeButtonHint}) {
    EXPECT_TRUE(flags & wanted) << wanted;
  }
  EXPECT_FALSE(flags & Qt::WindowMaximizeButtonHint);
  EXPECT_FALSE(flags & Qt::WindowFullscreenButtonHint);
  EXPECT_EQ(widget().minimumSize(), QSize(560, 680));
  EXPECT_EQ(widget().maximumSize(), QSize(560, 680));
  EXPECT_FALSE(widget().isModal());
}

TEST_F(SettingsWindowOnScreen, ClosingHidesItAndItCanBeShownAgain) {
  EXPECT_TRUE(window_->visible());
  EXPECT_TRUE(widget().close()) << "as by its title bar";
  EXPECT_FALSE(window_->visible());
  open();
  EXPECT_TRUE(window_->visible());
  window_->hide();
  EXPECT_FALSE(window_->visible());
  EXPECT_EQ(closed_, 2) << "told of both";
}

TEST_F(SettingsWindowOnScreen, EscapeDoesNotCloseIt) {
  press(Qt::Key_Escape);
  child("login").setFocus(Qt::TabFocusReason);
  press(Qt::Key_Escape);
  EXPECT_TRUE(window_->visible());
}

TEST_F(SettingsWindowOnScreen, EveryControlCallsItsActionWithItsIdentifier) {
  click("menuAI");
  click("login");
  popUp("preset").setCurrentIndex(2);
  click("checkUpdates");
  EXPECT_EQ(log_, (Log{"menuAI off", "login on", "preset 2", "checkUpdates"}));
}

TEST_F(SettingsWindowOnScreen, SelectedItemChosenAgainIsReported) {
  popUp("preset").showPopup();
  QTest::keyClick(popUp("preset").view(), Qt::Key_Return);
  EXPECT_EQ(log_, Log{"preset 0"});
}

TEST_F(SettingsWindowOnScreen, EachChoiceIsReportedOnce) {
  popUp("preset").showPopup();
  QTest::keyClick(popUp("preset").view(), Qt::Key_Down);
  QTest::keyClick(popUp("preset").view(), Qt::Key_Return);
  EXPECT_EQ(log_, Log{"preset 1"});
  popUp("preset").showPopup();
  popUp("preset").hidePopup();
  QTest::keyClick(&popUp("preset"), Qt::Key_Down);
  EXPECT_EQ(log_, (Log{"preset 1", "preset 2"}));
}

TEST_F(SettingsWindowOnScreen, ClickOnATabSelectsItAndTheProgramDecidesWhatIsShown) {
  const QRect tabs = child("tabs").geometry();
  EXPECT_EQ(tabs, QRect(28, 20, 504, 28));
  QTest::mouseClick(widget().windowHandle(), Qt::LeftButton, {}, {tabs.right() - 60, tabs.center().y()});
  EXPECT_EQ(log_, Log{"tabs 1"});
  EXPECT_TRUE(child("login").isVisible());
  showMonitors();
  EXPECT_FALSE(child("login").isVisible());
  EXPECT_TRUE(child("memory").isVisible());
  EXPECT_EQ(log_, Log{"tabs 1"});
}

TEST_F(SettingsWindowOnScreen, ControlsStandWhereTheirFramesSay) {
  EXPECT_EQ(frameOf(popUp("preset")), QRect(178, 108, 240, 26));
  EXPECT_EQ(frameOf(child("checkUpdates")), QRect(28, 268, 170, 28));
  // What is left of the box is room for its focus ring.
  EXPECT_EQ(frameOf(child("login")), QRect(24, 178, 304, 22));
}

TEST_F(SettingsWindowOnScreen, ChangesByTheProgramCallNoAction) {
  control<CheckBoxContent>(3).on = false;
  control<CheckBoxContent>(4).on = true;
  control<PopUpContent>(2).items = {"All", "Custom"};
  control<PopUpContent>(2).selected = 1;
  content_.tabs.selected = 1;
  render();
  EXPECT_FALSE(button("menuAI").isChecked());
  EXPECT_TRUE(button("login").isChecked());
  EXPECT_EQ(popUp("preset").currentText(), "Custom");
  EXPECT_EQ(log_, Log{});
}

TEST_F(SettingsWindowOnScreen, ContentRenderedFromWithinAnActionWins) {
  listen([this] { render(); });
  click("login");
  EXPECT_FALSE(button("login").isChecked());
}

TEST_F(SettingsWindowOnScreen, ButtonThatChangesThePageMayDisappear) {
  listen([this] {
    content_.pages[0].controls.pop_back();
    window_->setEvents({});
    render();
  });
  click("checkUpdates");
  EXPECT_EQ(log_, Log{"checkUpdates"});
  EXPECT_EQ(widget().findChild<QWidget*>("checkUpdates"), nullptr);
}

TEST_F(SettingsWindowOnScreen, EqualContentPaintsNothing) {
  PaintCounter paints(widget());
  ASSERT_TRUE(paints.settles());
  render();
  QCoreApplication::processEvents();
  EXPECT_EQ(paints.counts, (std::map<std::string, int>{}));
}

TEST_F(SettingsWindowOnScreen, OnlyWhatDiffersIsPainted) {
  PaintCounter paints(widget());
  ASSERT_TRUE(paints.settles());
  control<CheckBoxContent>(4).on = true;
  render();
  ASSERT_TRUE(QTest::qWaitFor([&] { return !paints.counts.empty(); }));
  EXPECT_EQ(paints.counts.count("login"), 1U);
  EXPECT_EQ(paints.counts.count("menuAI") + paints.counts.count("preset") + paints.counts.count("checkUpdates"), 0U);
}

TEST_F(SettingsWindowOnScreen, ControlThatComesOrGoesLeavesTheOthersTheirWidgetsAndFocus) {
  const QWidget* const login = &child("login");
  child("login").setFocus(Qt::TabFocusReason);
  auto& controls = content_.pages[0].controls;
  controls.insert(controls.begin() + 4, LabelContent{{0, 102, 504, 8}, {}, "A warning."});
  controls.insert(controls.begin() + 4, CheckBoxContent{"power", {240, 80, 200, 22}, "Power"});
  render();
  EXPECT_EQ(&child("login"), login);
  EXPECT_EQ(focused(), "login");
  Log visited;
  for (const char* const next : {"checkUpdates", "tabs", "preset", "menuAI", "power", "login"}) {
    press(Qt::Key_Tab);
    EXPECT_EQ(focused(), next);
  }
  controls.erase(controls.begin() + 4);
  render();
  EXPECT_EQ(widget().findChild<QWidget*>("power"), nullptr);
  EXPECT_EQ(focused(), "login");
}

TEST_F(SettingsWindowOnScreen, PagesMayBecomeFewer) {
  content_.pages.pop_back();
  render();
  EXPECT_TRUE(QTest::qWaitFor([] { return widget().findChild<QWidget*>("memory") == nullptr; }));
  EXPECT_TRUE(child("login").isVisible());
}

TEST_F(SettingsWindowOnScreen, GroundFollowsTheAppearanceWhileOpen) {
  for (const auto appearance : {Appearance::dark, Appearance::light}) {
    interface().setAppearance(appearance);
    QCoreApplication::processEvents();
    const Color ground = color(ColorRole::background, appearance);
    for (const QPoint place : {QPoint(5, 5), QPoint(500, 600), QPoint(555, 675)}) {
      EXPECT_EQ(picture().pixel(place), qRgb(ground.red, ground.green, ground.blue));
    }
  }
}

TEST_F(SettingsWindowOnScreen, NothingIsMarkedUntilTheKeyboardIsUsed) {
  EXPECT_EQ(focused(), "settingsWindow");
  const QImage before = picture();
  press(Qt::Key_Tab);
  EXPECT_EQ(focused(), "tabs");
  EXPECT_NE(picture(), before);
  QTest::mouseClick(widget().windowHandle(), Qt::LeftButton, {}, {300, 600});
  EXPECT_EQ(picture(), before) << "a press with the pointer takes the mark away";
  window_->hide();
  open();
  EXPECT_EQ(focused(), "settingsWindow");
}

TEST_F(SettingsWindowOnScreen, FocusRingAtTheEdgeOfThePageIsWhole) {
  child("login").setFocus(Qt::TabFocusReason);
  widget().setAttribute(Qt::WA_KeyboardFocusChange, false);
  const QImage before = picture();
  widget().setAttribute(Qt::WA_KeyboardFocusChange);
  const QImage marked = picture();
  const int middle = frameOf(child("login")).center().y();
  EXPECT_NE(marked.pixel(25, middle), before.pixel(25, middle)) << "left of the page's own frame";
}

TEST_F(SettingsWindowOnScreen, TabVisitsTheTabsAndThenThePageInItsOrder) {
  Log visited;
  for (int step = 0; step < 6; ++step) {
    press(Qt::Key_Tab);
    visited.push_back(focused());
  }
  EXPECT_EQ(visited, (Log{"tabs", "preset", "menuAI", "login", "checkUpdates", "tabs"}));
  showMonitors();
  press(Qt::Key_Tab);
  press(Qt::Key_Tab);
  EXPECT_EQ(focused(), "cpu");
  press(Qt::Key_Backtab, Qt::ShiftModifier);
  EXPECT_EQ(focused(), "memory");
}

TEST_F(SettingsWindowOnScreen, ArrowsMoveBetweenTabsAndSpaceSwitches) {
  press(Qt::Key_Tab);
  press(Qt::Key_Right);
  press(Qt::Key_Left);
  child("menuAI").setFocus(Qt::TabFocusReason);
  press(Qt::Key_Space);
  child("checkUpdates").setFocus(Qt::TabFocusReason);
  press(Qt::Key_Space);
  press(Qt::Key_Return);
  EXPECT_EQ(log_, (Log{"tabs 1", "tabs 0", "menuAI off", "checkUpdates", "checkUpdates"}));
}

TEST_F(SettingsWindowOnScreen, ControlPageKeysMoveBetweenTabsWhereverTheFocusIs) {
  child("preset").setFocus(Qt::TabFocusReason);
  press(Qt::Key_PageDown, Qt::ControlModifier);
  showMonitors();
  press(Qt::Key_PageDown, Qt::ControlModifier);
  press(Qt::Key_PageUp, Qt::ControlModifier);
  EXPECT_EQ(log_, (Log{"tabs 1", "tabs 0", "tabs 1"})) << "around the ends";
}

TEST_F(SettingsWindowOnScreen, FocusOnAPageThatGoesIsTakenByTheTabs) {
  child("login").setFocus(Qt::TabFocusReason);
  showMonitors();
  EXPECT_EQ(focused(), "tabs");
}

TEST_F(SettingsWindowOnScreen, EscapeClosesTheListAlone) {
  popUp("preset").showPopup();
  auto* const list = QApplication::activePopupWidget();
  ASSERT_NE(list, nullptr);
  QTest::keyClick(list->windowHandle(), Qt::Key_Escape);
  EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
  EXPECT_TRUE(window_->visible());
  EXPECT_EQ(log_, Log{});
}

TEST_F(SettingsWindowOnScreen, ClosingOrDestroyingItTakesItsOpenList) {
  popUp("preset").showPopup();
  window_->hide();
  EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
  open();
  popUp("preset").showPopup();
  window_.reset();
  EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}

TEST_F(SettingsWindowTest, NobodyNeedsToListen) {
  window_->setEvents({});
  open();
  click("login");
  click("checkUpdates");
  popUp("preset").setCurrentIndex(1);
  press(Qt::Key_PageDown, Qt::ControlModifier);
  EXPECT_EQ(log_, Log{});
  EXPECT_EQ(becameKey_, 0);
}

TEST_F(SettingsWindowTest, IsMadeHiddenAndMayBeShownWithoutContent) {
  window_ = interface().makeSettingsWindow();
  EXPECT_FALSE(window_->visible());
  window_->show({});
  EXPECT_TRUE(window_->visible());
  press(Qt::Key_PageUp, Qt::ControlModifier);
}

}  // namespace
}  // namespace nimbo
