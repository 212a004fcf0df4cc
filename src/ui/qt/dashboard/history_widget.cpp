// SPDX-License-Identifier: MIT
#include "ui/qt/dashboard/history_widget.h"

#include "ui/dashboard/chart_bars.h"

namespace nimbo {

void HistoryWidget::setContent(const HistoryContent& content) {
  if (content_ == content) return;
  content_ = content;
  place(content.frame, content.accessibleName, content.visible);
}

ChartReading HistoryWidget::reading() const {
  if (!content_ || content_->history.empty()) return {};
  const double percent = content_->history.back() * 100;
  return {percent, QString("%1%").arg(qRound(percent))};
}

std::vector<ChartBar> HistoryWidget::bars() const {
  if (!content_) return {};
  return historyBars(content_->history, content_->tint, {content_->frame.width, content_->frame.height});
}

}  // namespace nimbo
