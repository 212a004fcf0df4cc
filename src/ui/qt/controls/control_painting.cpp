// SPDX-License-Identifier: MIT
#include "ui/qt/controls/control_painting.h"

#include <QApplication>
#include <QPainter>
#include <QWidget>

#include "ui/qt/controls/focus_ring.h"
#include "ui/qt/controls/text_fitting.h"

namespace nimbo {
namespace {

constexpr double kControlTextSize = 12;
constexpr double kStroke = 1.5;

void drawStroke(QPainter& painter, const QPolygonF& points) {
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(painter.pen().color(), kStroke, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawPolyline(points);
}

}  // namespace

ControlState controlState(const QWidget& control, bool pressed) {
  if (!control.isEnabled()) return ControlState::disabled;
  if (pressed) return ControlState::pressed;
  return control.underMouse() ? ControlState::hovered : ControlState::idle;
}

QFont controlFont() { return fontFor(QApplication::font(), kControlTextSize, FontWeight::regular); }

void drawField(QPainter& painter, const QRectF& frame, const Theme& theme, bool enabled, FieldMark mark) {
  painter.setPen(QPen(theme.fieldBorder(enabled), 1));
  painter.setBrush(theme.fieldGround(enabled));
  painter.drawRoundedRect(frame.adjusted(0.5, 0.5, -0.5, -0.5), kControlRadius - 0.5, kControlRadius - 0.5);
  if (mark == FieldMark::focused) drawFocusRing(painter, frame, kControlRadius, theme);
}

void drawChevron(QPainter& painter, const QPointF& centre, ChevronDirection direction) {
  const double tip = direction == ChevronDirection::up ? -1.5 : 1.5;
  drawStroke(painter, {centre + QPointF(-3, -tip), centre + QPointF(0, tip), centre + QPointF(3, -tip)});
}

void drawCheckMark(QPainter& painter, const QRectF& frame) {
  const auto at = [&](double x, double y) { return frame.topLeft() + QPointF(x * frame.width(), y * frame.height()); };
  drawStroke(painter, {at(0.24, 0.53), at(0.43, 0.73), at(0.77, 0.29)});
}

}  // namespace nimbo
