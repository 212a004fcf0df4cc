// SPDX-License-Identifier: MIT
#include "ui/qt/controls/date_picker.h"

#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QRegularExpression>
#include <QWheelEvent>
#include <ctime>

#include "ui/qt/controls/theme.h"
#include "ui/qt/qt_test.h"

namespace nimbo {
namespace {

using Time = std::chrono::system_clock::time_point;
using namespace std::chrono_literals;

class DatePickerTest : public QtTest {
 protected:
  void SetUp() override { useZone("America/New_York"); }
  void TearDown() override {
    picker_.reset();
    QLocale::setDefault(QLocale::system());
    if (zoneBefore_.isNull()) {
      qunsetenv("TZ");
    } else {
      qputenv("TZ", zoneBefore_);
    }
    tzset();
  }

  static void useZone(const char* name) {
    qputenv("TZ", name);
    tzset();
  }
  static Time utc(int year, unsigned month, unsigned day, int hour, int minute, int second = 0) {
    const auto date = std::chrono::year(year) / std::chrono::month(month) / std::chrono::day(day);
    return std::chrono::sys_days(date) + std::chrono::hours(hour) + std::chrono::minutes(minute) +
           std::chrono::seconds(second);
  }

  void show(Time date, const QLocale& locale = QLocale(QLocale::English, QLocale::UnitedStates)) {
    QLocale::setDefault(locale);
    picker_ = std::make_unique<DatePicker>(
        theme_, [this](const ControlEvent& event) { picked_.push_back(event.as<Time>()); }, nullptr);
    content_ = {"date", {20, 20, 150, 26}, date, "Session end date and time"};
    picker_->setContent(content_);
    picker_->show();
    picker_->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(picker_.get()));
    picker_->setFocus(Qt::TabFocusReason);
    picker_->setSelectedSection(QDateTimeEdit::MonthSection);
  }
  void rerender(Time date) {
    content_.date = date;
    picker_->setContent(content_);
  }
  [[nodiscard]] std::string text() const { return picker_->text().toStdString(); }
  void press(Qt::Key key) { QTest::keyClick(picker_.get(), key); }
  void type(const char* letters) { QTest::keyClicks(picker_.get(), letters); }
  void step(QDateTimeEdit::Section section, Qt::Key key) {
    picker_->setSelectedSection(section);
    press(key);
  }

  Theme theme_;
  std::unique_ptr<DatePicker> picker_;
  DatePickerContent content_;
  std::vector<Time> picked_;

