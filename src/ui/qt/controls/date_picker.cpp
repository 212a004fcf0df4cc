// SPDX-License-Identifier: MIT
#include "ui/qt/controls/date_picker.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QLocale>
#include <QMenu>
#include <QRegularExpression>
#include <QSignalBlocker>
#include <QStyleOptionSpinBox>
#include <QWheelEvent>
#include <algorithm>
#include <ctime>
#include <utility>

#include "ui/qt/controls/control_painting.h"
#include "ui/qt/controls/text_fitting.h"

namespace nimbo {
namespace {

// The control edits what a wall clock shows, kept as if it were UTC. In local time the toolkit
// cannot step over the hour that is skipped in spring.

QDateTime wallClock(DatePicker::Time time) {
  const auto local = QDateTime::fromSecsSinceEpoch(std::chrono::system_clock::to_time_t(time));
  return {local.date(), QTime(local.time().hour(), local.time().minute()), Qt::UTC};
}

/// Skipped hours are taken as the ones after them; of repeated ones the system decides.
DatePicker::Time momentOf(const QDateTime& wall) {
  std::tm local{};
  local.tm_year = wall.date().year() - 1900;
  local.tm_mon = wall.date().month() - 1;
  local.tm_mday = wall.date().day();
  local.tm_hour = wall.time().hour();
  local.tm_min = wall.time().minute();
  local.tm_isdst = -1;
  return std::chrono::system_clock::from_time_t(std::mktime(&local));
}

}  // namespace

QString dateAndTimeFormat(const QLocale& locale) {
  static const QRegularExpression year("y+");
  static const QRegularExpression seconds("[:. ]?s+");
  const QString date = locale.dateFormat(QLocale::ShortFormat).replace(year, "yyyy");
  const QString time = locale.timeFormat(QLocale::ShortFormat).remove(seconds);
  // Newer locale data puts a narrow blank before AM and PM, which nobody can type.
  return QString(date + " " + time).replace(QChar(0x202F), u' ');
}

DatePicker::DatePicker(const Theme& theme, ControlListener listener, QWidget* parent)
    : ContentWidget(theme, parent, std::move(listener)) {
  setFrame(false);
  setTimeSpec(Qt::UTC);
  setDisplayFormat(dateAndTimeFormat(locale()));
  // So that any moment fits into the nanoseconds of the system's clock.
  setDateTimeRange({QDate(2000, 1, 1), QTime(0, 0), Qt::UTC}, {QDate(2199, 12, 31), QTime(23, 59), Qt::UTC});
  setWrapping(true);
  connect(this, &QDateTimeEdit::dateTimeChanged, this, [this](const QDateTime& wall) {
    const Time date = momentOf(wall);
    if (std::exchange(shown_, date) != date) report(date);
  });
}

void DatePicker::setContent(const DatePickerContent& content) {
  if (content_ == content) return;
  const bool otherDate = !content_ || content_->date != content.date;
  take(content);
  if (otherDate && momentOf(inRange(wallClock(content.date))) != shown_) display(content.date);
}

// The control itself would take a date beyond one end for the other end.
QDateTime DatePicker::inRange(const QDateTime& wall) const {
  return std::clamp(wall, minimumDateTime(), maximumDateTime());
}

void DatePicker::display(Time date) {
  const QSignalBlocker blocker(this);
  setDateTime(inRange(wallClock(date)));
  shown_ = momentOf(dateTime());
}

// Fonts and locales differ too much for one size.
void DatePicker::fitFont() {
  const QString widest = locale().toString(QDateTime(QDate(2028, 12, 28), QTime(12, 38)), displayFormat());
  constexpr double kCursor = 3;
  setFont(fitText(widest, controlFont(), false, lineEdit()->contentsRect().width() - kCursor).font);
}

void DatePicker::resizeEvent(QResizeEvent* event) {
  QDateTimeEdit::resizeEvent(event);
  fitFont();
}

void DatePicker::changeEvent(QEvent* event) {
  QDateTimeEdit::changeEvent(event);
  if (event->type() == QEvent::ApplicationFontChange) fitFont();
}

void DatePicker::paintEvent(QPaintEvent* /*event*/) {
  QStyleOptionSpinBox option;
  initStyleOption(&option);
  SmoothPainter painter(this);
  drawField(*this, painter, theme_);
  for (const auto direction : {ChevronDirection::up, ChevronDirection::down}) {
    const auto half = direction == ChevronDirection::up ? QStyle::SC_SpinBoxUp : QStyle::SC_SpinBoxDown;
    const QRectF button = style()->subControlRect(QStyle::CC_SpinBox, &option, half, this);
    const bool pressed = option.activeSubControls == half && (option.state & QStyle::State_Sunken);
    const auto role = pressed ? ColorRole::blue : ColorRole::secondaryLabel;
    painter.setPen(isEnabled() ? theme_.color(role) : theme_.disabledLabel());
    drawChevron(painter, button.center(), direction);
  }
}

// Arrow keys move between the parts, except within one that is being typed.
void DatePicker::keyPressEvent(QKeyEvent* event) {
  const bool sideways = event->key() == Qt::Key_Left || event->key() == Qt::Key_Right;
  const int part = currentSectionIndex() + (event->key() == Qt::Key_Left ? -1 : 1);
  const bool plain = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
  if (!sideways || !plain || !lineEdit()->hasSelectedText()) {
    QDateTimeEdit::keyPressEvent(event);
  } else if (part >= 0 && part < sectionCount()) {
    setCurrentSectionIndex(part);
    setSelectedSection(currentSection());
  }
}

// The toolkit's own menu waits in an event loop of its own.
void DatePicker::contextMenuEvent(QContextMenuEvent* event) {
  QMenu* const menu = lineEdit()->createStandardContextMenu();
  menu->setAttribute(Qt::WA_DeleteOnClose);
  menu->popup(event->globalPos());
  event->accept();
}

void DatePicker::wheelEvent(QWheelEvent* event) {
  if (hasFocus()) {
    QDateTimeEdit::wheelEvent(event);
  } else {
    event->ignore();
  }
}

// An hour that the clocks skip is shown as the one it stands for.
void DatePicker::focusOutEvent(QFocusEvent* event) {
  QDateTimeEdit::focusOutEvent(event);
  display(shown_);
}

// Tab leaves all parts at once.
bool DatePicker::focusNextPrevChild(bool next) {
  return QWidget::focusNextPrevChild(next);  // NOLINT(bugprone-parent-virtual-call): the parent's goes part by part
}

}  // namespace nimbo
