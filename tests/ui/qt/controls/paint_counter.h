// SPDX-License-Identifier: MIT
#pragma once

#include <QEvent>
#include <QTest>
#include <QWidget>
#include <map>
#include <string>
#include <utility>

namespace nimbo {

/// Counts the paint events of all widgets in a window by the widgets' names.
class PaintCounter : public QObject {
 public:
  explicit PaintCounter(const QWidget& window) {
    for (QWidget* const each : window.findChildren<QWidget*>()) each->installEventFilter(this);
  }

  /// Waits until nothing paints any more: a scroll bar shows itself for a moment when its view
  /// appears. Then the counting starts.
  [[nodiscard]] bool settles() {
    int quietTurns = 0;
    return QTest::qWaitFor([&] {
      quietTurns = std::exchange(counts, {}).empty() ? quietTurns + 1 : 0;
      return quietTurns == 5;
    });
  }

  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Paint) ++counts[watched->objectName().toStdString()];
    return false;
  }

  std::map<std::string, int> counts;
};

}  // namespace nimbo
