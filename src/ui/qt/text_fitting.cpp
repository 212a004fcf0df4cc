// SPDX-License-Identifier: MIT
#include "ui/qt/text_fitting.h"

#include <QFontMetricsF>
#include <QPainter>
#include <algorithm>

namespace nimbo {
namespace {

constexpr double kSmallestShare = 0.84;
constexpr int kSmallestSize = 8;

QFont::Weight toolkitWeight(FontWeight weight) {
  switch (weight) {
    case FontWeight::regular:
      return QFont::Normal;
    case FontWeight::medium:
      return QFont::Medium;
    case FontWeight::semibold:
      break;
  }
  return QFont::DemiBold;
}

bool isDigit(QChar character) { return character >= u'0' && character <= u'9'; }

double digitWidth(const QFontMetricsF& metrics) {
  double width = 0;
  for (char16_t digit = u'0'; digit <= u'9'; ++digit) width = std::max(width, metrics.horizontalAdvance(QChar(digit)));
  return width;
}

bool digitsDiffer(const QFontMetricsF& metrics) {
  const double first = metrics.horizontalAdvance(u'0');
  return std::any_of(u"123456789", u"123456789" + 9,
                     [&](char16_t digit) { return metrics.horizontalAdvance(QChar(digit)) != first; });
}

/// Walks the text in pieces that are either one digit or a stretch without digits.
template <class Visit>
void forEachPiece(const QString& text, Visit visit) {
  qsizetype start = 0;
  while (start < text.size()) {
    qsizetype end = start + 1;
    if (!isDigit(text[start])) {
      while (end < text.size() && !isDigit(text[end])) ++end;
    }
    visit(text.mid(start, end - start));
    start = end;
  }
}

}  // namespace

QFont fontFor(const QFont& family, double size, FontWeight weight) {
  QFont font(family);
  font.setPixelSize(std::max(qRound(size), 1));
  font.setWeight(toolkitWeight(weight));
  return font;
}

double textWidth(const QString& text, const QFont& font, bool monospacedDigits) {
  const QFontMetricsF metrics(font);
  if (!monospacedDigits || !digitsDiffer(metrics)) return metrics.horizontalAdvance(text);
  const double digit = digitWidth(metrics);
  double width = 0;
  forEachPiece(text,
               [&](const QString& piece) { width += isDigit(piece[0]) ? digit : metrics.horizontalAdvance(piece); });
  return width;
}

FittedText fitText(const QString& text, const QFont& font, bool monospacedDigits, double width) {
  FittedText fitted{text, font, monospacedDigits};
  const int size = font.pixelSize();
  const int smallest = std::min(size, std::max(kSmallestSize, qRound(size * kSmallestShare)));
  for (int candidate = size; candidate >= smallest; --candidate) {
    fitted.font.setPixelSize(candidate);
    if (textWidth(text, fitted.font, monospacedDigits) <= width) return fitted;
  }
  // Widened digits are not known to the toolkit's own shortening, so their surplus is taken off first.
  const QFontMetricsF metrics(fitted.font);
  const double surplus = textWidth(text, fitted.font, monospacedDigits) - metrics.horizontalAdvance(text);
  fitted.text = metrics.elidedText(text, Qt::ElideRight, std::max(width - surplus, 0.0));
  return fitted;
}

void drawText(QPainter& painter, const QRectF& frame, Qt::Alignment alignment, const FittedText& text) {
  const QFontMetricsF metrics(text.font);
  const double free = frame.width() - textWidth(text.text, text.font, text.monospacedDigits);
  double x = frame.left();
  if (alignment & Qt::AlignRight) x += free;
  if (alignment & Qt::AlignHCenter) x += free / 2;
  // On a whole point, so that neighbouring lines keep equal distances.
  const double baseline = qRound(frame.center().y() + (metrics.ascent() - metrics.descent()) / 2);

  painter.setFont(text.font);
  if (!text.monospacedDigits || !digitsDiffer(metrics)) {
    painter.drawText(QPointF(x, baseline), text.text);
    return;
  }
  const double digit = digitWidth(metrics);
  forEachPiece(text.text, [&](const QString& piece) {
    const double advance = metrics.horizontalAdvance(piece);
    const double room = isDigit(piece[0]) ? digit : advance;
    painter.drawText(QPointF(x + (room - advance) / 2, baseline), piece);
    x += room;
  });
}

}  // namespace nimbo
