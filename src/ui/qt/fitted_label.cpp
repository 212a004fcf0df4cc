// SPDX-License-Identifier: MIT
#include "ui/qt/fitted_label.h"

#include <QApplication>
#include <QEvent>
#include <QPainter>

#include "ui/qt/plain_tool_tip.h"
#include "ui/qt/qt_geometry.h"
#include "ui/qt/theme.h"

namespace nimbo {

FittedLabel::FittedLabel(const Theme& theme, QWidget* parent) : QLabel(parent), theme_(theme) {
  setTextFormat(Qt::PlainText);
}

void FittedLabel::setContent(const LabelContent& content) {
  if (content_ == content) return;
  content_ = content;
  setGeometry(toQRect(content.frame));
  setText(QString::fromStdString(content.text));
  setPlainToolTip(*this, QString::fromStdString(content.toolTip));
  setVisible(content.visible);
  fit();
}

void FittedLabel::fit() {
  if (!content_) return;
  const auto& style = content_->style;
  fitted_ = fitText(text(), fontFor(QApplication::font(), style.size, style.weight), style.monospacedDigits,
                    content_->frame.width);
  update();
}

void FittedLabel::paintEvent(QPaintEvent* /*event*/) {
  if (!content_) return;
  QPainter painter(this);
  painter.setPen(theme_.color(content_->style.color));
  drawText(painter, rect(), content_->style.alignment == TextAlignment::right ? Qt::AlignRight : Qt::AlignLeft,
           fitted_);
}

void FittedLabel::changeEvent(QEvent* event) {
  QLabel::changeEvent(event);
  if (event->type() == QEvent::ApplicationFontChange || event->type() == QEvent::FontChange) fit();
}

}  // namespace nimbo
