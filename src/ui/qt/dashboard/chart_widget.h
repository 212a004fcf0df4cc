// SPDX-License-Identifier: MIT
#pragma once

#include "ui/dashboard/dashboard_content.h"
#include "ui/qt/controls/content_widget.h"

namespace nimbo {

/// Draws filled bars, their edges on whole pixels of the screen.
class ChartWidget final : public ContentWidget<QWidget, ChartContent> {
 public:
  using ContentWidget::ContentWidget;

  void setContent(const ChartContent& content);
  [[nodiscard]] ChartContent content() const { return content_.value_or(ChartContent{}); }

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace nimbo
