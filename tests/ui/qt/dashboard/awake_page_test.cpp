// SPDX-License-Identifier: MIT
#include <QAbstractItemView>
#include <QContextMenuEvent>
#include <QDateTimeEdit>
#include <QLabel>
#include <QMenu>
#include <QSignalSpy>
#include <QWheelEvent>

#include "awake_page_fixture.h"
#include "ui/controls/palette.h"
#include "ui/qt/controls/fitted_label.h"

namespace nimbo {
namespace {

using Log = std::vector<std::string>;

class AwakePageOnScreen : public AwakePageTest {
 protected:
  static QImage picture(const char* name) { return widget().grab(child(name).geometry()).toImage(); }
  /// Whether a pixel of exactly that colour is in the picture of the control.
  static bool shows(const char* name, const Color& color) {
    const QImage image = picture(name);
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) {
        if (image.pixel(x, y) == rgb(color)) return true;
      }
    }
    return false;
  }
  /// The content on the screen, to be changed and rendered without the program behind it.
  DashboardContent content() const { return controller_.content(); }
  static QMenu* openMenu() { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); }
};

TEST_F(AwakePageOnScreen, TextsFollowTheSession) {
  EXPECT_EQ(text("awakeState"), "Ready for your next run");
  EXPECT_EQ(button("start").text(), "Keep Mac awake");
  EXPECT_FALSE(button("extend").isEnabled());
  EXPECT_FALSE(button("displayOff").isEnabled());
  choose("1 hour");
  click("start");
  EXPECT_EQ(text("awakeState"), "Your Mac is staying awake");
  EXPECT_EQ(text("awakeDetail"), "Until 2026-03-14 10:26. Display may sleep.");
  EXPECT_EQ(button("start").text(), "Stop keeping awake");
  EXPECT_TRUE(button("extend").isEnabled());
  EXPECT_FALSE(popUp("duration").isEnabled());
}

TEST_F(AwakePageOnScreen, EveryControlCallsItsAction) {
  choose("1 hour");
  click("start");
  click("extend");
  click("displayOff");
  click("start");
  QTest::mouseClick(widget().windowHandle(), Qt::LeftButton, {},
                    child("display").geometry().topLeft() + QPoint(10, 10));
  QTest::mouseClick(widget().windowHandle(), Qt::LeftButton, {},
                    child("plugged").geometry().topLeft() + QPoint(90, 10));
  popUp("battery").setCurrentIndex(3);
  popUp("duration").setCurrentIndex(5);
  EXPECT_EQ(log_,
            (Log{"start", "extend", "displayOff", "start", "display on", "plugged on", "battery 3", "duration 5"}));
  EXPECT_EQ(world_.settings.awakeBatteryFloor(), 30);
}

TEST_F(AwakePageOnScreen, ChangesByTheProgramCallNoAction) {
  auto changed = content();
  auto& page = std::get<AwakeContent>(changed.page);
  page.duration.selected = 3;
  page.battery.items = {"Never", "5%"};
  page.battery.selected = 1;
  page.minutes.text = "77";
  page.date.date += std::chrono::hours(30);
  page.display.on = page.plugged.on = true;
  window_->render(changed);
  EXPECT_EQ(popUp("duration").currentText(), "2 hours");
  EXPECT_EQ(popUp("battery").currentText(), "5%");
  EXPECT_EQ(minutes().text(), "77");
  EXPECT_TRUE(button("display").isChecked());
  EXPECT_TRUE(button("plugged").isChecked());
  EXPECT_EQ(log_, Log{});
}

TEST_F(AwakePageOnScreen, OtherTabHidesEverything) {
  choose("Custom minutes…");
  controller_.open(DashboardTab::memory);
  for (const char* name : {"awakeState", "awakeDetail", "start", "extend", "awakeDurationTitle", "duration", "minutes",
                           "date", "display", "plugged", "awakeBatteryTitle", "battery", "displayOff", "awakeNote"}) {
    EXPECT_FALSE(child(name).isVisible()) << name;
  }
  controller_.open(DashboardTab::awake);
  EXPECT_TRUE(child("minutes").isVisible());
  EXPECT_FALSE(child("date").isVisible());
}

