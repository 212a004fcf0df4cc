// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "ui/qt/dashboard/chart_widget.h"

namespace nimbo {

/// The bar that splits physical memory; reads as the share of each part.
class BreakdownWidget final : public ChartWidget {
 public:
  using ChartWidget::ChartWidget;

  void setContent(const BreakdownContent& content);
  [[nodiscard]] ChartReading reading() const override;

 protected:
  [[nodiscard]] std::vector<ChartBar> bars() const override;

 private:
  std::optional<BreakdownContent> content_;
};

}  // namespace nimbo
