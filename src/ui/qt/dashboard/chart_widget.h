// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "ui/dashboard/chart_bar.h"
#include "ui/qt/controls/content_widget.h"

namespace nimbo {

/// What a chart says to those who cannot see it.
struct ChartReading {
  double percent = 0;
  QString text;
};

// What each content of a chart reads as and is drawn as.

/// The newest sample.
[[nodiscard]] ChartReading readingOf(const HistoryContent& content);
/// The share of each part.
[[nodiscard]] ChartReading readingOf(const BreakdownContent& content);
[[nodiscard]] ChartReading readingOf(const UsageBarContent& content);
[[nodiscard]] std::vector<ChartBar> barsOf(const HistoryContent& content, const Theme& theme);
[[nodiscard]] std::vector<ChartBar> barsOf(const BreakdownContent& content, const Theme& theme);
[[nodiscard]] std::vector<ChartBar> barsOf(const UsageBarContent& content, const Theme& theme);

/// Draws filled bars, their edges on whole pixels of the screen.
class ChartWidget : public QWidget {
 public:
  using QWidget::QWidget;
  [[nodiscard]] virtual ChartReading reading() const = 0;

 protected:
  void drawBars(const std::vector<ChartBar>& bars, const Theme& theme);
};

template <class Content>
class Chart final : public ContentWidget<ChartWidget, Content> {
 public:
  using ContentWidget<ChartWidget, Content>::ContentWidget;

  void setContent(const Content& content) {
    if (this->content_ != content) this->take(content);
  }
  [[nodiscard]] ChartReading reading() const override {
    return this->content_ ? readingOf(*this->content_) : ChartReading{};
  }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    if (this->content_) this->drawBars(barsOf(*this->content_, this->theme_), this->theme_);
  }
};

/// The sparkline of recent samples.
using HistoryWidget = Chart<HistoryContent>;
/// The bar that splits physical memory.
using BreakdownWidget = Chart<BreakdownContent>;
/// How much of an allowance is left.
using UsageBar = Chart<UsageBarContent>;

}  // namespace nimbo
