// SPDX-License-Identifier: MIT
#include "ui/qt/dashboard/chart_widget.h"

#include <QAccessibleWidget>
#include <QPainter>
#include <QPainterPath>
#include <cmath>

#include "ui/qt/controls/qt_geometry.h"
#include "ui/qt/controls/theme.h"

namespace nimbo {
namespace {

class AccessibleChart final : public QAccessibleWidget, public QAccessibleValueInterface {
 public:
  explicit AccessibleChart(ChartWidget& chart) : QAccessibleWidget(&chart, chart.accessibleRole()), chart_(chart) {}

  void* interface_cast(QAccessible::InterfaceType type) override {
    if (type == QAccessible::ValueInterface) return static_cast<QAccessibleValueInterface*>(this);
    return QAccessibleWidget::interface_cast(type);
  }
  [[nodiscard]] QString text(QAccessible::Text part) const override {
    const bool reading = part == QAccessible::Value || part == QAccessible::Description;
    return reading ? chart_.reading().text : QAccessibleWidget::text(part);
  }

  [[nodiscard]] QVariant currentValue() const override { return chart_.reading().percent; }
  void setCurrentValue(const QVariant& /*value*/) override {}
  [[nodiscard]] QVariant maximumValue() const override { return 100.0; }
  [[nodiscard]] QVariant minimumValue() const override { return 0.0; }
  [[nodiscard]] QVariant minimumStepSize() const override { return 0.0; }

 private:
  ChartWidget& chart_;
};

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

ChartWidget::ChartWidget(const Theme& theme, QWidget* parent) : QWidget(parent), theme_(theme) {}

void ChartWidget::place(const Rect& frame, const std::string& accessibleName, bool visible) {
  setGeometry(toQRect(frame));
  setAccessibleName(QString::fromStdString(accessibleName));
  setVisible(visible);
  update();
}

void ChartWidget::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  for (const ChartBar& bar : bars()) {
    QColor color = theme_.color(bar.color);
    color.setAlphaF(static_cast<float>(bar.alpha));
    QPainterPath shape = rounded(onPixels(bar.shape.rect, devicePixelRatioF()), bar.shape.radius);
    // Painting through a clip path would leave its edge jagged.
    if (bar.clip) shape = shape.intersected(rounded(toQRectF(bar.clip->rect), bar.clip->radius));
    painter.fillPath(shape, color);
  }
}

QAccessibleInterface* makeAccessibleChart(const QString& /*className*/, QObject* object) {
  auto* const chart = dynamic_cast<ChartWidget*>(object);
  return chart != nullptr ? new AccessibleChart(*chart) : nullptr;
}

}  // namespace nimbo
