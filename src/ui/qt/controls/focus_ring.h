// SPDX-License-Identifier: MIT
#pragma once

class QColor;
class QPainter;
class QRectF;
class QWidget;

namespace nimbo {

class Theme;

/// Whether `widget` has the focus and the user moves it with the keyboard; a ring around whatever
/// was clicked last would only disturb.
[[nodiscard]] bool keyboardFocusVisible(const QWidget& widget);

/// Draws the ring just inside `frame`.
void drawFocusRing(QPainter& painter, const QRectF& frame, double radius, const Theme& theme);
void drawFocusRing(QPainter& painter, const QRectF& frame, double radius, const QColor& color);

}  // namespace nimbo
