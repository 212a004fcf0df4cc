// SPDX-License-Identifier: MIT
#pragma once

#include <QLineEdit>
#include <string>

#include "ui/qt/controls/content_widget.h"

namespace nimbo {

/// One line of text to be typed.
class TextField final : public ContentWidget<QLineEdit, TextFieldContent> {
 public:
  /// Reports the whole text for each change that the user makes.
  TextField(const Theme& theme, ControlListener listener, QWidget* parent);

  /// The text is taken over when it is another one than in the content before; otherwise what the
  /// user has typed since stays.
  void setContent(const TextFieldContent& content);

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace nimbo
