// SPDX-License-Identifier: MIT
#include "ui/qt/controls/symbols.h"

#include <QPainterPathStroker>
#include <QTransform>

namespace nimbo {
namespace {

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

std::optional<QPainterPath> symbolPath(const std::string& name) {
  if (name == "gearshape") return QTransform::fromTranslate(0.5, 0.5).map(gear());
  if (name == "↗") return QTransform::fromTranslate(0.5, 0.5).map(arrow());
  return std::nullopt;
}

}  // namespace nimbo
