// SPDX-License-Identifier: MIT
#include "ui/qt/dashboard/usage_bar.h"

#include "ui/qt/controls/plain_tool_tip.h"
#include "ui/qt/controls/theme.h"

namespace nimbo {

void UsageBar::setContent(const UsageBarContent& content) {
  if (content_ == content) return;
  content_ = content;
  place(content.frame, content.accessibleName, true);
  setPlainToolTip(*this, QString::fromStdString(content.toolTip));
}

ChartReading UsageBar::reading() const {
  if (!content_) return {};
  return {content_->fraction * 100, QString::fromStdString(content_->accessibleValue)};
}

std::vector<ChartBar> UsageBar::bars() const {
  if (!content_) return {};
  const Rect& frame = content_->frame;
  const RoundedRect track{{0, 0, frame.width, frame.height}, 4};
  const double trackAlpha = theme().color(ColorRole::quaternaryLabel).alphaF() * content_->alpha;
  std::vector<ChartBar> bars{{track, ColorRole::quaternaryLabel, trackAlpha, {}}};
  if (content_->fraction > 0) {
    bars.push_back(
        {{{0, 0, frame.width * content_->fraction, frame.height}, 0}, content_->tint, content_->alpha, track});
  }
  return bars;
}

}  // namespace nimbo