TEST_F(AwakePageOnScreen, LongDetailWrapsAndShortOneStaysOnItsLine) {
  auto changed = content();
  auto& page = std::get<AwakeContent>(changed.page);
  const auto lines = [] { return child<FittedLabel>("awakeDetail").lines().size(); };
  for (const char* const single :
       {"Enter a whole number from 1 to 10080 minutes.", "Until 11/21/2026, 2:30 PM. Display stays on."}) {
    page.detail.text = single;
    window_->render(changed);
    EXPECT_EQ(lines(), 1U) << single;
  }
  page.detail.text = "macOS couldn’t keep your Mac awake (error 95). Please try again.";
  window_->render(changed);
  EXPECT_EQ(lines(), 2U);
  EXPECT_EQ(text("awakeDetail"), page.detail.text) << "whole for screen readers";
}

TEST_F(AwakePageOnScreen, NoTextIsCutInAnyFont) {
  const QFont before = QApplication::font();
  for (const char* const family : {"Noto Sans", "DejaVu Sans"}) {
    QApplication::setFont(QFont(family));
    QCoreApplication::processEvents();
    for (const char* const name :
         {"awakeState", "awakeDetail", "awakeDurationTitle", "awakeBatteryTitle", "awakeNote"}) {
      const auto& label = child<FittedLabel>(name);
      QStringList drawn;
      for (const auto& line : label.lines()) {
        drawn.push_back(line.text);
        EXPECT_LE(textWidth(line.text, line.font, false), label.width()) << family << ' ' << name;
      }
      EXPECT_EQ(drawn.join(' ').remove(' ').toStdString(), label.text().remove(' ').toStdString()) << family;
    }
  }
  QApplication::setFont(before);
}

TEST_F(AwakePageOnScreen, CheckBoxIsSwitchedWithinBoxAndTitleOnly) {
  QWidget& box = child("display");
  click(box.geometry().topRight() + QPoint(-4, 10));
  EXPECT_EQ(log_, Log{});
  click(box.geometry().topLeft() + QPoint(60, 10));
  EXPECT_EQ(log_, Log{"display on"});
}

TEST_F(AwakePageOnScreen, RefusedSwitchGoesBack) {
  click("start");
  world_.assertions.refuse(kPreventDisplaySleep, 95);
  log_.clear();
  click(child("display").geometry().topLeft() + QPoint(10, 10));
  EXPECT_EQ(log_, Log{"display on"});
  EXPECT_FALSE(button("display").isChecked());
}

TEST_F(AwakePageOnScreen, SwitchOrChoiceThatTheProgramIgnoresGoesBackWithTheNextContent) {
  window_->setListener({});
  click(child("plugged").geometry().topLeft() + QPoint(10, 10));
  popUp("duration").setCurrentIndex(4);
  ASSERT_TRUE(button("plugged").isChecked());
  render();
  EXPECT_FALSE(button("plugged").isChecked());
  EXPECT_EQ(popUp("duration").currentText(), "Until I stop it");
}

TEST_F(AwakePageOnScreen, TabVisitsTheControlsInTheOrderOfThePage) {
  choose("Custom minutes…");
  Log visited;
  for (int step = 0; step < 9; ++step) {
    press(Qt::Key_Tab);
    visited.push_back(QApplication::focusWidget()->objectName().toStdString());
  }
  EXPECT_EQ(visited,
            (Log{"tabs", "settings", "start", "duration", "minutes", "display", "plugged", "battery", "quit"}));
  choose("Until a date / time…");
  focus("duration");
  press(Qt::Key_Tab);
  EXPECT_EQ(QApplication::focusWidget(), &child("date"));
  press(Qt::Key_Tab);
  EXPECT_EQ(QApplication::focusWidget(), &child("display")) << "one stop for the whole date";
  press(Qt::Key_Backtab, Qt::ShiftModifier);
  EXPECT_EQ(QApplication::focusWidget(), &child("date"));
}

TEST_F(AwakePageOnScreen, FocusReachedByKeyboardIsMarkedOnEveryControl) {
  for (const char* const name : {"start", "duration", "display", "battery"}) {
    child(name).setFocus(Qt::OtherFocusReason);
    widget().setAttribute(Qt::WA_KeyboardFocusChange, false);
    const QImage before = picture(name);
    widget().setAttribute(Qt::WA_KeyboardFocusChange);
    EXPECT_NE(picture(name), before) << name;
  }
}

