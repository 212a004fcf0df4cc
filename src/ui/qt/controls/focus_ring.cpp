// SPDX-License-Identifier: MIT
#include "ui/qt/controls/focus_ring.h"

#include <QPainter>
#include <QWidget>

#include "ui/qt/controls/theme.h"

namespace nimbo {

bool keyboardFocusVisible(const QWidget& widget) {
  return widget.hasFocus() && widget.window()->testAttribute(Qt::WA_KeyboardFocusChange);
}

void drawFocusRing(QPainter& painter, const QRectF& frame, double radius, const Theme& theme) {
  drawFocusRing(painter, frame, radius, theme.focusRing());
}

void drawFocusRing(QPainter& painter, const QRectF& frame, double radius, const QColor& color) {
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(color, 2));
  painter.drawRoundedRect(frame.adjusted(1, 1, -1, -1), radius - 1, radius - 1);
}

}  // namespace nimbo
