// SPDX-License-Identifier: MIT
#include "ui/qt/dashboard/chart_widget.h"

#include <cmath>

#include "ui/qt/controls/control_painting.h"

namespace nimbo {
namespace {

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

void ChartWidget::setContent(const ChartContent& content) {
  if (content_ != content) take(content);
}

void ChartWidget::paintEvent(QPaintEvent* /*event*/) {
  if (!content_) return;
  SmoothPainter painter(this);
  for (const ChartBar& bar : content_->bars) {
    QColor color = theme_.color(bar.color);
    color.setAlphaF(static_cast<float>(bar.alpha.value_or(color.alphaF()) * content_->opacity));
    QPainterPath shape = rounded(onPixels(bar.shape.rect, devicePixelRatioF()), bar.shape.radius);
    // Painting through a clip path would leave its edge jagged.
    if (bar.clip) shape = shape.intersected(rounded(toQRectF(bar.clip->rect), bar.clip->radius));
    painter.fillPath(shape, color);
  }
}

}  // namespace nimbo
