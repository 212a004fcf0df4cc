// SPDX-License-Identifier: MIT
#include "ui/qt/controls/text_fitting.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QPainter>
#include <QTextLayout>
#include <algorithm>
#include <cmath>

namespace nimbo {
namespace {

constexpr double kSmallestShare = 0.84;
constexpr int kSmallestSize = 10;

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

int smallestSize(int size) { return std::min(size, std::max(kSmallestSize, qRound(size * kSmallestShare))); }

/// All lines that `text` takes, without the blanks around them.
QStringList brokenLines(const QString& text, const QFont& font, double width) {
  QTextLayout layout(QString(text).replace('\n', QChar::LineSeparator), font);
  QTextOption option;
  option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  layout.setTextOption(option);
  QStringList lines;
  layout.beginLayout();
  for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
    line.setLineWidth(width);
    lines.push_back(text.mid(line.textStart(), line.textLength()).trimmed());
  }
  layout.endLayout();
  return lines;
}

std::function<double(const QString&)> advanceIn(const QFontMetricsF& metrics) {
  return [&metrics](const QString& text) { return metrics.horizontalAdvance(text); };
}

}  // namespace

QFont fontFor(double size, FontWeight weight) {
  QFont font = QApplication::font();
  font.setPixelSize(std::max(qRound(size), 1));
  font.setWeight(toolkitWeight(weight));
  return font;
}

std::vector<PlacedText> placeMonospaced(const QString& text, const std::function<double(const QString&)>& advance) {
  double digitRoom = 0;
  for (char16_t digit = u'0'; digit <= u'9'; ++digit) digitRoom = std::max(digitRoom, advance(QChar(digit)));

  std::vector<PlacedText> pieces;
  double x = 0;
  for (qsizetype start = 0; start < text.size();) {
    const bool digit = isDigit(text[start]);
    qsizetype end = start + 1;
    while (!digit && end < text.size() && !isDigit(text[end])) ++end;
    const QString piece = text.mid(start, end - start);
    const double width = advance(piece);
    const double room = digit ? digitRoom : width;
    pieces.push_back({piece, x + (room - width) / 2});
    x += room;
    start = end;
  }
  pieces.push_back({{}, x});
  return pieces;
}

double textWidth(const QString& text, const QFont& font, bool monospacedDigits) {
  const QFontMetricsF metrics(font);
  return monospacedDigits ? placeMonospaced(text, advanceIn(metrics)).back().x : metrics.horizontalAdvance(text);
}

FittedText fitText(const QString& text, const QFont& font, bool monospacedDigits, double width) {
  FittedText fitted{text, font, monospacedDigits};
  for (int candidate = font.pixelSize(); candidate >= smallestSize(font.pixelSize()); --candidate) {
    fitted.font.setPixelSize(candidate);
    if (textWidth(text, fitted.font, monospacedDigits) <= width) return fitted;
  }
  // Widened digits are not known to the toolkit's own shortening, so their surplus is taken off first.
  const QFontMetricsF metrics(fitted.font);
  const double surplus = textWidth(text, fitted.font, monospacedDigits) - metrics.horizontalAdvance(text);
  fitted.text = metrics.elidedText(text, Qt::ElideRight, std::max(width - surplus, 0.0));
  return fitted;
}

std::vector<FittedText> wrapText(const QString& text, const QFont& font, double width, int limit) {
  QFont fitting = font;
  QStringList lines;
  for (int candidate = font.pixelSize(); candidate >= smallestSize(font.pixelSize()); --candidate) {
    fitting.setPixelSize(candidate);
    lines = brokenLines(text, fitting, width);
    if (lines.size() <= limit) break;
  }
  if (lines.size() > limit) {
    const QString rest = QStringList(lines.mid(limit - 1)).join(' ');
    lines = lines.first(limit);
    lines.back() = QFontMetricsF(fitting).elidedText(rest, Qt::ElideRight, width);
  }
  std::vector<FittedText> fitted;
  for (const auto& line : lines) fitted.push_back({line, fitting});
  return fitted;
}

double linePitch(const QFont& font, double height, int lines) {
  return std::min(std::ceil(QFontMetricsF(font).lineSpacing()), std::floor(height / std::max(lines, 1)));
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
  if (!text.monospacedDigits) {
    painter.drawText(QPointF(x, baseline), text.text);
    return;
  }
  for (const auto& piece : placeMonospaced(text.text, advanceIn(metrics))) {
    painter.drawText(QPointF(x + piece.x, baseline), piece.text);
  }
}

void drawText(QPainter& painter, const QRectF& frame, Qt::Alignment alignment, const QString& text, const QFont& font) {
  drawText(painter, frame, alignment, fitText(text, font, false, frame.width()));
}

}  // namespace nimbo
