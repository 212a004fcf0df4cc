// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>
#include <optional>

#include "ui/dashboard_content.h"
#include "ui/qt/text_fitting.h"

namespace nimbo {

class Theme;

/// One line of text that always fits its frame. Screen readers get the whole text.
class FittedLabel final : public QLabel {
 public:
  FittedLabel(const Theme& theme, QWidget* parent);

  void setContent(const LabelContent& content);

  /// As it is drawn.
  [[nodiscard]] const FittedText& fitted() const { return fitted_; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void fit();

  const Theme& theme_;
  std::optional<LabelContent> content_;
  FittedText fitted_;
};

}  // namespace nimbo
