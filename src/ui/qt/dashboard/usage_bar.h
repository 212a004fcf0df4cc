// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "ui/dashboard/dashboard_content.h"
#include "ui/qt/dashboard/chart_widget.h"

namespace nimbo {

/// How much of an allowance is left; a progress bar to assistive technology.
class UsageBar final : public ChartWidget {
 public:
  using ChartWidget::ChartWidget;

  void setContent(const UsageBarContent& content);
  [[nodiscard]] ChartReading reading() const override;
  [[nodiscard]] QAccessible::Role accessibleRole() const override { return QAccessible::ProgressBar; }

 protected:
  [[nodiscard]] std::vector<ChartBar> bars() const override;

 private:
  std::optional<UsageBarContent> content_;
};

}  // namespace nimbo
