// SPDX-License-Identifier: MIT
#include "ui/qt/dashboard/breakdown_widget.h"

#include "ui/dashboard/chart_bars.h"

namespace nimbo {

void BreakdownWidget::setContent(const BreakdownContent& content) {
  if (content_ == content) return;
  content_ = content;
  place(content.frame, content.accessibleName, content.visible);
}

ChartReading BreakdownWidget::reading() const {
  if (!content_ || !content_->snapshot || content_->snapshot->total == 0) return {};
  const MemorySnapshot& memory = *content_->snapshot;
  const auto percent = [&](std::uint64_t bytes) {
    return qRound(static_cast<double>(bytes) / static_cast<double>(memory.total) * 100);
  };
  return {memory.usedFraction() * 100, QString("App memory %1%, wired %2%, compressed %3%")
                                           .arg(percent(memory.app))
                                           .arg(percent(memory.wired))
                                           .arg(percent(memory.compressed))};
}

std::vector<ChartBar> BreakdownWidget::bars() const {
  if (!content_) return {};
  return breakdownBars(content_->snapshot, {content_->frame.width, content_->frame.height});
}

}  // namespace nimbo
