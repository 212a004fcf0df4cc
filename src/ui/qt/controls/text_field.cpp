// SPDX-License-Identifier: MIT
#include "ui/qt/controls/text_field.h"

#include <QSignalBlocker>
#include <utility>

#include "ui/qt/controls/control_painting.h"

namespace nimbo {

TextField::TextField(const Theme& theme, ControlListener listener, QWidget* parent)
    : ContentWidget(theme, parent, std::move(listener)) {
  constexpr int kPadding = 6;
  setFrame(false);
  setTextMargins(kPadding, 0, kPadding, 0);
  setFont(controlFont());
  // Not `textEdited`, which assistive technology can do without.
  connect(this, &QLineEdit::textChanged, this, [this](const QString& text) { report(text.toStdString()); });
}

void TextField::setContent(const TextFieldContent& content) {
  if (content_ == content) return;
  const bool otherText = !content_ || content_->text != content.text;
  setPlaceholderText(QString::fromStdString(content.placeholder));
  take(content);
  const QString wanted = QString::fromStdString(content.text);
  if (!otherText || wanted == text()) return;
  const QSignalBlocker blocker(this);
  setText(wanted);
}

void TextField::paintEvent(QPaintEvent* event) {
  {
    SmoothPainter painter(this);
    drawField(*this, painter, theme_);
  }
  QLineEdit::paintEvent(event);
}

}  // namespace nimbo
