// SPDX-License-Identifier: MIT
#include "ui/qt/dashboard/chart_widget.h"

#include <cmath>

#include "ui/dashboard/breakdown_view.h"
#include "ui/dashboard/history_view.h"
#include "ui/qt/controls/control_painting.h"

namespace nimbo {
namespace {

Size sizeOf(const Rect& frame) { return {frame.width, frame.height}; }

QRectF onPixels(const Rect& rect, double scale) {
  const double left = std::round(rect.x * scale) / scale;
  const double right = std::round(rect.maxX() * scale) / scale;
  return {left, rect.y, right - left, rect.height};
}

QPainterPath rounded(const QRectF& rect, double radius) {
  QPainterPath path;
  path.addRoundedRect(rect, radius, radius);
  return path;
}

}  // namespace

ChartReading readingOf(const HistoryContent& content) {
  if (content.history.empty()) return {};
  const double percent = content.history.back() * 100;
  return {percent, QString("%1%").arg(qRound(percent))};
}

ChartReading readingOf(const BreakdownContent& content) {
  if (!content.snapshot || content.snapshot->total == 0) return {};
  const MemorySnapshot& memory = *content.snapshot;
  const auto percent = [&](std::uint64_t bytes) {
    return qRound(static_cast<double>(bytes) / static_cast<double>(memory.total) * 100);
  };
  return {memory.usedFraction() * 100, QString("App memory %1%, wired %2%, compressed %3%")
                                           .arg(percent(memory.app))
                                           .arg(percent(memory.wired))
                                           .arg(percent(memory.compressed))};
}

ChartReading readingOf(const UsageBarContent& content) {
  return {content.fraction * 100, QString::fromStdString(content.accessibleValue)};
}

std::vector<ChartBar> barsOf(const HistoryContent& content, const Theme& /*theme*/) {
  return historyBars(content.history, content.tint, sizeOf(content.frame));
}

std::vector<ChartBar> barsOf(const BreakdownContent& content, const Theme& /*theme*/) {
  return breakdownBars(content.snapshot, sizeOf(content.frame));
}

std::vector<ChartBar> barsOf(const UsageBarContent& content, const Theme& theme) {
  const auto [width, height] = sizeOf(content.frame);
  const RoundedRect track{{0, 0, width, height}, 4};
  const double trackAlpha = theme.color(ColorRole::quaternaryLabel).alphaF() * content.alpha;
  std::vector<ChartBar> bars{{track, ColorRole::quaternaryLabel, trackAlpha, {}}};
  if (content.fraction > 0) {
    bars.push_back({{{0, 0, width * content.fraction, height}, 0}, content.tint, content.alpha, track});
  }
  return bars;
}

void ChartWidget::drawBars(const std::vector<ChartBar>& bars, const Theme& theme) {
  SmoothPainter painter(this);
  for (const ChartBar& bar : bars) {
    QColor color = theme.color(bar.color);
    color.setAlphaF(static_cast<float>(bar.alpha));
    QPainterPath shape = rounded(onPixels(bar.shape.rect, devicePixelRatioF()), bar.shape.radius);
    // Painting through a clip path would leave its edge jagged.
    if (bar.clip) shape = shape.intersected(rounded(toQRectF(bar.clip->rect), bar.clip->radius));
    painter.fillPath(shape, color);
  }
}

}  // namespace nimbo
