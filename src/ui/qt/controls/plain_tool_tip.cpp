// SPDX-License-Identifier: MIT
#include "ui/qt/controls/plain_tool_tip.h"

#include <QWidget>

namespace nimbo {

void setPlainToolTip(QWidget& widget, const QString& text) {
  QString markup;
  // Only markup is wrapped by the toolkit.
  if (!text.isEmpty()) markup = "<qt>" + text.toHtmlEscaped().replace('\n', "<br>") + "</qt>";
  widget.setToolTip(markup);
  widget.setAccessibleDescription(text);
}

}  // namespace nimbo
