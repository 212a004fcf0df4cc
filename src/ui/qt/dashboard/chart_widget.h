// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessible>
#include <QString>
#include <QWidget>
#include <string>
#include <vector>

#include "ui/dashboard/chart_bars.h"

namespace nimbo {

class Theme;

/// What a chart says to those who cannot see it.
struct ChartReading {
  double percent = 0;
  QString text;
};

/// Draws filled bars, their edges on whole pixels of the screen.
class ChartWidget : public QWidget {
 public:
  ChartWidget(const Theme& theme, QWidget* parent);

  [[nodiscard]] virtual ChartReading reading() const = 0;
  [[nodiscard]] virtual QAccessible::Role accessibleRole() const { return QAccessible::Chart; }

 protected:
  [[nodiscard]] const Theme& theme() const { return theme_; }
  [[nodiscard]] virtual std::vector<ChartBar> bars() const = 0;
  void place(const Rect& frame, const std::string& accessibleName, bool visible);
  void paintEvent(QPaintEvent* event) override;

 private:
  const Theme& theme_;
};

/// To be installed as the toolkit's accessibility factory: gives charts their role, name and value.
[[nodiscard]] QAccessibleInterface* makeAccessibleChart(const QString& className, QObject* object);

}  // namespace nimbo