 private:
  QByteArray zoneBefore_ = qgetenv("TZ");
};

TEST_F(DatePickerTest, FormatsAreShortWithTheWholeYearAndWithoutSeconds) {
  EXPECT_EQ(dateAndTimeFormat(QLocale(QLocale::English, QLocale::UnitedStates)), "M/d/yyyy h:mm AP");
  EXPECT_EQ(dateAndTimeFormat(QLocale(QLocale::German, QLocale::Germany)), "dd.MM.yyyy HH:mm");
  EXPECT_EQ(dateAndTimeFormat(QLocale::c()), "d MMM yyyy HH:mm");
}

TEST_F(DatePickerTest, MomentIsShownInLocalTime) {
  show(utc(2026, 11, 21, 19, 30));
  EXPECT_EQ(text(), "11/21/2026 2:30 PM");
  rerender(utc(2026, 7, 1, 3, 5));
  EXPECT_EQ(text(), "6/30/2026 11:05 PM") << "daylight saving time, the day before";
  EXPECT_TRUE(picked_.empty());
}

TEST_F(DatePickerTest, GermanFormFitsItsFieldToo) {
  show(utc(2026, 11, 21, 19, 30), QLocale(QLocale::German, QLocale::Germany));
  EXPECT_EQ(text(), "21.11.2026 14:30");
}

TEST_F(DatePickerTest, WidestTextFitsItsFieldInAnyFont) {
  const QFont before = QApplication::font();
  for (const char* const family : {"Noto Sans", "DejaVu Sans"}) {
    QApplication::setFont(QFont(family));
    show(utc(2026, 12, 28, 17, 38));
    const auto* const field = picker_->findChild<QLineEdit*>();
    EXPECT_LE(QFontMetrics(field->font()).horizontalAdvance(field->text()), field->width()) << family;
  }
  QApplication::setFont(before);
}

TEST_F(DatePickerTest, ArrowKeysStepThePartTheyAreOn) {
  show(utc(2026, 11, 21, 19, 30));
  press(Qt::Key_Up);
  EXPECT_EQ(text(), "12/21/2026 2:30 PM");
  press(Qt::Key_Left);
  press(Qt::Key_Right);
  press(Qt::Key_Down);
  EXPECT_EQ(text(), "12/20/2026 2:30 PM");
  EXPECT_EQ(picked_, (std::vector<Time>{utc(2026, 12, 21, 19, 30), utc(2026, 12, 20, 19, 30)}));
}

TEST_F(DatePickerTest, SidewaysArrowsReachEveryPartAndStopAtTheEnds) {
  show(utc(2026, 11, 21, 19, 30));
  std::vector<QDateTimeEdit::Section> parts;
  for (int count = 0; count < 7; ++count) {
    parts.push_back(picker_->currentSection());
    press(Qt::Key_Right);
  }
  EXPECT_EQ(parts, (std::vector<QDateTimeEdit::Section>{QDateTimeEdit::MonthSection, QDateTimeEdit::DaySection,
                                                        QDateTimeEdit::YearSection, QDateTimeEdit::HourSection,
                                                        QDateTimeEdit::MinuteSection, QDateTimeEdit::AmPmSection,
                                                        QDateTimeEdit::AmPmSection}));
  press(Qt::Key_Left);
  EXPECT_EQ(picker_->currentSection(), QDateTimeEdit::MinuteSection);
}

TEST_F(DatePickerTest, PartsWrapWithoutTouchingTheOthers) {
  show(utc(2026, 11, 21, 19, 59));
  step(QDateTimeEdit::MinuteSection, Qt::Key_Up);
  EXPECT_EQ(text(), "11/21/2026 2:00 PM");
  EXPECT_EQ(picked_, std::vector<Time>{utc(2026, 11, 21, 19, 0)});
}

TEST_F(DatePickerTest, StepperStepsByClicks) {
  show(utc(2026, 11, 21, 19, 30));
  picker_->setSelectedSection(QDateTimeEdit::HourSection);
  const QPoint up(picker_->width() - 9, 8);
  QTest::mouseClick(picker_.get(), Qt::LeftButton, {}, up);
  EXPECT_EQ(text(), "11/21/2026 3:30 PM");
  QTest::mouseClick(picker_.get(), Qt::LeftButton, {}, QPoint(up.x(), picker_->height() - 8));
  EXPECT_EQ(text(), "11/21/2026 2:30 PM");
  EXPECT_EQ(picked_.size(), 2U);
}

TEST_F(DatePickerTest, PartsCanBeTyped) {
  show(utc(2026, 11, 21, 19, 30));
  picker_->setSelectedSection(QDateTimeEdit::YearSection);
  type("2031");
  EXPECT_EQ(text(), "11/21/2031 2:30 PM");
  ASSERT_FALSE(picked_.empty());
  EXPECT_EQ(picked_.back(), utc(2031, 11, 21, 19, 30));
}

TEST_F(DatePickerTest, SecondsOfTheContentAreNoneOfTheUsersBusiness) {
  show(utc(2026, 11, 21, 19, 30, 27) + 123ms);
  press(Qt::Key_Right);
  EXPECT_TRUE(picked_.empty());
  step(QDateTimeEdit::MinuteSection, Qt::Key_Up);
  EXPECT_EQ(picked_, std::vector<Time>{utc(2026, 11, 21, 19, 31)});
}

TEST_F(DatePickerTest, ProgramMirrorsThePickWithoutEcho) {
  show(utc(2026, 11, 21, 19, 30));
  step(QDateTimeEdit::HourSection, Qt::Key_Up);
  rerender(picked_.at(0));
  EXPECT_EQ(picked_.size(), 1U);
  EXPECT_EQ(picker_->currentSection(), QDateTimeEdit::HourSection);
  EXPECT_EQ(text(), "11/21/2026 3:30 PM");
}

TEST_F(DatePickerTest, HalfTypedPartSurvivesTheSameContent) {
  show(utc(2026, 11, 21, 19, 30));
  picker_->setSelectedSection(QDateTimeEdit::YearSection);
  type("20");
  const std::string half = text();
  ASSERT_NE(half, "11/21/2026 2:30 PM");
  picker_->setContent(content_);
  content_.accessibleName = "another";
  picker_->setContent(content_);
  EXPECT_EQ(text(), half);
  type("29");
  EXPECT_EQ(text(), "11/21/2029 2:30 PM");
}

TEST_F(DatePickerTest, HalfTypedPartIsCompletedWhenTheFocusLeaves) {
  show(utc(2026, 11, 21, 19, 30));
  picker_->setSelectedSection(QDateTimeEdit::YearSection);
  type("20");
  picker_->clearFocus();
  EXPECT_EQ(picker_->dateTime().date().year(), picked_.empty() ? 2026 : 2020);
  EXPECT_TRUE(QRegularExpression("^11/21/20\\d\\d 2:30 PM$").match(picker_->text()).hasMatch()) << text();
}

TEST_F(DatePickerTest, SkippedHourIsReportedAsARealOneAndSteppedOver) {
  useZone("Europe/Berlin");
  show(utc(2026, 3, 29, 0, 30), QLocale(QLocale::German, QLocale::Germany));
  ASSERT_EQ(text(), "29.03.2026 01:30");
  step(QDateTimeEdit::HourSection, Qt::Key_Up);
  EXPECT_EQ(text(), "29.03.2026 02:30") << "which no clock shows that night";
  press(Qt::Key_Up);
  EXPECT_EQ(text(), "29.03.2026 03:30");
  press(Qt::Key_Up);
  EXPECT_EQ(text(), "29.03.2026 04:30");
  EXPECT_LE(picked_.size(), 3U);
  EXPECT_EQ(picked_.back(), utc(2026, 3, 29, 2, 30));
}

TEST_F(DatePickerTest, SkippedHourIsShownAsTheOneItStandsForOnceTheFocusLeaves) {
  useZone("Europe/Berlin");
  show(utc(2026, 3, 29, 0, 30), QLocale(QLocale::German, QLocale::Germany));
  step(QDateTimeEdit::HourSection, Qt::Key_Up);
  const auto reported = picked_;
  picker_->clearFocus();
  EXPECT_NE(text(), "29.03.2026 02:30");
  EXPECT_EQ(picked_, reported) << "the moment is the same";
}

TEST_F(DatePickerTest, RepeatedHourIsLeftAloneUntilTheUserChangesIt) {
  useZone("Europe/Berlin");
  show(utc(2026, 10, 25, 1, 30), QLocale(QLocale::German, QLocale::Germany));
  EXPECT_EQ(text(), "25.10.2026 02:30");
  rerender(utc(2026, 10, 25, 0, 30));
  EXPECT_EQ(text(), "25.10.2026 02:30");
  picker_->clearFocus();
  EXPECT_TRUE(picked_.empty());
  picker_->setFocus();
  step(QDateTimeEdit::HourSection, Qt::Key_Up);
  EXPECT_EQ(picked_, std::vector<Time>{utc(2026, 10, 25, 2, 30)});
}

TEST_F(DatePickerTest, YearsEndWhereTheClockStillReaches) {
  show(Time::max());
  EXPECT_EQ(text(), "12/31/2199 11:59 PM");
  step(QDateTimeEdit::YearSection, Qt::Key_Up);
  EXPECT_EQ(text(), "12/31/2000 11:59 PM") << "the other end";
  rerender(Time::min());
  EXPECT_EQ(text(), "1/1/2000 12:00 AM");
  picker_->setSelectedSection(QDateTimeEdit::YearSection);
  type("9999");
  picker_->clearFocus();
  for (const Time picked : picked_) {
    EXPECT_GE(picked, utc(2000, 1, 1, 0, 0));
    EXPECT_LT(picked, utc(2200, 1, 2, 0, 0));
  }
}

TEST_F(DatePickerTest, WheelStepsOnlyWhereTheFocusIs) {
  show(utc(2026, 11, 21, 19, 30));
  const auto wheel = [this] {
    QWheelEvent event({20, 10}, picker_->mapToGlobal(QPointF(20, 10)), {}, {0, 120}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(picker_.get(), &event);
  };
  picker_->clearFocus();
  wheel();
  EXPECT_TRUE(picked_.empty());
  picker_->setFocus();
  wheel();
  EXPECT_EQ(picked_.size(), 1U);
}

TEST_F(DatePickerTest, ContextMenuDoesNotWait) {
  show(utc(2026, 11, 21, 19, 30));
  QContextMenuEvent event(QContextMenuEvent::Mouse, {5, 5}, picker_->mapToGlobal(QPoint(5, 5)));
  QApplication::sendEvent(picker_.get(), &event);
  auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
  ASSERT_NE(menu, nullptr);
  menu->close();
}

TEST_F(DatePickerTest, DisabledPickerTakesNoInput) {
  show(utc(2026, 11, 21, 19, 30));
  content_.enabled = false;
  picker_->setContent(content_);
  press(Qt::Key_Up);
  QTest::mouseClick(picker_.get(), Qt::LeftButton, {}, QPoint(picker_->width() - 9, 8));
  EXPECT_TRUE(picked_.empty());
}

}  // namespace
}  // namespace nimbo
