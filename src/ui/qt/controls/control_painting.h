// SPDX-License-Identifier: MIT
#pragma once

#include <QFont>
#include <QPainter>
#include <QPainterPath>
#include <optional>
#include <string>

#include "ui/qt/controls/theme.h"

namespace nimbo {

/// Corners of buttons and fields, in points.
inline constexpr double kControlRadius = 6;

/// Paints smooth edges.
class SmoothPainter : public QPainter {
 public:
  explicit SmoothPainter(QPaintDevice* device) : QPainter(device) { setRenderHint(Antialiasing); }
};

[[nodiscard]] ControlState controlState(const QWidget& control, bool pressed);

/// Of pop-ups and fields.
[[nodiscard]] QFont controlFont();

void fillRounded(QPainter& painter, const QRectF& frame, double radius, const QColor& ground);

/// The same with an edge just inside `frame`, `line` points wide.
void fillRounded(QPainter& painter, const QRectF& frame, double radius, const QColor& ground, const QColor& edge,
                 double line = 1);

/// Whether `widget` has the focus and the user moves it with the keyboard; a ring around whatever
/// was clicked last would only disturb.
[[nodiscard]] bool keyboardFocusVisible(const QWidget& widget);

/// Draws a ring just inside `frame`.
void drawFocusRing(QPainter& painter, const QRectF& frame, double radius, const QColor& color);

/// Ground and edge of a field of text, with the ring while it has the focus.
void drawField(const QWidget& field, QPainter& painter, const Theme& theme);

enum class ChevronDirection { up, down };

/// An arrow head without a shaft, 6 points wide, in the painter's pen's colour.
void drawChevron(QPainter& painter, const QPointF& centre, ChevronDirection direction);

/// A check mark that fills `frame`, a square, in the painter's pen's colour.
void drawCheckMark(QPainter& painter, const QRectF& frame);

/// The outline of a symbol inside a square of side 1 with the origin at the top left; absent for a
/// name that is not known. A sign that many fonts lack goes by itself as the name.
[[nodiscard]] std::optional<QPainterPath> symbolPath(const std::string& name);

}  // namespace nimbo
