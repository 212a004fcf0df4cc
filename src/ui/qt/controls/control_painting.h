// SPDX-License-Identifier: MIT
#pragma once

#include <QFont>
#include <QPointF>
#include <QRectF>

#include "ui/qt/controls/theme.h"

class QPainter;
class QWidget;

namespace nimbo {

/// Corners of buttons and fields, in points.
inline constexpr double kControlRadius = 6;

[[nodiscard]] ControlState controlState(const QWidget& control, bool pressed);

/// Of pop-ups and fields.
[[nodiscard]] QFont controlFont();

enum class FieldMark { none, focused };

/// Ground and edge of a field of text.
void drawField(QPainter& painter, const QRectF& frame, const Theme& theme, bool enabled, FieldMark mark);

enum class ChevronDirection { up, down };

/// An arrow head without a shaft, 6 points wide, in the painter's pen's colour.
void drawChevron(QPainter& painter, const QPointF& centre, ChevronDirection direction);

/// A check mark that fills `frame`, a square, in the painter's pen's colour.
void drawCheckMark(QPainter& painter, const QRectF& frame);

}  // namespace nimbo
