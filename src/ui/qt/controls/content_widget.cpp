// SPDX-License-Identifier: MIT
#include "ui/qt/controls/content_widget.h"

namespace nimbo {

QString withoutMnemonics(const std::string& text) { return QString::fromStdString(text).replace('&', "&&"); }

void setSpokenName(QWidget& widget, const std::string& name) {
  const QString wanted = QString::fromStdString(name);
  if (widget.accessibleName() != wanted) widget.setAccessibleName(wanted);
}

void setPlainToolTip(QWidget& widget, const std::string& text) {
  const QString plain = QString::fromStdString(text);
  if (widget.accessibleDescription() == plain) return;
  // Only markup is wrapped by the toolkit.
  widget.setToolTip(text.empty() ? QString() : "<qt>" + plain.toHtmlEscaped().replace('\n', "<br>") + "</qt>");
  widget.setAccessibleDescription(plain);
}

}  // namespace nimbo
