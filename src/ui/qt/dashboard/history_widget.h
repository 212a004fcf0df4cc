// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "ui/qt/dashboard/chart_widget.h"

namespace nimbo {

/// The sparkline of recent samples; reads as its newest one.
class HistoryWidget final : public ChartWidget {
 public:
  using ChartWidget::ChartWidget;

  void setContent(const HistoryContent& content);
  [[nodiscard]] ChartReading reading() const override;

 protected:
  [[nodiscard]] std::vector<ChartBar> bars() const override;

 private:
  std::optional<HistoryContent> content_;
};

}  // namespace nimbo
