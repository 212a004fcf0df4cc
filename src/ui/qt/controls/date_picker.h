// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTimeEdit>
#include <chrono>

#include "ui/qt/controls/content_widget.h"

class QLocale;

namespace nimbo {

/// The locale's short date and time with the whole year and without seconds, as a format of the
/// toolkit's.
[[nodiscard]] QString dateAndTimeFormat(const QLocale& locale);

/// Day, hour and minute in the user's time zone, typed or stepped part by part; years 2000 to 2199.
class DatePicker final : public ContentWidget<QDateTimeEdit, DatePickerContent> {
 public:
  using Time = std::chrono::system_clock::time_point;

  /// Reports whole minutes whenever the user's input makes another moment.
  DatePicker(const Theme& theme, ControlListener listener, QWidget* parent);

  /// The date is taken over when it is another one than in the content before; otherwise what the
  /// user has typed since stays.
  void setContent(const DatePickerContent& content);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  [[nodiscard]] bool focusNextPrevChild(bool next) override;

 private:
  [[nodiscard]] QDateTime inRange(const QDateTime& wall) const;
  void display(Time date);
  void fitFont();

  Time shown_{};
};

}  // namespace nimbo