TEST_F(AwakePageOnScreen, TextFieldIsMarkedHoweverItGotTheFocus) {
  choose("Custom minutes…");
  ASSERT_FALSE(minutes().hasFocus());
  const QImage before = picture("minutes");
  click("minutes");
  ASSERT_TRUE(minutes().hasFocus());
  EXPECT_NE(picture("minutes"), before);
}

TEST_F(AwakePageOnScreen, SpaceSwitchesTheCheckBox) {
  focus("plugged");
  press(Qt::Key_Space);
  press(Qt::Key_Space);
  EXPECT_EQ(log_, (Log{"plugged on", "plugged off"}));
}

TEST_F(AwakePageOnScreen, ArrowsAndLettersChooseWithoutOpeningTheList) {
  focus("duration");
  press(Qt::Key_Down);
  press(Qt::Key_Down);
  press(Qt::Key_Up);
  type("4");
  EXPECT_EQ(log_, (Log{"duration 1", "duration 2", "duration 1", "duration 4"}));
  EXPECT_EQ(QApplication::activePopupWidget(), &widget());
}

TEST_F(AwakePageOnScreen, SpaceOpensTheListAndReturnTakesTheItem) {
  focus("battery");
  press(Qt::Key_Space);
  ASSERT_NE(QApplication::activePopupWidget(), &widget());
  press(Qt::Key_Down);
  EXPECT_EQ(log_, Log{}) << "nothing is chosen yet";
  press(Qt::Key_Return);
  EXPECT_EQ(log_, Log{"battery 3"});
  EXPECT_EQ(QApplication::activePopupWidget(), &widget());
  EXPECT_EQ(QApplication::focusWidget(), &child("battery"));
}

TEST_F(AwakePageOnScreen, EscapeClosesTheListAloneAndIsNotReported) {
  focus("duration");
  press(Qt::Key_Space);
  escapes_ = 0;
  press(Qt::Key_Escape);
  EXPECT_EQ(escapes_, 0);
  EXPECT_EQ(QApplication::activePopupWidget(), &widget());
  press(Qt::Key_Escape);
  EXPECT_EQ(escapes_, 1);
  EXPECT_EQ(log_, Log{});
}

TEST_F(AwakePageOnScreen, ListIsWideEnoughForItsItemsAndTheCheckMark) {
  popUp("duration").showPopup();
  auto* const view = popUp("duration").view();
  EXPECT_GE(view->viewport()->width(), view->sizeHintForColumn(0));
  EXPECT_GT(view->sizeHintForColumn(0),
            QFontMetrics(popUp("duration").font()).horizontalAdvance("Until a date / time…"));
}

TEST_F(AwakePageOnScreen, HidingTheDashboardClosesItsList) {
  popUp("duration").showPopup();
  ASSERT_NE(QApplication::activePopupWidget(), &widget());
  window_->hide();
  EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
  EXPECT_FALSE(popUp("duration").view()->isVisible());
}

TEST_F(AwakePageOnScreen, HidingTheDashboardTakesTheFocusFromTheTextField) {
  choose("Custom minutes…");
  click("minutes");
  ASSERT_TRUE(minutes().hasFocus());
  QSignalSpy left(qApp, &QApplication::focusChanged);
  window_->hide();
  EXPECT_EQ(QApplication::focusWidget(), nullptr);
  EXPECT_EQ(left.count(), 1) << "so its cursor stops blinking";
  open();
  EXPECT_FALSE(minutes().hasFocus());
}

TEST_F(AwakePageOnScreen, DestroyingTheDashboardWithAnOpenListIsHarmless) {
  popUp("duration").showPopup();
  window_.reset();
  EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}

TEST_F(AwakePageOnScreen, WheelChangesNoChoice) {
  const QPointF place = child("battery").geometry().center();
  QWheelEvent wheel(place, widget().mapToGlobal(place), {}, {0, -120}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                    false);
  QApplication::sendEvent(&child("battery"), &wheel);
  EXPECT_EQ(popUp("battery").currentText(), "20%");
  EXPECT_EQ(log_, Log{});
}

