// SPDX-License-Identifier: MIT
#include "ui/qt/controls/control_painting.h"

#include <QPainterPathStroker>
#include <QTransform>
#include <QWidget>

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

QPainterPath circle(double radius) {
  QPainterPath path;
  path.addEllipse(QPointF(0, 0), radius, radius);
  return path;
}

QPainterPath stroked(const QPainterPath& path, double width) {
  QPainterPathStroker stroker;
  stroker.setWidth(width);
  stroker.setJoinStyle(Qt::RoundJoin);
  // Curves are flattened as if the path were drawn this small; it never is.
  stroker.setCurveThreshold(0.001);
  return stroker.createStroke(path);
}

/// The outline of a wheel with eight teeth, and its hub, around the origin.
QPainterPath gear() {
  constexpr int kTeeth = 8;
  constexpr double kLine = 0.075;

  QPainterPath tooth;
  tooth.moveTo(-0.13, -0.33);
  tooth.lineTo(-0.075, -0.455);
  tooth.lineTo(0.075, -0.455);
  tooth.lineTo(0.13, -0.33);
  tooth.lineTo(0.13, 0);
  tooth.lineTo(-0.13, 0);
  tooth.closeSubpath();
  QPainterPath wheel = circle(0.36);
  for (int index = 0; index < kTeeth; ++index) {
    wheel = wheel.united(QTransform().rotate(360.0 / kTeeth * index).map(tooth));
  }
  return stroked(wheel, kLine).united(stroked(circle(0.15), kLine));
}

/// Up to the right, around the origin.
QPainterPath arrow() {
  constexpr double kEnd = 0.3;
  constexpr double kHead = 0.46;
  QPainterPath path;
  path.moveTo(-kEnd, kEnd);
  path.lineTo(kEnd, -kEnd);
  path.moveTo(kEnd - kHead, -kEnd);
  path.lineTo(kEnd, -kEnd);
  path.lineTo(kEnd, kHead - kEnd);
  return stroked(path, 0.13);
}

}  // namespace

ControlState controlState(const QWidget& control, bool pressed) {
  if (!control.isEnabled()) return ControlState::disabled;
  if (pressed) return ControlState::pressed;
  return control.underMouse() ? ControlState::hovered : ControlState::idle;
}

QFont controlFont() { return fontFor(kControlTextSize, FontWeight::regular); }

void fillRounded(QPainter& painter, const QRectF& frame, double radius, const QColor& ground) {
  painter.setPen(Qt::NoPen);
  painter.setBrush(ground);
  painter.drawRoundedRect(frame, radius, radius);
}

void fillRounded(QPainter& painter, const QRectF& frame, double radius, const QColor& ground, const QColor& edge,
                 double line) {
  const double inset = line / 2;
  painter.setPen(QPen(edge, line));
  painter.setBrush(ground);
  painter.drawRoundedRect(frame.adjusted(inset, inset, -inset, -inset), radius - inset, radius - inset);
}

bool keyboardFocusVisible(const QWidget& widget) {
  return widget.hasFocus() && widget.window()->testAttribute(Qt::WA_KeyboardFocusChange);
}

void drawFocusRing(QPainter& painter, const QRectF& frame, double radius, const QColor& color) {
  fillRounded(painter, frame, radius, Qt::transparent, color, 2);
}

void drawField(const QWidget& field, QPainter& painter, const Theme& theme) {
  const bool enabled = field.isEnabled();
  fillRounded(painter, field.rect(), kControlRadius, theme.fieldGround(enabled), theme.fieldBorder(enabled));
  if (field.hasFocus()) drawFocusRing(painter, field.rect(), kControlRadius, theme.focusRing());
}

void drawChevron(QPainter& painter, const QPointF& centre, ChevronDirection direction) {
  const double tip = direction == ChevronDirection::up ? -1.5 : 1.5;
  drawStroke(painter, {centre + QPointF(-3, -tip), centre + QPointF(0, tip), centre + QPointF(3, -tip)});
}

void drawCheckMark(QPainter& painter, const QRectF& frame) {
  const auto at = [&](double x, double y) { return frame.topLeft() + QPointF(x * frame.width(), y * frame.height()); };
  drawStroke(painter, {at(0.24, 0.53), at(0.43, 0.73), at(0.77, 0.29)});
}

std::optional<QPainterPath> symbolPath(const std::string& name) {
  if (name == "gearshape") return QTransform::fromTranslate(0.5, 0.5).map(gear());
  if (name == "↗") return QTransform::fromTranslate(0.5, 0.5).map(arrow());
  return std::nullopt;
}

}  // namespace nimbo
