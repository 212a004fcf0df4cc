// SPDX-License-Identifier: MIT
#include "ui/qt/controls/fitted_label.h"

#include <QEvent>
#include <QPainter>

namespace nimbo {

FittedLabel::FittedLabel(const Theme& theme, QWidget* parent, const char* name) : ContentWidget(theme, parent) {
  setObjectName(name);
  setTextFormat(Qt::PlainText);
}

void FittedLabel::setContent(const LabelContent& content) {
  if (content_ == content) return;
  setText(QString::fromStdString(content.text));
  take(content);
  fit();
}

void FittedLabel::fit() {
  if (!content_) return;
  const auto& style = content_->style;
  const QFont font = fontFor(style.size, style.weight);
  if (content_->lines > 1) {
    lines_ = wrapText(text(), font, content_->frame.width, content_->lines);
  } else {
    lines_ = {fitText(text(), font, style.monospacedDigits, content_->frame.width)};
  }
  update();
}

void FittedLabel::paintEvent(QPaintEvent* /*event*/) {
  if (!content_ || lines_.empty()) return;
  QPainter painter(this);
  painter.setPen(theme_.color(content_->style.color));
  const auto alignment = content_->style.alignment == TextAlignment::right ? Qt::AlignRight : Qt::AlignLeft;
  const double pitch =
      content_->lines > 1 ? linePitch(lines_.front().font, content_->frame.height, content_->lines) : height();
  QRectF frame(0, 0, width(), pitch);
  for (const auto& line : lines_) {
    drawText(painter, frame, alignment, line);
    frame.translate(0, pitch);
  }
}

void FittedLabel::changeEvent(QEvent* event) {
  QLabel::changeEvent(event);
  if (event->type() == QEvent::ApplicationFontChange || event->type() == QEvent::FontChange) fit();
}

}  // namespace nimbo
