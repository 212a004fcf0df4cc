// SPDX-License-Identifier: MIT
#pragma once

#include <QFont>
#include <QString>
#include <functional>
#include <vector>

#include "ui/controls/control_content.h"

class QPainter;
class QRectF;

namespace nimbo {

/// A text in the font and, at worst, the shortened form in which it fits its place.
struct FittedText {
  QString text;
  QFont font;
  bool monospacedDigits = false;
};

/// In the user's font family.
[[nodiscard]] QFont fontFor(double size, FontWeight weight);

struct PlacedText {
  QString text;
  double x = 0;
};

/// Pieces of `text` from left to right such that every digit has the room of the widest one, also
/// in fonts without tabular figures. The last piece is empty and stands at the end.
[[nodiscard]] std::vector<PlacedText> placeMonospaced(const QString& text,
                                                      const std::function<double(const QString&)>& advance);

/// The advance in points.
[[nodiscard]] double textWidth(const QString& text, const QFont& font, bool monospacedDigits);

/// Users' fonts are wider than the one the frames were made for: the font shrinks a little, and
/// what is still too wide ends in "…".
[[nodiscard]] FittedText fitText(const QString& text, const QFont& font, bool monospacedDigits, double width);

/// The same over at most `limit` lines, broken between words where possible; all in one size. Digits
/// keep their own widths.
[[nodiscard]] std::vector<FittedText> wrapText(const QString& text, const QFont& font, double width, int limit);

/// The distance of lines in a frame of that height: the font's own, or less if they would not fit.
[[nodiscard]] double linePitch(const QFont& font, double height, int lines);

/// Centred vertically on the font's ascent and descent. Only the horizontal part of `alignment` counts.
void drawText(QPainter& painter, const QRectF& frame, Qt::Alignment alignment, const FittedText& text);

/// `text` on one line of `frame`, fitted to it.
void drawText(QPainter& painter, const QRectF& frame, Qt::Alignment alignment, const QString& text, const QFont& font);

}  // namespace nimbo