TEST_F(AwakePageOnScreen, TypingReportsEveryLetterAndReturnDoesNothing) {
  choose("Custom minutes…");
  click("minutes");
  press(Qt::Key_A, Qt::ControlModifier);
  type("45");
  press(Qt::Key_Return);
  press(Qt::Key_Backspace);
  EXPECT_EQ(log_, (Log{"minutes 4", "minutes 45", "minutes 4"}));
  EXPECT_FALSE(world_.manager.isActive());
}

TEST_F(AwakePageOnScreen, EditingKeysCutPasteAndUndo) {
  choose("Custom minutes…");
  focus("minutes");
  press(Qt::Key_A, Qt::ControlModifier);
  type("123");
  press(Qt::Key_A, Qt::ControlModifier);
  press(Qt::Key_X, Qt::ControlModifier);
  EXPECT_EQ(minutes().text(), "");
  press(Qt::Key_V, Qt::ControlModifier);
  press(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(minutes().text(), "123123");
  press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(log_.back(), "minutes 123");
}

TEST_F(AwakePageOnScreen, RenderingWhileTheUserTypesKeepsTextAndCursor) {
  choose("Custom minutes…");
  focus("minutes");
  press(Qt::Key_A, Qt::ControlModifier);
  type("125");
  press(Qt::Key_Left);
  press(Qt::Key_Left);
  world_.settings.setAwakeDisplayOn(true);
  world_.manager.onChange();
  ASSERT_TRUE(button("display").isChecked());
  type("9");
  EXPECT_EQ(minutes().text(), "1925");
  EXPECT_EQ(minutes().cursorPosition(), 2);
}

TEST_F(AwakePageOnScreen, TextThatTheProgramDoesNotMirrorStaysUntilTheProgramHasAnother) {
  window_->setListener({});
  choose("Custom minutes…");
  auto shown = content();
  auto& page = std::get<AwakeContent>(shown.page);
  page.minutes.visible = true;
  window_->render(shown);
  focus("minutes");
  press(Qt::Key_End);
  type("x");
  const QString typed = minutes().text();
  page.minutes.toolTip = "another";
  window_->render(shown);
  EXPECT_EQ(minutes().text(), typed);
  page.minutes.text = "61";
  window_->render(shown);
  EXPECT_EQ(minutes().text(), "61");
}

TEST_F(AwakePageOnScreen, TextFieldHasItsMenuWithoutWaitingForIt) {
  choose("Custom minutes…");
  QWidget& field = child("minutes");
  QContextMenuEvent event(QContextMenuEvent::Mouse, {5, 5}, field.mapToGlobal(QPoint(5, 5)));
  QApplication::sendEvent(&field, &event);
  ASSERT_NE(openMenu(), nullptr);
  EXPECT_GT(openMenu()->actions().size(), 5);
  escapes_ = 0;
  press(Qt::Key_Escape);
  EXPECT_EQ(openMenu(), nullptr);
  EXPECT_EQ(escapes_, 0);
}

TEST_F(AwakePageOnScreen, CheckedBoxHasTheAccentInBothAppearances) {
  EXPECT_FALSE(shows("display", color(ColorRole::accentGround, Appearance::light)));
  EXPECT_TRUE(shows("display", color(ColorRole::fieldGround, Appearance::light)));
  click(child("display").geometry().topLeft() + QPoint(10, 10));
  QTest::mouseMove(widget().windowHandle(), {5, 5});
  EXPECT_TRUE(shows("display", color(ColorRole::accentGround, Appearance::light)));
  interface().setAppearance(Appearance::dark);
  EXPECT_TRUE(shows("display", color(ColorRole::accentGround, Appearance::dark)));
  EXPECT_FALSE(shows("display", color(ColorRole::accentGround, Appearance::light)));
}

TEST_F(AwakePageOnScreen, FieldsHaveTheirOwnGroundInBothAppearances) {
  for (const char* const item : {"Custom minutes…", "Until a date / time…"}) {
    choose(item);
    const char* const field = child("minutes").isVisible() ? "minutes" : "date";
    for (const auto appearance : {Appearance::light, Appearance::dark}) {
      interface().setAppearance(appearance);
      EXPECT_TRUE(shows(field, color(ColorRole::fieldGround, appearance))) << field;
    }
  }
}

TEST_F(AwakePageOnScreen, DisabledPopUpCannotBeOpened) {
  click("start");
  click("duration");
  EXPECT_EQ(QApplication::activePopupWidget(), &widget());
}

}  // namespace
}  // namespace nimbo
