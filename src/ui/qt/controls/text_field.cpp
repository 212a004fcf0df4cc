// SPDX-License-Identifier: MIT
#include "ui/qt/controls/text_field.h"

#include <QPainter>
#include <QSignalBlocker>
#include <utility>

#include "ui/qt/controls/control_painting.h"
#include "ui/qt/controls/plain_tool_tip.h"
#include "ui/qt/controls/qt_geometry.h"
#include "ui/qt/controls/theme.h"

namespace nimbo {

TextField::TextField(const Theme& theme, std::function<void(const std::string& text)> edited, QWidget* parent)
    : QLineEdit(parent), theme_(theme) {
  constexpr int kPadding = 6;
  setFrame(false);
  setTextMargins(kPadding, 0, kPadding, 0);
  setFont(controlFont());
  // Not `textEdited`, which assistive technology can do without.
  connect(this, &QLineEdit::textChanged, this,
          [edited = std::move(edited)](const QString& text) { edited(text.toStdString()); });
}

void TextField::setContent(const TextFieldContent& content) {
  if (content_ == content) return;
  const bool otherText = !content_ || content_->text != content.text;
  content_ = content;
  setObjectName(QString::fromStdString(content.identifier));
  setGeometry(toQRect(content.frame));
  setPlaceholderText(QString::fromStdString(content.placeholder));
  setAccessibleName(QString::fromStdString(content.accessibleName));
  setPlainToolTip(*this, QString::fromStdString(content.toolTip));
  setEnabled(content.enabled);
  setVisible(content.visible);
  const QString wanted = QString::fromStdString(content.text);
  if (!otherText || wanted == text()) return;
  const QSignalBlocker blocker(this);
  setText(wanted);
}

void TextField::paintEvent(QPaintEvent* event) {
  {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    drawField(painter, rect(), theme_, isEnabled(), hasFocus() ? FieldMark::focused : FieldMark::none);
  }
  QLineEdit::paintEvent(event);
}

}  // namespace nimbo
