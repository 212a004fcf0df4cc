// SPDX-License-Identifier: MIT
#pragma once

#include <QFont>
#include <QString>

#include "ui/dashboard_content.h"

class QPainter;
class QRectF;

namespace nimbo {

/// A text in the font and, at worst, the shortened form in which it fits its place.
struct FittedText {
  QString text;
  QFont font;
  bool monospacedDigits = false;
};

[[nodiscard]] QFont fontFor(const QFont& family, double size, FontWeight weight);

/// The advance in points. With `monospacedDigits` every digit takes the room of the widest one,
/// also in fonts without tabular figures.
[[nodiscard]] double textWidth(const QString& text, const QFont& font, bool monospacedDigits);

/// Users' fonts are wider than the one the frames were made for: the font shrinks a little, and
/// what is still too wide ends in "…".
[[nodiscard]] FittedText fitText(const QString& text, const QFont& font, bool monospacedDigits, double width);

/// Centred vertically on the font's ascent and descent. Only the horizontal part of `alignment` counts.
void drawText(QPainter& painter, const QRectF& frame, Qt::Alignment alignment, const FittedText& text);

}  // namespace nimbo
